"""The options dialog's Browse button on a desktop: the folder chooser comes up with its caption,
offers folders only and its status line follows the selection; the folder chosen lands in the
index folder box, and Cancel of the options dialog leaves the index folder as it was."""

import os
import sys
import time

from sorvanta_desktop import Atspi, Session, check, run, text_of, wait_for

TITLE = "Sorvanta - v1.14"
CAPTION = "Select index location..."


def rows_shown(session, chooser):
    """The name cells of the chooser's list, by name."""
    return {node.get_name(): node for node in session.controls(chooser, Atspi.Role.TABLE_CELL)
            if node.get_name() and session.showing(node)}


def status_line(session, chooser):
    """The line under the chooser's list, which shows the folder selected in it."""
    labels = [node.get_name() for node in session.controls(chooser, Atspi.Role.LABEL)
              if node.get_name().startswith("/")]
    return labels[0] if labels else ""


def choose(session, options, chosen):
    """Browses to the session's home folder and chooses the folder in it with the pointer."""
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Browse"))
    chooser = session.window(CAPTION)
    session.click(session.control(chooser, Atspi.Role.LABEL, "Home"))
    rows = wait_for("the home folder's rows", lambda: "chosen" in rows_shown(session, chooser) and
                    "a-file.txt" in rows_shown(session, chooser) and rows_shown(session, chooser))
    session.click(rows["a-file.txt"])
    time.sleep(0.5)
    check(status_line(session, chooser) == session.home,
          "a click on a file leaves the folder shown chosen: " + status_line(session, chooser))
    session.click(rows["chosen"])
    wait_for("the status line to follow the selection",
             lambda: status_line(session, chooser) == chosen)
    session.screenshot("chooser", chooser)
    session.click(session.control(chooser, Atspi.Role.PUSH_BUTTON, "Select"))
    wait_for("the chooser to close", lambda: not session.showing(chooser))


def test(session):
    chosen = os.path.join(session.home, "chosen")
    os.makedirs(chosen)
    open(os.path.join(session.home, "a-file.txt"), "w").close()
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Options..."))
    options = session.window("Sorvanta Options")
    box = session.control(options, Atspi.Role.TEXT)
    before = text_of(box)

    choose(session, options, chosen)
    wait_for("the chosen folder in the index folder box", lambda: text_of(box) == chosen)
    session.screenshot("chosen", options)
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)

    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Options..."))
    options = session.window("Sorvanta Options")
    check(text_of(session.control(options, Atspi.Role.TEXT)) == before,
          "Cancel kept the index folder: " + before)
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("folder-chooser")))
