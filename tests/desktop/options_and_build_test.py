"""The search window's options dialog and its Build Index button on a desktop: the limit's label
stands on one line, the slider sets the result limit that its label shows, and a build shows the
folder it walks until Cancel stops it with the words of the interruption."""

import re
import sys

from sorvanta_desktop import Atspi, Session, check, on_one_line_inside, run, text_of, wait_for

TITLE = "Sorvanta - v1.14"


def options(session, window):
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Options..."))
    dialog = session.window("Sorvanta Options")
    limit = session.control(dialog, Atspi.Role.LABEL, "1,000")
    check(on_one_line_inside(session.control(dialog, Atspi.Role.LABEL,
                                             "Maximum results to display:")),
          "the limit's label stands on one line")
    slider = session.control(dialog, Atspi.Role.SLIDER)
    session.click(slider)
    session.keys("Right")
    wait_for("the label to follow the slider", lambda: limit.get_name() != "1,000")
    check(re.fullmatch(r"\d{1,2},000", limit.get_name()), "the limit in thousands: " + limit.get_name())
    session.screenshot("options", dialog)
    session.click(session.control(dialog, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)


def build_and_cancel(session, window):
    status = [node for node in session.controls(window, Atspi.Role.TEXT)
              if node.get_parent().get_role() == Atspi.Role.SCROLL_PANE][0]
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index"))
    cancel = session.control(window, Atspi.Role.PUSH_BUTTON, "Cancel")
    # The walk runs once the user has rested for two seconds, a folder at a time; a click is user
    # input, which gives the test two seconds to look and to press Cancel before the walk is over.
    wait_for("a folder in the status line", lambda: text_of(status).startswith(session.tree))
    session.click(status)
    session.screenshot("building", window)
    check(text_of(status).startswith(session.tree), "the walk rests in a folder of the tree")
    session.click(cancel)
    wait_for("the words of the interruption",
             lambda: text_of(status) == "Index unavailable - user interrupted index building.")
    check(session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index") is not None,
          "the button offers a new build")
    session.screenshot("cancelled", window)


def test(session):
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    options(session, window)
    build_and_cancel(session, window)
    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("options-and-build", tree_files=100000)))
