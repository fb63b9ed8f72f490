"""The computer as a heart rate monitor for a while, made of what BlueZ offers every client: an agent,
a service with one value that only an encrypted link may read, and an advertisement."""

import dbus
import dbus.service

from . import bluez
from .agent import YES_OR_NO, Agent
from .call import Call
from .device import CHARACTERISTIC, SERVICE
from .waiting import ONLY_A_HANG

ADVERTISEMENT = "org.bluez.LEAdvertisement1"
ADVERTISING_MANAGER = "org.bluez.LEAdvertisingManager1"
GATT_MANAGER = "org.bluez.GattManager1"
HEART_RATE = "180d"
MEASUREMENT = "2a37"
SENSOR_LOCATION = "2a38"
AT_THE_CHEST = b"\x01"
HEART_RATE_BELT = 0x0340
ROOT = dbus.ObjectPath("/monitor")
NOTHING = dbus.Dictionary({}, signature="sv")


class Exported(dbus.service.Object):
    """An object of ours whose properties BlueZ reads."""

    def __init__(self, bus: dbus.Bus, path: str, interface: str, properties: dict):
        super().__init__(bus, path)
        self.path = dbus.ObjectPath(path)
        self.interface = interface
        self.properties = properties
        self.released = False

    @dbus.service.method(bluez.PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return self.properties

    @dbus.service.method(ADVERTISEMENT, in_signature="", out_signature="")
    def Release(self):
        self.released = True

    @dbus.service.method(CHARACTERISTIC, in_signature="a{sv}", out_signature="ay")
    def ReadValue(self, _options):
        return dbus.ByteArray(AT_THE_CHEST)

    @dbus.service.method(CHARACTERISTIC, in_signature="", out_signature="")
    def StartNotify(self):
        pass

    @dbus.service.method(CHARACTERISTIC, in_signature="", out_signature="")
    def StopNotify(self):
        pass


class Application(dbus.service.Object):
    """Tells BlueZ what belongs together."""

    def __init__(self, bus: dbus.Bus, path: str, members: list[Exported]):
        super().__init__(bus, path)
        self.path = dbus.ObjectPath(path)
        self.members = members

    @dbus.service.method(bluez.OBJECTS, in_signature="", out_signature="a{oa{sa{sv}}}")
    def GetManagedObjects(self):
        return {each.path: {each.interface: each.properties} for each in self.members}


def heart_rate(bus: dbus.Bus) -> list[Exported]:
    service = dbus.ObjectPath(f"{ROOT}/service")

    def characteristic(name: str, uuid: str, flags: list[str]) -> Exported:
        properties = {"UUID": uuid, "Service": service, "Flags": dbus.Array(flags, signature="s")}
        return Exported(bus, f"{ROOT}/service/{name}", CHARACTERISTIC, properties)

    return [
        Exported(bus, service, SERVICE, {"UUID": HEART_RATE, "Primary": dbus.Boolean(True)}),
        characteristic("measurement", MEASUREMENT, ["notify"]),
        characteristic("location", SENSOR_LOCATION, ["encrypt-read"]),
    ]


class Peripheral:
    """There from `start` to `stop`; the parts can also be asked for one by one."""

    def __init__(self, bus: dbus.Bus, name: str = "Wegslot 4F2A"):
        self.bus = bus
        self.name = name
        self.agent: Agent | None = None
        self.was_pairable: bool | None = None
        self.members = heart_rate(bus)
        self.application = Application(bus, ROOT, self.members)
        self.advertisement = Exported(
            bus,
            f"{ROOT}/advertisement",
            ADVERTISEMENT,
            {
                "Type": "peripheral",
                "ServiceUUIDs": dbus.Array([HEART_RATE], signature="s"),
                "Discoverable": dbus.Boolean(True),
                "LocalName": name,
                "Appearance": dbus.UInt16(HEART_RATE_BELT),
                "Timeout": dbus.UInt16(150),
            },
        )

    def start(self, consents: bool | None = True, capability: str = YES_OR_NO) -> None:
        adapter = self._adapter(bluez.PROPERTIES)
        # An agent makes the adapter pairable, so it is asked before.
        self.was_pairable = bool(adapter.Get(bluez.ADAPTER, "Pairable"))
        self.agent = Agent(self.bus, consents, capability, f"{ROOT}/agent")
        adapter.Set(bluez.ADAPTER, "Pairable", dbus.Boolean(True, variant_level=1))
        self.serve().wait()
        self.advertise().wait()

    def stop(self) -> None:
        """In this order: bluetoothd 5.66 may crash where a device that has just been paired is removed
        while there is a service."""
        self.fall_silent()
        self._adapter(GATT_MANAGER).UnregisterApplication(ROOT, timeout=ONLY_A_HANG)
        self.agent.end()
        self._adapter(bluez.PROPERTIES).Set(
            bluez.ADAPTER, "Pairable", dbus.Boolean(self.was_pairable, variant_level=1)
        )

    def end(self) -> None:
        """Its objects leave the bus."""
        for each in (self.application, self.advertisement, *self.members):
            each.remove_from_connection()

    def serve(self) -> Call:
        return Call(self._adapter(GATT_MANAGER), "RegisterApplication", ROOT, NOTHING)

    def advertise(self) -> Call:
        return Call(
            self._adapter(ADVERTISING_MANAGER),
            "RegisterAdvertisement",
            self.advertisement.path,
            NOTHING,
        )

    def fall_silent(self) -> None:
        self._adapter(ADVERTISING_MANAGER).UnregisterAdvertisement(
            self.advertisement.path, timeout=ONLY_A_HANG
        )

    def advertising(self, name: str):
        """A property of the adapter's part that advertises."""
        return self._adapter(bluez.PROPERTIES).Get(ADVERTISING_MANAGER, name)

    def _adapter(self, interface: str) -> dbus.Interface:
        adapter = self.bus.get_object(bluez.NAME, bluez.ADAPTER_PATH, introspect=False)
        return dbus.Interface(adapter, interface)
