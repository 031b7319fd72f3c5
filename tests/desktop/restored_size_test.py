"""The search window comes back at the size it was closed at: exactly that size, and laid out
for it, as if the user had dragged it there: the list fills the window, the buttons keep to the
right edge and the index status line stands whole on one line."""

import sys

from sorvanta_desktop import (Atspi, Session, check, end_with_escape, extents, on_one_line_inside,
                              run, text_of, wait_for)

TITLE = "Sorvanta - v1.14"
STORED = (1000, 640)


def test(session):
    session.build_index()
    session.write_settings("[General]\nDialogWidth=%d\nDialogHeight=%d\n" % STORED)
    session.start()
    window = session.window(TITLE)
    table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
    status = [node for node in session.controls(window, Atspi.Role.TEXT)
              if node.get_parent().get_role() == Atspi.Role.SCROLL_PANE][0]
    wait_for("the index status", lambda: text_of(status).startswith("Index status good"))
    session.screenshot("restored", window)
    x, y, width, height = extents(window)
    check((width, height) == STORED, "the window comes back at %s, not %s" % (STORED, (width, height)))

    table_x, table_y, table_width, table_height = extents(table)
    right_margin = x + width - (table_x + table_width)
    # Dialog units round to pixels on each edge: a margin may differ by one.
    check(abs(right_margin - (table_x - x)) <= 1,
          "the list keeps the same margin on both sides: left %d, right %d"
          % (table_x - x, right_margin))
    build = session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index")
    check(extents(build)[1] + extents(build)[3] > y + height - 40,
          "the Build Index button keeps to the bottom edge")
    check(table_y + table_height < extents(build)[1], "the list ends above the Build Index button")
    check(table_y + table_height > extents(build)[1] - 40, "the list reaches down to the button row")
    options = session.control(window, Atspi.Role.PUSH_BUTTON, "Options...")
    check(abs(x + width - (extents(options)[0] + extents(options)[2]) - right_margin) <= 1,
          "the Options button keeps to the right edge")
    check(on_one_line_inside(status), "the index status stands on one line: " + text_of(status))

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("restored-size")))
