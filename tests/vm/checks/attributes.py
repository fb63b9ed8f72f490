"""What a client of BlueZ reads of a connected device, and what unusual devices make of that."""

import time

from stack.agent import Agent
from stack.device import BATTERY_LEVEL, MODEL_NUMBER
from stack.waiting import wait_for, watch_for

from .base import Checks, expect

PHONE = "00:00:5E:00:53:30"
SMALL = "00:00:5E:00:53:31"
MUTE = "00:00:5E:00:53:32"
NOISY = "00:00:5E:00:53:33"
GUARDED = "00:00:5E:00:53:34"
TRUSTING = "00:00:5E:00:53:35"
# A text longer than a small packet several times over, and an odd one.
LONG_MODEL = "".join(f"Part{number:03d}/" for number in range(25))
ODD_MODEL = bytes([0x00, 0xFF, 0xC3, 0x28, 0x20, 0x25, 0x7F, 0x0A])
GARBAGE = [
    "00",
    "FF",
    "01",
    "0102",
    "03",
    "0300",
    "0500",
    "09",
    "0900",
    "09FF0100",
    "0B",
    "1105",
    "1B",
    "1B2200",
    "1D2200FF",
    "1E",
    "02FFFF",
    "12000000",
    "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF",
]


def escaped(text: bytes) -> str:
    return "".join(f"%{byte:02X}" for byte in text)


class Attributes(Checks):
    def step_the_model_is_read(self) -> str:
        self.discover()
        self.phone = self.put(
            "phone", PHONE, "rssi=-50 connectable gap-name=Some%20phone model=Thing9,1 battery=open"
        )
        took = self.phone.connect()
        asked = time.monotonic()
        model = self.phone.read_model()
        read = time.monotonic() - asked
        expect(model == b"Thing9,1", str(model))
        expect(self.phone.read(BATTERY_LEVEL) == bytes([80]), "another battery level")
        self.phone.wait_until("Name", "Some phone")
        return f"{model!r} {read:.2f} s after services were known, {took:.2f} s after Connect"

    def step_a_model_of_any_bytes_is_read(self) -> str:
        for model in (ODD_MODEL, b"\0"):
            self.radio.tell(f"model phone {escaped(model)}")
            seen = self.phone.read_model()
            expect(seen == model, f"{seen!r} instead of {model!r}")
        self.phone.disconnect()
        self.radio.tell("silent phone")
        return repr(ODD_MODEL)

    def step_a_long_model_comes_in_parts(self) -> str:
        small = self.put("small", SMALL, f"rssi=-50 connectable mtu=23 model={LONG_MODEL}")
        small.connect()
        before = int(self.radio.device("small")["requests"])
        model = small.read_model()
        expect(model == LONG_MODEL.encode(), str(model))
        parts = int(self.radio.device("small")["requests"]) - before
        small.disconnect()
        self.radio.tell("silent small")
        return f"{len(model)} bytes in {parts} requests"

    def step_a_mute_device_has_a_link_and_no_services(self) -> str:
        device = self.put("mute", MUTE, "rssi=-50 connectable model=Never mute")
        call = device.start("Connect")
        device.wait_until("Connected", True)
        watch_for(8)
        expect(not device.get("ServicesResolved"), "services were resolved")
        expect(device.get("Connected") == 1, "the link was given up")
        requests = self.radio.device("mute")["requests"]
        outcome = call.outcome
        gone = device.disconnect()
        self.radio.tell("unmute mute")
        self.hear(MUTE)
        device.connect()
        expect(device.read_model() == b"Never", "another model")
        device.disconnect()
        self.radio.tell("silent mute")
        return (
            f"after 8 s Connect: {outcome}, {requests} requests unanswered; "
            f"Disconnect took {gone:.2f} s; speaks after unmute"
        )

    def step_garbage_does_not_harm_the_stack(self) -> str:
        device = self.put("noisy", NOISY, "rssi=-50 connectable model=Noise")
        device.connect()
        for bytes_sent in GARBAGE:
            if device.get("Connected"):
                self.radio.tell(f"garbage noisy {bytes_sent}")
                watch_for(0.1)
        survived = bool(device.get("Connected"))
        self.system.bluetoothd.check_running()
        if survived:
            device.disconnect()
        self.hear(NOISY)
        device.connect()
        expect(device.read_model() == b"Noise", "another model")
        device.disconnect()
        self.radio.tell("silent noisy")
        fate = "kept" if survived else "given up"
        return f"{len(GARBAGE)} pieces, link {fate}; then as usual"

    def step_a_protected_battery_makes_the_stack_ask_to_pair(self) -> str:
        device = self.put("guarded", GUARDED, "rssi=-50 connectable model=M battery=protected")
        device.connect()
        wait_for(lambda: self.pairing_requests("guarded") == 1, 10, "it is asked to pair")
        reading = device.start_reading(MODEL_NUMBER)
        watch_for(3)
        expect(not device.get("Paired"), "paired without an agent")
        outcome = reading.outcome
        self.radio.tell("drop guarded 13")
        device.wait_until("Connected", False)
        device.remove()
        self.radio.tell("silent guarded")
        return f"without an agent: asked once, not paired; its model 3 s later: {outcome}"

    def pairing_requests(self, name: str) -> int:
        return int(self.radio.device(name)["pairing-requests"])

    def step_and_with_an_agent_it_is_paired(self) -> str:
        agent = Agent(self.system.bus)
        device = self.put("trusting", TRUSTING, "rssi=-50 connectable model=M battery=protected")
        device.connect()
        took = device.wait_until("Paired", True)
        expect(device.read(BATTERY_LEVEL) == bytes([80]), "another battery level")
        expect(device.read_model() == b"M", "another model")
        expect(self.radio.device("trusting")["encrypted"] == "yes", "it is not encrypted")
        agent.end()
        device.remove()
        self.radio.tell("silent trusting")
        return f"{took:.2f} s after its services were known; the agent was asked: {agent.questions}"
