"""The application as a folder, and the image of it: one archive, the same bytes for everybody.

For tools/release and tools/package.
"""

import contextlib
import datetime
import io
import os
import pathlib
import re
import stat
import subprocess
import tarfile
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
APPLICATION = "Wegslot.app"  # the one folder of an image
LATEST_DATE = 8**11 - 1  # eleven octal digits
LARGEST_CONTENT = 1 << 30  # in bytes; what src/update accepts at most


class Failure(Exception):
    """What went wrong and where, in one line."""


@contextlib.contextmanager
def named(place):
    """Says where the system refused something."""
    try:
        yield
    except OSError as error:
        raise Failure(f"{place}: {error.strerror}") from None


def run(*command, content=b"", environment=None):
    """What the command makes of the content; nothing where it fails."""
    try:
        with named(command[0]):
            done = subprocess.run(
                command, input=content, capture_output=True, env=environment, timeout=60)
    except subprocess.TimeoutExpired:
        raise Failure(f"{command[0]}: no answer in a minute") from None
    return done.stdout if done.returncode == 0 else None


def contents(path):
    with named(path):
        return path.read_bytes()


def text_of(path):
    try:
        return contents(path).decode()
    except UnicodeDecodeError:
        raise Failure(f"{path}: not UTF-8") from None


def write_whole(path, content):
    """All of it or nothing, whoever looks on; readable for everybody, as what is published is."""
    with named(path):
        handle, name = tempfile.mkstemp(prefix=".release-", dir=path.parent)
        try:
            with open(handle, "wb") as file:
                file.write(content)
                os.fchmod(handle, 0o644)
                file.flush()
                os.fsync(handle)
            os.replace(name, path)
        except BaseException:
            os.unlink(name)
            raise


# The folder


def setting(pattern):
    """What the top CMakeLists.txt says, the one place for it."""
    found = re.search(pattern, text_of(ROOT / "CMakeLists.txt"), re.MULTILINE)
    if found is None:
        raise Failure(f"{ROOT / 'CMakeLists.txt'}: nothing like {pattern}")
    return found[1]


def version():
    return setting(r"^project\(Wegslot VERSION ([0-9.]+) ")


def build_number():
    return setting(r"^  set\(WEGSLOT_BUILD ([0-9]+)\)$")


def day_of_version():
    """In seconds since 1970."""
    day = datetime.date.fromisoformat(setting(r"^set\(WEGSLOT_RELEASED ([-0-9]+)\)$"))
    return int(datetime.datetime.combine(day, datetime.time(), datetime.timezone.utc).timestamp())


def run_aloud(*command, folder=ROOT, environment=None):
    """For what takes long, and says itself what is wrong."""
    with named(command[0]):
        status = subprocess.run(command, cwd=folder, env=environment).returncode
    if status != 0:
        raise Failure(f"{command[0]} ended with {status}, see above")


def build(url, public, date):
    """From nothing, so that nothing of earlier builds is in it."""
    commands = [
        ["tools/install", "tools/packages/build", "tools/packages/release"],
        ["cmake", "--preset", "bundle", f"-DWEGSLOT_FEED_URL={url}",
         f"-DWEGSLOT_PUBLIC_KEY={public}"],
        ["cmake", "--build", "--preset", "bundle", "--clean-first"],
    ]
    # The icons in the program carry a date as well.
    environment = os.environ | {"SOURCE_DATE_EPOCH": str(date)}
    for command in commands:
        run_aloud(*command, environment=environment)
    return ROOT / "build/bundle" / APPLICATION


# The image


def release_date():
    """Of all that is packed, in seconds since 1970."""
    given = os.environ.get("SOURCE_DATE_EPOCH")
    if given is None:
        # Without a history, as sources from an archive are, or without git.
        committed = None
        with contextlib.suppress(Failure):
            committed = run("git", "-C", ROOT, "log", "-1", "--format=%ct")
        return int(committed or day_of_version())
    if not re.fullmatch("[0-9]{1,11}", given, re.ASCII) or int(given) > LATEST_DATE:
        raise Failure(f"SOURCE_DATE_EPOCH: not a date in seconds: {given}")
    return int(given)


def members(bundle):
    """All paths of the bundle, a folder before what is in it, in an order of their bytes."""
    def unreadable(error):
        raise Failure(f"{error.filename}: {error.strerror}")

    found = [bundle]
    for folder, folders, files in os.walk(bundle, onerror=unreadable):
        found += [pathlib.Path(folder, name) for name in folders + files]
    return sorted(found, key=lambda path: os.fsencode(path).split(b"/"))


def member(path, name, date):
    """The header of one member, nothing in it but the name, the size and the right to execute."""
    header = tarfile.TarInfo(name)
    status = path.lstat()
    header.mtime = date
    header.mode = 0o755
    if stat.S_ISDIR(status.st_mode):
        header.type = tarfile.DIRTYPE
    elif stat.S_ISREG(status.st_mode):
        header.size = status.st_size
        if not status.st_mode & 0o111:
            header.mode = 0o644
    else:
        raise Failure(f"{path}: neither a file nor a folder")
    if not name.isprintable():
        raise Failure(f"{str(path)!r}: a name that cannot be printed")
    return header


def image_of(bundle, date):
    """The same bytes for the same bundle, whenever, wherever and by whomever it is made."""
    packed = io.BytesIO()
    left = LARGEST_CONTENT
    with tarfile.open(fileobj=packed, mode="w", format=tarfile.USTAR_FORMAT,
                      encoding="utf-8") as archive:
        for path in members(bundle):
            name = pathlib.PurePath(APPLICATION, path.relative_to(bundle)).as_posix()
            header = member(path, name, date)
            left -= header.size
            if left < 0:
                raise Failure(f"{bundle}: larger than {LARGEST_CONTENT} bytes")
            content = contents(path) if header.isfile() else b""
            header.size = len(content)
            try:
                archive.addfile(header, io.BytesIO(content))
            except ValueError:
                raise Failure(f"{path}: too long a name") from None
    # By gzip, whose output has been the same for many years; zlib's differs from one to the next.
    environment = {name: value for name, value in os.environ.items() if name != "GZIP"}
    image = run("gzip", "-n", "-9", content=packed.getvalue(), environment=environment)
    if image is None:
        raise Failure("gzip: cannot compress the image")
    return image
