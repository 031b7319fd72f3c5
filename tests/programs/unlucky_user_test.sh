#!/bin/bash
# The two programs as a cron job, a careless command line or an unlucky moment meets them: an
# index is never lost and never answers wrongly without a word.
# Usage: unlucky_user_test.sh SORVANTA SORVANTA_FIND
# As root, the cases that need an ordinary user's rights run as nobody.
set -u
work=$(mktemp -d)
chmod 755 "$work"
trap 'chmod -R u+rwX "$work" 2>/dev/null; rm -rf "$work"' EXIT
# Copies that an ordinary user can run wherever the build tree lies.
mkdir "$work/bin"
cp "$1" "$work/bin/sorvanta"
cp "$2" "$work/bin/sorvanta-find"
chmod 755 "$work/bin"/*
sorvanta=$work/bin/sorvanta
finder=$work/bin/sorvanta-find
failures=0

export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data SORVANTA_ROOTS=$work/tree
export QUILT_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
unset DISPLAY WAYLAND_DISPLAY
index=$XDG_DATA_HOME/Wendlemark/Sorvanta/sorvanta.idx
mkdir -p "$work/tree/docs" "$work/data" "$work/config"
touch "$work/tree/docs/report.pdf" "$work/tree/notes.txt"

is_root() { [ "$(id -u)" = 0 ]; }
# Runs a command with an ordinary user's rights: nobody's when we are root.
as_user() {
    if is_root; then
        setpriv --reuid=65534 --regid=65534 --clear-groups -- "$@"
    else
        "$@"
    fi
}
give_to_user() { if is_root; then chown -R 65534:65534 "$@"; fi; }

# expect NAME CODE TEXT: the last run's exit code is CODE and its standard error holds TEXT.
expect() {
    local said=true
    if [ -n "$3" ]; then
        grep -qF -- "$3" "$work/err" || said=false
    elif [ -s "$work/err" ]; then
        said=false
    fi
    if [ "$code" != "$2" ] || ! $said; then
        echo "FAIL: $1: exit $code (expected $2); standard error:" >&2
        sed 's/^/    /' "$work/err" >&2
        failures=$((failures + 1))
    else
        echo "ok: $1"
    fi
}
run() {
    "$@" >"$work/out" 2>"$work/err"
    code=$?
}
same_file() {
    if ! cmp -s "$1" "$2"; then
        echo "FAIL: $3" >&2
        failures=$((failures + 1))
    fi
}
# Waits until a build has put its unfinished index in place: the event, with a time-out only a
# hang reaches.
wait_for_build() {
    for _ in $(seq 1200); do
        if [ "$(od -An -tx1 -j4 -N1 "$1" 2>/dev/null)" = " 01" ]; then
            return 0
        fi
        sleep 0.05
    done
    echo "FAIL: no build began at $1" >&2
    exit 1
}

run "$sorvanta" /buildindex
expect "a build" 0 ""
cp "$index" "$work/index.copy"

# A dump written onto the index it is made from, however that is spelt.
ln -s "$index" "$work/link.idx"
for target in "$index" "$XDG_DATA_HOME/Wendlemark/../Wendlemark/Sorvanta/sorvanta.idx" \
    "$work/link.idx"; do
    run "$finder" --dump "$target"
    expect "a dump onto the index as $target" 2 "the dump would take the place of the index"
done
same_file "$index" "$work/index.copy" "the index was changed by a refused dump"
run "$finder" --dump "$work/dump.txt"
expect "a dump beside it" 0 ""

# A build under way: the finder says so, a second build is refused with exit 1, and the first,
# whose folder goes away meanwhile, ends with the loader's words and exit 1.
for i in $(seq 20000); do : >"$work/tree/docs/file$i"; done
"$sorvanta" /buildindex >"$work/first.out" 2>"$work/first.err" &
first=$!
wait_for_build "$index"
kill -STOP "$first"
run "$finder" report.pdf
expect "the finder during a build" 2 "sorvanta-find: the index is being rebuilt"
run "$finder" -c nothing
expect "a count during a build" 2 "sorvanta-find: the index is being rebuilt"
run "$sorvanta" /buildindex
expect "a second build" 1 "already in progress"
rm -rf "$XDG_DATA_HOME/Wendlemark/Sorvanta"
kill -CONT "$first"
wait "$first"
code=$?
cp "$work/first.err" "$work/err"
expect "a build whose folder went away" 1 "The index file was not found."
mkdir -p "$XDG_DATA_HOME/Wendlemark/Sorvanta"

# A build killed half way leaves an incomplete index, which the finder will not answer from.
"$sorvanta" /buildindex >/dev/null 2>&1 &
killed=$!
wait_for_build "$index"
kill -KILL "$killed"
wait "$killed" 2>/dev/null
run "$finder" report.pdf
expect "the finder after a killed build" 2 \
    "sorvanta-find: the index is incomplete; run 'sorvanta /buildindex'"
rm -f "$work"/tree/docs/file*

# A full disk under the index.
rm -f "$index"
ln -s /dev/full "$index"
run "$sorvanta" /buildindex
expect "a build onto a full disk" 1 "insufficient space"
rm -f "$index"

# A read-only index folder, with an ordinary user's rights.
mkdir -p "$work/user/config" "$work/user/data/Wendlemark/Sorvanta"
give_to_user "$work/user"
chmod 500 "$work/user/data/Wendlemark/Sorvanta"
XDG_CONFIG_HOME=$work/user/config XDG_DATA_HOME=$work/user/data run as_user "$sorvanta" /buildindex
expect "a build into a read-only folder" 1 "could not be opened (reason: Permission denied)"

# No private data folder at all (nobody, HOME unset): an error, and nothing in the current folder.
mkdir -p "$work/here"
chmod 777 "$work/here"
: >"$work/not-a-folder"
if is_root; then
    no_home=(env -u HOME -u XDG_DATA_HOME -u XDG_CONFIG_HOME)
else
    no_home=(env -u HOME "XDG_DATA_HOME=$work/not-a-folder/data"
        "XDG_CONFIG_HOME=$work/here-config")
fi
(
    cd "$work/here" || exit 99
    run as_user "${no_home[@]}" "$sorvanta" /buildindex
    exit "$code"
)
code=$?
expect "a build without a data folder" 1 "Sorvanta has no private folder to keep its index in"
if [ -n "$(ls -A "$work/here")" ]; then
    echo "FAIL: a build without a data folder wrote into the current folder:" \
        "$(ls -A "$work/here")" >&2
    failures=$((failures + 1))
fi

# An expression that the library gives up on, on the long name of a root: the first name of the
# index, so that nothing is found before it.
long=$work/$(printf 'd%.0s' $(seq 200))
mkdir -p "$long"
touch "$long/b.pdf"
SORVANTA_ROOTS=$long run "$sorvanta" /buildindex
expect "a build of a long root" 0 ""
run "$finder" -r '(.*)+\.pdf'
expect "an expression given up on a name" 2 \
    "sorvanta-find: the expression was too complex for a name, and the search stopped there"
if [ -s "$work/out" ]; then
    echo "FAIL: the finder printed $(cat "$work/out") though it stopped at the first name" >&2
    failures=$((failures + 1))
fi

exit $((failures > 0))
