"""A bonded mouse, which nobody but BlueZ and the kernel connects."""

import pathlib
import time

from stack.agent import Agent
from stack.waiting import wait_for, watch_for

from .base import Checks, expect

MOUSE = "C0:00:00:00:00:51"
INPUT_DEVICES = pathlib.Path("/proc/bus/input/devices")
# The handle of the mouse's report in controller/gatt_profile.cpp, in the order of the air.
REPORT = "4600"
RECONNECT_SECONDS = 5


class Mouse(Checks):
    def __init__(self, *stack):
        super().__init__(*stack)
        self.agent = Agent(self.system.bus)

    def step_a_mouse_is_paired_and_becomes_an_input_device(self) -> str:
        self.system.load_modules("uhid", "hid-generic", "mousedev")
        self.discover()
        self.mouse = self.put("mouse", MOUSE, "type=random rssi=-50 connectable name=Mouse mouse")
        self.stop_discovery()
        took = self.mouse.pair()
        began = time.monotonic()
        wait_for(self.is_input_device, 20, "the kernel has the mouse")
        return f"paired in {took:.2f} s, an input device {time.monotonic() - began:.2f} s later"

    @staticmethod
    def is_input_device() -> bool:
        return MOUSE.lower() in INPUT_DEVICES.read_text(encoding="utf-8")

    def step_it_reconnects_by_itself(self) -> str:
        seen = []
        for reason in ("08", "13"):
            connects = self.radio.connects("mouse")
            self.radio.tell(f"drop mouse {reason}")
            took = self.wait_connected("mouse", connects + 1, RECONNECT_SECONDS)
            self.mouse.wait_until("ServicesResolved", True)
            seen.append(f"{reason}: {took:.2f} s")
        wait_for(lambda: self.radio.device("mouse")["encrypted"] == "yes", 10, "it is encrypted")
        return ", ".join(seen)

    def step_it_reconnects_when_it_comes_back(self) -> str:
        self.radio.tell("silent mouse")
        connects = self.radio.connects("mouse")
        self.radio.tell("drop mouse 08")
        self.mouse.wait_until("Connected", False)
        watch_for(6)
        status = self.radio.status()
        expect((status["scanning"], status["active"]) == ("yes", "no"), str(status))
        self.radio.tell("loud mouse")
        took = self.wait_connected("mouse", connects + 1, RECONNECT_SECONDS)
        return f"after 6 s away, {took:.2f} s after it was back"

    def step_its_movements_arrive(self) -> str:
        wait_for(self.is_input_device, 20, "the kernel has the mouse")
        with open("/dev/input/mice", "rb", buffering=0) as mice:
            # A button, five to the right, three down.
            self.radio.tell(f"garbage mouse 1B{REPORT}010503")
            moved = mice.read(3)
        # The mouse of the kernel counts upwards what the HID specification counts downwards.
        expect(moved == bytes([0x29, 0x05, 0xFD]), moved.hex())
        return "a button, five to the right, three down"

    def step_when_its_bond_is_removed_it_stays_away(self) -> str:
        connects = self.radio.connects("mouse")
        self.mouse.remove()
        wait_for(lambda: not self.radio.connected(), 20, "it is disconnected")
        watch_for(3)
        expect(self.radio.connects("mouse") == connects, "it was connected again")
        self.radio.tell("silent mouse")
        return "not connected in 3 s"

    def end(self) -> None:
        self.agent.end()
        super().end()
