"""Items that programs offer over the session bus: our bar beside another host of such items, and
beside programs that offer them badly."""

import time
from contextlib import ExitStack, contextmanager
from statistics import median

import proc
from stage import COPYQ, DIODON, QASMIXER, QLIPPER, Failure, stage
from table import Row, percentile
from trays import xfcePanel

PROGRAMS = [QLIPPER, QASMIXER, COPYQ, DIODON]
CLICKS = 100
MOST_TO_CLICK = 100  # milliseconds
WARM_UP = 5  # seconds after which memory is looked at
WATCHER = "org.kde.StatusNotifierWatcher"
PEER = "xfce4-panel"
HOSTS = {"nevo-menubar": lambda desktop: (desktop.ours("nevo-menubar"),), PEER: xfcePanel}
# These do all that they do as long as they run, the others when they come.
LASTING = ("plain", "flood", "silent", "late")
COMING = ("lying", "large", "huge", "long-title", "thousand", "leaver")
NAMES = {"plain": "a plain item", "leaver": "one that comes and goes"}
# What is clicked: an icon, which has its clicks from the X server, and an item over the session
# bus, which has them from the bar.
TARGETS = {"click": "icon's click", "activate": "item's click"}
LATE = 28  # seconds after which the late one's answer is about to come
PAUSE = 0.5  # seconds from an arrival to the next


def notifiers(programs, options):
    shown = {name: [] for name in HOSTS}
    memory = {name: [] for name in HOSTS}
    for _ in range(options.runs):
        for name, commandOf in HOSTS.items():
            shown[name].append(startBesideKeeper(programs, commandOf))
            memory[name].append(memoryOfHost(programs, commandOf))
    rows = [besidePeer(f"start to {len(PROGRAMS)} items shown", "ms",
                       {name: median(shown[name]) for name in HOSTS})]
    for what, field in (("PSS", "pss"), ("RSS", "rss")):
        rows.append(besidePeer(what, "kB", {
            name: median(getattr(each, field) for each in memory[name]) for name in HOSTS}))
    return [*rows, *minute(programs, options.idle)]


def besidePeer(what, unit, figures, name="nevo-menubar"):
    peer = name.replace("nevo-menubar", PEER)
    return Row(f"items over the bus, {name}: {what}", figures[name], unit, figures[peer], peer)


def startBesideKeeper(programs, commandOf):
    """Milliseconds from a host's start until the screen shows all items. A bar on another display
    keeps them meanwhile: programs that find no host at their start may speak another protocol."""
    with stage(programs) as desktop:
        with anotherDisplay(desktop):
            desktop.startBar()
        fill(desktop, PROGRAMS)
        time.sleep(WARM_UP)
        command = commandOf(desktop)
        probe = desktop.startProbe("still")
        probe.stdout.readline()  # "watching"
        begin = time.clock_gettime(time.CLOCK_MONOTONIC)
        desktop.launch(*command)
        return (desktop.finish(probe)["shown"][0] - begin) * 1000


@contextmanager
def anotherDisplay(desktop):
    """What is started here stands on a display of its own, on the same session bus."""
    here = desktop.environment["DISPLAY"]
    number = desktop.firstLine("Xvfb", "-displayfd", "{fd}", "-screen", "0", "1280x800x24",
                               "-noreset", "-nolisten", "tcp")
    desktop.environment["DISPLAY"] = ":" + number
    try:
        yield
    finally:
        desktop.environment["DISPLAY"] = here


def registered(desktop):
    """How many items the watcher knows; None without one."""
    text = desktop.run("dbus-send", "--session", "--print-reply", f"--dest={WATCHER}",
                       "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
                       f"string:{WATCHER}", "string:RegisteredStatusNotifierItems")
    return text.count("string ") if text else None


def fill(desktop, commands):
    """Starts programs, and waits for the items of each."""
    for count, command in enumerate(commands, 1):
        desktop.launch(*command)
        desktop.wait(f"{command[0]} has an item", lambda n=count: registered(desktop) == n)


def startHost(desktop, commandOf, more=()):
    """A host that programs find when they start. Gives its processes once it is at rest."""
    process = desktop.launch(*commandOf(desktop))
    desktop.wait("a host is there", lambda: registered(desktop) is not None)
    fill(desktop, [*PROGRAMS, *more])
    time.sleep(WARM_UP)
    return proc.session(process.pid)


def memoryOfHost(programs, commandOf):
    with stage(programs) as desktop:
        return sum(map(proc.memory, startHost(desktop, commandOf)), proc.Memory(0, 0))


def minute(programs, seconds):
    """Both hosts, each on a display of its own, through the same minute: once with an item more
    that never changes, once with one that does ten times a second."""
    kinds = {"none changes": "plain", "one changes": "animated"}
    watched = {}
    with ExitStack() as displays:
        for kind, client in kinds.items():
            for name, commandOf in HOSTS.items():
                desktop = displays.enter_context(stage(programs))
                more = (desktop.ours("bad-notifier"), client)
                watched[name, kind] = startHost(desktop, commandOf, [more])
                if client == "animated":
                    checkLively(desktop)
                watched[f"{name}'s X server", kind] = [desktop.server.pid]
        works = iter(proc.idle([pid for pids in watched.values() for pid in pids], seconds))
        work = {who: sum((next(works) for _ in pids), proc.Work(0, 0))
                for who, pids in watched.items()}
    rows = []
    for kind in kinds:
        figures = {who: work[who, kind] for who, each in work if each == kind}
        for what, unit, field in (("CPU", "ms", "milliseconds"), ("wake-ups", "", "wakeups")):
            values = {who: getattr(each, field) for who, each in figures.items()}
            rows.append(besidePeer(f"{what} in {seconds} s, {kind}", unit, values))
        values = {who: each.milliseconds for who, each in figures.items()}
        rows.append(besidePeer(f"CPU in {seconds} s, {kind}", "ms", values,
                               "nevo-menubar's X server"))
    return rows


def checkLively(desktop):
    file = desktop.home / "screen.ppm"

    def look():
        desktop.run("import", "-silent", "-window", "root", "-crop", "1280x40+0+0", str(file))
        return file.read_bytes()
    before = look()
    desktop.wait("the animation can be seen", lambda: look() != before)


def badNotifiers(programs, options):
    """How long a click takes to reach a well-behaved icon beside a program that offers its item
    badly, and how much memory the bar has taken at the most."""
    return [row for target in TARGETS for row in badRows(programs, target)]


def badRows(programs, target):
    rows = []
    plain = None
    for kind in (*LASTING, *COMING):
        times, missed, peak = clicksBeside(programs, kind, target)
        p95 = percentile(times, 95)
        beside = [(each, "plain") for each in plain] if plain else ((), ())
        plain = plain or (p95, peak)
        what = f"{TARGETS[target]} beside {NAMES.get(kind, kind)}"
        rows += [Row(f"{what}, p50", percentile(times, 50), "ms"),
                 Row(f"{what}, p95", p95, "ms", *beside[0]),
                 Row(f"{what}, max", max(times), "ms", most=MOST_TO_CLICK),
                 Row(f"{what}, clicks that missed", missed, ""),
                 Row(f"{what}: the bar's peak memory", peak, "MB", *beside[1])]
    return rows


def clicksBeside(programs, kind, target):
    """The times of clicks, how many missed, and the bar's peak in megabytes."""
    with stage(programs) as desktop:
        bar = desktop.startBar()
        desktop.wait("the bar takes items over the bus", lambda: registered(desktop) is not None)
        if kind in LASTING:
            startBad(desktop, kind)
        if kind == "late":
            time.sleep(LATE)
        probe = desktop.startProbe(target, str(CLICKS))
        comings = keepComing(desktop, kind, probe) if kind in COMING else 1
        figures = desktop.finish(probe)
        if comings == 0:
            raise Failure(f"the {kind} one hasn't come while there were clicks")
        return figures["click"], figures["missed"][0], proc.peak(bar.pid) / 1024


def startBad(desktop, kind):
    client = desktop.launch(desktop.ours("bad-notifier"), kind)
    log = desktop.output / "bad-notifier.log"
    desktop.wait("the bad notifier has registered", lambda: "registered" in log.read_text())
    return client


def keepComing(desktop, kind, probe):
    """One after the other, as long as clicks go on. Gives how many there were."""
    comings = 0
    while probe.poll() is None:
        client = startBad(desktop, kind)
        time.sleep(PAUSE)
        desktop.stop(client)
        comings += 1
    return comings
