"""The error dialog of a failed open: an index folder that can't be made stops the build with
the system's words in a dialog that paints them and gives them to screen readers too."""

import os
import sys

from sorvanta_desktop import Atspi, Session, check, run, wait_for


def test(session):
    blocker = os.path.join(session.home, "not-a-folder")
    open(blocker, "w").close()
    session.write_settings("[General]\nIndexLocation=%s/index\n" % blocker)
    session.start("/buildindex")
    dialog = session.window("Error")
    message = wait_for("the error's text", lambda: dialog.get_description())
    check(blocker in message, "the message names the index file: " + message)
    session.screenshot("failed-open", dialog)
    ok = session.control(dialog, Atspi.Role.PUSH_BUTTON, "OK")
    session.focus(dialog)
    session.keys("Return")
    wait_for("the error dialog to close", lambda: not session.showing(dialog) or ok is None)


if __name__ == "__main__":
    sys.exit(run(test, Session("error-dialog")))
