"""The shelf: how soon it is there, and what its live pictures cost."""

import re
import time
from contextlib import ExitStack

import proc
from stage import Failure, stage
from table import Row, percentile
from trays import HOSTS, TRAY_ICONS, startTray, trayIcons

OPENINGS = 40
COUNTS = (10, 50)  # hidden items
MOST_TO_OPEN = 30  # milliseconds
MOST_OF_A_CORE = 0.02
MOST_WAKEUPS = 0.75  # a second: the item monitor's one in two seconds, and few of the shelf's
WARM_UP = 5  # seconds
BELOW_THE_BAR = "1280x100+0+30"
SHELF = {"displayMode": "shelf", "animationsEnabled": False}


def shelf(programs, options):
    return [*openings(programs), *livePictures(programs, options.idle)]


def openings(programs):
    """From the release of the button on Nevo's toggle until the shelf is there and painted. With a
    compositor it has a shadow."""
    rows = []
    for isComposited in (False, True):
        for count in COUNTS:
            with stage(programs) as desktop:
                if isComposited:
                    desktop.startCompositor()
                desktop.startBar()
                desktop.fillBar(*trayIcons(desktop, count))
                desktop.startNevo(**SHELF)
                figures = desktop.finish(desktop.startProbe("shelf", str(OPENINGS)))
                checkSlots(desktop, count)
            rows += openingRows(figures, f"{count} items{', shadow' if isComposited else ''}")
    return rows


def openingRows(figures, what):
    rows = []
    for name, result in (("open", "open, on the screen"), ("open-painted", "open, painted"),
                         ("close", "close, gone")):
        for part in (50, 95):
            isAim = name == "open-painted" and part == 95
            rows.append(Row(f"shelf of {what}: {result}, p{part}",
                            percentile(figures[name], part), "ms",
                            most=MOST_TO_OPEN if isAim else None))
    return rows


def checkSlots(desktop, count):
    """Each opening has to show all items."""
    log = (desktop.home / "nevo_debug.log").read_text()
    shown = {int(number) for number in re.findall(r"\[Shelf\] panel visible count=(\d+)", log)}
    if shown != {count}:
        raise Failure(f"the shelf has shown {sorted(shown)} items and not {count}")


def livePictures(programs, seconds):
    """An open shelf, and other trays with the same icons, each on a display of its own, through the
    same minute: once with icons that never change, once with one that does ten times a second."""
    kinds = {"none changes": stillIcons, "one changes": livelyIcons}
    watched = {}
    with ExitStack() as displays:
        for kind, iconsOf in kinds.items():
            desktop = displays.enter_context(stage(programs))
            watched["its bar", kind] = desktop.startBar()
            watched["nevo", kind] = openedShelf(desktop, iconsOf(desktop))
            watched["its X server", kind] = desktop.server
            for name in ("trayer", "tint2"):
                desktop = displays.enter_context(stage(programs))
                watched[name, kind] = startTray(desktop, HOSTS[name](desktop), iconsOf(desktop))
                watched[f"{name}'s X server", kind] = desktop.server
        time.sleep(WARM_UP)
        works = proc.idle([process.pid for process in watched.values()], seconds)
    work = dict(zip(watched, works))
    return [row for kind in kinds for row in liveRows(work, kind, seconds)]


def stillIcons(desktop):
    return trayIcons(desktop)


def livelyIcons(desktop):
    return [*trayIcons(desktop, TRAY_ICONS - 1),
            (desktop.ours("bench-probe"), "change", "changing")]


def openedShelf(desktop, icons):
    desktop.fillBar(*icons)
    process = desktop.startNevo(**SHELF)
    desktop.finish(desktop.startProbe("open"))
    checkSlots(desktop, len(icons))
    if icons == livelyIcons(desktop):
        before = screenBelowBar(desktop)
        desktop.wait("the shelf's pictures are live", lambda: screenBelowBar(desktop) != before)
    return process


def screenBelowBar(desktop):
    file = desktop.home / "screen.ppm"
    desktop.run("import", "-silent", "-window", "root", "-crop", BELOW_THE_BAR, str(file))
    return file.read_bytes()


def liveRows(work, kind, seconds):
    def row(name, peer=None):
        return Row(f"{name}, shelf open, {kind}: CPU in {seconds} s",
                   work[name, kind].milliseconds, "ms",
                   work[peer, kind].milliseconds if peer else None, peer or "",
                   most=seconds * 1000 * MOST_OF_A_CORE if name == "nevo" else None)
    wakeups = Row(f"nevo, shelf open, {kind}: wake-ups in {seconds} s", work["nevo", kind].wakeups, "",
                  most=seconds * MOST_WAKEUPS if kind == "none changes" else None)
    return [row("nevo", "trayer"), row("nevo", "tint2"), wakeups, row("its bar"),
            row("its X server", "trayer's X server"), row("its X server", "tint2's X server")]
