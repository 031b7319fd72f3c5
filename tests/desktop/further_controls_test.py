"""The toolkit's further controls on GTK, in a dialog of their own that no window of the program
has: radio buttons in groups, date and time boxes, a link, image buttons, a window of the
toolkit's own in a placeholder's place, and a tab control with three pages."""

import os
import re
import subprocess
import sys

from sorvanta_desktop import Atspi, Session, check, run, wait_for, walk

TITLE = "Further controls"
SWATCH = (64, 160, 160)
WHITE = (255, 255, 255)


class ControlsSession(Session):
    @staticmethod
    def program():
        return os.path.join(os.environ["SORVANTA_BUILD"], "tests", "further-controls")

    def handle_links(self):
        return self.handle("x-scheme-handler/http", "links")


def walk_application(session):
    """Everything of the program on the screen, its popup menus included."""
    application = session.application()
    return walk(application) if application is not None else []


def lines_of(path):
    if not os.path.exists(path):
        return []
    with open(path) as lines:
        return lines.read().splitlines()


def checked(node):
    return node.get_state_set().contains(Atspi.StateType.CHECKED)


def pixels(path):
    """The screenshot as rows of (red, green, blue)."""
    data = subprocess.run(["convert", path, "-depth", "8", "ppm:-"], check=True,
                          capture_output=True).stdout
    fields = data.split(maxsplit=4)
    width, height = int(fields[1]), int(fields[2])
    raster = fields[4]
    return [[tuple(raster[(y * width + x) * 3:(y * width + x) * 3 + 3]) for x in range(width)]
            for y in range(height)]


def box_of(image, colour):
    """The smallest box around every pixel of `colour`: left, top, right, bottom."""
    found = [(x, y) for y, row in enumerate(image) for x, pixel in enumerate(row)
             if pixel == colour]
    check(found, "the colour %s is on the screen" % (colour,))
    xs = [x for x, _ in found]
    ys = [y for _, y in found]
    return min(xs), min(ys), max(xs) + 1, max(ys) + 1


def check_painting(path):
    """The window of the toolkit's own paints its field, its icon and opaque underlined text."""
    image = pixels(path)
    left, top, right, bottom = box_of(image, SWATCH)
    check(right - left > 100 and bottom - top > 40, "the field's size: %s" % ((left, top, right,
                                                                               bottom),))
    inside = [image[y][x] for y in range(top, bottom) for x in range(left, right)]
    others = {pixel for pixel in inside if pixel != SWATCH}
    check(WHITE in others, "the text stands on white inside the field")
    icon = {image[y][x] for y in range(top + 6, top + 34) for x in range(left + 6, left + 34)}
    check(len(icon - {SWATCH, WHITE}) > 3, "the icon shows in the field's corner")


def test(session):
    opened = session.handle_links()
    session.start()
    window = session.window(TITLE)
    session.focus(window)

    radios = {node.get_name(): node for node in session.controls(window, Atspi.Role.RADIO_BUTTON)}
    check({"Small", "Medium", "Large", "Manual"} <= set(radios), "radio buttons: %s" % radios)
    check(checked(radios["Medium"]) and checked(radios["Manual"]),
          "the program checked Medium and Manual")
    shot = session.screenshot("start", window)
    check_painting(shot)

    session.click(radios["Large"])
    wait_for("Large to be checked", lambda: checked(radios["Large"]))
    check(not checked(radios["Medium"]) and not checked(radios["Small"]),
          "the rest of the group is unchecked")
    session.click(radios["Manual"])
    check(checked(radios["Manual"]), "a click leaves a button that the program checks alone")
    check(checked(radios["Large"]), "another group is not touched")

    texts = [Atspi.Text.get_text(node, 0, -1) for node in session.controls(window, Atspi.Role.TEXT)]
    check(any(re.fullmatch(r"\d\d/\d\d/\d\d", text) for text in texts), "a short date: %s" % texts)
    check(any(re.fullmatch(r"\d\d:\d\d:\d\d", text) for text in texts), "a time: %s" % texts)

    # The time box's pop-over changes the hour; the box shows the new time at once.
    toggles = session.controls(window, Atspi.Role.TOGGLE_BUTTON)
    check(len(toggles) >= 2, "each date and time box has a button")
    session.click(toggles[1])
    spins = wait_for("the time's parts", lambda: [
        node for node in walk_application(session)
        if node.get_role() == Atspi.Role.SPIN_BUTTON and session.showing(node)])
    check(len(spins) == 3, "hour, minute and second: %d" % len(spins))
    Atspi.Value.set_current_value(spins[0], 7)
    wait_for("the time to show hour 7", lambda: any(
        text.startswith("07:") for text in
        [Atspi.Text.get_text(node, 0, -1) for node in session.controls(window, Atspi.Role.TEXT)]))
    session.screenshot("time-popover")
    session.keys("Escape")
    wait_for("the pop-over to go", lambda: not session.showing(spins[0]))

    session.click(session.control(window, Atspi.Role.LABEL, "example.com/sorvanta"))
    wait_for("the link to be opened", lambda: lines_of(opened))
    check(lines_of(opened) == ["http://example.com/sorvanta"], "opened: %s" % lines_of(opened))

    tabs = {node.get_name(): node for node in session.controls(window, Atspi.Role.PAGE_TAB)}
    check(set(tabs) == {"General", "Advanced", "About"}, "tabs: %s" % set(tabs))
    session.click(tabs["Advanced"])
    apply = wait_for("the page with Apply", lambda: [
        node for node in session.controls(window, Atspi.Role.PUSH_BUTTON)
        if node.get_name() == "Apply" and session.showing(node)])
    session.screenshot("advanced", window)
    session.click(apply[0])
    session.click(tabs["About"])
    wait_for("the About page", lambda: [
        node for node in session.controls(window, Atspi.Role.LABEL)
        if node.get_name() == "Further controls of the toolkit" and session.showing(node)])
    check(not session.showing(apply[0]), "the Advanced page went with its tab")
    session.screenshot("about", window)

    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Actions"))
    items = wait_for("the menu's items", lambda: {
        node.get_name(): node for node in walk_application(session)
        if node.get_role() == Atspi.Role.MENU_ITEM and session.showing(node)})
    check(set(items) >= {"Copy", "Paste", "Rename"}, "menu items: %s" % set(items))
    check(not items["Paste"].get_state_set().contains(Atspi.StateType.SENSITIVE),
          "Paste is greyed")
    session.screenshot("menu")
    session.keys("Escape")
    wait_for("the menu to go", lambda: not any(session.showing(node) for node in items.values()))

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the dialog and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, ControlsSession("further-controls")))
