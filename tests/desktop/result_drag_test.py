"""A result row dragged out of the list reaches another program's window as the file's URI in a
"text/uri-list" and its path as "text/plain", both from the bytes of a name that is not UTF-8. An index that another process builds meanwhile is
taken at the next Find, not before: the rows and the status line stay until then."""

import os
import subprocess
import sys

from sorvanta_desktop import (Atspi, Session, cell, cell_text, check, run, search, table_rows,
                              text_of, wait_for)

TITLE = "Sorvanta - v1.14"
HERE = os.path.dirname(os.path.abspath(__file__))
# A name in Latin-1, which is not UTF-8.
LATIN = b"caf\xe9.txt"
# Where the drop target's window goes, clear of the program's window.
TARGET = (1150, 80)


def start_drop_target(session):
    out = os.path.join(session.home, "dropped")
    process = subprocess.Popen([sys.executable, os.path.join(HERE, "stand_ins.py"),
                                "drop-target", out, str(TARGET[0]), str(TARGET[1])])
    wait_for("the drop target", lambda: os.path.exists(out + ".ready"))
    return process, out


def dropped(out):
    if not os.path.exists(out):
        return []
    with open(out, "rb") as record:
        return record.read().splitlines()


def drag(session, node, to):
    """Presses on the node and moves in steps to `to`, as a hand does, then lets go."""
    drag_from(session, session.centre(node), to)


def drag_from(session, start, to):
    x, y = start
    steps = ["mousemove", str(x), str(y), "mousedown", "1"]
    for step in range(1, 11):
        steps += ["mousemove", str(x + (to[0] - x) * step // 10),
                  str(y + (to[1] - y) * step // 10), "sleep", "0.05"]
    session.xdotool(*steps, "sleep", "0.3", "mouseup", "1")


def index_status(session, window):
    return [text_of(node) for node in session.controls(window, Atspi.Role.TEXT)
            if node.get_parent().get_role() == Atspi.Role.SCROLL_PANE][0]


def test(session):
    open(os.path.join(session.tree.encode(), LATIN), "w").close()
    session.build_index()
    target, out = start_drop_target(session)
    try:
        session.start()
        window = session.window(TITLE)
        session.focus(window)
        table = wait_for("the results list",
                         lambda: session.controls(window, Atspi.Role.TABLE))[0]
        # The tree's path holds nothing that a URI escapes.
        entries = [
            ("file00004.txt", os.path.join(session.tree, "folder000", "file00004.txt").encode(),
             b"file00004.txt"),
            ("caf*", os.path.join(session.tree.encode(), LATIN),
             b"caf%E9.txt"),
        ]
        for pattern, path, escaped in entries:
            search(session, window, pattern)
            wait_for("the row of " + pattern, lambda: table_rows(table) == 1)
            before = len(dropped(out))
            drag(session, cell(table, 0, 0), (TARGET[0] + 150, TARGET[1] + 150))
            wait_for("the drop", lambda: len(dropped(out)) == before + 2)
            uri = b"file://" + os.path.dirname(path) + b"/" + escaped
            check(dropped(out)[before:] == [b"text/uri-list: " + uri + b"\\r\\n",
                                            b"text/plain: " + path],
                  "what the drop got: %s" % dropped(out)[before:])
        session.screenshot("dragged")

        # A press below the rows drags nothing, though the row of the Latin-1 name is still
        # selected: the next drop to arrive is that of the next row dragged.
        before = len(dropped(out))
        box = table.get_extents(Atspi.CoordType.SCREEN)
        drag_from(session, (box.x + 30, box.y + box.height - 15),
                  (TARGET[0] + 150, TARGET[1] + 150))
        pattern, path, _ = entries[0]
        search(session, window, pattern)
        wait_for("the row of " + pattern, lambda: cell_text(table, 0, 0) == pattern)
        drag(session, cell(table, 0, 0), (TARGET[0] + 150, TARGET[1] + 150))
        wait_for("the drop from the row", lambda: len(dropped(out)) >= before + 2)
        check(dropped(out)[before + 1] == b"text/plain: " + path,
              "only the row's drag arrives: %s" % dropped(out)[before:])
    finally:
        target.kill()
        target.wait()

    search(session, window, "file0000*")
    wait_for("the rows of the first index", lambda: table_rows(table) == 10)
    before = index_status(session, window)
    check(" 11 files in " in before, "the first index's counts: " + before)
    session.make_tree(20)
    session.build_index()
    check(table_rows(table) == 10 and index_status(session, window) == before,
          "nothing changes before the next Find")
    search(session, window, "file0001*")
    wait_for("the rows of the new index", lambda: table_rows(table) == 10 and
             cell_text(table, 0, 0) == "file00010.txt")
    after = index_status(session, window)
    check(after.startswith("Index status good, updated just now, 21 files in "),
          "the new index's counts and age: " + after)
    session.screenshot("newer-index", window)

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("result-drag", tree_files=10)))
