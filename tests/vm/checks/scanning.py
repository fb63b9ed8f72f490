"""What a client of BlueZ hears of devices that advertise, and what it takes to lose that."""

import json
import signal
import subprocess
import time

import dbus

from stack import bluez
from stack.waiting import wait_for, watch_for

from .base import Checks, expect

KEY = "00:00:5E:00:53:10"
WATCH = "C0:00:00:00:00:11"
# The kernel restarts a discovery scan this often.
SCAN_SECONDS = 10.24


class Scanning(Checks):
    def step_discovery_hears_a_device(self) -> str:
        self.radio.tell(
            f"device key address={KEY} type=public rssi=-50 interval=0.3 name=Key connectable"
        )
        self.radio.tell(
            f"device watch address={WATCH} type=random rssi=-70 interval=0.3 manufacturer=FFFF01"
        )
        self.adapter.start_discovery()
        connectable = self.hear(KEY, -50)
        plain = self.hear(WATCH, -70)
        return f"connectable after {connectable:.2f} s, then the other after {plain:.2f} s"

    def step_a_changed_strength_is_told(self) -> str:
        self.radio.tell("rssi key -63")
        return f"after {self.hear(KEY, -63):.2f} s"

    def step_equal_strengths_are_told_each_time(self) -> str:
        self.listener.forget()
        watch_for(6)
        heard = self.listener.of(KEY)
        expect(len(heard) >= 15, f"{len(heard)} signals in 6 s of 20 advertisements")
        expect({sample.rssi for sample in heard} == {-63}, "other strengths than the one sent")
        return f"{len(heard)} signals of 20 advertisements"

    def step_a_silent_device_is_not_told(self) -> str:
        self.radio.tell("silent key")
        # What was on its way has arrived when the other device has been heard twice more.
        self.hear(WATCH, -70)
        self.hear(WATCH, -70)
        self.listener.forget()
        watch_for(4)
        expect(not self.listener.of(KEY), "the silent device was told")
        expect(len(self.listener.of(WATCH)) >= 5, "the loud device was not told")
        self.radio.tell("loud key")
        return f"loud again, heard after {self.hear(KEY, -63):.2f} s"

    def step_an_empty_pattern_protects(self) -> str:
        other_bus = bluez.connect()
        other = bluez.Adapter(other_bus)
        narrow = bluez.discovery_filter()
        narrow["Pattern"] = "nobody"
        other.start_discovery(narrow)
        guarded = self.hear(KEY, -63)
        bare = bluez.discovery_filter()
        del bare["Pattern"]
        self.adapter.set_filter(bare)
        scans = self.radio.scans_started()
        wait_for(
            lambda: self.radio.scans_started() > scans and self.radio.is_scanning(),
            SCAN_SECONDS + 5,
            "the scan starts anew",
        )
        self.listener.forget()
        watch_for(4)
        unguarded = len(self.listener.of(KEY))
        other_bus.close()
        self.adapter.set_filter(bluez.discovery_filter())
        self.hear(KEY, -63)
        return (
            f"with another client's pattern: heard after {guarded:.2f} s; "
            f"without our own empty pattern {unguarded} signals in 4 s"
        )

    def step_power_off_and_on(self) -> str:
        started = time.monotonic()
        self.adapter.set_powered(False)
        off = time.monotonic() - started
        expect(not self.radio.is_scanning(), "the controller still scans")
        started = time.monotonic()
        self.adapter.set_powered(True)
        on = time.monotonic() - started
        refusals = self.adapter.start_discovery()
        heard = self.hear(KEY, -63)
        return (
            f"off in {off:.2f} s, on in {on:.2f} s, "
            f"{len(refusals)} refusals, heard {heard:.2f} s later"
        )

    def step_bluetoothd_stopped_and_started(self) -> str:
        return self.restart(signal.SIGTERM)

    def step_bluetoothd_killed_and_started(self) -> str:
        return self.restart(signal.SIGKILL)

    def restart(self, how: signal.Signals) -> str:
        started = time.monotonic()
        self.system.stop_bluetoothd(how)
        scanning = self.radio.is_scanning()
        self.system.start_bluetoothd()
        powered = time.monotonic() - started
        refusals = self.adapter.start_discovery()
        heard = self.hear(KEY, -63)
        return (
            f"scan {'left on' if scanning else 'ended'}; powered after {powered:.2f} s, "
            f"{len(refusals)} refusals {sorted(set(refusals))}, heard {heard:.2f} s later"
        )

    def step_unplugged_and_plugged(self) -> str:
        self.radio.tell("unplug")
        wait_for(lambda: self.adapter.get("Powered") is None, 20, "the adapter has gone")
        self.radio.tell("plug")
        wait_for(self.adapter.is_powered, 30, "the adapter is back and powered")
        refusals = self.adapter.start_discovery()
        return f"{len(refusals)} refusals, heard {self.hear(KEY, -63):.2f} s later"

    def step_a_flood_is_counted(self) -> str:
        # This script is too slow to listen to it as well.
        self.listener.end()
        try:
            return self.flood(count=100, rate=300, seconds=10)
        finally:
            self.listener = self.system.listen()

    def flood(self, count: int, rate: int, seconds: int) -> str:
        for name in ("key", "watch"):
            self.radio.tell(f"silent {name}")
        counter = self.system.start_program(
            "advertisement-counter", [str(self.programs / "advertisement-counter")]
        )
        wait_for(
            lambda: "ready" in counter.log.read_text(encoding="utf-8") or counter.check_running(),
            20,
            "the counter listens",
        )
        started = time.monotonic()
        self.radio.tell(f"flood count={count} rate={rate} seconds={seconds}")
        sent = wait_for(self.radio.flood_result, seconds * 3 + 10, "the flood ends")
        took = time.monotonic() - started
        self.adapter.get("Powered")
        counter.end()
        told = json.loads(counter.log.read_text(encoding="utf-8").splitlines()[-1])
        for name in ("key", "watch"):
            self.radio.tell(f"loud {name}")
        wrong = [
            address
            for address, rssi in sent["devices"].items()
            if told["devices"].get(address, {}).get("rssi") != rssi
        ]
        expect(len(sent["devices"]) == count, f"only {len(sent['devices'])} devices were sent")
        # A few are lost where the kernel restarts its scan.
        expect(told["signals"] > 0.95 * sent["reports"], f"only {told['signals']} signals")
        expect(not wrong, f"last strengths differ for {len(wrong)} of {count} devices")
        return (
            f"{sent['reports']} of {rate * seconds + count} reports delivered in {took:.1f} s, "
            f"{told['signals']} signals, all {count} last strengths right"
        )

    def step_a_filtering_controller_reports_once_a_scan(self) -> str:
        self.radio.tell("filter-duplicates obey")
        self.hear(KEY, -63)
        scans = self.radio.scans_started()
        self.listener.forget()
        watch_for(2.5 * SCAN_SECONDS)
        heard = self.listener.of(KEY)
        scans = self.radio.scans_started() - scans
        # The kernel drops what arrives in the milliseconds between switching the scan on and
        # calling it on; a filtering controller does not say it again before the next scan.
        expect(1 <= len(heard) <= 4, f"{len(heard)} signals in 2.5 scans")
        gaps = [later.when - sooner.when for sooner, later in zip(heard, heard[1:])]
        return f"{len(heard)} signals, {scans} scans, gaps {[round(gap, 2) for gap in gaps]} s"

    def step_toggling_the_filter_restarts_the_scan(self) -> str:
        """Says what happens; nothing is expected, since BlueZ promises nothing here."""
        self.hear(KEY, -63)
        seen = []
        for rssi in (-126, -127, -126, -127):
            scans = self.radio.scans_started()
            self.listener.forget()
            asked = time.monotonic()
            self.adapter.set_filter(bluez.discovery_filter(rssi))
            # Shorter than a scan, so that the ordinary restart is rarely taken for ours.
            watch_for(3)
            delays = [round(sample.when - asked, 2) for sample in self.listener.of(KEY)]
            seen.append(f"{self.radio.scans_started() - scans} scans, heard after {delays} s")
        self.radio.tell("filter-duplicates ignore")
        return "; ".join(seen)

    def step_the_clock_is_set_an_hour_on(self) -> str:
        subprocess.run(
            ["date", "-s", "+1 hour"], check=True, capture_output=True, encoding="utf-8"
        )
        self.listener.forget()
        watch_for(SCAN_SECONDS + 2)
        heard = len(self.listener.of(KEY))
        expect(heard >= 30, f"{heard} signals of about 40 advertisements afterwards")
        return f"{heard} signals of about 40 advertisements afterwards"

    def step_the_login_counts_locks(self) -> str:
        before = self.system.login.lock_calls()
        session = self.system.bus.get_object(
            "org.freedesktop.login1", self.system.login.session_path, introspect=False
        )
        dbus.Interface(session, "org.freedesktop.login1.Session").Lock()
        expect(self.system.login.lock_calls() == before + 1, "the lock was not counted")
        return "one asked for, one counted"
