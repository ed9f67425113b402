#!/usr/bin/env python3
"""Draws the pictures of reports: plain badges of our own, in the colours of the window's icons.

The files are kept beside this script, so that no build needs it. It works with Python alone.

usage: data/images/report/make_images.py
"""

import math
import struct
import zlib
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
SAMPLES = 4  # a side of a pixel, for smooth edges
WHITE = (255, 255, 255)
NAVY = (29, 58, 92)
BLUE = (47, 129, 214)
GREY = (200, 206, 214)


def disc(x, y, r):
    return lambda px, py: (px - x) ** 2 + (py - y) ** 2 <= r * r


def ring(x, y, r, width):
    return lambda px, py: abs(math.hypot(px - x, py - y) - r) <= width / 2


def line(x1, y1, x2, y2, width):
    def inside(px, py):
        length = (x2 - x1) ** 2 + (y2 - y1) ** 2
        t = max(0, min(1, ((px - x1) * (x2 - x1) + (py - y1) * (y2 - y1)) / length))
        return math.hypot(px - x1 - t * (x2 - x1), py - y1 - t * (y2 - y1)) <= width / 2
    return inside


def box(x, y, w, h, r=0):
    def inside(px, py):
        dx = max(x + r - px, 0, px - (x + w - r))
        dy = max(y + r - py, 0, py - (y + h - r))
        return math.hypot(dx, dy) <= r if r else dx == 0 and dy == 0
    return inside


def raster(width, height, shapes, scale=1.0):
    """Rows of (r, g, b, a); shapes are (colour, inside), later ones on top."""
    rows = []
    for y in range(height):
        row = []
        for x in range(width):
            total, seen = [0, 0, 0], 0
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    px, py = (x + (sx + 0.5) / SAMPLES) / scale, (y + (sy + 0.5) / SAMPLES) / scale
                    colour = next((c for c, inside in reversed(shapes) if inside(px, py)), None)
                    if colour:
                        seen += 1
                        total = [t + c for t, c in zip(total, colour)]
            row.append(tuple(t // seen for t in total) + (seen * 255 // SAMPLES ** 2,)
                       if seen else (0, 0, 0, 0))
        rows.append(row)
    return rows


def write_png(name, rows):
    raw = b"".join(b"\0" + b"".join(bytes(p) for p in row) for row in rows)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    head = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    (FOLDER / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head)
                                + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def codes(pixels):
    """Codes of 8 bits of colour that never grow: the table is cleared before it could."""
    bits, count = 0, 0
    data = bytearray()

    def put(code):
        nonlocal bits, count
        bits |= code << count
        count += 9
        while count >= 8:
            data.append(bits & 255)
            bits >>= 8
            count -= 8

    for i, pixel in enumerate(pixels):
        if i % 200 == 0:
            put(256)
        put(pixel)
    put(257)
    if count:
        data.append(bits & 255)
    return bytes(data)


def write_gif(name, rows):
    """Colour 0 is transparent; the others are a cube of six steps a colour."""
    palette = [(0, 0, 0)] + [(r * 51, g * 51, b * 51)
                             for r in range(6) for g in range(6) for b in range(6)]
    palette += [(0, 0, 0)] * (256 - len(palette))
    pixels = []
    for row in rows:
        for r, g, b, a in row:
            r, g, b = ((c * a + 255 * (255 - a)) // 255 for c in (r, g, b))  # edges on white
            step = [round(c / 51) for c in (r, g, b)]
            pixels.append(1 + step[0] * 36 + step[1] * 6 + step[2] if a > 40 else 0)
    height, width = len(rows), len(rows[0])
    data = codes(pixels)
    blocks = b"".join(bytes([len(part)]) + part
                      for part in (data[i:i + 255] for i in range(0, len(data), 255)))
    (FOLDER / name).write_bytes(
        b"GIF89a" + struct.pack("<HHBBB", width, height, 0xF7, 0, 0)
        + bytes(c for colour in palette for c in colour)
        + b"\x21\xf9\x04\x01\0\0\0\0" + b"\x2c" + struct.pack("<HHHHB", 0, 0, width, height, 0)
        + b"\x08" + blocks + b"\0\x3b")


def badge(colour, strokes):
    return [(colour, disc(16, 16, 15.5))] + [(WHITE, s) for s in strokes]


BADGES = {
    "ie": ((58, 110, 165), [line(16, 9, 16, 23, 3.4), line(12, 9, 20, 9, 3.4), line(12, 23, 20, 23, 3.4)]),
    "firefox": ((201, 92, 26), [line(12.5, 8, 12.5, 24, 3.4), line(12.5, 9, 21, 9, 3.4), line(12.5, 16, 19, 16, 3.4)]),
    "chrome": ((46, 139, 87), [ring(16, 16, 7.5, 3), disc(16, 16, 3.2)]),
    "safari": ((40, 140, 190), [line(10, 22, 22, 10, 3.4), disc(16, 16, 2.6)]),
    "opera": ((170, 40, 50), [ring(16, 16, 7, 3.6)]),
    "net": ((91, 102, 115), [ring(16, 16, 8, 2), line(8, 16, 24, 16, 2), line(16, 8, 16, 24, 2)]),
}

LOGO = [
    (NAVY, box(4, 4, 120, 120, 26)),
    ((143, 180, 220), box(26, 24, 52, 66, 6)),
    (WHITE, box(36, 32, 52, 66, 6)),
    (NAVY, line(46, 46, 78, 46, 5)), (NAVY, line(46, 57, 78, 57, 5)), (NAVY, line(46, 68, 62, 68, 5)),
    (BLUE, line(95, 93, 110, 108, 10)), (BLUE, disc(80, 78, 23.5)), ((231, 240, 250), disc(80, 78, 16.5)),
    (NAVY, line(72, 86, 72, 70, 5)), (NAVY, line(72, 70, 88, 86, 5)), (NAVY, line(88, 86, 88, 70, 5)),
]

NO_PICTURE = [
    ((244, 246, 249), box(0, 0, 200, 150)),
    (GREY, box(62, 30, 76, 90, 8)), (WHITE, box(66, 34, 68, 82, 5)),
    (GREY, line(78, 52, 122, 52, 4)), (GREY, line(78, 66, 122, 66, 4)),
    (GREY, line(78, 80, 122, 80, 4)), (GREY, line(78, 94, 104, 94, 4)),
]


def main():
    for name, (colour, strokes) in BADGES.items():
        write_gif(f"{name}.gif", raster(16, 16, badge(colour, strokes), 0.5))
    write_png("norvelane-logo.png", raster(96, 96, LOGO, 0.75))
    write_png("report-default.png", raster(200, 150, NO_PICTURE))


main()
