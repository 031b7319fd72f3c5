"""The search window on a desktop: it comes up at its template size, widened to show its whole
status line, its controls follow their anchors when it grows, a search fills the list and tells
its outcome, a header click sorts, and a pattern with more results than the limit asks first."""

import sys

from sorvanta_desktop import (Atspi, Session, cell_text, check, on_one_line_inside, run, search,
                              table_rows, text_of, wait_for)

TITLE = "Sorvanta - v1.14"


def extents(node):
    box = node.get_extents(Atspi.CoordType.SCREEN)
    return box.x, box.y, box.width, box.height


def texts_of(session, window):
    return [text_of(node) for node in session.controls(window, Atspi.Role.TEXT)]


def test(session):
    session.build_index()
    session.start()
    window = session.window(TITLE)
    session.focus(window)
    table = wait_for("the results list", lambda: session.controls(window, Atspi.Role.TABLE))[0]
    find = session.control(window, Atspi.Role.PUSH_BUTTON, "Find")
    _, _, width, height = extents(window)
    status = [node for node in session.controls(window, Atspi.Role.TEXT)
              if node.get_parent().get_role() == Atspi.Role.SCROLL_PANE][0]
    wait_for("the index status", lambda: text_of(status).startswith("Index status good"))
    check(on_one_line_inside(status), "the window comes up wide enough for its status line")
    session.screenshot("template-size", window)

    # Anchors: the list stretches with the window, the Find button moves with its right edge.
    find_x = extents(find)[0]
    table_width, table_height = extents(table)[2:]
    session.xdotool("search", "--name", TITLE, "windowsize", str(width + 200), str(height + 150))
    wait_for("the list to grow", lambda: extents(table)[2] >= table_width + 150)
    check(extents(table)[3] >= table_height + 100, "the list grows downwards too")
    check(extents(find)[0] >= find_x + 150, "the Find button keeps to the right edge")
    session.screenshot("resized", window)

    search(session, window, "file0001*")
    wait_for("rows in the list", lambda: table_rows(table) == 10)
    names = [cell_text(table, row, 0) for row in range(10)]
    check(names == ["file%05d.txt" % number for number in range(10, 20)],
          "the rows come up in name order: %s" % names)
    texts = texts_of(session, window)
    check(any(text.startswith("10 results found matching 'file0001*'") for text in texts),
          "the outcome line counts the results: %s" % texts)
    session.screenshot("search-results", window)

    # The list is in name order already: a click on Name turns it round.
    session.click(session.control(window, Atspi.Role.TABLE_COLUMN_HEADER, "Name"))
    wait_for("the rows in descending name order",
             lambda: [cell_text(table, row, 0) for row in range(10)] == names[::-1])
    session.screenshot("header-click", window)

    # More results than the limit: the program asks before it shows them.
    search(session, window, "file*")
    question = wait_for("the limit question",
                        lambda: [node for node in session.application_windows()
                                 if node.get_name() != TITLE])
    session.screenshot("limit-question", question[0])
    session.click(session.control(question[0], Atspi.Role.PUSH_BUTTON, "No"))
    wait_for("the question to go", lambda: len(session.application_windows()) == 1)

    # The pattern box keeps the patterns searched for, newest first.
    session.click(session.control(window, Atspi.Role.TEXT))
    session.keys("alt+Down")
    history = wait_for("the pattern history", lambda: [
        node.get_name() for node in session.controls(window, Atspi.Role.MENU_ITEM)
        if session.showing(node)])
    check(history[:2] == ["file*", "file0001*"], "the history, newest first: %s" % history)
    session.screenshot("history", window)
    session.keys("Escape")

    session.focus(window)
    session.keys("Escape")
    check(session.wait_exit() == 0, "Escape closes the window and ends the program")


if __name__ == "__main__":
    sys.exit(run(test, Session("main-window", tree_files=3000)))
