"""Tray hosts, ours and others, and what stands in them."""

from stage import CLIPMAN, PARCELLITE, QLIPPER, VOLUMEICON, selectionOwner

FEW = [PARCELLITE, VOLUMEICON, CLIPMAN, QLIPPER]
TRAY_ICONS = 10


def trayIcons(desktop, count=TRAY_ICONS):
    """Real programs and, for the rest, icons that do nothing."""
    return FEW + [(desktop.ours("bench-probe"), "icon", f"icon-{i}")
                  for i in range(count - len(FEW))]


TRAYER = ("trayer", "--edge", "top", "--align", "right", "--widthtype", "request",
          "--heighttype", "pixel", "--height", "24", "--SetDockType", "true")


def tint2(desktop):
    configuration = desktop.home / "tint2rc"
    configuration.write_text("panel_items = S\npanel_size = 100% 24\npanel_position = top right\n")
    return "tint2", "-c", str(configuration)


HOSTS = {
    "nevo-menubar": lambda desktop: (desktop.ours("nevo-menubar"),),
    "nevo-menubar --no-clock": lambda desktop: (desktop.ours("nevo-menubar"), "--no-clock"),
    "trayer": lambda desktop: TRAYER,
    "tint2": tint2,
}


def startTray(desktop, command, icons):
    """Another tray, with these icons."""
    probe = desktop.startProbe("host", str(len(icons)))
    probe.stdout.readline()  # "watching"
    process = desktop.launch(*command)
    desktop.wait("it owns the tray", lambda: selectionOwner(
        desktop.environment["DISPLAY"], "_NET_SYSTEM_TRAY_S0"))
    for icon in icons:
        desktop.launch(*icon)
    desktop.finish(probe)
    return process
