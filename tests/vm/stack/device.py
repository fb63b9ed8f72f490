"""A device as a client of BlueZ sees it: its properties, its connection, its pairing, its model."""

import dataclasses
import time

import dbus

from . import bluez
from .call import Call
from .waiting import ONLY_A_HANG, wait_for

SERVICE = "org.bluez.GattService1"
CHARACTERISTIC = "org.bluez.GattCharacteristic1"
MODEL_NUMBER = "00002a24-0000-1000-8000-00805f9b34fb"
BATTERY_LEVEL = "00002a19-0000-1000-8000-00805f9b34fb"


def managed_objects(bus: dbus.Bus) -> dict:
    root = dbus.Interface(bus.get_object(bluez.NAME, "/", introspect=False), bluez.OBJECTS)
    return root.GetManagedObjects(timeout=ONLY_A_HANG)


def device_paths(bus: dbus.Bus, address: str) -> list[str]:
    """The objects that have this address at present; an object's path keeps an older one."""
    return [
        str(path)
        for path, interfaces in managed_objects(bus).items()
        if interfaces.get(bluez.DEVICE, {}).get("Address") == address
    ]


class Device:
    """The object stays the same one if its address changes."""

    def __init__(self, bus: dbus.Bus, path: str):
        self.bus = bus
        self.path = path

    @classmethod
    def find(cls, bus: dbus.Bus, address: str, seconds: float = ONLY_A_HANG) -> "Device":
        """Waits until BlueZ has an object with this address."""
        paths = wait_for(
            lambda: device_paths(bus, address), seconds, f"BlueZ has a device {address}"
        )
        return cls(bus, paths[0])

    def get(self, name: str):
        """None when it has no such property, or is not there any more."""
        try:
            return self.interface(bluez.PROPERTIES).Get(
                bluez.DEVICE, name, timeout=ONLY_A_HANG
            )
        except dbus.DBusException as error:
            if error.get_dbus_name() in (
                "org.freedesktop.DBus.Error.InvalidArgs",
                *bluez.NOT_YET,
            ):
                return None
            raise

    def properties(self) -> dict:
        return dict(
            self.interface(bluez.PROPERTIES).GetAll(bluez.DEVICE, timeout=ONLY_A_HANG)
        )

    def set(self, name: str, value) -> None:
        self.interface(bluez.PROPERTIES).Set(
            bluez.DEVICE, name, value, timeout=ONLY_A_HANG
        )

    def wait_until(self, name: str, value, seconds: float = ONLY_A_HANG) -> float:
        """Until the property has this value; how long that took."""
        asked = time.monotonic()
        wait_for(
            lambda: self.get(name) == value,
            seconds,
            f"{self.path.rpartition('/')[2]} has {name} {value}",
        )
        return time.monotonic() - asked

    def start(self, method: str) -> Call:
        """Connect, Disconnect, Pair, CancelPairing; answered while the script goes on."""
        return Call(self.interface(bluez.DEVICE), method)

    def connect(self, seconds: float = ONLY_A_HANG) -> float:
        """Until its services are known; how long that took."""
        asked = time.monotonic()
        self.start("Connect").wait(seconds)
        self.wait_until("ServicesResolved", True, seconds)
        return time.monotonic() - asked

    def disconnect(self, seconds: float = ONLY_A_HANG) -> float:
        asked = time.monotonic()
        self.start("Disconnect").wait(seconds)
        self.wait_until("Connected", False, seconds)
        return time.monotonic() - asked

    def pair(self, seconds: float = ONLY_A_HANG) -> float:
        """Without an agent: BlueZ then neither asks nor shows anything."""
        asked = time.monotonic()
        self.start("Pair").wait(seconds)
        return time.monotonic() - asked

    def remove(self) -> None:
        """Takes the bond away, and the object. BlueZ 5.82 is too busy for that while it disconnects."""
        wait_for(self._is_removed, ONLY_A_HANG, f"{self.path.rpartition('/')[2]} is removed")

    def _is_removed(self) -> bool:
        adapter = self.bus.get_object(bluez.NAME, bluez.ADAPTER_PATH, introspect=False)
        try:
            dbus.Interface(adapter, bluez.ADAPTER).RemoveDevice(
                dbus.ObjectPath(self.path), timeout=ONLY_A_HANG
            )
        except dbus.DBusException as error:
            if error.get_dbus_name() == "org.bluez.Error.Busy":
                return False
            raise
        return True

    def characteristic(self, uuid: str) -> str | None:
        """The path of the first characteristic of that kind."""
        for path, interfaces in managed_objects(self.bus).items():
            found = interfaces.get(CHARACTERISTIC, {}).get("UUID")
            if found == uuid and str(path).startswith(self.path + "/"):
                return str(path)
        return None

    def start_reading(self, uuid: str, seconds: float = 5) -> Call:
        # The objects may come a moment after the services have been called resolved.
        path = wait_for(lambda: self.characteristic(uuid), seconds, f"there is a {uuid}")
        return Call(self.interface(CHARACTERISTIC, path), "ReadValue", NO_OPTIONS)

    def read(self, uuid: str, seconds: float = ONLY_A_HANG) -> bytes:
        return bytes(self.start_reading(uuid).wait(seconds))

    def read_model(self) -> bytes:
        return self.read(MODEL_NUMBER)

    def interface(self, name: str, path: str | None = None) -> dbus.Interface:
        device = self.bus.get_object(bluez.NAME, path or self.path, introspect=False)
        return dbus.Interface(device, name)


NO_OPTIONS = dbus.Dictionary({}, signature="sv")


@dataclasses.dataclass
class Change:
    """One PropertiesChanged signal of BlueZ."""

    when: float
    path: str
    interface: str
    changed: dict
    invalidated: list[str]


class Changes:
    """Keeps every PropertiesChanged signal of BlueZ, in order, until it is ended."""

    def __init__(self, bus: dbus.Bus):
        self.seen: list[Change] = []
        self.match = bus.add_signal_receiver(
            self._changed, "PropertiesChanged", bluez.PROPERTIES, bluez.NAME, path_keyword="path"
        )

    def of(self, path: str) -> list[Change]:
        return [change for change in self.seen if change.path == path]

    def forget(self) -> None:
        self.seen.clear()

    def end(self) -> None:
        self.match.remove()

    def _changed(self, interface, changed, invalidated, path) -> None:
        self.seen.append(
            Change(
                time.monotonic(),
                str(path),
                str(interface),
                dict(changed),
                [str(name) for name in invalidated],
            )
        )
