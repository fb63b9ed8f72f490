"""Stands where a desktop's pairing dialogs stand: BlueZ pairs only while such an agent is there."""

import dbus
import dbus.service

from . import bluez
from .waiting import ONLY_A_HANG

AGENT = "org.bluez.Agent1"
PATH = dbus.ObjectPath("/agent")


class Refused(dbus.DBusException):
    """What a user's "no" is to BlueZ."""

    _dbus_error_name = "org.bluez.Error.Rejected"


class Agent(dbus.service.Object):
    """Can show and ask nothing, and says yes, or no, to whatever BlueZ wants to know. `questions`
    are what a user would have been asked."""

    def __init__(self, bus: dbus.Bus, consents: bool = True):
        super().__init__(bus, PATH)
        self.consents = consents
        self.questions: list[str] = []
        self.manager = dbus.Interface(
            bus.get_object(bluez.NAME, "/org/bluez", introspect=False), "org.bluez.AgentManager1"
        )
        self.manager.RegisterAgent(PATH, "NoInputNoOutput", timeout=ONLY_A_HANG)
        self.manager.RequestDefaultAgent(PATH, timeout=ONLY_A_HANG)

    def end(self) -> None:
        try:
            self.manager.UnregisterAgent(PATH, timeout=ONLY_A_HANG)
        except dbus.DBusException:
            pass  # A bluetoothd started since then does not know it.
        self.remove_from_connection()

    # The names and signatures are BlueZ's.

    @dbus.service.method(AGENT, in_signature="", out_signature="")
    def Release(self):
        self.questions.append("released")

    @dbus.service.method(AGENT, in_signature="", out_signature="")
    def Cancel(self):
        self.questions.append("cancelled")

    @dbus.service.method(AGENT, in_signature="o", out_signature="")
    def RequestAuthorization(self, _device):
        self._ask("authorize")

    @dbus.service.method(AGENT, in_signature="ou", out_signature="")
    def RequestConfirmation(self, _device, _passkey):
        self._ask("confirm")

    @dbus.service.method(AGENT, in_signature="os", out_signature="")
    def AuthorizeService(self, _device, _uuid):
        self._ask("authorize service")

    def _ask(self, question: str) -> None:
        self.questions.append(question)
        if not self.consents:
            raise Refused("no")
