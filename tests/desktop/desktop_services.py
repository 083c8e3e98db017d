"""Stands for what a desktop offers programs on the session bus: it takes notifications and tray icons, and writes down
what it was told, a JSON object a line.

    desktop_services.py FILE
"""

import json
import sys

from gi.repository import Gio, GLib

NOTIFICATIONS = """<node><interface name="org.freedesktop.Notifications">
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
</interface></node>"""
WATCHER = """<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
</interface></node>"""
PROPERTIES = {"IsStatusNotifierHostRegistered": GLib.Variant("b", True), "ProtocolVersion": GLib.Variant("i", 0),
              "RegisteredStatusNotifierItems": GLib.Variant("as", [])}


def main():
    book = open(sys.argv[1], "a", encoding="utf-8", buffering=1)

    def called(_bus, sender, _path, _interface, method, words, answer):
        if method == "Notify":
            program, _, _, summary, body, *_ = words.unpack()
            book.write(json.dumps({"program": program, "summary": summary, "body": body}) + "\n")
            answer.return_value(GLib.Variant("(u)", (1,)))
        else:
            book.write(json.dumps({"tray": sender, "item": words.unpack()[0]}) + "\n")
            answer.return_value(None)

    def property_of(_bus, _sender, _path, _interface, name):
        return PROPERTIES[name]

    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for path, described in (("/org/freedesktop/Notifications", NOTIFICATIONS), ("/StatusNotifierWatcher", WATCHER)):
        interface = Gio.DBusNodeInfo.new_for_xml(described).interfaces[0]
        bus.register_object(path, interface, called, property_of, None)
        Gio.bus_own_name_on_connection(bus, interface.name, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.idle_add(lambda: book.write(json.dumps({"ready": True}) + "\n") and False)
    GLib.MainLoop().run()


main()
