"""What is measured. Each operation gives the rows of the table."""

import signal
import time
from contextlib import ExitStack
from dataclasses import dataclass

import proc
from notifiers import badNotifiers, notifiers
from shelf import shelf
from stage import CLIPMAN, PARCELLITE, VOLUMEICON, Failure, stage
from table import Row, middle, percentile
from trays import FEW, HOSTS, startTray, trayIcons

CLICKS = 60  # on the toggle, each way
BAD_CLICKS = 100
WARM_UP = 5  # seconds after which memory is looked at
MANY = 30
DRAGS = 60
HOST_ICONS = [PARCELLITE, VOLUMEICON, CLIPMAN]
RULES = {"Parcellite >>> parcellite": "alwaysShow", "volumeicon >>> volumeicon": "alwaysShow",
         "icon-1 >>> bench-probe": "alwaysShow", "Clipboard Manager >>> xfce4-clipman": "alwaysHide",
         "icon-2 >>> bench-probe": "alwaysHide"}


def collapse(programs, options):
    """From the release of the button on Nevo's toggle until the last item is off the screen."""
    rows = []
    for count in (len(FEW), MANY):
        with stage(programs) as desktop:
            desktop.startBar()
            desktop.fillBar(*trayIcons(desktop, count))
            desktop.startNevo()
            figures = desktop.finish(desktop.startProbe("toggle", str(CLICKS)))
        if figures["items"] != [count]:
            raise Failure(f"{figures['items'][0]:.0f} items were hidden and not {count}")
        for way, aim in (("collapse", 20), ("expand", None)):
            for suffix, result in (("", "in place"), ("-painted", "painted")):
                times = figures[way + suffix]
                for part in (50, 95):
                    rows.append(Row(f"{way}, {count} items, {result}, p{part}",
                                    percentile(times, part), "ms",
                                    most=aim if part == 95 else None))
    return rows


@dataclass(frozen=True)
class HostRun:
    """One start of a tray host with three icons. Times in milliseconds from its start."""

    owned: float
    shown: float
    pss: int
    rss: int


def startHost(desktop, command):
    """Starts a host where the programs wait for one; gives its process and the two times."""
    waiting = [desktop.launch(*program).pid for program in HOST_ICONS]
    proc.settle(waiting)
    probe = desktop.startProbe("host", str(len(HOST_ICONS)))
    probe.stdout.readline()  # "watching"
    begin = time.clock_gettime(time.CLOCK_MONOTONIC)
    process = desktop.launch(*command)
    figures = desktop.finish(probe)
    return process, *((figures[what][0] - begin) * 1000 for what in ("owned", "shown"))


def runHost(programs, commandOf, idleSeconds):
    """One run; with its idle work, unless `idleSeconds` is 0."""
    with stage(programs) as desktop:
        process, owned, shown = startHost(desktop, commandOf(desktop))
        time.sleep(WARM_UP)
        memory = proc.memory(process.pid)
        work = proc.idle([process.pid], idleSeconds)[0] if idleSeconds else None
        return HostRun(owned, shown, memory.pss, memory.rss), work


def hosts(programs, options):
    """Our bar beside other tray hosts, which take turns, so that a busy moment hits all alike."""
    runs = {name: [] for name in HOSTS}
    work = {}
    for number in range(options.runs):
        for name, commandOf in HOSTS.items():
            isLast = number == options.runs - 1
            run, work[name] = runHost(programs, commandOf, options.idle if isLast else 0)
            runs[name].append(run)
    rows = []
    for what, field, unit in (("start to tray owned", "owned", "ms"),
                              ("start to 3 icons shown", "shown", "ms"),
                              ("PSS", "pss", "kB"), ("RSS", "rss", "kB")):
        rows += besideTrayer(what, unit, lambda name, f=field: middle(runs[name], f))
    span = f"in {options.idle} s idle"
    for name in HOSTS:
        rows.append(Row(f"{name}: CPU {span}", work[name].milliseconds, "ms"))
    for name in HOSTS:
        # The clock shows minutes.
        most = {"nevo-menubar": -(-options.idle // 60), "nevo-menubar --no-clock": 0}.get(name)
        rows.append(Row(f"{name}: wake-ups {span}", work[name].wakeups, "", most=most))
    return rows


def besideTrayer(what, unit, figureOf):
    peer = figureOf("trayer")
    return [Row(f"{name}: {what}", figureOf(name), unit, peer, "trayer",
                noMoreThanPeer=name.startswith("nevo"))
            for name in HOSTS if name != "trayer"]


def bad(programs, options):
    """How long a click takes to reach a well-behaved icon beside a program that misbehaves."""
    rows = []
    alone = None
    for kind in ("none", "unmapped", "giant", "resizer", "plain", "crowd"):
        with stage(programs) as desktop:
            desktop.startBar()
            # First, so that it stands right of the probe and pushes it about.
            if kind not in ("none", "crowd"):
                startBad(desktop, kind)
            probe = desktop.startProbe("click", str(BAD_CLICKS))
            if kind == "crowd":
                keepCrowding(desktop, probe)
            figures = desktop.finish(probe)
        times = figures["click"]
        alone = alone or percentile(times, 95)
        name = {"plain": "stopped"}.get(kind, kind)
        for label, value in (("p50", percentile(times, 50)), ("p95", percentile(times, 95)),
                             ("max", max(times))):
            isRatio = label == "p95" and kind != "none"
            rows.append(Row(f"click beside {name}, {label}", value, "ms",
                            alone if isRatio else None, "none" if isRatio else "",
                            most=100 if label == "max" else None))
        rows.append(Row(f"click beside {name}, clicks that missed", figures["missed"][0], ""))
    return rows


def startBad(desktop, kind):
    client = desktop.launch(desktop.ours("bad-client"), kind)
    log = desktop.output / "bad-client.log"
    desktop.wait("the bad client has docked", lambda: "docked" in log.read_text())
    if kind == "plain":
        client.send_signal(signal.SIGSTOP)


def keepCrowding(desktop, probe):
    """A crowd is done in half a second: one after the other, as long as clicks go on."""
    seed = 0
    while probe.poll() is None:
        seed += 1
        crowd = desktop.launch(desktop.ours("bad-client"), "crowd", str(seed))
        time.sleep(0.5)
        desktop.stop(crowd)


def nevo(programs, options):
    """Nevo at rest in both modes, and other trays with the same icons: each on a display of its
    own, through the same minute."""
    watched = {}
    memory = None
    with ExitStack() as displays:
        for mode in ("push", "shelf"):
            desktop = displays.enter_context(stage(programs))
            bar = desktop.startBar()
            desktop.fillBar(*trayIcons(desktop))
            watched[f"nevo, {mode}"] = desktop.startNevoWithRules(mode, RULES)
            watched[f"nevo-menubar beside it, {mode}"] = bar
            if not memory:  # a second Nevo would share its pages
                time.sleep(WARM_UP)
                memory = proc.memory(watched[f"nevo, {mode}"].pid)
        for name in ("trayer", "tint2"):
            desktop = displays.enter_context(stage(programs))
            watched[name] = startTray(desktop, HOSTS[name](desktop), trayIcons(desktop))
        time.sleep(WARM_UP)
        works = proc.idle([process.pid for process in watched.values()], options.idle)
    return [Row("nevo: PSS", memory.pss, "kB"), Row("nevo: RSS", memory.rss, "kB"),
            *idleRows(dict(zip(watched, works)), options.idle)]


def idleRows(works, seconds):
    rows = []
    for what, unit, figureOf, most in (
            ("CPU", "ms", lambda work: work.milliseconds, seconds),  # a thousandth of a core
            ("wake-ups", "", lambda work: work.wakeups, seconds)):
        for name, work in works.items():
            isNevo = name.startswith("nevo,")
            for peer in ("trayer", "tint2") if isNevo else ("",):
                rows.append(Row(f"{name}: {what} in {seconds} s idle", figureOf(work), unit,
                                figureOf(works[peer]) if peer else None, peer,
                                most=most if isNevo else None))
    return rows


def drag(programs, options):
    """A drag as Nevo makes it, beside the waits that it was told to make on its way."""
    with stage(programs) as desktop:
        desktop.startBar()
        desktop.fillBar(*trayIcons(desktop))
        figures = desktop.finish(desktop.startProbe("Parcellite", str(DRAGS), name="bench-drag"))
    told = figures["told"]
    drags = [(whole / wait, whole, wait) for whole, wait in zip(figures["whole"], told)]
    rows = []
    for part in (50, 95):
        _, whole, wait = percentile(drags, part)  # by the ratio
        rows.append(Row(f"drag, p{part}", whole, "ms", wait, "its waits"))
    late = [taken - wait for taken, wait in zip(figures["taken"], told)]
    beyond = [whole - wait for _, whole, wait in drags]
    for what, times in (("beyond its waits", beyond), ("of that, waits that ended late", late)):
        rows += [Row(f"drag, {what}, p{part}", percentile(times, part), "ms") for part in (50, 95)]
    rows.append(Row(f"drag, more attempts needed, of {len(told)}",
                    sum(wait > min(told) for wait in told), ""))
    return rows


ALL = {"collapse": collapse, "shelf": shelf, "hosts": hosts, "notifiers": notifiers, "bad": bad,
       "bad-notifiers": badNotifiers, "nevo": nevo, "drag": drag}
