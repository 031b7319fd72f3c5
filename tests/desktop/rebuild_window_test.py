"""`sorvanta /buildindex` on a desktop: the rebuild window shows the folder the walk is in, and
Quit ends the build and the program, leaving an unfinished index."""

import os
import sys

from sorvanta_desktop import Atspi, Session, check, run, text_of, wait_for


def test(session):
    session.start("/buildindex")
    window = session.window("Sorvanta")
    check(
        session.control(window, Atspi.Role.LABEL, "Sorvanta is rebuilding its index...") is not None,
        "the rebuild window says what it does",
    )
    folder_line = session.control(window, Atspi.Role.TEXT)
    # A click is user input: the walk then rests for two quiet seconds, which gives the test
    # time to look and to press Quit before the walk is over.
    first = wait_for("a folder in the folder line", lambda: text_of(folder_line))
    session.click(folder_line)
    check(first.startswith(session.tree), "the folder line shows a folder of the tree: " + first)
    session.screenshot("walking", window)
    wait_for("the folder line to move on", lambda: text_of(folder_line) != first)
    session.click(folder_line)
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Quit"))
    check(session.wait_exit() == 0, "the program ends with code 0")
    index = os.path.join(session.home, "data", "Wendlemark", "Sorvanta", "sorvanta.idx")
    check(os.path.exists(index), "the build left its index file")
    check(oct(os.stat(index).st_mode & 0o777) == "0o600", "the index file is private")


if __name__ == "__main__":
    sys.exit(run(test, Session("rebuild-window", tree_files=100000)))
