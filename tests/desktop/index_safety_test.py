"""What keeps the index safe, as the search window shows it: Build Index while another build holds
the index is refused in the error dialog and the window stays as it was, and the options refuse a
relative index folder before anything moves."""

import fcntl
import os
import sys

from sorvanta_desktop import Atspi, Session, check, enter_index_folder, run, wait_for

TITLE = "Sorvanta - v1.14"
BUSY = ("The volume indexing system was asked to start indexing when an indexing operation was "
        "already in progress.")
NOT_FULL = ("The index location must be a full folder path, beginning with '/': a relative "
            "folder would depend on where Sorvanta was started.")


def build_while_another_builds(session, window):
    folder = os.path.join(session.home, "data", "Wendlemark", "Sorvanta")
    with open(os.path.join(folder, "sorvanta.idx.lock"), "a") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index"))
        dialog = session.window("Error")
        message = wait_for("the error's text", lambda: dialog.get_description())
        check(message == BUSY, "the error says a build is under way: " + message)
        session.screenshot("second-build", dialog)
        session.focus(dialog)
        session.keys("Return")
        wait_for("the error dialog to close", lambda: len(session.application_windows()) == 1)
    check(session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index") is not None,
          "the button still offers a build")


def relative_folder(session, window):
    dialog, _ = enter_index_folder(session, window, "index")
    alert = session.window("Index Location...")
    message = wait_for("the alert's text", lambda: alert.get_description())
    check(message == NOT_FULL, "the alert says why: " + message)
    session.screenshot("relative-folder", alert)
    session.focus(alert)
    session.keys("Return")
    wait_for("the alert to close", lambda: len(session.application_windows()) == 2)
    session.click(session.control(dialog, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)
    check(not os.path.exists(os.path.join(session.home, "index")), "nothing moved")


def test(session):
    session.build_index()
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    build_while_another_builds(session, window)
    session.focus(window)
    relative_folder(session, window)
    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("index-safety", tree_files=10)))
