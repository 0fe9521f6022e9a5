"""What the kernel tells about a process: memory, processor time, wake-ups."""

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


@dataclass(frozen=True)
class Work:
    """All that a process has done so far, on all its threads."""

    milliseconds: float
    wakeups: int

    def __sub__(self, earlier):
        return Work(self.milliseconds - earlier.milliseconds, self.wakeups - earlier.wakeups)


def memory(pid):
    text = Path(f"/proc/{pid}/smaps_rollup").read_text()
    return Memory(*(int(re.search(rf"^{name}:\s+(\d+)", text, re.M)[1]) for name in ("Pss", "Rss")))


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
