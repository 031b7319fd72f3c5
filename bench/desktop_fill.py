"""How long the search window takes to show 50,000 results. Run it on a private desktop with the
release build:

    scripts/desktop-session /usr/bin/python3 bench/desktop_fill.py build/release [ROWS]

The tree holds ROWS files that one pattern finds, the limit lets them all through, and each
search fills the list anew. Two figures per search: the program's own, from its outcome line
(search and fill, to a tenth of a second), and the time from the Return key to the outcome line
as the accessibility bus reports it, which adds its own round trips."""

import os
import re
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "desktop"))
from sorvanta_desktop import Atspi, Session, text_of, wait_for  # noqa: E402

SEARCHES = 5
TITLE = "Sorvanta - v1.14"


def enter(session, field, pattern, press=True):
    session.click(field)
    session.keys("ctrl+a", "BackSpace")
    session.type(pattern)
    if press:
        session.keys("Return")


def main():
    os.environ["SORVANTA_BUILD"] = os.path.abspath(sys.argv[1])
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 50000
    session = Session("fill", tree_files=rows)
    session.write_settings("[General]\nMaxResults=50000\n")
    environment = session.environment()
    environment["QUILT_PLATFORM"] = "offscreen"
    subprocess.run([session.program(), "/buildindex"], env=environment, check=True, timeout=300)
    try:
        session.start()
        window = session.window(TITLE)
        session.focus(window)
        table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
        field = session.control(window, Atspi.Role.TEXT)
        outcome = [node for node in session.controls(window, Atspi.Role.TEXT)][-1]
        own = []
        seen = []
        for _ in range(SEARCHES):
            # A search that finds nothing first, so that each fill changes the outcome line.
            enter(session, field, "nothing*")
            wait_for("the empty outcome", lambda: text_of(outcome).startswith("No results"))
            time.sleep(2.5)
            enter(session, field, "file*", press=False)
            start = time.monotonic()
            session.keys("Return")
            expected = "%s results" % format(rows, ",")
            line = wait_for("the outcome line",
                            lambda: text_of(outcome).startswith(expected) and text_of(outcome),
                            patience=60)
            seen.append((time.monotonic() - start) * 1000)
            own.append(float(re.search(r" in ([0-9.]+) seconds", line).group(1)) * 1000)
        rows_shown = Atspi.Table.get_n_rows(table)
        print("rows in the list: %d" % rows_shown)
        print("program's own search and fill, ms: " + " ".join("%.0f" % value for value in own))
        print("Return to outcome line, ms: " + " ".join("%.0f" % value for value in seen))
        print("median %.0f ms (own), %.0f ms (seen)" % (statistics.median(own),
                                                         statistics.median(seen)))
    finally:
        session.stop()


if __name__ == "__main__":
    main()
