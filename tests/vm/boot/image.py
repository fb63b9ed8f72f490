"""What the guest boots from, in a cache folder: Debian's stock kernel with its modules, and an
initramfs.

The kernel is unpacked, never installed. Both are made under another name and renamed when they are
complete, so that an interrupted or a second run never finds half of one.
"""

import hashlib
import lzma
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

KERNEL_METAPACKAGE = "linux-image-amd64"
# Debian's 6.1.192 deletes a Bluetooth channel twice when a link is lost while a request is under
# way: a kernel BUG that takes bluetoothd along. 6.1.190 and 6.12 do not.
BROKEN_KERNELS = ["linux-image-6.1.0-55-amd64", "linux-image-6.1.0-56-amd64"]
INITRAMFS_MODULES = ["virtio_pci", "virtio_console", "9pnet_virtio", "9p", "overlay"]
XZ_MAGIC = b"\xfd7zXZ\x00"
HERE = pathlib.Path(__file__).resolve().parent


class ImageError(Exception):
    """One line: what could not be made and why."""


class Image:
    """The files a guest boots from; `kernel`, `initramfs` and `modules` exist."""

    def __init__(self, kernel: pathlib.Path, initramfs: pathlib.Path, modules: pathlib.Path):
        self.kernel = kernel
        self.initramfs = initramfs
        self.modules = modules


def prepare(cache: pathlib.Path) -> Image:
    """The image in the cache folder, made first where it is missing."""
    try:
        cache.mkdir(parents=True, exist_ok=True)
        folder = _kernel_folder(cache)
        return Image(folder / "kernel", _initramfs(folder), folder / "lib/modules")
    except OSError as error:
        raise ImageError(f"cannot prepare the guest in {cache}: {error}") from error


def _kernel_folder(cache: pathlib.Path) -> pathlib.Path:
    present = [kernel.parent for kernel in sorted(cache.glob("linux-image-*/kernel"))]
    usable = [folder for folder in present if folder.name not in BROKEN_KERNELS]
    if usable:
        return usable[-1]
    package = _kernel_package()
    with tempfile.TemporaryDirectory(prefix="partial-", dir=cache) as partial:
        made = pathlib.Path(partial)
        _unpack_kernel(package, made)
        return _publish(made / "unpacked", cache / package)


def _kernel_package() -> str:
    listed = _run(["apt-cache", "depends", KERNEL_METAPACKAGE])
    found = re.search(r"Depends: (linux-image-\S+)", listed)
    if not found:
        raise ImageError(
            f"apt-cache knows no {KERNEL_METAPACKAGE} (is this Debian, and has apt-get update run?)"
        )
    package = found.group(1)
    return _neighbour_of(package) if package in BROKEN_KERNELS else package


def _neighbour_of(broken: str) -> str:
    """The newest kernel of the same series that is not known to be broken."""
    series, _, kind = re.fullmatch(r"(.*-)(\d+)(-\w+)", broken).groups()
    form = re.compile(re.escape(series) + r"(\d+)" + re.escape(kind))
    listed = map(form.fullmatch, _run(["apt-cache", "pkgnames", series]).split())
    usable = [found for found in listed if found and found.group() not in BROKEN_KERNELS]
    if not usable:
        raise ImageError(f"{broken} crashes in these tests, and apt-cache knows no other {series}N")
    return max(usable, key=lambda found: int(found.group(1))).group()


def _unpack_kernel(package: str, made: pathlib.Path) -> None:
    _run(["apt-get", "download", package], cwd=made)
    archives = list(made.glob("*.deb"))
    if len(archives) != 1:
        raise ImageError(f"apt-get download {package} left no package file")
    unpacked = made / "unpacked"
    _run(["dpkg", "-x", str(archives[0]), str(unpacked)])
    compressed = next(unpacked.glob("boot/vmlinuz-*"), None)
    if compressed is None:
        raise ImageError(f"{package} holds no boot/vmlinuz-*")
    if not (unpacked / "lib").exists():
        # Debian 13's packages name the modules' real folder, which depmod and modprobe never do.
        (unpacked / "usr/lib").rename(unpacked / "lib")
    _run(["depmod", "-b", str(unpacked), compressed.name.removeprefix("vmlinuz-")])
    (unpacked / "kernel").write_bytes(_uncompressed(compressed.read_bytes()))
    for unused in ("boot", "usr"):
        shutil.rmtree(unpacked / unused, ignore_errors=True)


def _uncompressed(kernel: bytes) -> bytes:
    """The kernel inside an xz-compressed boot image, which spares the slow guest from unpacking it.

    A kernel packed in another way boots as it is, some seconds later.
    """
    start = kernel.find(XZ_MAGIC)
    return lzma.LZMADecompressor().decompress(kernel[start:]) if start >= 0 else kernel


def _initramfs(folder: pathlib.Path) -> pathlib.Path:
    """Named after what it is made from, so that a changed init is never booted from an old file."""
    init = (HERE / "init").read_bytes()
    recipe = hashlib.sha256(init + pathlib.Path(__file__).read_bytes()).hexdigest()[:12]
    target = folder / f"initramfs-{recipe}"
    if target.exists():
        return target
    with tempfile.TemporaryDirectory(prefix="partial-", dir=folder) as partial:
        tree = pathlib.Path(partial) / "tree"
        _fill_initramfs(tree, init, folder)
        names = sorted(str(path.relative_to(tree)) for path in tree.rglob("*"))
        pack = ["busybox", "cpio", "-o", "-H", "newc"]
        made = pathlib.Path(partial) / "initramfs"
        made.write_bytes(_run_raw(pack, cwd=tree, text_in="\n".join(names)))
        os.replace(made, target)
    return target


def _fill_initramfs(tree: pathlib.Path, init: bytes, folder: pathlib.Path) -> None:
    for name in ("bin", "dev", "proc", "lower", "upper", "root", "modules"):
        (tree / name).mkdir(parents=True)
    (tree / "init").write_bytes(init)
    (tree / "init").chmod(0o755)
    busybox = shutil.which("busybox")
    if busybox is None:
        raise ImageError("busybox is missing (see tests/vm/packages)")
    shutil.copy(busybox, tree / "bin/busybox")
    order = []
    for module in _modules_in_loading_order(folder):
        content, name = module.read_bytes(), module.name
        if name.endswith(".xz"):
            content, name = lzma.decompress(content), name.removesuffix(".xz")
        (tree / "modules" / name).write_bytes(content)
        order.append(name)
    (tree / "modules/order").write_text("".join(name + "\n" for name in order))


def _modules_in_loading_order(folder: pathlib.Path) -> list[pathlib.Path]:
    release = next((folder / "lib/modules").iterdir()).name
    listed = _run(["modprobe", "-d", str(folder), "-S", release, "--all", "-D", *INITRAMFS_MODULES])
    loads = [line.split()[1] for line in listed.splitlines() if line.startswith("insmod ")]
    return [pathlib.Path(path) for path in dict.fromkeys(loads)]


def _publish(made: pathlib.Path, target: pathlib.Path) -> pathlib.Path:
    try:
        os.rename(made, target)
    except OSError:
        # Another run was faster; its result is as good.
        if not (target / "kernel").exists():
            raise
    return target


def _run(command: list[str], cwd: pathlib.Path | None = None) -> str:
    return _run_raw(command, cwd).decode()


def _run_raw(command: list[str], cwd: pathlib.Path | None, text_in: str = "") -> bytes:
    # depmod and modprobe live where a normal user does not look.
    path = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"
    environment = {**os.environ, "PATH": path, "LC_ALL": "C"}
    program = shutil.which(command[0], path=path)
    if program is None:
        raise ImageError(f"{command[0]} is missing (see tests/vm/packages)")
    done = subprocess.run(
        [program, *command[1:]],
        cwd=cwd,
        env=environment,
        input=text_in.encode(),
        capture_output=True,
        check=False,
    )
    if done.returncode != 0:
        told = done.stderr.decode(errors="replace").strip().splitlines() or ["no reason given"]
        raise ImageError(f"{' '.join(command[:3])} failed: {told[-1]}")
    return done.stdout
