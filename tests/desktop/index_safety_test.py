"""What keeps the index safe, as the search window shows it: Build Index while another build holds
the index is refused in the error dialog and the window stays as it was, and the options refuse a
relative index folder before anything moves."""

import fcntl
import os
import sys

from sorvanta_desktop import (Atspi, Session, check, dismiss_alert, enter_index_folder, run,
                              wait_for)

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
        dismiss_alert(session, "Error", BUSY, "second-build", 1)
    check(session.control(window, Atspi.Role.PUSH_BUTTON, "Build Index") is not None,
          "the button still offers a build")


def relative_folder(session, window):
    dialog, _ = enter_index_folder(session, window, "index")
    dismiss_alert(session, "Index Location...", NOT_FULL, "relative-folder", 2)
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
