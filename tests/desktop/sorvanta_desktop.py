"""Drives the real program on a private desktop (scripts/desktop-session): starts it, finds its
windows and controls through the accessibility bus, clicks and types with xdotool and keeps
screenshots. One program session per test process: the accessibility client keeps its first bus.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.parse

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# How long a window may take to come up or to change, on a machine that is busy building.
PATIENCE = 20.0


class Failure(Exception):
    pass


def check(condition, what):
    if not condition:
        raise Failure(what)


def wait_for(what, probe, patience=PATIENCE):
    """Polls `probe` until it gives something true, and gives that."""
    deadline = time.monotonic() + patience
    while True:
        found = probe()
        if found:
            return found
        if time.monotonic() > deadline:
            raise Failure("gave up waiting for " + what)
        time.sleep(0.1)


def text_of(node):
    """What a control shows: its text for an edit box, its name for anything else."""
    try:
        text = Atspi.Text.get_text(node, 0, -1)
        if text is not None and node.get_role() in (Atspi.Role.TEXT, Atspi.Role.ENTRY):
            return text
    except Exception:  # not a text: its name is what it shows
        pass
    return node.get_name() or ""


def on_one_line_inside(node):
    """Whether a control's text stands on one line, whole, within the control's own box."""
    text = Atspi.Text.get_text(node, 0, -1)
    if not text:
        return False
    first = Atspi.Text.get_character_extents(node, 0, Atspi.CoordType.SCREEN)
    last = Atspi.Text.get_character_extents(node, len(text) - 1, Atspi.CoordType.SCREEN)
    box = node.get_extents(Atspi.CoordType.SCREEN)
    return first.y == last.y and box.x <= first.x and last.x + last.width <= box.x + box.width


def walk(node, cells=False):
    """The node and everything under it; a part that goes while it is read is left out, as the
    folder chooser replaces its rows while it reads a folder. The cells of a table are walked
    only when asked for: a screen reader reads a table through its table interface, and asking
    for every cell makes the program build an accessible object for each, which floods the bus
    with their events when a list of 50,000 rows lets them go."""
    yield node
    try:
        count = node.get_child_count()
        if not cells and node.get_role() in (Atspi.Role.TABLE, Atspi.Role.TREE_TABLE):
            count = min(count, Atspi.Table.get_n_columns(node))
        children = [node.get_child_at_index(index) for index in range(count)]
    except GLib.Error:
        return
    for child in children:
        if child is not None:
            yield from walk(child, cells)


class Session:
    """One run of the program with its own settings, index folder and tree to index."""

    def __init__(self, name, tree_files=0):
        self.name = name
        self.home = tempfile.mkdtemp(prefix="sorvanta-desktop-")
        self.artefacts = os.environ.get("SORVANTA_ARTEFACTS", os.path.join(self.home, "shots"))
        os.makedirs(self.artefacts, exist_ok=True)
        self.tree = os.path.join(self.home, "tree")
        os.makedirs(self.tree)
        self.make_tree(tree_files)
        self.process = None

    def make_tree(self, count, per_folder=500):
        for number in range(count):
            folder = os.path.join(self.tree, "folder%03d" % (number // per_folder))
            os.makedirs(folder, exist_ok=True)
            open(os.path.join(folder, "file%05d.txt" % number), "w").close()

    def build_index(self):
        """The index of the tree, made by the program itself without a display."""
        environment = self.environment()
        environment["QUILT_PLATFORM"] = "offscreen"
        subprocess.run([self.program(), "/buildindex"], env=environment, check=True, timeout=120)

    def handle_folders(self):
        """Makes the session's default handler for folders a script that notes each location it
        is given, one a line, in the file whose path this returns."""
        return self.handle("inode/directory", "folders")

    def handle(self, mime_type, what):
        """Makes the session's default handler for `mime_type`, or for each of a list of them, a
        script that notes each location it is given, one a line, in the file whose path this
        returns. The handler is known only to this session: a menu entry in its own data folder
        and the default in its own settings."""
        types = [mime_type] if isinstance(mime_type, str) else list(mime_type)
        opened = os.path.join(self.home, "opened-" + what)
        script = os.path.join(self.home, "open-" + what)
        with open(script, "w") as handler:
            handler.write('#!/bin/sh\nprintf "%%s\\n" "$1" >> "%s"\n' % opened)
        os.chmod(script, 0o700)
        applications = os.path.join(self.home, "data", "applications")
        os.makedirs(applications, exist_ok=True)
        entry_name = "sorvanta-test-%s.desktop" % what
        with open(os.path.join(applications, entry_name), "w") as entry:
            entry.write("[Desktop Entry]\nType=Application\nName=Test %s\nNoDisplay=true\n"
                        "Exec=%s %%u\nMimeType=%s;\n" % (what, script, ";".join(types)))
        os.makedirs(os.path.join(self.home, "config"), exist_ok=True)
        with open(os.path.join(self.home, "config", "mimeapps.list"), "w") as defaults:
            defaults.write("[Default Applications]\n" +
                           "".join("%s=%s\n" % (kind, entry_name) for kind in types))
        return opened

    def write_settings(self, text):
        folder = os.path.join(self.home, "config", "Wendlemark")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "Sorvanta.conf"), "w") as settings:
            settings.write(text)

    def environment(self):
        environment = dict(os.environ)
        # Nothing the program or GTK keeps may land outside the session: the folder chooser
        # stores its size in the desktop's settings, which would otherwise reach the user's own.
        environment.update(
            HOME=self.home,
            XDG_CACHE_HOME=os.path.join(self.home, "cache"),
            GSETTINGS_BACKEND="memory",
            XDG_CONFIG_HOME=os.path.join(self.home, "config"),
            XDG_DATA_HOME=os.path.join(self.home, "data"),
            SORVANTA_ROOTS=self.tree,
            QUILT_PLATFORM="gtk",
        )
        return environment

    @staticmethod
    def program():
        return os.path.join(os.environ["SORVANTA_BUILD"], "app", "sorvanta")

    def start(self, *arguments):
        self.process = subprocess.Popen([self.program(), *arguments], env=self.environment())
        return self

    def application_windows(self):
        """The program's top-level windows on the screen."""
        application = self.application()
        if application is None:
            return []
        windows = [application.get_child_at_index(i) for i in range(application.get_child_count())]
        return [window for window in windows if window is not None and self.showing(window)]

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application is not None and application.get_process_id() == self.process.pid:
                return application
        return None

    def window(self, title):
        def probe():
            application = self.application()
            if application is None:
                return None
            for index in range(application.get_child_count()):
                window = application.get_child_at_index(index)
                if window is not None and window.get_name() == title and self.showing(window):
                    return window
            return None

        return wait_for("the window '%s'" % title, probe)

    @staticmethod
    def showing(node):
        return node.get_state_set().contains(Atspi.StateType.SHOWING)

    def control(self, window, role, name=None):
        for node in walk(window, role == Atspi.Role.TABLE_CELL):
            if node.get_role() == role and (name is None or node.get_name() == name):
                return node
        raise Failure("no %s named '%s' in '%s'" % (role.value_nick, name, window.get_name()))

    def controls(self, window, role):
        return [node for node in walk(window, role == Atspi.Role.TABLE_CELL)
                if node.get_role() == role]

    @staticmethod
    def centre(node):
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return box.x + box.width // 2, box.y + box.height // 2

    def click(self, node):
        """A click with the pointer at the control: a button whose handler runs a modal loop
        must not be pressed through the accessibility bus, which would wait for the loop."""
        x, y = self.centre(node)
        self.xdotool("mousemove", str(x), str(y), "click", "1")

    def double_click(self, node):
        x, y = self.centre(node)
        self.xdotool("mousemove", str(x), str(y), "click", "--repeat", "2", "--delay", "100", "1")

    def focus(self, window):
        """Without a window manager the keyboard follows the pointer: point into the window."""
        box = window.get_extents(Atspi.CoordType.SCREEN)
        self.xdotool("mousemove", str(box.x + 2), str(box.y + 2))
        time.sleep(0.2)

    def keys(self, *names):
        self.xdotool("key", "--delay", "50", *names)

    def type(self, text):
        self.xdotool("type", "--delay", "20", text)

    @staticmethod
    def xdotool(*arguments):
        subprocess.run(["xdotool", *arguments], check=True)

    def screenshot(self, name, window=None):
        """Keeps the screen as a test artefact: the part around `window` when one is given."""
        time.sleep(0.3)
        path = os.path.join(self.artefacts, "%s-%s.png" % (self.name, name))
        command = ["/usr/bin/import", "-window", "root"]
        if window is not None:
            box = window.get_extents(Atspi.CoordType.SCREEN)
            margin = 8
            command += [
                "-crop",
                "%dx%d+%d+%d"
                % (
                    box.width + 2 * margin,
                    box.height + 2 * margin,
                    max(box.x - margin, 0),
                    max(box.y - margin, 0),
                ),
                "+repage",
            ]
        subprocess.run(command + [path], check=True)
        return path

    def wait_exit(self, patience=PATIENCE):
        try:
            return self.process.wait(patience)
        except subprocess.TimeoutExpired:
            raise Failure("the program did not end")

    def stop(self):
        """Ends the program and removes what the session made, but for its screenshots."""
        if self.process is not None and self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.process = None
        for entry in os.listdir(self.home):
            path = os.path.join(self.home, entry)
            if path == self.artefacts:
                continue
            if os.path.isdir(path) and not os.path.islink(path):
                shutil.rmtree(path, ignore_errors=True)
            else:
                os.remove(path)
        if self.artefacts != os.path.join(self.home, "shots"):
            shutil.rmtree(self.home, ignore_errors=True)


def local_path(location):
    """The folder a file manager was given, which the desktop hands over as a file URI or, for
    a folder on this machine, as its path."""
    if location.startswith("file://"):
        return urllib.parse.unquote(urllib.parse.urlparse(location).path)
    return location


def extents(node):
    """A control's box on the screen: left, top, width, height."""
    box = node.get_extents(Atspi.CoordType.SCREEN)
    return box.x, box.y, box.width, box.height


def end_with_escape(session, window):
    """Escape in the search window closes it, which ends the program with code 0."""
    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


def table_rows(table):
    return Atspi.Table.get_n_rows(table)


def cell(table, row, column):
    return Atspi.Table.get_accessible_at(table, row, column)


def cell_text(table, row, column):
    node = cell(table, row, column)
    return node.get_name() if node is not None else ""


def search(session, window, pattern):
    """Types the pattern into the search window's pattern box and starts the search."""
    field = session.control(window, Atspi.Role.TEXT)
    session.click(field)
    session.keys("ctrl+a", "BackSpace")
    session.type(pattern)
    session.keys("Return")


def dismiss_alert(session, title, expected, shot, windows_left):
    """Checks that the alert `title` says `expected`, keeps it as screenshot `shot` and closes
    it with Return, which leaves `windows_left` windows of the program on the screen."""
    alert = session.window(title)
    message = wait_for("the text of '%s'" % title, lambda: alert.get_description())
    check(message == expected, "'%s' says why: %s" % (title, message))
    session.screenshot(shot, alert)
    session.focus(alert)
    session.keys("Return")
    wait_for("'%s' to close" % title, lambda: len(session.application_windows()) == windows_left)


def enter_index_folder(session, window, folder):
    """Opens the options from the search window, types `folder` into the index location's box
    and presses OK; gives the options dialog and that box."""
    session.focus(window)
    session.click(session.control(window, Atspi.Role.PUSH_BUTTON, "Options..."))
    options = session.window("Sorvanta Options")
    box = wait_for("the index location's box", lambda: [
        node for node in session.controls(options, Atspi.Role.TEXT)
        if text_of(node).startswith("/")])[0]
    session.click(box)
    session.keys("ctrl+a", "BackSpace")
    session.type(folder)
    wait_for("the new folder in the box", lambda: text_of(box) == folder)
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "OK"))
    return options, box


def run(test, session):
    """Runs one test function on a session; exit code 0 when it passed."""
    try:
        test(session)
    except Failure as failure:
        print("%s: FAILED: %s" % (session.name, failure), file=sys.stderr)
        return 1
    finally:
        session.stop()
    print("%s: passed (screenshots in %s)" % (session.name, session.artefacts))
    return 0
