"""A double click on a result row opens the folder that holds the entry, through the desktop's
default handler for folders; a row whose folder has gone since the index was built gives the
error dialog with the words for a missing folder, and opens nothing. A folder whose name is longer
than the index holds is opened as it is on the disk, and a name that would turn its own text
around shows the character that does it as an escape."""

import os
import shutil
import sys

from sorvanta_desktop import (Atspi, Session, cell, cell_text, check, dismiss_alert, local_path,
                              run, search, table_rows, text_of, wait_for)

TITLE = "Sorvanta - v1.14"
MISSING_FOLDER = "The application tried to open a folder that did not exist."
# 84 characters of three bytes: 252 bytes, one more than a record of the index holds.
LONG_NAME = "\u6587" * 84
DISGUISED_NAME = "rtl\u202etxt.exe"
DISGUISED_PATTERN = "rtl\u202e*"


def opened_folders(opened):
    if not os.path.exists(opened):
        return []
    with open(opened) as lines:
        return [local_path(line) for line in lines.read().splitlines()]


def open_row(session, window, table, pattern):
    """Searches for one entry and double-clicks its row; gives the row's folder."""
    search(session, window, pattern)
    wait_for("the row of '%s'" % pattern,
             lambda: table_rows(table) == 1 and cell_text(table, 0, 0) == pattern)
    folder = cell_text(table, 0, 1)
    session.double_click(cell(table, 0, 0))
    return folder


def test(session):
    opened = session.handle_folders()
    os.makedirs(os.path.join(session.tree, LONG_NAME))
    open(os.path.join(session.tree, LONG_NAME, DISGUISED_NAME), "w").close()
    session.build_index()
    gone = os.path.join(session.tree, "folder005")
    shutil.rmtree(gone)
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]

    folder = open_row(session, window, table, "file00123.txt")
    check(folder == os.path.join(session.tree, "folder000"), "the row's folder: " + folder)
    wait_for("the folder handler to be called", lambda: opened_folders(opened))
    check(opened_folders(opened) == [folder],
          "the handler was given the row's folder: %s" % opened_folders(opened))
    session.screenshot("opened", window)

    folder = open_row(session, window, table, "file02999.txt")
    check(folder == gone, "the row's folder: " + folder)
    dismiss_alert(session, "Error", MISSING_FOLDER, "missing-folder", 1)
    check(opened_folders(opened) == [os.path.join(session.tree, "folder000")],
          "nothing more was opened: %s" % opened_folders(opened))

    search(session, window, "rtl*")
    wait_for("the row of the disguised name", lambda: table_rows(table) == 1)
    shown = cell_text(table, 0, 0)
    check(shown == "rtl\\u202Etxt.exe", "the name shows its direction override: " + shown)
    check(cell_text(table, 0, 1).startswith(os.path.join(session.tree, LONG_NAME[:40])),
          "the folder shows the head of its long name: " + cell_text(table, 0, 1))
    session.double_click(cell(table, 0, 0))
    wait_for("the long folder to be opened", lambda: len(opened_folders(opened)) == 2)
    check(opened_folders(opened)[1] == os.path.join(session.tree, LONG_NAME),
          "the handler was given the real folder: %s" % opened_folders(opened)[1])
    session.screenshot("long-and-disguised-names", window)

    # A pattern with a direction override is the user's own text: the pattern box and its
    # history give it back as it was put in, and it still finds the name.
    field = session.control(window, Atspi.Role.TEXT)
    session.click(field)
    Atspi.EditableText.set_text_contents(field, DISGUISED_PATTERN)
    session.keys("End", "Return")
    wait_for("the row found by the override", lambda: table_rows(table) == 1)
    search(session, window, "file00123*")
    wait_for("the row of file00123.txt", lambda: cell_text(table, 0, 0) == "file00123.txt")
    session.click(field)
    session.keys("alt+Down")
    items = wait_for("the pattern history", lambda: [
        node for node in session.controls(window, Atspi.Role.MENU_ITEM)
        if session.showing(node) and node.get_name() == DISGUISED_PATTERN])
    session.click(items[0])
    wait_for("the picked pattern in its box", lambda: text_of(field) == DISGUISED_PATTERN)
    session.keys("Return")
    wait_for("the disguised name found again",
             lambda: table_rows(table) == 1 and cell_text(table, 0, 0) == "rtl\\u202Etxt.exe")

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("open-folder", tree_files=3000)))
