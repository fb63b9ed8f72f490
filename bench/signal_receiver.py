#!/usr/bin/python3
"""BlueZ's reports as a Python program gets them, with python3-dbus on GLib's loop: reads strength
and manufacturer data and forgets them. `signal_receiver.py FILE` counts in the first eight bytes of
FILE, where the count can be read without waking it.
"""

import mmap
import struct
import sys

import dbus
import dbus.mainloop.glib
from gi.repository import GLib


def main():
    with open(sys.argv[1], "r+b") as file:
        memory = mmap.mmap(file.fileno(), 8)
    count = 0

    def received(_interface, changed, _invalidated):
        nonlocal count
        if "RSSI" in changed:
            int(changed["RSSI"])
        for data in changed.get("ManufacturerData", {}).values():
            bytes(data)
        count += 1
        struct.pack_into("=Q", memory, 0, count)

    bus = dbus.SystemBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
    bus.add_signal_receiver(
        received,
        signal_name="PropertiesChanged",
        dbus_interface="org.freedesktop.DBus.Properties",
        bus_name="org.bluez",
        arg0="org.bluez.Device1",
    )
    GLib.MainLoop().run()


main()
