#!/usr/bin/env python3
"""Reads the signal strength of every LE link from a raw HCI socket, which needs no privilege: run
it as nobody. Prints one JSON list: [{"address": A, "handle": N, "status": N, "rssi": DBM}, ...]."""

import fcntl
import json
import socket
import struct

HCI_DEVICE = 0
SOL_HCI = 0
HCI_FILTER = 2
# _IOR('H', 212, int)
HCIGETCONNLIST = 0x800448D4
LE_LINK = 0x80
MOST_LINKS = 16
LINK = struct.Struct("<H6sBBHI")
READ_RSSI = 0x1405
COMMAND_PACKET = 1
EVENT_PACKET = 4
COMMAND_COMPLETE = 0x0E
ANSWER_SECONDS = 5


def open_socket() -> socket.socket:
    hci = socket.socket(socket.AF_BLUETOOTH, socket.SOCK_RAW, socket.BTPROTO_HCI)
    hci.settimeout(ANSWER_SECONDS)
    wanted = struct.pack("<IIIHxx", 1 << EVENT_PACKET, 1 << COMMAND_COMPLETE, 0, READ_RSSI)
    hci.setsockopt(SOL_HCI, HCI_FILTER, wanted)
    hci.bind((HCI_DEVICE,))
    return hci


def links(hci: socket.socket) -> list[tuple[str, int]]:
    """Address and handle of every LE link."""
    room = bytearray(struct.pack("<HH", HCI_DEVICE, MOST_LINKS) + bytes(MOST_LINKS * LINK.size))
    fcntl.ioctl(hci, HCIGETCONNLIST, room)
    count = struct.unpack_from("<H", room, 2)[0]
    found = []
    for at in range(count):
        handle, address, kind, *_ = LINK.unpack_from(room, 4 + at * LINK.size)
        if kind == LE_LINK:
            found.append((":".join(f"{byte:02X}" for byte in reversed(address)), handle))
    return found


def read_rssi(hci: socket.socket, handle: int) -> tuple[int, int]:
    """Status and dBm."""
    hci.send(struct.pack("<BHBH", COMMAND_PACKET, READ_RSSI, 2, handle))
    while True:
        answer = hci.recv(260)
        kind, event, _, _, opcode = struct.unpack_from("<BBBBH", answer)
        if (kind, event, opcode) != (EVENT_PACKET, COMMAND_COMPLETE, READ_RSSI):
            continue
        status, answered, rssi = struct.unpack_from("<BHb", answer, 6)
        if answered == handle:
            return status, rssi


def main() -> None:
    with open_socket() as hci:
        told = []
        for address, handle in links(hci):
            status, rssi = read_rssi(hci, handle)
            told.append({"address": address, "handle": handle, "status": status, "rssi": rssi})
    print(json.dumps(told))


if __name__ == "__main__":
    main()
