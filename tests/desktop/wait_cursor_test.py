"""A search that blocks the window shows the busy cursor from its start: the X server shows it
over the search window while the search still runs in its grace, before "Searching..." comes
up, and the window has painted itself then. When the search is over, clicks reach the window's
controls again."""

import ctypes
import subprocess
import sys
import time

from sorvanta_desktop import (PATIENCE, Atspi, Failure, Session, check, end_with_escape, run, text_of,
                              wait_for)

TITLE = "Sorvanta - v1.14"
SEARCHING = "Searching..."
SLOW_PATTERN = r"(.*)(.*)(.*)\3\2\1x"


class CursorImage(ctypes.Structure):
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short),
                ("width", ctypes.c_ushort), ("height", ctypes.c_ushort),
                ("xhot", ctypes.c_ushort), ("yhot", ctypes.c_ushort),
                ("cursor_serial", ctypes.c_ulong), ("pixels", ctypes.c_void_p),
                ("atom", ctypes.c_ulong), ("name", ctypes.c_char_p)]


class Screen:
    """What the X server shows, asked of the server itself: the program may be too busy to
    answer the accessibility bus."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.xfixes = ctypes.CDLL("libXfixes.so.3")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XOpenDisplay.argtypes = [ctypes.c_char_p]
        self.xfixes.XFixesGetCursorImage.restype = ctypes.POINTER(CursorImage)
        self.xfixes.XFixesGetCursorImage.argtypes = [ctypes.c_void_p]
        self.x11.XFree.argtypes = [ctypes.c_void_p]
        self.display = self.x11.XOpenDisplay(None)
        check(self.display, "the X server answers")

    def cursor(self):
        """The cursor's serial and size: a new cursor has a new serial."""
        image = self.xfixes.XFixesGetCursorImage(self.display)
        shown = (image.contents.cursor_serial, image.contents.width, image.contents.height)
        self.x11.XFree(image)
        return shown

    @staticmethod
    def has_window(name):
        found = subprocess.run(["xwininfo", "-name", name], capture_output=True, text=True)
        return found.returncode == 0 and "IsViewable" in found.stdout


def first_sign(screen, before):
    """Whether the busy cursor or the search's dialog shows first. The cursor, which the X server
    answers at once, is asked about often, so that a loaded machine does not let the search's
    grace pass between two looks; the dialog, which takes a process to ask about, less often."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        for _ in range(25):
            if screen.cursor() != before:
                return "cursor"
            time.sleep(0.002)
        if screen.has_window(SEARCHING):
            return "dialog"
    raise Failure("gave up waiting for the busy cursor or the progress dialog")


def test(session):
    session.build_index()
    session.write_settings("[Options]\nUseRegExp=true\n")
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    screen = Screen()
    field = session.control(window, Atspi.Role.TEXT)
    session.click(field)
    session.type(SLOW_PATTERN)
    wait_for("the pattern in its box", lambda: text_of(field) == SLOW_PATTERN)
    before = screen.cursor()
    session.keys("Return")

    first = first_sign(screen, before)
    session.screenshot("busy")
    check(first == "cursor", "the busy cursor shows before the search's dialog does")
    wait_for("the search's dialog", lambda: screen.has_window(SEARCHING))
    check(screen.cursor() != before, "the busy cursor stays while the dialog runs")
    wait_for("the search to end", lambda: not screen.has_window(SEARCHING), patience=120)
    outcome = [text_of(node) for node in session.controls(window, Atspi.Role.TEXT)]
    check(any(text.startswith("0 results") or text.startswith("No results") for text in outcome),
          "nothing matched: %s" % outcome)

    regular = session.control(window, Atspi.Role.CHECK_BOX)
    session.click(regular)
    wait_for("a click to reach the check box again",
             lambda: not regular.get_state_set().contains(Atspi.StateType.CHECKED))
    session.screenshot("after", window)

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("wait-cursor", tree_files=60000)))
