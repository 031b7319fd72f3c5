"""How fast the window answers a key while a build runs in idle slices. Run it on a private
desktop with the release build:

    scripts/desktop-session /usr/bin/python3 bench/desktop_key_latency.py build/release [FILES]

Each press comes more than two quiet seconds after the last, so that build slices are running
when it arrives, and the build advances only in the fifth of a second before each press; the time is from the key's send to the focus having moved, as the accessibility
bus reports it, which adds its own round trips to the figure."""

import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "desktop"))
from sorvanta_desktop import Atspi, Session, text_of, wait_for  # noqa: E402

PRESSES = 8


def focused(node):
    return node.get_state_set().contains(Atspi.StateType.FOCUSED)


def main():
    os.environ["SORVANTA_BUILD"] = os.path.abspath(sys.argv[1])
    files = int(sys.argv[2]) if len(sys.argv) > 2 else 300000
    session = Session("key-latency", tree_files=files)
    try:
        session.start("/buildindex")
        window = session.window("Sorvanta")
        folder_line = session.control(window, Atspi.Role.TEXT)
        quit_button = session.control(window, Atspi.Role.PUSH_BUTTON, "Quit")
        wait_for("the build to start", lambda: text_of(folder_line))
        session.focus(window)
        times = []
        for press in range(PRESSES):
            # Idle rounds start again once two seconds have passed without input.
            time.sleep(2.2 if press > 0 else 0)
            was = focused(quit_button)
            start = time.monotonic()
            session.xdotool("key", "Tab")
            ended = lambda: session.process.poll() is not None  # noqa: E731
            wait_for("the focus to move", lambda: ended() or focused(quit_button) != was, 5)
            if ended():
                print("the build ended before press %d; give a bigger tree" % (len(times) + 1))
                break
            times.append((time.monotonic() - start) * 1000)
            walking = text_of(folder_line)
        print("files in the tree: %d, still walking at the end: %s" % (files, walking))
        print("key to focus change, ms: " + " ".join("%.1f" % t for t in times))
        print("median %.1f ms, worst %.1f ms" % (statistics.median(times), max(times)))
    finally:
        session.stop()


if __name__ == "__main__":
    main()
