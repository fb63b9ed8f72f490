"""A phone that its owner holds beside the computer: it sees what the computer advertises, connects to
it, pairs, and goes by addresses that change."""

import dataclasses

from .radio import Radio
from .waiting import ONLY_A_HANG, wait_for

FLAGS = 0x01
UUIDS = (0x02, 0x03)
NAMES = (0x08, 0x09)
APPEARANCE = 0x19
REMOTE_USER = "13"
SUPERVISION = "08"


@dataclasses.dataclass
class Seen:
    """One advertisement, with what a phone that asks is told besides."""

    address: str
    connectable: bool
    flags: int | None = None
    name: str | None = None
    uuids: list[str] = dataclasses.field(default_factory=list)
    appearance: int | None = None
    # The data alone, without what is told to who asks.
    data: bytes = b""

    def take(self, data: bytes) -> None:
        while data:
            content = data[2 : data[0] + 1]
            kind = data[1] if data[0] else 0
            data = data[data[0] + 1 :]
            if kind == FLAGS:
                self.flags = content[0]
            elif kind in UUIDS:
                pairs = zip(content[::2], content[1::2])
                self.uuids += [f"{high:02X}{low:02X}" for low, high in pairs]
            elif kind in NAMES:
                self.name = content.decode()
            elif kind == APPEARANCE:
                self.appearance = int.from_bytes(content, "little")


class Phone:
    """Comes on construction; `options` are those of controller/instruction.h. It advertises only where
    it is told to."""

    def __init__(self, radio: Radio, name: str, address: str, options: str = ""):
        self.radio = radio
        self.name = name
        self.identity = address
        radio.tell(f"device {name} address={address} connectable silent {options}")

    @property
    def address(self) -> str:
        """That it goes by now."""
        return self.radio.device(self.name)["address"]

    def see(self) -> list[Seen]:
        """What the computer advertises."""
        told = self.radio.tell("see")
        if told == "nothing":
            return []
        seen: list[Seen] = []
        for key, value in (word.split("=", 1) for word in told.split()):
            if key == "address":
                seen.append(Seen(value, False))
            elif key == "connectable":
                seen[-1].connectable = value == "yes"
            elif key in ("data", "response"):
                seen[-1].take(bytes.fromhex(value))
                seen[-1].data = seen[-1].data or bytes.fromhex(value)
        return seen

    def find(self, name: str) -> Seen:
        """Waits until the computer is seen under this name."""
        return wait_for(
            lambda: next((each for each in self.see() if each.name == name), None),
            ONLY_A_HANG,
            f"{self.name} sees {name}",
        )

    def connect(self) -> None:
        self.radio.tell(f"connect {self.name}")

    def is_connected(self) -> bool:
        return self.name in self.radio.connected()

    def disconnect(self) -> None:
        self.radio.tell(f"drop {self.name} {REMOTE_USER}")

    def get_lost(self) -> None:
        """Its link is lost, as when it is carried away."""
        self.radio.tell(f"drop {self.name} {SUPERVISION}")

    def pair(self) -> None:
        self.radio.tell(f"pair {self.name}")

    def forget(self) -> None:
        self.radio.tell(f"forget {self.name}")

    def rotate(self) -> str:
        return self.radio.rotate(self.name)

    def status(self) -> dict[str, str]:
        """What it has seen and agreed on, as the one that connects."""
        words = self.radio.tell(f"central-status {self.name}").split()
        return dict(word.split("=", 1) for word in words)

    def wait_for(self, name: str, *values: str) -> str:
        """Until its status has one of these values; which."""
        return wait_for(
            lambda: next((each for each in values if self.status()[name] == each), None),
            ONLY_A_HANG,
            f"{self.name} has {name} {' or '.join(values)}, not {self.status()[name]}",
        )

    def question(self) -> str:
        """What its owner is asked: "consent", "type", or six digits that are to be compared."""
        return wait_for(
            lambda: self.status()["question"].replace("none", ""),
            ONLY_A_HANG,
            f"the owner of {self.name} is asked",
        )

    def answer(self, answer: str = "yes") -> None:
        self.radio.tell(f"answer {self.name} {answer}")

    def read_location(self) -> str:
        """Where the sensor is worn, which only a phone that has paired is told. bluetoothd refuses it
        until it has learned who has paired, a moment after the phone knows that it has."""

        def read() -> str | None:
            location = self.status()["location"]
            if location not in ("unknown", "refused"):
                return location
            self.radio.tell(f"look {self.name}")
            return None

        return wait_for(read, ONLY_A_HANG, f"{self.name} reads what is protected")

    def is_encrypted(self) -> bool:
        return self.radio.device(self.name)["encrypted"] == "yes"

    def is_bonded(self) -> bool:
        return self.radio.device(self.name)["bonded"] == "yes"

    def advertise(self, rssi: int = -50) -> None:
        self.radio.tell(f"rssi {self.name} {rssi}")
        self.radio.tell(f"loud {self.name}")

    def fall_silent(self) -> None:
        self.radio.tell(f"silent {self.name}")
