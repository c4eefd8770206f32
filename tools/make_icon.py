#!/usr/bin/env python3
"""Draws the program's icon: a sky lantern in the evening, an aircraft passing above it.

    tools/make_icon.py src/platform/win32/skylantern.ico

Every size is drawn for itself out of the same shapes, in a square of 32 units. The small sizes are stored as bitmaps,
which every reader of icons knows, the others as PNG.
"""
import struct
import sys
import zlib

SIZES = (16, 20, 24, 32, 40, 48, 64, 256)
LARGEST_BITMAP = 32
UNITS = 32.0

TOP, BOTTOM = (22, 32, 72), (74, 88, 150)  # of the sky
PAPER, GLOW, FLAME = (255, 150, 50), (255, 214, 120), (255, 250, 215)
FRAME = (120, 50, 20)
AIRCRAFT = (236, 242, 255)


def mirrored(points, middle):
    """The outline that follows `points` down its right side and back up on the left."""
    return points + [(2 * middle - x, y) for x, y in reversed(points)]


# The lantern's paper bulges above its ring; the flame stands in the ring.
LANTERN = mirrored([(13.0, 11.0), (14.9, 11.3), (16.5, 12.1), (17.8, 13.3), (18.6, 14.8), (18.9, 16.5), (18.8, 18.3),
                    (18.2, 20.6), (16.2, 26.0)], 12.0)
RING = mirrored([(15.9, 26.0), (15.5, 28.0)], 12.0)
FLAME_SHAPE = mirrored([(12.1, 19.6), (13.6, 22.6), (13.9, 24.4), (13.0, 25.9)], 12.0)
# Seen from below, climbing to the right: nose, wings, tail.
STRAIGHT = mirrored([(0.4, -7.0), (0.9, -5.6), (0.95, -2.2), (7.2, 2.0), (7.2, 3.4), (0.95, 1.6), (0.75, 4.6),
                     (2.9, 6.3), (2.9, 7.2), (0.3, 6.5)], 0.0)
TURN = (0.5736, 0.8192)  # cosine and sine of 55 degrees
PLANE = [(23.6 + 0.95 * (x * TURN[0] - y * TURN[1]), 8.6 + 0.95 * (x * TURN[1] + y * TURN[0])) for x, y in STRAIGHT]


def inside(shape, x, y):
    result = False
    for (x1, y1), (x2, y2) in zip(shape, shape[1:] + shape[:1]):
        if (y1 > y) != (y2 > y) and x < x1 + (y - y1) * (x2 - x1) / (y2 - y1):
            result = not result
    return result


def in_tile(x, y, corner=6.0):
    dx, dy = max(abs(x - UNITS / 2) - (UNITS / 2 - corner), 0), max(abs(y - UNITS / 2) - (UNITS / 2 - corner), 0)
    return dx * dx + dy * dy <= corner * corner


def blend(first, second, share):
    return tuple(a + (b - a) * min(max(share, 0.0), 1.0) for a, b in zip(first, second))


def colour_at(x, y):
    """None outside of the tile."""
    if not in_tile(x, y):
        return None
    if inside(PLANE, x, y):
        return AIRCRAFT
    if inside(FLAME_SHAPE, x, y):
        return FLAME
    away = ((x - 12.0) ** 2 + (y - 22.0) ** 2) ** 0.5
    if inside(LANTERN, x, y):
        return blend(GLOW, PAPER, away / 9.0)
    if inside(RING, x, y):
        return FRAME
    return blend(blend(TOP, BOTTOM, y / UNITS), PAPER, 0.45 - away / 30.0)


def draw(size):
    """Rows from the top, of (red, green, blue, alpha)."""
    samples = max(3, 160 // size)  # along each side of a pixel
    step = UNITS / (size * samples)
    rows = []
    for row in range(size):
        line = []
        for column in range(size):
            total, covered = [0.0, 0.0, 0.0], 0
            for j in range(samples):
                for i in range(samples):
                    found = colour_at((column * samples + i + 0.5) * step, (row * samples + j + 0.5) * step)
                    if found:
                        covered += 1
                        total = [a + b for a, b in zip(total, found)]
            mean = [round(value / covered) if covered else 0 for value in total]
            line.append((*mean, round(255 * covered / samples ** 2)))
        rows.append(line)
    return rows


def as_bitmap(rows):
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(struct.pack("4B", b, g, r, a) for line in reversed(rows) for r, g, b, a in line)
    mask = bytes((size + 31) // 32 * 4 * size)  # nothing: the pixels carry their own
    return header + pixels + mask


def as_png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    raw = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in line) for line in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    images = [(size, draw(size)) for size in SIZES]
    blocks = [as_bitmap(rows) if size <= LARGEST_BITMAP else as_png(rows) for size, rows in images]
    out = struct.pack("<HHH", 0, 1, len(SIZES))
    at = len(out) + 16 * len(SIZES)
    for size, block in zip(SIZES, blocks):
        out += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(block), at)
        at += len(block)
    with open(sys.argv[1], "wb") as file:
        file.write(out + b"".join(blocks))


if __name__ == "__main__":
    main()
