"""A search that outlasts its grace shows "Searching..." with a bar and nothing else: a dialog
exactly 300 pixels wide, the bar six pixels in from its left, top and right edges, and as high
as the bar and the six pixels above it, since no Cancel button stands below."""

import sys

from sorvanta_desktop import (Atspi, Session, check, end_with_escape, extents, run, search,
                              text_of, wait_for)

TITLE = "Sorvanta - v1.14"
# A back-reference that tries every split of each name: slow enough to outlast the grace over
# the names of the tree, and it matches none of them.
SLOW_PATTERN = r"(.*)(.*)(.*)\3\2\1x"


def test(session):
    session.build_index()
    session.write_settings("[Options]\nUseRegExp=true\n")
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    search(session, window, SLOW_PATTERN)
    dialog = session.window("Searching...")
    # The program answers the accessibility bus between two slices of the search, which are long.
    bar = wait_for("the dialog's bar",
                   lambda: session.controls(dialog, Atspi.Role.PROGRESS_BAR))[0]
    # A widget that is not laid out yet has no place on the screen.
    def placed_now():
        shown, inside = extents(dialog), extents(bar)
        return shown[2] > 0 and abs(inside[0]) < 100000 and (shown, inside)

    placed = wait_for("the dialog and its bar on the screen", placed_now)
    (x, y, width, height), (bar_x, bar_y, bar_width, bar_height) = placed
    session.screenshot("searching", dialog)
    check(width == 300, "the dialog is 300 pixels wide, not %d" % width)
    check((bar_x - x, bar_y - y, x + width - (bar_x + bar_width)) == (6, 6, 6),
          "the bar stands 6 pixels in from the left, top and right: %s"
          % ((bar_x - x, bar_y - y, x + width - (bar_x + bar_width)),))
    check(height == bar_height + 6,
          "the dialog is as high as the bar and the edge above it: %d high, the bar %d"
          % (height, bar_height))
    check(not session.controls(dialog, Atspi.Role.PUSH_BUTTON), "a search offers no Cancel")
    wait_for("the search to end", lambda: not session.showing(dialog), patience=120)
    outcome = [text_of(node) for node in session.controls(window, Atspi.Role.TEXT)]
    check(any(text.startswith("0 results") or text.startswith("No results") for text in outcome),
          "nothing matched: %s" % outcome)

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("progress-dialog", tree_files=60000)))
