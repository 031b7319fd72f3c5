"""How long a click on a column heading of the search window takes to sort 50,000 results, with
the accessibility bus on and a client that listens to the list's events, as a screen reader does.
Run it on a private desktop with the release build:

    scripts/desktop-session /usr/bin/python3 bench/desktop_sort.py build/release [ROWS] [--reading]

The tree holds ROWS files that one pattern finds, with sizes and dates in an order of their own,
so that every column's sort gives another first row. Each click is timed from the button press
to the moment when the top rows of the list show other pixels on the screen: the list has been
repainted in its new order. The order is then checked through the accessibility bus. With
--reading the listener also reads the table's size and its first row at every event it hears, as
a client that follows the table does."""

import os
import statistics
import sys
import time

import gi

gi.require_version("Gdk", "3.0")
from gi.repository import Gdk  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "desktop"))
from sorvanta_desktop import Atspi, GLib, Session, cell_text, text_of, wait_for  # noqa: E402

TITLE = "Sorvanta - v1.14"
ROUNDS = 3
COLUMNS = ["Name", "Folder", "Size", "Date"]
# Each click gives another first row: no two sorts in this order start with the same file.
CLICKS = ["Name", "Size", "Folder", "Date"]
# What a screen reader listens to on a table and its window.
EVENTS = [
    "object:children-changed",
    "object:state-changed",
    "object:property-change",
    "object:visible-data-changed",
    "object:row-reordered",
    "object:model-changed",
    "object:active-descendant-changed",
    "object:selection-changed",
    "focus:",
    "window:activate",
]


class Listener:
    """Counts the events of the program; with a table set, reads it at each event."""

    def __init__(self):
        self.table = None
        self.heard = 0
        self.listener = Atspi.EventListener.new(self.on_event)
        for event in EVENTS:
            self.listener.register(event)

    def on_event(self, event):
        self.heard += 1
        if self.table is not None:
            try:
                if Atspi.Table.get_n_rows(self.table) > 0:
                    cell_text(self.table, 0, 0)
            except GLib.Error:
                pass

    @staticmethod
    def pump():
        context = GLib.MainContext.default()
        while context.iteration(False):
            pass


def shape_tree(session, rows):
    """Sizes and dates that follow neither the names nor each other."""
    base = 1500000000
    for folder, _, files in os.walk(session.tree):
        for name in files:
            number = int(name[4:9])
            path = os.path.join(folder, name)
            os.truncate(path, (number * 7919 + 12345) % rows + 1)
            stamp = base + ((number * 104729 + 777) % rows) * 60
            os.utime(path, (stamp, stamp))


def grab(box):
    root = Gdk.get_default_root_window()
    pixbuf = Gdk.pixbuf_get_from_window(root, box.x, box.y, box.width, box.height)
    return bytes(pixbuf.get_pixels())


def rows_box(table):
    """The top rows of the list, below its heading."""
    box = table.get_extents(Atspi.CoordType.SCREEN)
    box.y += 30
    box.height = 60
    box.x += 4
    box.width -= 8
    return box


def time_click(session, header, box):
    before = grab(box)
    x, y = session.centre(header)
    session.xdotool("mousemove", str(x), str(y))
    start = time.monotonic()
    session.xdotool("click", "1")
    while True:
        Listener.pump()
        if grab(box) != before:
            return (time.monotonic() - start) * 1000
        if time.monotonic() - start > 120:
            raise RuntimeError("the list was not repainted")
        time.sleep(0.002)


def main():
    os.environ["SORVANTA_BUILD"] = os.path.abspath(sys.argv[1])
    arguments = [argument for argument in sys.argv[2:] if not argument.startswith("--")]
    rows = int(arguments[0]) if arguments else 50000
    session = Session("sort", tree_files=rows)
    shape_tree(session, rows)
    session.write_settings("[General]\nMaxResults=50000\n")
    session.build_index()
    # A screen reader runs before the program starts.
    listener = Listener()
    try:
        session.start()
        window = session.window(TITLE)
        session.focus(window)
        table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
        field = session.control(window, Atspi.Role.TEXT)
        outcome = session.controls(window, Atspi.Role.TEXT)[-1]
        session.click(field)
        session.type("file*")
        session.keys("Return")
        expected = "%s results" % format(rows, ",")
        wait_for("the outcome line", lambda: text_of(outcome).startswith(expected), patience=60)
        headers = {name: session.control(window, Atspi.Role.TABLE_COLUMN_HEADER, name)
                   for name in COLUMNS}
        listener.table = table if "--reading" in sys.argv else None
        listener.pump()
        listener.heard = 0
        box = rows_box(table)
        times = {name: [] for name in COLUMNS}
        for _ in range(ROUNDS):
            for name in CLICKS:
                times[name].append(time_click(session, headers[name], box))
                first = cell_text(table, 0, COLUMNS.index(name))
                if not first and name != "Folder":
                    raise RuntimeError("no first row after a click on " + name)
        print("rows in the list: %d, events heard: %d%s" % (
            Atspi.Table.get_n_rows(table), listener.heard,
            ", reading the table at each" if listener.table is not None else ""))
        for name in COLUMNS:
            print("%-6s click to repainted list, ms: %s (median %.0f)" % (
                name, " ".join("%.0f" % value for value in times[name]),
                statistics.median(times[name])))
    finally:
        session.stop()


if __name__ == "__main__":
    main()
