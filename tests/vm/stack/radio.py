"""The virtual controller and the devices around it, driven through its control socket."""

import json
import pathlib
import socket

from .daemon import Daemon
from .waiting import ONLY_A_HANG, wait_for



class Refused(Exception):
    """The controller answered with an error."""


class Radio:
    """Starts on construction; the instructions are listed in controller/instruction.h."""

    def __init__(self, program: pathlib.Path, control: pathlib.Path, logs: pathlib.Path):
        control.unlink(missing_ok=True)
        self.daemon = Daemon(
            "virtual-controller", [str(program), "--control", str(control)], logs
        )
        self.connection = socket.socket(socket.AF_UNIX)
        self.connection.settimeout(ONLY_A_HANG)
        wait_for(
            lambda: self._connect(control) or self.daemon.check_running(),
            ONLY_A_HANG,
            "the virtual controller listens",
        )
        self.answers = self.connection.makefile("r", encoding="utf-8")

    def tell(self, instruction: str) -> str:
        """What follows the "ok" of the answer."""
        self.connection.sendall(instruction.encode() + b"\n")
        answer = self.answers.readline().rstrip("\n")
        if answer != "ok" and not answer.startswith("ok "):
            raise Refused(f"{instruction}: {answer or 'the controller has gone'}")
        return answer.removeprefix("ok").strip()

    def status(self) -> dict[str, str]:
        return dict(word.split("=", 1) for word in self.tell("status").split())

    def is_scanning(self) -> bool:
        return self.status()["scanning"] == "yes"

    def scans_started(self) -> int:
        """How often the kernel has switched the scan on."""
        return int(self.status()["scans-started"])

    def is_connecting(self) -> bool:
        """Whether the kernel has asked for a connection that has not come about yet."""
        return self.status()["connecting"] == "yes"

    def connected(self) -> list[str]:
        """The names of the devices that are connected."""
        return [name for name in self.status()["connected"].split(",") if name]

    def device(self, name: str) -> dict[str, str]:
        """What `device-status` says of it."""
        words = self.tell(f"device-status {name}").split()
        return dict(word.split("=", 1) for word in words)

    def connects(self, name: str) -> int:
        """How often it has been connected so far."""
        return int(self.device(name)["connects"])

    def rotate(self, name: str) -> str:
        """The private address that it goes by from now on."""
        return self.tell(f"rotate {name}")

    def flood_result(self) -> dict | None:
        """None while the flood runs; then {"reports": N, "devices": {address: last RSSI}}."""
        try:
            return json.loads(self.tell("flood-result"))
        except Refused as refused:
            if "is running" in str(refused):
                return None
            raise

    def end(self) -> None:
        if self.daemon.is_running():
            self.tell("quit")
            wait_for(lambda: not self.daemon.is_running(), ONLY_A_HANG, "the controller ends")
        self.connection.close()

    def _connect(self, control: pathlib.Path) -> bool:
        try:
            self.connection.connect(str(control))
        except OSError:
            return False
        return True
