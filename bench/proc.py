"""What the kernel tells about a process: memory, processor time, wake-ups."""

import os
import re
import time
from dataclasses import dataclass
from pathlib import Path

SETTLE = 0.3  # seconds in which a program that has started up does nothing


@dataclass(frozen=True)
class Memory:
    """Kilobytes."""

    pss: int
    rss: int

    def __add__(self, other):
        return Memory(self.pss + other.pss, self.rss + other.rss)


@dataclass(frozen=True)
class Work:
    """All that a process has done so far, on all its threads."""

    milliseconds: float
    wakeups: int

    def __add__(self, other):
        return Work(self.milliseconds + other.milliseconds, self.wakeups + other.wakeups)

    def __sub__(self, earlier):
        return Work(self.milliseconds - earlier.milliseconds, self.wakeups - earlier.wakeups)


def memory(pid):
    text = Path(f"/proc/{pid}/smaps_rollup").read_text()
    return Memory(*(int(re.search(rf"^{name}:\s+(\d+)", text, re.M)[1]) for name in ("Pss", "Rss")))


def peak(pid):
    """The most memory that a process has had, in kilobytes."""
    return int(re.search(r"^VmHWM:\s+(\d+)", Path(f"/proc/{pid}/status").read_text(), re.M)[1])


def session(leader):
    """The processes of a session, such as a program that has one and its helpers."""
    members = []
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            if os.getsid(int(folder.name)) == leader:
                members.append(int(folder.name))
        except ProcessLookupError:
            continue
    return members


def work(pid):
    nanoseconds = wakeups = 0
    for task in Path(f"/proc/{pid}/task").iterdir():
        nanoseconds += int((task / "schedstat").read_text().split()[0])
        wakeups += int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)",
                                 (task / "status").read_text(), re.M)[1])
    return Work(nanoseconds / 1e6, wakeups)


def idle(pids, seconds):
    """The work of each of these processes while they have nothing to do."""
    before = [work(pid) for pid in pids]
    time.sleep(seconds)
    return [work(pid) - earlier for pid, earlier in zip(pids, before)]


def settle(pids, patience=20):
    """Waits until these programs have nothing more to do."""
    deadline = time.monotonic() + patience
    before = None
    while time.monotonic() < deadline:
        now = [work(pid) for pid in pids]
        if now == before:
            return
        before = now
        time.sleep(SETTLE)
