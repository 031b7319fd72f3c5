"""A failed index move in the options dialog: the alert and then the question come up, and after
the answer No the options dialog is still open, on top of the search window, for the user to
choose another folder."""

import os
import subprocess
import sys

from sorvanta_desktop import (Atspi, Session, check, end_with_escape, enter_index_folder, run,
                              text_of, wait_for)

TITLE = "Sorvanta - v1.14"
OPTIONS = "Sorvanta Options"


def stacking(names):
    """The program's windows named in `names`, bottom first, as the X server stacks them;
    xwininfo lists the root's children topmost first."""
    tree = subprocess.run(["xwininfo", "-root", "-children"], check=True, capture_output=True,
                          text=True).stdout
    order = []
    for line in reversed(tree.splitlines()):
        for name in names:
            if '"%s"' % name in line and name not in order:
                order.append(name)
    return order


def test(session):
    session.build_index()
    # A file of the index's name already stands in the new folder: the move is refused.
    taken = os.path.join(session.home, "taken")
    os.makedirs(taken)
    open(os.path.join(taken, "sorvanta.idx"), "w").close()
    session.start()
    window = session.window(TITLE)
    options, box = enter_index_folder(session, window, taken)

    alert = session.window("Unable to move index file...")
    session.screenshot("alert", alert)
    session.click(session.control(alert, Atspi.Role.PUSH_BUTTON, "OK"))
    question = session.window("Index Location...")
    session.screenshot("question", question)
    session.click(session.control(question, Atspi.Role.PUSH_BUTTON, "No"))
    wait_for("the question to go", lambda: not session.showing(question))

    check(session.showing(options), "No leaves the options dialog open")
    order = wait_for("both windows on the screen",
                     lambda: len(stacking([TITLE, OPTIONS])) == 2 and stacking([TITLE, OPTIONS]))
    session.screenshot("after-no")
    check(order == [TITLE, OPTIONS],
          "the options dialog stays above the search window, bottom first: %s" % order)
    check(text_of(box) == taken, "the folder typed stays in the box for another try")
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("question-parent")))
