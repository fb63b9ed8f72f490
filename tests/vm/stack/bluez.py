"""BlueZ as a client sees it: the adapter, a discovery session of its own, and what is heard."""

import dataclasses
import time

import dbus
import dbus.mainloop.glib

from .waiting import ONLY_A_HANG, wait_for

NAME = "org.bluez"
ADAPTER_PATH = "/org/bluez/hci0"
ADAPTER = "org.bluez.Adapter1"
DEVICE = "org.bluez.Device1"
PROPERTIES = "org.freedesktop.DBus.Properties"
OBJECTS = "org.freedesktop.DBus.ObjectManager"
RETRY_SECONDS = 0.5
# What bluetoothd answers while it is coming up, going down or still busy with the last request.
NOT_YET = (
    "org.bluez.Error.InProgress",
    "org.bluez.Error.NotReady",
    "org.freedesktop.DBus.Error.ServiceUnknown",
    "org.freedesktop.DBus.Error.UnknownObject",
    "org.freedesktop.DBus.Error.UnknownMethod",
    "org.freedesktop.DBus.Error.NoReply",
    "org.freedesktop.DBus.Error.Spawn.ChildExited",
)


def connect() -> dbus.Bus:
    """A connection of its own, so with a discovery session of its own."""
    bus = dbus.SystemBus(private=True, mainloop=dbus.mainloop.glib.DBusGMainLoop())
    # Otherwise closing the connection would end the whole script.
    bus.set_exit_on_disconnect(False)
    return bus


def discovery_filter(rssi: int = -127) -> dbus.Dictionary:
    """The filter that makes BlueZ tell every advertisement."""
    return dbus.Dictionary(
        {
            "Transport": "le",
            "RSSI": dbus.Int16(rssi),
            "DuplicateData": dbus.Boolean(True),
            "Pattern": "",
        },
        signature="sv",
    )


class Adapter:
    """The one adapter there is."""

    def __init__(self, bus: dbus.Bus):
        self.bus = bus

    def get(self, name: str):
        """None when the adapter, or BlueZ, is not there."""
        try:
            return self._interface(PROPERTIES).Get(ADAPTER, name, timeout=ONLY_A_HANG)
        except dbus.DBusException as error:
            if error.get_dbus_name() in NOT_YET:
                return None
            raise

    def is_powered(self) -> bool:
        # Asked of the bus first: a call to an absent BlueZ would make the bus try to start it.
        return self.bus.name_has_owner(NAME) and bool(self.get("Powered"))

    def set_powered(self, powered: bool, seconds: float = ONLY_A_HANG) -> None:
        self._interface(PROPERTIES).Set(
            ADAPTER, "Powered", dbus.Boolean(powered, variant_level=1), timeout=ONLY_A_HANG
        )
        what = "on" if powered else "off"
        wait_for(lambda: self.is_powered() == powered, seconds, f"the adapter is {what}")

    def set_pairable(self, pairable: bool) -> None:
        self._interface(PROPERTIES).Set(
            ADAPTER, "Pairable", dbus.Boolean(pairable, variant_level=1), timeout=ONLY_A_HANG
        )

    def set_filter(self, wanted: dbus.Dictionary) -> None:
        self._interface(ADAPTER).SetDiscoveryFilter(wanted, timeout=ONLY_A_HANG)

    def start_discovery(
        self, wanted: dbus.Dictionary | None = None, seconds: float = ONLY_A_HANG
    ) -> list[str]:
        """Asks again while BlueZ is not ready for it; the refusals on the way."""
        refusals: list[str] = []
        wanted = discovery_filter() if wanted is None else wanted
        next_try = 0.0

        def started() -> bool:
            nonlocal next_try
            if time.monotonic() < next_try:
                return False
            next_try = time.monotonic() + RETRY_SECONDS
            try:
                self.set_filter(wanted)
                self._interface(ADAPTER).StartDiscovery(timeout=ONLY_A_HANG)
            except dbus.DBusException as error:
                if error.get_dbus_name() not in NOT_YET:
                    raise
                refusals.append(error.get_dbus_name())
                return False
            return True

        wait_for(started, seconds, f"discovery starts (refusals: {refusals[-1:]})")
        return refusals

    def stop_discovery(self) -> None:
        self._interface(ADAPTER).StopDiscovery(timeout=ONLY_A_HANG)

    def _interface(self, name: str) -> dbus.Interface:
        return dbus.Interface(
            self.bus.get_object(NAME, ADAPTER_PATH, introspect=False), name
        )


@dataclasses.dataclass
class Sample:
    """One signal that carried a signal strength."""

    when: float
    rssi: int


class Listener:
    """Collects every signal strength that BlueZ tells, by address, until it is ended."""

    def __init__(self, bus: dbus.Bus):
        self.samples: dict[str, list[Sample]] = {}
        self.addresses: dict[str, str] = {}
        self.matches = [
            bus.add_signal_receiver(
                self._changed,
                "PropertiesChanged",
                PROPERTIES,
                NAME,
                arg0=DEVICE,
                path_keyword="path",
            ),
            bus.add_signal_receiver(self._added, "InterfacesAdded", OBJECTS, NAME),
        ]

    def of(self, address: str) -> list[Sample]:
        return self.samples.get(address, [])

    def last_rssi(self, address: str) -> int | None:
        heard = self.of(address)
        return heard[-1].rssi if heard else None

    def forget(self) -> None:
        self.samples.clear()

    def end(self) -> None:
        for match in self.matches:
            match.remove()

    def _added(self, path, interfaces) -> None:
        if DEVICE in interfaces:
            self.addresses[path] = str(interfaces[DEVICE]["Address"])
            self._take(path, interfaces[DEVICE])

    def _changed(self, _interface, changed, _invalidated, path) -> None:
        if "Address" in changed:
            self.addresses[path] = str(changed["Address"])
        self._take(path, changed)

    def _take(self, path, properties) -> None:
        if "RSSI" in properties:
            plain = path.rpartition("dev_")[2].replace("_", ":")
            address = self.addresses.get(path, plain)
            sample = Sample(time.monotonic(), int(properties["RSSI"]))
            self.samples.setdefault(address, []).append(sample)
