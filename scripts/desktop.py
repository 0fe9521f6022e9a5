"""A private desktop: an X server in memory with its own session, the programs on it, and what its
menu bar tells through window properties. Everything started here ends with `close`."""

import ctypes
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

PATIENCE = 20.0  # seconds until something that hasn't happened counts as failed


class Failure(Exception):
    """A step of the walk that went wrong, in one plain sentence."""


@dataclass(frozen=True)
class Item:
    """One status item, as the bar publishes it. Root coordinates."""

    frame: str
    pid: int
    name: str
    x: int
    width: int
    floating: bool
    opacity: float


class Desktop:
    def __init__(self, output, screen="1280x800"):
        self.output = output
        self.screen = screen
        self.home = Path(tempfile.mkdtemp(prefix="nevo-walk-"))
        self.processes = []
        self.environment = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
            "HOME": str(self.home),
            "XDG_CONFIG_HOME": str(self.home / ".config"),
            "XDG_RUNTIME_DIR": str(self.home / "runtime"),
            # qlipper finds its other instances there, also those of other desktops
            "TMPDIR": str(self.home / "tmp"),
            "LANG": "C.UTF-8",
            "NO_AT_BRIDGE": "1",  # GTK would wait for an accessibility bus
            "QT_QPA_PLATFORM": "xcb",
        }
        (self.home / "runtime").mkdir(mode=0o700)
        (self.home / ".config").mkdir()
        (self.home / "tmp").mkdir()

    def start(self):
        """Opens the display and the session, with a window manager."""
        number = self.firstLine("Xvfb", "-displayfd", "{fd}", "-screen", "0", self.screen + "x24",
                                "-noreset", "-nolisten", "tcp")
        self.environment["DISPLAY"] = ":" + number
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.firstLine(
            "dbus-daemon", "--session", "--nofork", "--print-address={fd}")
        self.run("xsetroot", "-solid", "#40566b")
        self.launch("openbox", "--sm-disable")
        self.wait("a window manager runs", lambda: "window id" in self.run(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def launch(self, *command, keep=()):
        """Starts a program; its output goes into a log named after it."""
        name = Path(command[0]).name
        with open(self.output / f"{name}.log", "wb") as log:
            try:
                process = subprocess.Popen(command, env=self.environment, cwd=self.home,
                                           stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                           start_new_session=True, pass_fds=keep)
            except OSError as error:
                raise Failure(f"{name} can't be started: {error.strerror}") from None
        self.processes.append(process)
        return process

    def firstLine(self, *command):
        """Starts a program that writes one line to the descriptor {fd}, and gives that line."""
        reading, writing = os.pipe()
        self.launch(*(word.format(fd=writing) for word in command), keep=(writing,))
        os.close(writing)
        with os.fdopen(reading) as pipe:
            line = pipe.readline().strip()
        if not line:
            raise Failure(f"{command[0]} doesn't start; {command[0]}.log tells why")
        return line

    def run(self, *command):
        """Runs a short program and gives its output; empty when it fails."""
        result = subprocess.run(command, env=self.environment, cwd=self.home, text=True,
                                stdin=subprocess.DEVNULL, capture_output=True, check=False)
        return result.stdout if result.returncode == 0 else ""

    def wait(self, what, condition, seconds=PATIENCE, mortal=None):
        """Waits until `condition` gives something true, and gives that. Meanwhile no program may
        die but `mortal`."""
        deadline = time.monotonic() + seconds
        while True:
            for process in self.processes:
                if process is not mortal and process.poll() is not None:
                    raise Failure(self.obituary(process))
            result = condition()
            if result:
                return result
            if time.monotonic() > deadline:
                raise Failure(f"after {seconds:.0f} seconds it is still not true that {what}")
            time.sleep(0.05)

    def obituary(self, process):
        """How a program ended, in its own last words where it left some."""
        name = Path(process.args[0]).name
        words = (self.output / f"{name}.log").read_text(errors="replace").strip().splitlines()
        return f"{name} ended with status {process.returncode}" + (f": {words[-1]}" if words else "")

    def picture(self, name):
        time.sleep(0.3)  # what the last event started may still be painting
        self.run("import", "-silent", "-window", "root", str(self.output / f"{name}.png"))

    def colours(self, x, y, width, height):
        """How many colours a part of the screen shows."""
        text = self.run("import", "-silent", "-window", "root", "-crop",
                        f"{width}x{height}+{x}+{y}", "-format", "%k", "info:-")
        return int(text or 0)

    def look(self, window):
        """What a window shows, as a short sum; empty when it has gone."""
        return self.run("import", "-silent", "-window", window, "-format", "%#", "info:-")

    def hand(self, *words):
        """Mouse and keyboard."""
        self.run("xdotool", *(str(word) for word in words))

    def pointerX(self):
        found = re.search(r"X=(-?\d+)", self.run("xdotool", "getmouselocation", "--shell"))
        return int(found[1]) if found else 0

    def dragTo(self, fromX, toX, y):
        """Super-drags what stands at `fromX` along the bar, in steps as a hand makes them."""
        self.hand("mousemove", fromX, y)
        self.hand("keydown", "super", "mousedown", 1)
        try:
            for _ in range(200):
                rest = toX - self.pointerX()
                if rest == 0:
                    break
                step = max(-12, min(12, rest))
                self.hand("mousemove_relative", "--", step, 0)
        finally:
            self.hand("mouseup", 1, "keyup", "super")

    def windowsOf(self, pid):
        """The visible windows of a program that are larger than a status item."""
        windows = set()
        for window in self.run("xdotool", "search", "--onlyvisible", "--pid", str(pid)).split():
            size = re.search(r"HEIGHT=(\d+)", self.run(
                "xdotool", "getwindowgeometry", "--shell", window))
            if size and int(size[1]) > 60:
                windows.add(window)
        return windows

    def close(self):
        """Ends what was started here, the last first, and nothing else."""
        for process in reversed(self.processes):
            self.signalGroup(process, signal.SIGTERM)
            try:
                process.wait(3)
            except subprocess.TimeoutExpired:
                self.signalGroup(process, signal.SIGKILL)
                process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    @staticmethod
    def signalGroup(process, number):
        # Each program leads a group of its own, so that its children go with it.
        try:
            os.killpg(process.pid, number)
        except ProcessLookupError:
            pass


class Bar:
    """The menu bar, read as any program may read it: docs/menubar-protocol.md."""

    def __init__(self, desktop):
        self.desktop = desktop

    def properties(self, window, *names):
        """The properties of a window that are there, as numbers or text."""
        text = self.desktop.run("xprop", "-id", window, *names)
        found = {}
        for line in text.splitlines():
            match = re.match(r"(\w+)\((\w+)\)(?: = |: window id # )(.*)", line)
            if not match:
                continue
            name, kind, value = match.groups()
            if kind == "UTF8_STRING":
                found[name] = value.strip('"')
            elif kind == "WINDOW":
                found[name] = re.findall(r"0x[0-9a-f]+", value)
            else:
                found[name] = [int(number) for number in re.findall(r"-?\d+", value)]
        return found

    def control(self):
        """The window that owns the tray, if its owner is our bar."""
        owner = selectionOwner(self.desktop.environment["DISPLAY"], "_NET_SYSTEM_TRAY_S0")
        if owner and "_NEVO_BAR_VERSION" in self.properties(owner, "_NEVO_BAR_VERSION"):
            return owner
        return None

    def left(self):
        control = self.control()
        found = self.properties(control, "_NEVO_BAR_GEOMETRY") if control else {}
        return found.get("_NEVO_BAR_GEOMETRY", [0])[0]

    def items(self):
        """The items from left to right; None while the row changes under the reader's eyes."""
        control = self.control()
        if not control:
            return None
        items = []
        for frame in self.properties(control, "_NEVO_BAR_ITEMS").get("_NEVO_BAR_ITEMS", []):
            item = self.properties(frame, "_NEVO_ITEM_PID", "_NEVO_ITEM_NAME", "_NEVO_ITEM_SLOT",
                                   "_NEVO_ITEM_OPACITY")
            if "_NEVO_ITEM_SLOT" not in item:
                return None
            slot = item["_NEVO_ITEM_SLOT"]
            items.append(Item(frame, item.get("_NEVO_ITEM_PID", [0])[0],
                              item.get("_NEVO_ITEM_NAME", ""), slot[0], slot[2], slot[4] == 1,
                              item.get("_NEVO_ITEM_OPACITY", [0xFFFFFFFF])[0] / 0xFFFFFFFF))
        return items

    def isVisible(self, item):
        return item.opacity > 0.99 and item.x >= self.left() and not item.floating


def selectionOwner(display, name):
    """The owner of a selection, as xprop takes it; None without one. No program of the X
    utilities tells this, so the library is asked."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XInternAtom.restype = x11.XGetSelectionOwner.restype = ctypes.c_ulong
    x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    x11.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
    x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
    connection = x11.XOpenDisplay(display.encode())
    if not connection:
        raise Failure("the X server has died")
    owner = x11.XGetSelectionOwner(connection, x11.XInternAtom(connection, name.encode(), 0))
    x11.XCloseDisplay(connection)
    return hex(owner) if owner else None
