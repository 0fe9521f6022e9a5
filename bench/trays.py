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


XFCE_PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="24"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray"/>
  </property>
</channel>
"""


def xfcePanel(desktop):
    """With nothing but its tray."""
    folder = desktop.home / ".config/xfce4/xfconf/xfce-perchannel-xml"
    folder.mkdir(parents=True)
    (folder / "xfce4-panel.xml").write_text(XFCE_PANEL)
    return "xfce4-panel", "--disable-wm-check"


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
