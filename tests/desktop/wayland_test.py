"""The search window on a Wayland desktop (a headless Weston): it comes up with its controls, a
search typed into its pattern box fills the list, and a header sorts it. Wayland lets no client
move another's pointer or type into it, so the test acts through the accessibility bus alone, as
a screen reader would, and takes its screenshots through the compositor."""

import glob
import os
import subprocess
import sys

from sorvanta_desktop import Atspi, Session, cell_text, check, run, table_rows, text_of, wait_for

TITLE = "Sorvanta - v1.14"


def press(node):
    """The control's own first action: a click for a button or a column header."""
    check(Atspi.Action.get_n_actions(node) > 0, "'%s' can be pressed" % node.get_name())
    Atspi.Action.do_action(node, 0)


def screenshot(session, name):
    """The whole output, through Weston's screenshooter, which writes into its working folder."""
    folder = os.path.join(session.home, "wayland-shots")
    os.makedirs(folder, exist_ok=True)
    subprocess.run(["weston-screenshooter"], cwd=folder, check=True, timeout=30)
    taken = sorted(glob.glob(os.path.join(folder, "*.png")))
    check(taken, "the compositor gave a screenshot")
    path = os.path.join(session.artefacts, "%s-%s.png" % (session.name, name))
    os.replace(taken[-1], path)
    return path


def test(session):
    check(os.environ.get("WAYLAND_DISPLAY") and not os.environ.get("DISPLAY"),
          "the session is a Wayland one, with no X server to fall back on")
    session.build_index()
    session.start()
    window = session.window(TITLE)
    table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
    status = wait_for("the index status", lambda: [
        node for node in session.controls(window, Atspi.Role.TEXT)
        if text_of(node).startswith("Index status good")])
    check(status, "the status line tells of the index")
    screenshot(session, "started")

    pattern = session.control(window, Atspi.Role.TEXT)
    Atspi.EditableText.set_text_contents(pattern, "file0001*")
    press(session.control(window, Atspi.Role.PUSH_BUTTON, "Find"))
    wait_for("rows in the list", lambda: table_rows(table) == 10)
    names = [cell_text(table, row, 0) for row in range(10)]
    check(names == ["file%05d.txt" % number for number in range(10, 20)],
          "the rows come up in name order: %s" % names)

    press(session.control(window, Atspi.Role.TABLE_COLUMN_HEADER, "Name"))
    wait_for("the rows in descending name order",
             lambda: [cell_text(table, row, 0) for row in range(10)] == names[::-1])
    screenshot(session, "sorted")


if __name__ == "__main__":
    sys.exit(run(test, Session("wayland", tree_files=40)))
