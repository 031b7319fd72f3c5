"""A click on a column heading of the search window, with a client that listens to the list as a
screen reader does: the rows come up sorted by that column and the list is repainted in the new
order; the list tells the client that its rows changed; the heading of the sorted column shows an
arrow in the direction of the sort, and no other heading does."""

import os
import sys

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

from sorvanta_desktop import (Atspi, GLib, Session, cell_text, check, run, search,  # noqa: E402
                              table_rows, text_of, wait_for)

TITLE = "Sorvanta - v1.14"
FILES = 1500
# What a screen reader listens to on a table.
EVENTS = ["object:children-changed", "object:state-changed", "object:property-change",
          "object:visible-data-changed", "object:row-reordered", "object:model-changed"]
# Any of these tells a client to read the table again.
ANNOUNCEMENTS = {"object:model-changed", "object:row-reordered", "object:visible-data-changed"}


def size_of(number):
    """Sizes in an order of their own, neither the names' nor the folders'."""
    return (number * 7919 + 123) % FILES + 1


def shape_tree(session):
    for folder, _, files in os.walk(session.tree):
        for name in files:
            os.truncate(os.path.join(folder, name), size_of(int(name[4:9])))


class Listener:
    def __init__(self):
        self.heard = []
        self.listener = Atspi.EventListener.new(lambda event: self.heard.append(event.type))
        for event in EVENTS:
            self.listener.register(event)

    def take(self):
        context = GLib.MainContext.default()
        while context.iteration(False):
            pass
        heard, self.heard = self.heard, []
        return heard


def pixels(path, box):
    """The RGB bytes of a box of a screenshot, row by row."""
    image = GdkPixbuf.Pixbuf.new_from_file(path)
    x, y, width, height = box
    part = image.new_subpixbuf(x, y, width, height)
    stride, channels, data = part.get_rowstride(), part.get_n_channels(), part.get_pixels()
    return [[data[row * stride + column * channels:row * stride + column * channels + 3]
             for column in range(width)] for row in range(height)]


def dark_points(path, box):
    return [(x, y) for y, line in enumerate(pixels(path, box)) for x, pixel in enumerate(line)
            if sum(pixel) < 3 * 140]


def arrow(path, header):
    """Where the heading's sort arrow points, 'up' or 'down', or None when it shows none. The
    arrow stands at the right end of the heading, beyond its text."""
    box = header.get_extents(Atspi.CoordType.SCREEN)
    right = (box.x + box.width - 24, box.y + 2, 22, box.height - 4)
    points = dark_points(path, right)
    if len(points) < 4:
        return None
    top = min(y for _, y in points)
    bottom = max(y for _, y in points)
    widths = {y: sum(1 for _, row in points if row == y) for y in (top, bottom)}
    return "down" if widths[top] > widths[bottom] else "up"


def shown_names(table, count=12):
    return [cell_text(table, row, 0) for row in range(count)]


def test(session):
    shape_tree(session)
    session.write_settings("[General]\nMaxResults=50000\n")
    session.build_index()
    listener = Listener()
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
    search(session, window, "file*")
    wait_for("all rows in the list", lambda: table_rows(table) == FILES)
    headers = {name: session.control(window, Atspi.Role.TABLE_COLUMN_HEADER, name)
               for name in ("Name", "Folder", "Size", "Date")}
    box = table.get_extents(Atspi.CoordType.SCREEN)
    rows_box = (box.x + 4, box.y + 30, box.width - 8, 60)
    before = session.screenshot("filled", window=None)
    check(all(arrow(before, header) is None for header in headers.values()),
          "no heading shows a sort before a click")
    listener.take()

    def numbers():
        names = shown_names(table)
        return [int(name[4:9]) if name.startswith("file") else -1 for name in names]

    clicks = [
        ("Size", "ascending", lambda: sorted(numbers(), key=size_of) == numbers()),
        ("Size", "descending", lambda: sorted(numbers(), key=size_of, reverse=True) == numbers()),
        ("Name", "ascending", lambda: numbers() == list(range(12))),
    ]
    directions = {}
    for name, direction, in_order in clicks:
        session.click(headers[name])
        wait_for("the rows sorted by %s, %s" % (name, direction), in_order)
        shot = session.screenshot("sorted-by-%s-%s" % (name.lower(), direction))
        check(pixels(shot, rows_box) != pixels(before, rows_box),
              "the list is repainted after the click on %s" % name)
        before = shot
        heard = []
        wait_for("the list to announce its new order",
                 lambda: heard.extend(listener.take()) or ANNOUNCEMENTS & set(heard))
        shown = {heading: arrow(shot, header) for heading, header in headers.items()}
        check(shown[name] is not None, "the %s heading shows an arrow: %s" % (name, shown))
        check(all(point is None for heading, point in shown.items() if heading != name),
              "only the sorted heading shows an arrow: %s" % shown)
        directions[(name, direction)] = shown[name]
        check(text_of(table) is not None, "the list still answers")
    check(directions[("Size", "ascending")] != directions[("Size", "descending")],
          "the arrow turns with the direction: %s" % directions)
    check(directions[("Name", "ascending")] == directions[("Size", "ascending")],
          "ascending shows the same arrow on every heading: %s" % directions)


if __name__ == "__main__":
    sys.exit(run(test, Session("sort", tree_files=FILES)))
