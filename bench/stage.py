"""A private desktop to measure on."""

import base64
import json
import signal
import subprocess
import sys
import tempfile
from contextlib import contextmanager
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
from desktop import Bar, Desktop, Failure, selectionOwner  # noqa: E402,F401  (found above)

PARCELLITE = ("parcellite",)
VOLUMEICON = ("volumeicon",)
CLIPMAN = ("xfce4-clipman",)
QLIPPER = ("qlipper",)
QASMIXER = ("qasmixer", "--tray", "--no-single")
COPYQ = ("copyq",)
DIODON = ("diodon",)


class Stage(Desktop):
    def __init__(self, output, programs):
        super().__init__(output)
        self.folder = programs
        self.bar = Bar(self)

    @property
    def server(self):
        """The display's process."""
        return self.processes[0]

    def ours(self, name):
        return str(self.folder / name)

    def startBar(self, *options):
        process = self.launch(self.ours("nevo-menubar"), *options)
        self.wait("the menu bar owns the tray", self.bar.control)
        return process

    def fillBar(self, *commands):
        """Starts programs in the order of their places, and waits for their items."""
        for count, command in enumerate(commands, len(self.bar.items() or []) + 1):
            self.launch(*command)
            self.wait(f"{command[0]} has docked", lambda n=count: len(self.bar.items() or []) >= n)

    def startCompositor(self):
        self.launch("picom", "--backend", "xrender", "--config", "/dev/null")
        self.wait("a compositor runs",
                  lambda: selectionOwner(self.environment["DISPLAY"], "_NET_WM_CM_S0"))

    def startNevo(self, **stored):
        """Nevo as on any day but the first, with more stored values; it hides everything left of
        its toggle."""
        folder = self.home / ".config/nevo/defaults"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "com.nevoapp.Nevo.json").write_text(json.dumps(
            {"nevo_onboarding_completed": True, **stored}))
        process = self.launch(self.ours("nevo"))
        self.wait("Nevo has hidden all items", lambda: self.isHidden(process.pid))
        return process

    def startNevoWithRules(self, mode, rules):
        """In "push" or "shelf" mode, with the rules in force."""
        text = base64.b64encode(json.dumps(rules).encode()).decode()
        process = self.startNevo(displayMode=mode, nevo_icon_rules={"base64": text})
        log = self.home / "nevo_debug.log"
        self.wait("the rules are in force",
                  lambda: "replayAllRulesOnStartup: done" in log.read_text())
        shown = sum(rule == "alwaysShow" for rule in rules.values())
        self.wait("the items that are to be shown can be seen",
                  lambda: sum(self.bar.isVisible(item) for item in self.bar.items() or []
                              if item.pid != process.pid) == shown)
        return process

    def isHidden(self, nevo):
        items = self.bar.items() or []
        programs = [item for item in items if item.pid != nevo]
        return len(items) > len(programs) and not any(map(self.bar.isVisible, programs))

    def stop(self, process):
        """Ends a program before the desktop's end."""
        self.processes.remove(process)
        self.signalGroup(process, signal.SIGKILL)
        process.wait()

    def startProbe(self, *words, name="bench-probe"):
        """The stopwatch; its lines can be read while it runs. `finish` ends with them."""
        return subprocess.Popen((self.ours(name), *words), env=self.environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def finish(self, probe, seconds=300):
        """The probe's figures by what they are."""
        name = Path(probe.args[0]).name
        try:
            output, complaint = probe.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            probe.kill()
            raise Failure(f"{name} doesn't come to an end") from None
        if probe.returncode != 0:
            raise Failure(f"{name}: {complaint.strip()}")
        figures = {}
        for line in output.splitlines():
            what, value = line.split()
            figures.setdefault(what, []).append(float(value))
        return figures


@contextmanager
def stage(programs):
    """A new desktop, with nothing on it but a window manager. Its logs are kept when it fails."""
    output = Path(tempfile.mkdtemp(prefix="nevo-bench-"))
    desktop = Stage(output, programs)
    try:
        desktop.start()
        yield desktop
    except Failure as failure:
        raise Failure(f"{failure}. Logs: {output}") from None
    finally:
        desktop.close()
    for log in output.iterdir():
        log.unlink()
    output.rmdir()
