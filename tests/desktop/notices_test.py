"""What the desktop hears of alerts: one notification each, and the last one at the tray's icon; nothing of an alert that
an earlier run had, and nothing once the user wants none, while the icon goes on telling.

    notices_test.py BUILD-FOLDER
"""

import json
import pathlib
import subprocess
import sys

import desk as desks
import field


class Desktop:
    """Its services, and what they were told."""

    def __init__(self, home):
        self.book = home / "desktop.jsonl"
        services = pathlib.Path(__file__).resolve().parent / "desktop_services.py"
        self.process = subprocess.Popen(["/usr/bin/python3", "-B", services, self.book])
        wait_for("the desktop", self.lines)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def lines(self):
        return [json.loads(line) for line in self.book.read_text(encoding="utf-8").splitlines()]

    def notifications(self):
        return [line for line in self.lines() if "summary" in line]

    def icon_words(self):
        """What stands under the mouse on the newest icon."""
        owner = [line["tray"] for line in self.lines() if "tray" in line][-1]
        asked = GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", "ToolTip"))
        answer = self.bus.call_sync(owner, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get", asked, None,
                                    Gio.DBusCallFlags.NONE, 5000, None).unpack()[0]
        return answer[2] + answer[3]

    def end(self):
        self.process.kill()
        self.process.wait()


def story(desk):
    field.make(desk)
    (desk.scripts / "note.sh").write_text("#!/bin/sh\n", encoding="utf-8")
    field.monitor(desk, "Cold", "windChill.unitValue < 0", "Run script=note.sh")
    desktop = Desktop(desk.home)
    try:
        desk.open_window()
        told = wait_for("a notification", desktop.notifications)[0]
        assert told["program"] == "Vigil" and told["summary"].startswith("Cold fired at "), told
        assert told["body"] == "Field: windChill.unitValue &lt; 0", told
        wait_for("the tray", lambda: desktop.icon_words() == "Vigil: " + told["summary"])
        wait_for("the end of its action", lambda: '"succeeded"' in desk.vigil("actions", "--json"))
        desk.end_window()

        window = pages.Window(desk.open_window())
        window.reading("Wind Chill")
        wait_for("the tray of a second run", lambda: "Cold fired at " in desktop.icon_words())
        window.menu("Notify me of alerts")
        field.monitor(desk, "Storm", "windSpeed.unitValue > 25", "Run script=note.sh")
        wait_for("the tray to tell the other one", lambda: "Storm fired at " in desktop.icon_words())
        desk.end_window()
        assert desktop.notifications() == [told], desktop.notifications()
    finally:
        desktop.end()
    print(told["summary"], "/", told["body"])


if desks.on_the_bus():
    import gi
    gi.require_version("Gio", "2.0")
    from gi.repository import Gio, GLib
    import pages
    from screen import wait_for

desks.sit_down(story)
