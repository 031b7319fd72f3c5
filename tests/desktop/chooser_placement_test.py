"""The folder chooser of the options dialog on a screen 800 pixels high: it opens in the folder
that the options dialog shows, fits the screen, and stands centred on the options dialog."""

import os
import sys

from sorvanta_desktop import Atspi, Session, check, end_with_escape, extents, run, text_of, wait_for

TITLE = "Sorvanta - v1.14"
CAPTION = "Select index location..."
SCREEN = (1280, 800)


def centre(node):
    x, y, width, height = extents(node)
    return x + width // 2, y + height // 2


def rows_shown(session, chooser):
    return {node.get_name() for node in session.controls(chooser, Atspi.Role.TABLE_CELL)
            if node.get_name() and session.showing(node)}


def test(session):
    folder = os.path.join(session.home, "data", "Wendlemark", "Sorvanta")
    os.makedirs(os.path.join(folder, "inside-the-index-folder"))
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Options..."))
    options = session.window("Sorvanta Options")
    check(text_of(session.control(options, Atspi.Role.TEXT)) == folder,
          "the options dialog shows the index folder")
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Browse"))
    chooser = session.window(CAPTION)
    wait_for("the index folder's rows",
             lambda: "inside-the-index-folder" in rows_shown(session, chooser))
    session.screenshot("opened", chooser)
    session.screenshot("screen")
    x, y, width, height = extents(chooser)
    check(x >= 0 and y >= 0 and x + width <= SCREEN[0] and y + height <= SCREEN[1],
          "the chooser fits the screen: %s" % ((x, y, width, height),))
    (cx, cy), (ox, oy) = centre(chooser), centre(options)
    check(abs(cx - ox) <= 1 and abs(cy - oy) <= 1,
          "the chooser is centred on the options dialog: %s against %s" % ((cx, cy), (ox, oy)))
    session.click(session.control(chooser, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the chooser to close", lambda: not session.showing(chooser))
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("chooser-placement")))
