"""The context menu of a result row: right click, the menu key and Shift+F10 bring up its four
items, with Open Containing Folder greyed for a root. Open reaches the desktop's application
for the file's type; Open Containing Folder reaches the file manager on the session bus with the
file's URI, and without one the folder's handler; Copy Path and Ctrl+C put the path on the
clipboard; Return on a row opens its folder as a double click does."""

import os
import subprocess
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gio, GLib, Gtk  # noqa: E402

from sorvanta_desktop import (Atspi, Session, cell, cell_text, check, local_path, run, search,  # noqa: E402
                              table_rows, wait_for, walk)

TITLE = "Sorvanta - v1.14"
HERE = os.path.dirname(os.path.abspath(__file__))
ITEMS = ["Open", "Open Containing Folder", "Copy Path", "Copy Name"]
FILE_MANAGER = "org.freedesktop.FileManager1"
# A name in Latin-1, which is not UTF-8.
LATIN = b"caf\xe9.txt"


def lines(path):
    if not os.path.exists(path):
        return []
    with open(path) as text:
        return text.read().splitlines()


def start_file_manager(session, kind="file-manager"):
    out = os.path.join(session.home, kind + "-items")
    process = subprocess.Popen([sys.executable, os.path.join(HERE, "stand_ins.py"), kind, out])
    wait_for("the stand-in file manager", lambda: os.path.exists(out + ".ready"))
    return process, out


def file_manager_there():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    reply = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "NameHasOwner", GLib.Variant("(s)", (FILE_MANAGER,)), None,
                          Gio.DBusCallFlags.NONE, -1, None)
    return reply.unpack()[0]


def clipboard_text():
    return Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).wait_for_text()


def clipboard_bytes():
    """The clipboard's "text/plain", which holds the bytes as they are."""
    contents = Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).wait_for_contents(
        Gdk.Atom.intern("text/plain", False))
    return bytes(contents.get_data()) if contents is not None else None


def menu_items(session):
    """The items of the popup menu on the screen."""
    return [node for node in walk(session.application())
            if node.get_role() == Atspi.Role.MENU_ITEM and session.showing(node)
            and node.get_name() in ITEMS]


def sensitive(node):
    return node.get_state_set().contains(Atspi.StateType.SENSITIVE)


def open_menu(session, how, table):
    """Brings up the selected row's menu; gives its items, checked to be the four in order."""
    if how == "right click":
        x, y = session.centre(cell(table, 0, 0))
        session.xdotool("mousemove", str(x), str(y), "click", "3")
    else:
        session.keys(how)
    items = wait_for("the row's menu", lambda: menu_items(session))
    names = [item.get_name() for item in items]
    check(names == ITEMS, "the menu's items, in order: %s" % names)
    return items


def choose(session, table, name):
    items = open_menu(session, "right click", table)
    session.click(items[ITEMS.index(name)])
    wait_for("the menu to go", lambda: not menu_items(session))


def find_one(session, window, table, pattern, names=None):
    search(session, window, pattern)
    wait_for("the row of '%s'" % pattern,
             lambda: table_rows(table) == 1 and cell_text(table, 0, 0) in (names or [pattern]))


def test(session):
    opened = session.handle(["inode/directory", "text/plain"], "files")
    open(os.path.join(session.tree.encode(), LATIN), "w").close()
    session.build_index()
    folder = os.path.join(session.tree, "folder000")
    entry = os.path.join(folder, "file00007.txt")
    file_manager, shown = start_file_manager(session)
    try:
        session.start()
        window = session.window(TITLE)
        session.focus(window)
        table = wait_for("the results list",
                         lambda: session.controls(window, Atspi.Role.TABLE))[0]
        find_one(session, window, table, "file00007.txt")

        items = open_menu(session, "right click", table)
        check(all(sensitive(item) for item in items), "every item can be chosen for a file")
        session.screenshot("menu", window)
        session.keys("Escape")
        wait_for("the menu to go", lambda: not menu_items(session))
        for key in ("Menu", "shift+F10"):
            open_menu(session, key, table)
            session.screenshot("menu-by-key-%s" % key.replace("+", "-"), window)
            session.keys("Escape")
            wait_for("the menu to go", lambda: not menu_items(session))

        choose(session, table, "Open")
        wait_for("the file's application", lambda: lines(opened))
        check([local_path(line) for line in lines(opened)] == [entry],
              "Open gives the file to its type's application: %s" % lines(opened))

        choose(session, table, "Open Containing Folder")
        wait_for("the file manager", lambda: lines(shown))
        uri = GLib.filename_to_uri(entry, None)
        check(lines(shown) == [uri], "the file manager is shown the file: %s" % lines(shown))
        check(len(lines(opened)) == 1, "the folder's handler is not called as well")

        choose(session, table, "Copy Path")
        wait_for("the path on the clipboard", lambda: clipboard_text() == entry)

        # A name that is not UTF-8 keeps its bytes: escaped in its URI, whole on the clipboard.
        search(session, window, "caf*")
        wait_for("the row of the Latin-1 name", lambda: table_rows(table) == 1)
        choose(session, table, "Open Containing Folder")
        wait_for("the file manager", lambda: len(lines(shown)) == 2)
        check(lines(shown)[1] == "file://%s/caf%%E9.txt" % session.tree,
              "the URI is escaped from the bytes: %s" % lines(shown)[1])
        choose(session, table, "Copy Path")
        latin = os.path.join(session.tree.encode(), LATIN)
        wait_for("the path's bytes on the clipboard", lambda: clipboard_bytes() == latin)
        find_one(session, window, table, "file00007.txt")
    finally:
        file_manager.kill()
        file_manager.wait()
    wait_for("the file manager to leave the bus", lambda: not file_manager_there())

    choose(session, table, "Open Containing Folder")
    wait_for("the folder's handler", lambda: len(lines(opened)) == 2)
    check(local_path(lines(opened)[1]) == folder,
          "without a file manager the folder opens: %s" % lines(opened))

    # A file manager that takes the call and never answers: the window goes on meanwhile, and
    # the folder opens once the file manager has had its time.
    silent, asked = start_file_manager(session, "silent-file-manager")
    try:
        choose(session, table, "Open Containing Folder")
        wait_for("the silent file manager to be asked", lambda: lines(asked))
        check(len(lines(opened)) == 2, "the folder waits for the file manager's time")
        find_one(session, window, table, "file00011.txt")
        wait_for("the folder's handler after the file manager's time",
                 lambda: len(lines(opened)) == 3)
        check(local_path(lines(opened)[2]) == folder,
              "a silent file manager's folder opens alone: %s" % lines(opened))
    finally:
        silent.kill()
        silent.wait()
    wait_for("the silent file manager to leave the bus", lambda: not file_manager_there())

    session.click(cell(table, 0, 0))
    session.keys("ctrl+c")
    wait_for("Ctrl+C to copy the path",
             lambda: clipboard_text() == os.path.join(folder, "file00011.txt"))

    session.keys("Return")
    wait_for("Return to open the row's folder", lambda: len(lines(opened)) == 4)
    check(local_path(lines(opened)[3]) == folder, "Return opens the folder: %s" % lines(opened))

    # The walk's root has no folder of its own.
    # A root's name is its whole path, with the separator at its end.
    find_one(session, window, table, "*" + os.path.basename(session.tree) + "*",
             [session.tree, session.tree + "/"])
    items = open_menu(session, "right click", table)
    greyed = [item.get_name() for item in items if not sensitive(item)]
    check(greyed == ["Open Containing Folder"], "greyed for a root: %s" % greyed)
    session.screenshot("menu-of-a-root", window)
    session.keys("Escape")

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("result-menu", tree_files=30)))
