"""Stands where a desktop's pairing dialogs stand: BlueZ pairs only while such an agent is there."""

import dbus
import dbus.service

from . import bluez
from .waiting import ONLY_A_HANG

AGENT = "org.bluez.Agent1"
PATH = "/agent"
NO_SCREEN = "NoInputNoOutput"
YES_OR_NO = "DisplayYesNo"


class Refused(dbus.DBusException):
    """What a user's "no" is to BlueZ."""

    _dbus_error_name = "org.bluez.Error.Rejected"


class Agent(dbus.service.Object):
    """Says yes, or no, to whatever BlueZ wants to know; or, without a consent, nothing before `answer`.
    `questions` are what a user would have been asked, `codes` the digits that were shown with them."""

    def __init__(
        self,
        bus: dbus.Bus,
        consents: bool | None = True,
        capability: str = NO_SCREEN,
        path: str = PATH,
    ):
        super().__init__(bus, path)
        self.path = dbus.ObjectPath(path)
        self.consents = consents
        self.questions: list[str] = []
        self.codes: list[str] = []
        self.waiting = None
        self.manager = dbus.Interface(
            bus.get_object(bluez.NAME, "/org/bluez", introspect=False), "org.bluez.AgentManager1"
        )
        self.manager.RegisterAgent(self.path, capability, timeout=ONLY_A_HANG)
        self.manager.RequestDefaultAgent(self.path, timeout=ONLY_A_HANG)

    def answer(self, consents: bool) -> None:
        """To the question that waits."""
        (yes, no), self.waiting = self.waiting, None
        if consents:
            yes()
        else:
            no(Refused("no"))

    def end(self) -> None:
        try:
            self.manager.UnregisterAgent(self.path, timeout=ONLY_A_HANG)
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
        self.waiting = None

    @dbus.service.method(AGENT, in_signature="o", out_signature="", async_callbacks=("yes", "no"))
    def RequestAuthorization(self, _device, yes, no):
        self._ask("authorize", yes, no)

    @dbus.service.method(AGENT, in_signature="ou", out_signature="", async_callbacks=("yes", "no"))
    def RequestConfirmation(self, _device, passkey, yes, no):
        self.codes.append(f"{int(passkey):06}")
        self._ask("confirm", yes, no)

    @dbus.service.method(AGENT, in_signature="ouq", out_signature="")
    def DisplayPasskey(self, _device, passkey, _entered):
        self.codes.append(f"{int(passkey):06}")
        self.questions.append("display")

    @dbus.service.method(AGENT, in_signature="os", out_signature="", async_callbacks=("yes", "no"))
    def AuthorizeService(self, _device, _uuid, yes, no):
        self._ask("authorize service", yes, no)

    def _ask(self, question: str, yes, no) -> None:
        self.questions.append(question)
        self.waiting = (yes, no)
        if self.consents is not None:
            self.answer(self.consents)
