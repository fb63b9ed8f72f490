"""One QEMU guest: started, listened to until its command ends or a deadline passes, and always
cleared away."""

import os
import pathlib
import select
import shlex
import shutil
import subprocess
import sys
import tempfile
import time

from image import Image

HERE = pathlib.Path(__file__).resolve().parent
READY_LINE = b"guest-ready\n"
MEMORY_MEGABYTES = 1024
# tsc, cryptomgr: without them a boot sometimes hangs on calibration, and always takes 5 s longer.
# nohz: an idle guest still has 250 moments a second, so that while it reads one of the host's files its clock
# goes on by a few of these and not by all the seconds until its next timer.
KERNEL_COMMAND_LINE = (
    "console=ttyS0 quiet loglevel=4 panic=-1 reboot=t tsc=reliable mitigations=off "
    "random.trust_cpu=on cryptomgr.notests=1 nohz=off"
)
# The guest's clock counts its instructions, 2^2 ns each, which is about what emulation takes here; with
# nothing to do it is at its next timer at once. So no story waits, and a busy host changes none.
VIRTUAL_CLOCK = [("-icount", "shift=2,sleep=off"), ("-rtc", "clock=vm")]


class GuestError(Exception):
    """One line: how the guest failed, as opposed to its command."""


class CommandTimeout(GuestError):
    """The guest came up, but its command did not end in time."""


class Limits:
    """Seconds, from the start of QEMU: until the guest is up, and until its command has ended."""

    def __init__(self, boot: float, whole: float):
        self.boot = boot
        self.whole = whole


class Guest:
    """Runs one command as root in a fresh guest; its output goes to standard output as it comes."""

    def __init__(
        self,
        image: Image,
        command: list[str],
        environment: dict[str, str],
        results: pathlib.Path | None,
        console_copy: pathlib.Path | None,
    ):
        self.image = image
        self.command = command
        self.environment = environment
        self.results = results
        self.console_copy = console_copy

    def run(self, limits: Limits) -> int:
        """The command's exit status."""
        with tempfile.TemporaryDirectory(prefix="guest-") as folder:
            exchange = pathlib.Path(folder) / "exchange"
            console = pathlib.Path(folder) / "console"
            self._write_exchange(exchange)
            try:
                self._run_machine(exchange, console, limits)
                return _exit_status(exchange, console)
            finally:
                if self.console_copy is not None and console.exists():
                    shutil.copy(console, self.console_copy)

    def _write_exchange(self, exchange: pathlib.Path) -> None:
        exchange.mkdir()
        shutil.copy(HERE / "start", exchange / "start")
        (exchange / "modules").write_text(str(self.image.modules))
        if self.results is not None:
            (exchange / "with-results").touch()
        lines = [f"export {name}={shlex.quote(value)}" for name, value in self.environment.items()]
        lines += [f"cd {shlex.quote(os.getcwd())} || exit 125", f"exec {shlex.join(self.command)}"]
        (exchange / "command").write_text("".join(line + "\n" for line in lines))

    def _run_machine(self, exchange: pathlib.Path, console: pathlib.Path, limits: Limits) -> None:
        started = time.monotonic()
        # QEMU must not outlive this program, however it ends.
        bound_to_us = ["setpriv", "--pdeathsig", "KILL"]
        # Its input is a pipe that stays silent: at the end of its input QEMU would throw the
        # guest's output away.
        with subprocess.Popen(
            bound_to_us + self._machine_command(exchange, console),
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
        ) as machine:
            output = _Output(machine.stdout.fileno())
            try:
                if not output.wait_for_ready(started + limits.boot):
                    how = f"did not boot within {limits.boot:g} s"
                    if output.ended:
                        how = "stopped before it was up"
                    raise GuestError(f"the guest {how} ({_last_words(console)})")
                if not output.copy_until_end(started + limits.whole):
                    raise CommandTimeout(f"{self.command[0]} did not end within {limits.whole:g} s")
                machine.wait()
            finally:
                machine.kill()

    def _machine_command(self, exchange: pathlib.Path, console: pathlib.Path) -> list[str]:
        program = shutil.which("qemu-system-x86_64")
        if program is None:
            raise GuestError("qemu-system-x86_64 is missing (see tests/vm/packages)")
        options = [
            # Never hardware virtualisation: it may be there and still hang the guest.
            ("-accel", "tcg"),
            *VIRTUAL_CLOCK,
            ("-cpu", "max"),
            ("-smp", "1"),
            ("-m", str(MEMORY_MEGABYTES)),
            # The smaller machine types do not always boot without hardware virtualisation.
            ("-M", "q35"),
            ("-display", "none"),
            ("-kernel", str(self.image.kernel)),
            ("-initrd", str(self.image.initramfs)),
            ("-append", KERNEL_COMMAND_LINE),
            ("-chardev", f"file,id=console,path={_escaped(console)}"),
            ("-serial", "chardev:console"),
            ("-chardev", "stdio,id=output,signal=off"),
            ("-device", "virtio-serial-pci"),
            ("-device", "virtconsole,chardev=output"),
            *_shared_folder("host", pathlib.Path("/"), ",readonly=on"),
            *_shared_folder("exchange", exchange),
        ]
        if self.results is not None:
            options += _shared_folder("results", self.results)
        flags = ["-no-user-config", "-nodefaults", "-no-reboot"]
        return [program, *flags, *(word for option in options for word in option)]


class _Output:
    """The guest's console as the command sees it."""

    def __init__(self, descriptor: int):
        self.descriptor = descriptor
        self.received = b""
        self.ended = False

    def wait_for_ready(self, deadline: float) -> bool:
        while not self.received.startswith(READY_LINE):
            if not self._receive(deadline):
                return False
        self.received = self.received.removeprefix(READY_LINE)
        return True

    def copy_until_end(self, deadline: float) -> bool:
        while True:
            sys.stdout.buffer.write(self.received)
            sys.stdout.buffer.flush()
            self.received = b""
            if not self._receive(deadline):
                return self.ended

    def _receive(self, deadline: float) -> bool:
        """False when nothing more came: the guest has ended or the deadline has passed."""
        left = max(0.0, deadline - time.monotonic())
        ready, _, _ = select.select([self.descriptor], [], [], left)
        if not ready:
            return False
        piece = os.read(self.descriptor, 65536)
        self.ended = not piece
        self.received += piece
        return not self.ended


def _shared_folder(tag: str, path: pathlib.Path, more: str = "") -> list[tuple[str, str]]:
    # remap: the host's root may span file systems whose inode numbers collide.
    source = f"local,id={tag},path={_escaped(path)},security_model=none,multidevs=remap{more}"
    return [("-fsdev", source), ("-device", f"virtio-9p-pci,fsdev={tag},mount_tag={tag}")]


def _escaped(path: pathlib.Path) -> str:
    return str(path).replace(",", ",,")


def _exit_status(exchange: pathlib.Path, console: pathlib.Path) -> int:
    try:
        return int((exchange / "status").read_text())
    except (OSError, ValueError):
        words = _last_words(console)
        raise GuestError(f"the guest stopped before its command had ended ({words})") from None


def _last_words(console: pathlib.Path) -> str:
    try:
        lines = console.read_text(errors="replace").strip().splitlines()
    except OSError:
        lines = []
    told = [line for line in lines if "guest init: " in line] or lines
    return f"console: {told[-1].strip()}" if told else "nothing on its console"
