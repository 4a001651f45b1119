#!/usr/bin/python3
"""Drives system-config-printer to refresh a queue's ink levels and
photographs what it then shows.

Run by docs/screenshot-levels.sh inside a D-Bus session, on an X display
with a window manager, with CUPS_SERVER pointing at the scheduler that owns
the queue:

    screenshot-levels-gui.py QUEUE EXPECTED_LEVEL OUT.png LOG

It starts system-config-printer and works it as a user would, with real
mouse clicks (xdotool): a double click on the queue's icon opens its
properties, a click on "Ink/Toner Levels" shows that page, a click on
"Refresh" submits the "ReportLevels" command job, a click on "OK" closes the
"Submitted" message.  Where to click is asked of the program itself, through
the accessibility bus (AT-SPI), so that no position is guessed.  Then it
waits until the page shows the level that the command job reported, rests
the mouse on the level gauge until its tooltip tells the level in percent,
and saves the properties window, with its frame and the tooltip, as OUT.png.
It checks that the page shows what the scheduler holds (the level and the
marker's name) and that the level is EXPECTED_LEVEL.  system-config-printer's
own output goes to LOG.  Exit status 0 when the picture shows the expected
level, 1 otherwise.
"""

import re
import subprocess
import sys
import time

import cups
import pyatspi

# How long a step may take, in seconds.
kStepTimeout = 30
# The program learns of new levels through its CUPS event subscription,
# which it polls at the interval that cupsd gives it, a minute when the
# queue is idle: when it fetched the queue's attributes while the job was
# still running, it shows the levels only at the next poll.
kLevelsTimeout = 150
# Double clicks on the queue's icon, and how long each waits for the
# properties window.
kOpenAttempts = 4
kOpenTimeout = 5


class StepTimeout(Exception):
    """A step did not happen in its time."""


def say(text):
    """Prints one line of progress."""
    print("screenshot: " + text, flush=True)


def fail(text):
    """Prints why the run stops and exits with status 1."""
    print("screenshot: error: " + text, file=sys.stderr, flush=True)
    sys.exit(1)


def wait_for(what, find, timeout=kStepTimeout):
    """Calls find() until it returns something, which it returns; raises
    StepTimeout naming WHAT after TIMEOUT seconds."""
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        try:
            found = find()
        except Exception:  # an object that went away while we looked
            found = None
        if found:
            return found
        time.sleep(0.25)
    raise StepTimeout("no %s after %d s" % (what, timeout))


def application():
    """The accessible of the running system-config-printer, or None."""
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == "system-config-printer":
            return app
    return None


def extents(acc):
    """(x, y, width, height) of the widget on the screen."""
    box = acc.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return box.x, box.y, box.width, box.height


def showing(acc):
    """True when the widget is on the screen: visible, and placed (hidden
    widgets and those of hidden pages are placed far off the screen)."""
    if not acc.getState().contains(pyatspi.STATE_VISIBLE):
        return False
    x, y, width, height = extents(acc)
    return x >= 0 and y >= 0 and width > 1 and height > 1


def window(title_start):
    """The showing top-level window whose title begins with TITLE_START,
    or None."""
    for win in application() or []:
        if (win is not None and (win.name or "").startswith(title_start)
                and showing(win)):
            return win
    return None


def child(parent, role, name=None, name_start=None):
    """The first showing descendant of PARENT with this role and this name
    (or a name that begins so), or None."""
    def matches(acc):
        if acc is None or acc.getRole() != role or not showing(acc):
            return False
        text = acc.name or ""
        if name is not None:
            return text == name
        return name_start is None or text.startswith(name_start)
    return pyatspi.findDescendant(parent, matches)


def move_mouse(x, y):
    """Moves the mouse pointer to x, y on the screen."""
    subprocess.run(["xdotool", "mousemove", "--sync", str(x), str(y)],
                   check=True)


def click(acc, what, double=False):
    """Clicks the middle of the widget with the mouse."""
    x, y, width, height = extents(acc)
    x, y = x + width // 2, y + height // 2
    say("clicking %s at %d,%d" % (what, x, y))
    move_mouse(x, y)
    command = ["xdotool", "click"]
    if double:
        command += ["--repeat", "2", "--delay", "120"]
    subprocess.run(command + ["1"], check=True)


def open_properties(queue):
    """Opens the queue's properties from the main window; the properties
    window.  The main window fills its list of queues twice as it starts
    (once more when its event subscription first answers): a double click
    that falls between the two is lost, and is made again."""
    main_window = wait_for("main window", lambda: window("Print Settings"))
    for attempt in range(kOpenAttempts):
        icon = wait_for("icon of the queue " + queue,
                        lambda: child(main_window, pyatspi.ROLE_ICON, queue))
        click(icon, "the queue's icon \"%s\" (twice)" % queue, double=True)
        try:
            properties = wait_for(
                "printer properties window",
                lambda: window("Printer Properties - '%s'" % queue),
                timeout=kOpenTimeout)
            say("properties window open: \"%s\"" % properties.name)
            return properties
        except StepTimeout:
            if attempt + 1 == kOpenAttempts:
                raise
    return None


def refresh_levels(properties):
    """Shows the "Ink/Toner Levels" page, presses its "Refresh" button and
    closes the message that tells which job was submitted."""
    click(wait_for("\"Ink/Toner Levels\" page",
                   lambda: child(properties, pyatspi.ROLE_TABLE_CELL,
                                 "Ink/Toner Levels")),
          "\"Ink/Toner Levels\"")
    click(wait_for("\"Refresh\" button",
                   lambda: child(properties, pyatspi.ROLE_PUSH_BUTTON,
                                 "Refresh")),
          "\"Refresh\"")

    def submitted():
        for win in application():
            if win is None or win == properties or not showing(win):
                continue
            label = child(win, pyatspi.ROLE_LABEL,
                          name_start="Maintenance command submitted")
            if label is not None:
                return win, label.name
        return None
    message, text = wait_for("\"Submitted\" message", submitted)
    say("system-config-printer says: \"%s\"" % text)
    click(wait_for("\"OK\" button",
                   lambda: child(message, pyatspi.ROLE_PUSH_BUTTON, "OK")),
          "\"OK\"")


def wait_for_levels(properties):
    """Waits until the page shows a level; (level gauge, marker name
    label)."""
    say("waiting for the page to show the level that the job reported")
    start = time.monotonic()
    # The gauge is the widget whose tooltip (its description) is the level;
    # the marker's name is the label in the same box.
    gauge = wait_for("level gauge on the page",
                     lambda: pyatspi.findDescendant(
                         properties, lambda acc: acc is not None and
                         (acc.description or "").endswith("%") and
                         showing(acc)),
                     timeout=kLevelsTimeout)
    names = wait_for("marker name beside the gauge",
                     lambda: child(gauge.parent.parent, pyatspi.ROLE_LABEL))
    say("the page shows %s and \"%s\" (%.0f s after the click on \"OK\")"
        % (gauge.description, names.name, time.monotonic() - start))
    return gauge, names


def x_windows(*search):
    """Ids of the visible X windows that xdotool search finds."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible"] +
                           list(search), capture_output=True, text=True)
    return found.stdout.split()


def tooltip_window():
    """The id of a visible tooltip window, or None."""
    for win in x_windows("--classname", "system-config-printer"):
        kind = subprocess.run(["xprop", "-id", win, "_NET_WM_WINDOW_TYPE"],
                              capture_output=True, text=True).stdout
        if "_NET_WM_WINDOW_TYPE_TOOLTIP" in kind:
            return win
    return None


def show_tooltip(gauge):
    """Rests the mouse on the gauge until its tooltip shows."""
    x, y, width, height = extents(gauge)
    move_mouse(0, 0)
    move_mouse(x + width // 2, y + height // 2)
    wait_for("tooltip on the level gauge", tooltip_window)
    say("the gauge's tooltip shows \"%s\"" % gauge.description)


def frame(title):
    """(x, y, width, height) of the visible window with this title, with
    the frame that the window manager drew around it."""
    win = x_windows("--name", "^" + re.escape(title) + "$")[0]
    info = subprocess.run(["xwininfo", "-id", win], capture_output=True,
                          text=True, check=True).stdout
    def field(name):
        return int(re.search(name + r":\s+(-?\d+)", info).group(1))
    x, y = field("Absolute upper-left X"), field("Absolute upper-left Y")
    width, height = field("Width"), field("Height")
    borders = subprocess.run(["xprop", "-id", win, "_NET_FRAME_EXTENTS"],
                             capture_output=True, text=True).stdout
    left, right, top, bottom = (
        [int(n) for n in re.findall(r"\d+", borders.split("=")[1])]
        if "=" in borders else [0, 0, 0, 0])
    return x - left, y - top, width + left + right, height + top + bottom


def save_picture(properties, out):
    """Saves the screen's part under the properties window's frame (and so
    whatever lies on top of it, the tooltip) as OUT."""
    time.sleep(1)  # let the windows finish drawing
    x, y, width, height = frame(properties.name)
    subprocess.run(["import", "-window", "root", "-crop",
                    "%dx%d+%d+%d" % (width, height, x, y), "+repage", out],
                   check=True)
    say("saved %s (%dx%d)" % (out, width, height))


def check(queue, expected_level, gauge, names):
    """Fails unless the page shows the expected level and the scheduler's
    markers."""
    attrs = cups.Connection().getPrinterAttributes(
        queue, requested_attributes=["marker-levels", "marker-names"])
    say("the scheduler holds marker-levels=%s marker-names=%s"
        % (attrs.get("marker-levels"), attrs.get("marker-names")))
    if gauge.description != expected_level + "%":
        fail("the page shows %s, expected %s%%"
             % (gauge.description, expected_level))
    if (attrs.get("marker-levels") != [int(expected_level)] or
            attrs.get("marker-names") != [names.name]):
        fail("the page does not show what the scheduler holds")


def main():
    if len(sys.argv) != 5:
        fail("usage: screenshot-levels-gui.py QUEUE EXPECTED_LEVEL OUT.png "
             "LOG")
    queue, expected_level, out, log = sys.argv[1:]

    say("starting system-config-printer (its output goes to %s)" % log)
    with open(log, "w") as log_file:
        program = subprocess.Popen(["system-config-printer", "--debug"],
                                   stdout=log_file, stderr=subprocess.STDOUT)
    try:
        properties = open_properties(queue)
        refresh_levels(properties)
        gauge, names = wait_for_levels(properties)
        show_tooltip(gauge)
        save_picture(properties, out)
        check(queue, expected_level, gauge, names)
    except StepTimeout as timeout:
        fail(str(timeout))
    finally:
        program.terminate()
        program.wait()


if __name__ == "__main__":
    main()
