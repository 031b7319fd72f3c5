"""The index's move to another folder shows "Moving existing index file..." with a bar and a
Cancel button: a dialog exactly 300 pixels wide, the bar six pixels in from its left, top and
right edges, the button as high as the bar, six pixels below it and centred, and six pixels of
dialog below the button. Cancel stops the copy and leaves the index where it was."""

import os
import sys

from sorvanta_desktop import (Atspi, Session, check, end_with_escape, enter_index_folder,
                              extents, run, wait_for)

TITLE = "Sorvanta - v1.14"
MOVING = "Moving existing index file..."
# An index file large enough for its copy to outlast a look at the dialog; it has holes, so it
# takes no room in the index folder.
INDEX_BYTES = 1536 * 1024 * 1024


def placed(dialog, bar, button):
    """The three boxes once they are laid out on the screen."""
    boxes = extents(dialog), extents(bar), extents(button)
    return boxes[0][2] > 0 and all(abs(box[0]) < 100000 for box in boxes) and boxes


def test(session):
    session.build_index()
    index = os.path.join(session.home, "data", "Wendlemark", "Sorvanta", "sorvanta.idx")
    target = os.path.join(session.home, "moved")
    os.makedirs(target)
    session.start()
    window = session.window(TITLE)
    with open(index, "r+b") as grown:
        grown.truncate(INDEX_BYTES)
    options, _ = enter_index_folder(session, window, target)

    dialog = session.window(MOVING)
    bar = wait_for("the dialog's bar", lambda: session.controls(dialog, Atspi.Role.PROGRESS_BAR))[0]
    button = session.control(dialog, Atspi.Role.PUSH_BUTTON, "Cancel")
    (x, y, width, height), (bar_x, bar_y, bar_width, bar_height), (
        button_x, button_y, button_width, button_height) = wait_for(
            "the dialog, its bar and its button on the screen",
            lambda: placed(dialog, bar, button))
    session.screenshot("moving", dialog)
    check(width == 300, "the dialog is 300 pixels wide, not %d" % width)
    check((bar_x - x, bar_y - y, x + width - (bar_x + bar_width)) == (6, 6, 6),
          "the bar stands 6 pixels in from the left, top and right: %s"
          % ((bar_x - x, bar_y - y, x + width - (bar_x + bar_width)),))
    check(button_height == bar_height and button_y == bar_y + bar_height + 6,
          "the button is as high as the bar and 6 pixels below it: %s"
          % ((button_y - (bar_y + bar_height), button_height, bar_height),))
    check(abs(button_x + button_width / 2 - (x + 150)) <= 1,
          "the button is centred: from %d to %d in a dialog from %d to %d"
          % (button_x, button_x + button_width, x, x + width))
    check(height == 2 * bar_height + 18,
          "the dialog is as high as the bar, the button and three edges of 6 pixels: %d high, "
          "the bar %d" % (height, bar_height))

    session.click(button)
    wait_for("the copy to stop", lambda: not session.showing(dialog), patience=120)
    check(os.path.getsize(index) == INDEX_BYTES, "the index stays where it was")
    check(os.listdir(target) == [], "nothing of the copy is left in the new folder: %s"
          % os.listdir(target))
    check(session.showing(options), "a cancelled move leaves the options dialog open")
    session.click(session.control(options, Atspi.Role.PUSH_BUTTON, "Cancel"))
    wait_for("the options to close", lambda: len(session.application_windows()) == 1)

    end_with_escape(session, window)


if __name__ == "__main__":
    sys.exit(run(test, Session("move-dialog")))
