"""What a client of BlueZ that makes the computer a peripheral sees of a phone that connects to it, and
of one that pairs, or does not."""

import dbus

from stack import bluez
from stack.agent import NO_SCREEN, YES_OR_NO, Agent
from stack.call import Failed as CallFailed
from stack.device import Changes, Device, device_paths, managed_objects
from stack.peripheral import HEART_RATE_BELT, Peripheral
from stack.phone import Phone
from stack.waiting import ONLY_A_HANG, wait_for, watch_for

from .base import Checks, expect

NAME = "Wegslot 4F2A"
GENERAL = 0x02
NO_CLASSIC = 0x04
REFUSED_DIGITS = "0C"
CANCELLED = "08"
AT_THE_CHEST = "01"
# Seconds. BlueZ 5.66 has crashed where a device that had just paired was removed sooner.
REMOVABLE = 3


class PhoneConnects(Checks):
    def __init__(self, *stack):
        super().__init__(*stack)
        self.bus = self.system.bus
        self.changes = Changes(self.bus)
        self.peripheral: Peripheral | None = None
        self.phones = 0

    def end(self) -> None:
        self.end_peripheral()
        self.changes.end()
        super().end()

    # --- What the steps are made of ---------------------------------------------------------------

    def be_peripheral(self, consents: bool | None = True, capability: str = YES_OR_NO) -> None:
        """Anew, with nothing left of an earlier one."""
        self.end_peripheral()
        self.peripheral = Peripheral(self.bus, NAME)
        self.peripheral.start(consents, capability)

    def end_peripheral(self) -> None:
        if self.peripheral is None:
            return
        peripheral, self.peripheral = self.peripheral, None
        peripheral.stop()
        peripheral.end()
        for path, interfaces in managed_objects(self.bus).items():
            if bluez.DEVICE in interfaces:
                Device(self.bus, str(path)).remove()

    def phone(self, options: str = "", address: str | None = None) -> Phone:
        """One that was never seen before."""
        self.phones += 1
        number = f"{self.phones:02X}"
        return Phone(
            self.radio,
            f"phone{self.phones}",
            address or f"00:00:5E:00:53:{number}",
            f"irk=101112131415161718191A1B1C1D1E{number} gap-name=Phone link-rssi=-44 {options}",
        )

    def connect(self, phone: Phone) -> Device:
        """What BlueZ makes of it."""
        phone.find(NAME)
        phone.connect()
        return Device.find(self.bus, phone.address)

    def wait_for_identity(self, phone: Phone, device: Device) -> None:
        device.wait_until("Address", phone.identity)
        device.wait_until("Paired", True)
        expect(device.get("Bonded") == 1, "it is not bonded")
        expect(device_paths(self.bus, phone.identity) == [device.path], "another object")

    def wait_unpaired(self, device: Device) -> None:
        device.wait_until("Connected", False)
        expect(device.get("Paired") == 0, "it is paired")

    # --- On the air -------------------------------------------------------------------------------

    def step_the_computer_is_seen_as_a_heart_rate_monitor(self) -> str:
        phone = self.phone()
        expect(phone.see() == [], f"it sees {phone.see()}")
        self.be_peripheral()
        seen = phone.find(NAME)
        expect(seen.flags == GENERAL | NO_CLASSIC, f"flags {seen.flags}")
        expect((seen.uuids, seen.appearance) == (["180D"], HEART_RATE_BELT), str(seen))
        expect(seen.connectable and seen.address == self.adapter.get("Address"), str(seen))
        self.end_peripheral()
        expect(phone.see() == [], f"it sees {phone.see()}")
        return f"{seen.name}, flags {seen.flags:02X}, {len(seen.data)} bytes and what is asked for"

    # --- Pairing ----------------------------------------------------------------------------------

    def step_a_phone_whose_owner_compares_digits_says_who_it_is(self) -> str:
        self.be_peripheral()
        phone = self.compared = self.phone()
        device = self.device = self.connect(phone)
        shown = phone.address
        digits = phone.question()
        phone.answer()
        self.wait_for_identity(phone, device)
        agent = self.peripheral.agent
        expect((agent.questions, agent.codes) == (["confirm"], [digits]), f"{agent.codes}, {digits}")
        expect(phone.read_location() == AT_THE_CHEST, "another place")
        expect("180D" in phone.status()["services"], phone.status()["services"])
        links = self.system.links_seen_by_nobody()
        expect([(each["address"], each["rssi"]) for each in links] == [(phone.identity, -44)], str(links))
        return f"{digits} on both; {shown} became {phone.identity}, the object's path stayed"

    def step_it_comes_back_under_another_address_and_nobody_is_asked(self) -> str:
        self.compared.disconnect()
        self.device.wait_until("Connected", False)
        shown = self.compared.rotate()
        expect(self.connect_again(self.compared), "it is not encrypted")
        expect(self.peripheral.agent.questions == ["confirm"], str(self.peripheral.agent.questions))
        self.compared.get_lost()
        self.device.wait_until("Connected", False)
        return f"as {shown}"

    def connect_again(self, phone: Phone) -> bool:
        """A phone that has a bond."""
        phone.find(NAME)
        phone.connect()
        return wait_for(phone.is_encrypted, ONLY_A_HANG, "the link is encrypted")

    def step_it_is_heard_under_every_address_once_it_advertises(self) -> str:
        self.adapter.start_discovery()
        self.compared.advertise(-55)
        heard = [self.hear(self.compared.identity, -55)]
        for _ in range(2):
            shown = self.compared.rotate()
            heard.append(self.hear(self.compared.identity, -55))
            expect(not device_paths(self.bus, shown), f"an object for {shown}")
        self.compared.fall_silent()
        self.adapter.stop_discovery()
        return ", ".join(f"after {each:.2f} s" for each in heard)

    def step_a_phone_that_has_forgotten_the_bond_compares_digits_again(self) -> str:
        self.compared.forget()
        self.compared.rotate()
        self.compared.find(NAME)
        self.compared.connect()
        self.device.wait_until("Connected", True)
        self.compared.question()
        self.changes.forget()
        self.compared.answer()
        self.compared.wait_for("paired", "2")
        expect(self.compared.read_location() == AT_THE_CHEST, "another place")
        told = [each.changed for each in self.changes.of(self.device.path)]
        expect(not any("Paired" in each or "Address" in each for each in told), str(told))
        return f"of which BlueZ tells nothing: {told}"

    def step_where_nothing_is_compared_a_forgotten_bond_is_in_the_way(self) -> str:
        self.compared.disconnect()
        self.device.wait_until("Connected", False)
        self.peripheral.agent.end()
        self.peripheral.agent = Agent(self.bus, True, NO_SCREEN)
        self.compared.forget()
        self.compared.rotate()
        self.compared.find(NAME)
        self.compared.connect()
        self.compared.wait_for("failure", REFUSED_DIGITS)
        expect(not self.peripheral.agent.questions, str(self.peripheral.agent.questions))
        return "refused by BlueZ itself, and nobody was asked"

    def step_a_computer_that_has_forgotten_the_bond_is_a_new_one(self) -> str:
        self.be_peripheral()
        phone = self.phone()
        device = self.connect(phone)
        phone.question()
        phone.answer()
        self.wait_for_identity(phone, device)
        device.disconnect()
        watch_for(REMOVABLE)
        device.remove()
        phone.rotate()
        device = self.connect(phone)
        phone.question()
        expect(phone.status()["bond-refused"] == "yes", str(phone.status()))
        phone.answer()
        self.wait_for_identity(phone, device)
        return "the phone paired again"

    def step_with_nothing_to_compare_the_agent_is_asked_for_leave(self) -> str:
        seen = []
        for options, capability in (
            ("owner=nothing", YES_OR_NO),
            ("owner=nothing older-pairing", YES_OR_NO),
            ("", NO_SCREEN),
            ("older-pairing", NO_SCREEN),
        ):
            self.be_peripheral(True, capability)
            phone = self.phone(options)
            self.wait_for_identity(phone, self.connect(phone))
            questions = self.peripheral.agent.questions
            expect(questions == ["authorize"], f"{options} {capability}: {questions}")
            seen.append(options or capability)
        return "; ".join(seen)

    def step_an_older_phone_has_the_digits_typed(self) -> str:
        self.be_peripheral()
        phone = self.phone("older-pairing")
        device = self.connect(phone)
        expect(phone.question() == "type", phone.question())
        codes = self.peripheral.agent.codes
        phone.answer(wait_for(lambda: codes, ONLY_A_HANG, "the digits are shown")[0])
        self.wait_for_identity(phone, device)
        return f"{codes[0]}, {self.peripheral.agent.questions}"

    def step_an_identity_may_be_a_random_address(self) -> str:
        self.be_peripheral()
        phone = self.phone("type=random owner=nothing", "C0:00:00:00:00:51")
        device = self.connect(phone)
        self.wait_for_identity(phone, device)
        expect(device.get("AddressType") == "random", device.get("AddressType"))
        return phone.identity

    def step_a_phone_that_keeps_its_identity_is_paired_and_not_bonded(self) -> str:
        self.be_peripheral()
        phone = self.phone("keeps-identity owner=nothing")
        device = self.connect(phone)
        device.wait_until("Paired", True)
        expect(phone.read_location() == AT_THE_CHEST, "another place")
        expect(device.get("Address") == phone.address, "another address")
        expect(device.get("Bonded") == 0, "it is bonded")
        phone.disconnect()
        self.wait_unpaired(device)
        return f"{phone.address} it was and stayed"

    # --- Who begins -------------------------------------------------------------------------------

    def step_a_phone_that_waits_pairs_when_it_is_asked_to(self) -> str:
        self.be_peripheral()
        phone = self.phone("pairs=when-asked owner=nothing")
        device = self.connect(phone)
        phone.wait_for("location", "refused")
        expect(phone.status()["pairing"] == "no", "it pairs by itself")
        took = device.pair()
        self.wait_for_identity(phone, device)
        return f"Pair took {took:.2f} s"

    def step_a_protected_battery_is_asked_for_and_makes_it_pair(self) -> str:
        self.be_peripheral()
        phone = self.phone("pairs=when-asked owner=nothing battery=protected")
        self.wait_for_identity(phone, self.connect(phone))
        return f"after {phone.status()['services']}"

    def step_a_phone_that_pairs_before_it_looks(self) -> str:
        self.be_peripheral()
        phone = self.phone("pairs=at-once owner=nothing")
        self.wait_for_identity(phone, self.connect(phone))
        expect(phone.read_location() == AT_THE_CHEST, "another place")
        return "and was refused nothing afterwards"

    # --- No pairing -------------------------------------------------------------------------------

    def step_the_phones_owner_says_no(self) -> str:
        seen = []
        for options, failure in (("", REFUSED_DIGITS), ("owner=nothing asks-always", CANCELLED)):
            self.be_peripheral(None)
            phone = self.phone(options)
            device = self.connect(phone)
            phone.question()
            self.wait_for_agent()
            phone.answer("no")
            self.wait_unpaired(device)
            expect(phone.status()["failure"] == failure, phone.status()["failure"])
            self.wait_for_cancel()
            seen.append(f"{self.peripheral.agent.questions[0]}: cancelled")
        return ", ".join(seen)

    def wait_for_agent(self) -> None:
        agent = self.peripheral.agent
        wait_for(lambda: agent.waiting, ONLY_A_HANG, "the agent is asked")

    def wait_for_cancel(self) -> None:
        questions = self.peripheral.agent.questions
        wait_for(lambda: "cancelled" in questions, ONLY_A_HANG, "the agent is told")

    def step_the_computers_owner_says_no(self) -> str:
        self.be_peripheral(False)
        phone = self.phone()
        device = self.connect(phone)
        phone.question()
        phone.wait_for("failure", REFUSED_DIGITS)
        expect(device.get("Paired") == 0, "it is paired")
        expect(phone.is_connected(), "the link was lost")
        return "the link stays"

    def step_a_pairing_that_we_began_is_cancelled(self) -> str:
        self.be_peripheral(None)
        phone = self.phone("pairs=when-asked")
        device = self.connect(phone)
        pair = device.start("Pair")
        self.wait_for_agent()
        device.start("CancelPairing").wait()
        try:
            pair.wait()
        except CallFailed:
            pass
        expect("AuthenticationCanceled" in pair.outcome, pair.outcome)
        self.wait_unpaired(device)
        return pair.outcome

    def step_the_link_is_lost_while_everybody_is_asked(self) -> str:
        self.be_peripheral(None)
        phone = self.phone()
        device = self.connect(phone)
        phone.question()
        self.wait_for_agent()
        phone.get_lost()
        self.wait_unpaired(device)
        self.wait_for_cancel()
        return "the agent was told"

    def step_a_phone_that_falls_silent_is_dropped(self) -> str:
        self.be_peripheral()
        phone = self.phone("pairs=when-asked")
        device = self.connect(phone)
        pair = device.start("Pair")
        phone.question()
        try:
            pair.wait()
        except CallFailed:
            pass
        expect("AuthenticationCanceled" in pair.outcome, pair.outcome)
        self.wait_unpaired(device)
        return f"after {pair.seconds:.0f} s"

    # --- What is left as it was -------------------------------------------------------------------

    def step_another_agent_is_asked_again_once_ours_has_gone(self) -> str:
        self.end_peripheral()
        others = bluez.connect()
        desktop = Agent(others, True, YES_OR_NO, "/desktop")
        self.adapter_properties().Set(bluez.ADAPTER, "Pairable", dbus.Boolean(False, variant_level=1))
        self.be_peripheral()
        self.phone_pairs()
        expect((desktop.questions, self.peripheral.agent.questions) == ([], ["confirm"]), "the other")
        self.end_peripheral()
        expect(self.adapter.get("Pairable") == 0, "it is pairable now")
        self.be_peripheral()
        self.peripheral.agent.end()
        self.phone_pairs()
        expect(desktop.questions == ["confirm"], str(desktop.questions))
        self.peripheral.agent = Agent(self.bus)
        self.end_peripheral()
        desktop.end()
        others.close()
        return "and the adapter is as pairable as it was"

    def step_a_client_that_vanishes_leaves_nothing_but_that_the_adapter_is_pairable(self) -> str:
        others = bluez.connect()
        desktop = Agent(others, True, YES_OR_NO, "/desktop")
        self.adapter_properties().Set(bluez.ADAPTER, "Pairable", dbus.Boolean(False, variant_level=1))
        vanishing = bluez.connect()
        peripheral = Peripheral(vanishing, NAME)
        peripheral.start()
        phone = self.phone()
        device = self.connect(phone)
        phone.question()
        phone.answer()
        self.wait_for_identity(phone, device)
        vanishing.close()
        wait_for(lambda: not phone.see(), ONLY_A_HANG, "nothing is advertised")
        expect(phone.is_connected(), "the link was lost")
        expect(self.adapter.get("Pairable") == 1, "it is not pairable")
        self.be_peripheral()
        expect(self.peripheral.advertising("ActiveInstances") == 1, "another one is advertised")
        self.end_peripheral()
        desktop.end()
        others.close()
        return "its phone stays connected"

    def phone_pairs(self) -> None:
        phone = self.phone()
        device = self.connect(phone)
        phone.question()
        phone.answer()
        self.wait_for_identity(phone, device)

    def adapter_properties(self) -> dbus.Interface:
        adapter = self.bus.get_object(bluez.NAME, bluez.ADAPTER_PATH, introspect=False)
        return dbus.Interface(adapter, bluez.PROPERTIES)

    # --- Other controllers ------------------------------------------------------------------------

    def plug_in(self, ability: str) -> None:
        """A controller that advertises in this way."""
        self.end_peripheral()
        self.radio.tell("unplug")
        wait_for(lambda: self.adapter.get("Powered") is None, ONLY_A_HANG, "the adapter has gone")
        self.radio.tell(f"advertising {ability}")
        self.radio.tell("plug")
        wait_for(self.adapter.is_powered, ONLY_A_HANG, "the adapter is back and powered")

    def step_on_a_controller_with_extended_advertising_it_is_the_same(self) -> str:
        self.plug_in("extended sets=2")
        self.be_peripheral()
        expect(self.peripheral.advertising("SupportedInstances") == 1, "more than one set is left")
        self.phone_pairs()
        return "one set of two"

    def step_controllers_that_cannot_advertise_say_so(self) -> str:
        seen = []
        for ability, error in (
            ("extended sets=0", "NotPermitted"),
            ("extended refuses", "Failed"),
            ("older refuses", "Failed"),
        ):
            self.plug_in(ability)
            peripheral = Peripheral(self.bus, NAME)
            call = peripheral.advertise()
            try:
                call.wait()
            except CallFailed:
                pass
            expect(f"org.bluez.Error.{error}" in call.outcome, f"{ability}: {call.outcome}")
            expect(self.radio.tell("see") == "nothing", f"{ability}: {self.radio.tell('see')}")
            peripheral.end()
            seen.append(f"{ability}: {call.outcome}")
        self.plug_in("older")
        return "; ".join(seen)
