"""What a client of BlueZ sees of links: made, refused, lost, counted and measured."""

import time

from stack.device import Change, Changes, Device
from stack.radio import Refused
from stack.waiting import wait_for, watch_for

from .base import Checks, expect

KEY = "00:00:5E:00:53:20"
TAG = "C0:00:00:00:00:21"
LATER = "00:00:5E:00:53:22"
ABSENT = "00:00:5E:00:53:23"
UNWILLING = "00:00:5E:00:53:24"

BAD_INSTRUCTIONS = [
    "drop key",
    "drop nobody",
    "drop key zz",
    "link-rssi key loud",
    "link-rssi key",
    "refuse key 00",
    "model key",
    "model key %4",
    "garbage key 0",
    "garbage key 00",
    "rotate key",
    "mute",
    "forget nobody",
    "hardware-error 123",
    "connect nobody",
    "connect key",
    "pair key",
    "look key",
    "answer key yes",
    "answer key perhaps",
    "answer key 1000000",
    "central-status nobody",
    "see key",
    "advertising",
    "advertising newer",
    "advertising extended sets=241",
    "advertising older sets",
    "device x address=00:00:5E:00:53:99 pairs=never",
    "device x address=00:00:5E:00:53:99 owner=cat",
    "device x address=00:00:5E:00:53:99 irk=00",
    "device x address=00:00:5E:00:53:99 changes-every=1",
    "device x address=00:00:5E:00:53:99 battery=full",
    "device x address=00:00:5E:00:53:99 mtu=22",
    "device x address=00:00:5E:00:53:99 mouse=yes",
]


class Connections(Checks):
    def __init__(self, *stack):
        super().__init__(*stack)
        self.changes = Changes(self.system.bus)

    def end(self) -> None:
        self.changes.end()
        super().end()

    def step_bad_instructions_are_refused(self) -> str:
        self.discover()
        self.key = self.put("key", KEY, "rssi=-50 link-rssi=-44 name=Key connectable")
        complaints = []
        for instruction in BAD_INSTRUCTIONS:
            try:
                self.radio.tell(instruction)
                complaints.append(f"{instruction}: accepted")
            except Refused:
                pass
        expect(not complaints, "; ".join(complaints))
        return f"{len(BAD_INSTRUCTIONS)} of {len(BAD_INSTRUCTIONS)}"

    def step_a_device_is_connected_and_disconnected(self) -> str:
        took = self.key.connect()
        expect(self.radio.connected() == ["key"], f"connected: {self.radio.connected()}")
        expect(self.radio.connects("key") == 1, self.radio.device("key")["connects"])
        expect(self.radio.device("key")["advertising"] == "no", "it still advertises")
        left = self.key.disconnect()
        expect(self.radio.connected() == [], f"connected: {self.radio.connected()}")
        return f"in {took:.2f} s, in {left:.2f} s; heard {self.hear(KEY, -50):.2f} s later"

    def step_the_strength_of_a_link_is_read_without_privilege(self) -> str:
        self.key.connect()
        links = self.system.links_seen_by_nobody()
        expect([link["address"] for link in links] == [KEY], str(links))
        expect((links[0]["status"], links[0]["rssi"]) == (0, -44), str(links))
        for rssi in (-90, 20, -127, 127):
            self.radio.tell(f"link-rssi key {rssi}")
            links = self.system.links_seen_by_nobody()
            expect(links[0]["rssi"] == rssi, f"{links} instead of {rssi}")
        self.radio.tell("link-rssi key -44")
        return f"-44 dBm where it advertises with -50, handle {links[0]['handle']}"

    def step_two_links_at_a_time(self) -> str:
        tag = self.put("tag", TAG, "type=random rssi=-70 connectable advertises-while-linked")
        took = tag.connect()
        expect(self.radio.connected() == ["key", "tag"], f"connected: {self.radio.connected()}")
        links = {link["address"]: link["rssi"] for link in self.system.links_seen_by_nobody()}
        expect(links == {KEY: -44, TAG: -70}, str(links))
        return f"the second in {took:.2f} s; strengths {links}"

    def step_a_linked_device_that_advertises_is_told(self) -> str:
        self.radio.tell("rssi tag -71")
        heard = self.hear(TAG, -71)
        self.listener.forget()
        watch_for(2)
        expect(not self.listener.of(KEY), "a device that is connected and silent was told")
        self.radio.tell("drop tag 13")
        self.radio.tell("silent tag")
        return f"after {heard:.2f} s"

    def step_a_link_is_lost_for_any_reason(self) -> str:
        seen = []
        for reason in ("08", "13", "3e"):
            if not self.key.get("Connected"):
                self.hear(KEY)
                self.key.connect()
            self.changes.forget()
            started = time.monotonic()
            self.radio.tell(f"drop key {reason}")
            told = wait_for(self.loss_told, 20, "the loss is told")
            expect(
                dict(told.changed) == {"Connected": False, "ServicesResolved": False},
                f"{reason}: {told.changed}",
            )
            seen.append(f"{reason} after {told.when - started:.2f} s")
        return ", ".join(seen)

    def loss_told(self) -> Change | None:
        told = [each for each in self.changes.of(self.key.path) if "Connected" in each.changed]
        return told[0] if told else None

    def step_a_device_that_cannot_be_connected_is_waited_for(self) -> str:
        later = self.put("later", LATER, "rssi=-60 data=020106")
        call = later.start("Connect")
        watch_for(6)
        expect(call.is_pending(), f"after {call.seconds:.1f} s: {call.outcome}")
        expect(self.radio.connects("later") == 0, "it was connected")
        self.radio.tell("connectable later")
        asked = time.monotonic()
        call.wait()
        took = time.monotonic() - asked
        later.disconnect()
        self.radio.tell("silent later")
        return f"pending for 6 s, then connected {took:.2f} s after it had become connectable"

    def step_a_pending_connection_is_cancelled(self) -> str:
        absent = self.put("absent", ABSENT, "rssi=-60 connectable")
        self.radio.tell("silent absent")
        call = absent.start("Connect")
        watch_for(3)
        expect(call.is_pending(), call.outcome)
        cancel = absent.start("Disconnect")
        wait_for(lambda: not call.is_pending(), 10, "Connect is answered")
        wait_for(lambda: not cancel.is_pending(), 10, "Disconnect is answered")
        self.radio.tell("loud absent")
        self.hear(ABSENT)
        watch_for(2)
        expect(self.radio.connects("absent") == 0, "it was connected all the same")
        self.radio.tell("silent absent")
        return f"Connect: {call.outcome}; Disconnect: {cancel.outcome} after {cancel.seconds:.2f} s"

    def step_a_device_that_is_gone_when_it_is_connected(self) -> str:
        unwilling = self.put("unwilling", UNWILLING, "rssi=-60 connectable")
        self.radio.tell("refuse unwilling")
        self.hear(UNWILLING)
        call = unwilling.start("Connect")
        wait_for(lambda: not call.is_pending(), 60, "Connect is answered")
        watch_for(1)
        expect(call.error is not None and not unwilling.get("Connected"), "it is connected")
        expect(self.radio.connects("unwilling") == 1, "there was no link")
        self.radio.tell("admit unwilling")
        self.hear(UNWILLING)
        unwilling.connect()
        unwilling.disconnect()
        return f"{call.outcome} after {call.seconds:.2f} s; connected when it was willing"

    def step_a_connection_that_the_controller_gives_up(self) -> str:
        unwilling = Device.find(self.system.bus, UNWILLING)
        self.radio.tell("fail unwilling 3e")
        self.hear(UNWILLING)
        call = unwilling.start("Connect")
        watch_for(3)
        seen = f"after 3 s: {call.outcome}"
        self.radio.tell("admit unwilling")
        self.adapter.set_powered(False)
        wait_for(lambda: not call.is_pending(), 60, "Connect is answered")
        self.adapter.set_powered(True)
        self.adapter.start_discovery()
        self.hear(UNWILLING)
        unwilling.connect()
        unwilling.disconnect()
        self.radio.tell("silent unwilling")
        return f"{seen}; when the adapter goes off: {call.outcome}; then connected as usual"

    def step_a_broken_controller_recovers(self) -> str:
        self.hear(KEY)
        self.key.connect()
        asked = time.monotonic()
        self.radio.tell("hardware-error 01")
        self.key.wait_until("Connected", False)
        lost = time.monotonic() - asked
        wait_for(self.adapter.is_powered, 20, "the adapter is powered")
        self.discover()
        heard = self.hear(KEY)
        self.key.connect()
        return f"link lost after {lost:.2f} s; heard {heard:.2f} s after a new discovery, connected"

    def step_an_unplugged_controller_has_no_links(self) -> str:
        expect(self.radio.connected() == ["key"], f"connected: {self.radio.connected()}")
        self.radio.tell("unplug")
        expect(self.radio.connected() == [], f"connected: {self.radio.connected()}")
        wait_for(lambda: self.adapter.get("Powered") is None, 20, "the adapter has gone")
        self.radio.tell("plug")
        wait_for(self.adapter.is_powered, 30, "the adapter is back and powered")
        self.adapter.start_discovery()
        again = Device.find(self.system.bus, KEY)
        self.hear(KEY)
        again.connect()
        again.disconnect()
        self.radio.tell("silent key")
        return "and connects anew when it is back"
