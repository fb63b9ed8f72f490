"""What a client of BlueZ sees of pairing, of bonds and of addresses that change."""

from stack.agent import Agent
from stack.call import Failed as CallFailed
from stack.device import Device, device_paths
from stack.waiting import wait_for, watch_for

from .base import Checks, expect

PHONE = "00:00:5E:00:53:40"
PHONE_KEY = "101112131415161718191A1B1C1D1E1F"
STRANGER = "00:00:5E:00:53:41"
SHY = "00:00:5E:00:53:42"
RESTLESS = "00:00:5E:00:53:43"
RESTLESS_KEY = "303132333435363738393A3B3C3D3E3F"


class Pairing(Checks):
    def __init__(self, *stack):
        super().__init__(*stack)
        self.agent = Agent(self.system.bus)

    def step_a_device_that_hides_its_address_is_paired(self) -> str:
        self.discover()
        self.phone = self.put(
            "phone",
            PHONE,
            f"rssi=-50 link-rssi=-44 connectable gap-name=Phone model=P1 battery=protected "
            f"irk={PHONE_KEY}",
        )
        hidden = self.phone.get("Address")
        expect(hidden != PHONE, "it shows who it is")
        took = self.phone.pair()
        self.phone.wait_until("ServicesResolved", True)
        expect(self.phone.get("Address") == PHONE, f"it is {self.phone.get('Address')}")
        expect(self.phone.get("AddressType") == "public", "another kind of address")
        expect(self.phone.get("Bonded") == 1, "it is not bonded")
        state = self.radio.device("phone")
        expect((state["bonded"], state["encrypted"]) == ("yes", "yes"), str(state))
        expect(self.phone.read_model() == b"P1", "another model")
        links = self.system.links_seen_by_nobody()
        expect([(link["address"], link["rssi"]) for link in links] == [(PHONE, -44)], str(links))
        self.phone.disconnect()
        return f"in {took:.2f} s; {hidden} became {PHONE}, the object's path stayed"

    def step_it_is_known_again_under_every_address(self) -> str:
        seen = []
        for _ in range(3):
            shown = self.radio.rotate("phone")
            heard = self.hear(PHONE, -50)
            expect(device_paths(self.system.bus, PHONE) == [self.phone.path], "another object")
            expect(not device_paths(self.system.bus, shown), f"an object for {shown}")
            seen.append(f"{shown} heard after {heard:.2f} s")
        return ", ".join(seen)

    def step_it_reconnects_encrypted_under_a_new_address(self) -> str:
        connects = self.radio.connects("phone")
        took = self.phone.connect()
        self.wait_encrypted("phone")
        state = self.radio.device("phone")
        expect(state["pairing-requests"] == "1", "it was asked to pair again")
        expect(int(state["connects"]) == connects + 1, str(state))
        self.phone.disconnect()
        return f"in {took:.2f} s"

    def wait_encrypted(self, name: str) -> None:
        wait_for(
            lambda: self.radio.device(name)["encrypted"] == "yes", 10, "the link is encrypted"
        )

    def step_without_discovery_it_reconnects_as_well(self) -> str:
        self.stop_discovery()
        self.radio.rotate("phone")
        took = self.phone.connect()
        self.wait_encrypted("phone")
        self.phone.disconnect()
        return f"in {took:.2f} s, under an address never heard before"

    def step_it_is_known_after_bluetoothd_was_started_anew(self) -> str:
        earlier = self.phone.path
        self.system.stop_bluetoothd()
        self.system.start_bluetoothd()
        self.agent.end()
        self.agent = Agent(self.system.bus)
        self.radio.rotate("phone")
        self.adapter.start_discovery()
        self.hear(PHONE, -50)
        self.phone = Device.find(self.system.bus, PHONE)
        took = self.phone.connect()
        self.wait_encrypted("phone")
        self.phone.disconnect()
        names = [path.rpartition("/")[2] for path in (earlier, self.phone.path)]
        return f"{names[0]} is now {names[1]}; {took:.2f} s"

    def step_a_device_that_has_forgotten_the_bond(self) -> str:
        self.radio.tell("forget phone")
        self.hear(PHONE)
        call = self.phone.start("Connect")
        wait_for(lambda: not call.is_pending(), 60, "Connect is answered")
        watch_for(3)
        connected = bool(self.phone.get("Connected"))
        outcome = f"{call.outcome} after {call.seconds:.2f} s, connected 3 s later: {connected}"
        state = self.radio.device("phone")
        expect(state["encrypted"] == "no", str(state))
        self.phone.remove()
        self.radio.tell("silent phone")
        return f"{outcome}, connects {state['connects']}"

    def step_a_changing_device_is_another_each_time(self) -> str:
        stranger = self.put("stranger", STRANGER, "rssi=-50 connectable changing")
        earlier = stranger.get("Address")
        shown = self.radio.rotate("stranger")
        later = Device.find(self.system.bus, shown)
        expect(later.path != stranger.path, "the same object")
        expect(not device_paths(self.system.bus, STRANGER), "it showed who it is")
        self.radio.tell("silent stranger")
        return f"{earlier}, then {shown}"

    def step_an_address_changes_by_itself(self) -> str:
        device = self.put(
            "restless", RESTLESS, f"rssi=-50 connectable irk={RESTLESS_KEY} changes-every=2.5"
        )
        device.pair()
        device.disconnect()
        shown = set()

        def has_changed_thrice() -> bool:
            shown.add(self.radio.device("restless")["address"])
            return len(shown) > 3

        wait_for(has_changed_thrice, 30, "three other addresses")
        heard = self.hear(RESTLESS)
        device.remove()
        self.radio.tell("silent restless")
        return f"{len(shown)} addresses; heard as itself after {heard:.2f} s"

    def step_a_device_that_refuses_to_pair(self) -> str:
        shy = self.put("shy", SHY, "rssi=-50 connectable unpairable")
        call = shy.start("Pair")
        try:
            call.wait()
        except CallFailed:
            pass
        expect(call.error is not None, "it was paired")
        shy.remove()
        self.radio.tell("silent shy")
        return f"{call.outcome} after {call.seconds:.2f} s"

    def end(self) -> None:
        self.agent.end()
        super().end()
