#!/usr/bin/env python3
"""Draws the sample document's icons: one small PNG per icon URL, a coloured badge whose
shape and colour follow from the file name. Run from this folder after editing events.json."""
import json
import pathlib
import struct
import zlib
import hashlib

SIZE = 32
PREFIX = "{service}/icons/"


def png(pixels):
    raw = b"".join(b"\0" + bytes(row) for row in pixels)
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def badge(name):
    digest = hashlib.sha256(name.encode()).digest()
    colour = (64 + digest[0] % 160, 64 + digest[1] % 160, 64 + digest[2] % 160)
    shape = digest[3] % 3
    centre = (SIZE - 1) / 2
    rows = []
    for y in range(SIZE):
        row = []
        for x in range(SIZE):
            dx, dy = abs(x - centre), abs(y - centre)
            if shape == 0:
                inside, edge = dx * dx + dy * dy <= 14 ** 2, dx * dx + dy * dy >= 12 ** 2
            elif shape == 1:
                inside, edge = dx + dy <= 15, dx + dy >= 13
            else:
                inside, edge = max(dx, dy) <= 13, max(dx, dy) >= 11
            if not inside:
                row += [0, 0, 0, 0]
            elif edge:
                row += [255, 255, 255, 255]
            else:
                row += [*colour, 255]
        rows.append(row)
    return png(rows)


def main():
    here = pathlib.Path(__file__).parent
    document = json.loads((here / "events.json").read_text())
    for section in document:
        for segment in section["segments"].values():
            icon = segment.get("icon") if isinstance(segment, dict) else None
            if isinstance(icon, str) and icon.startswith(PREFIX):
                path = here / "icons" / icon[len(PREFIX):]
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(badge(path.name + path.parent.name))


main()
