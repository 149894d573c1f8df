"""Draws the icon of programs and packages: a map's tile, and on it a tree of three elements.

    draw_icon.py FILE.ico
"""

import math
import pathlib
import struct
import sys
import zlib

SIZES = (16, 24, 32, 48, 256)
# From this size on an image is compressed.
COMPRESSED = 256

TOP, BOTTOM, INK = (38, 132, 141), (18, 74, 88), (255, 255, 255)
# In a square from 0 to 1, from the upper left corner.
TILE_EDGE, TILE_CORNER = 0.04, 0.2
ROOT, CHILDREN = (0.5, 0.29), ((0.27, 0.71), (0.73, 0.71))
NODE, BRANCH = 0.125, 0.04


def tile(x, y):
    """The distance from the tile, below 0 inside."""
    half = 0.5 - TILE_EDGE - TILE_CORNER
    across, down = abs(x - 0.5) - half, abs(y - 0.5) - half
    return math.hypot(max(across, 0), max(down, 0)) + min(max(across, down), 0) - TILE_CORNER


def branch(x, y, end):
    """The distance from the line between the root and a child."""
    (left, top), (right, bottom) = ROOT, end
    along_x, along_y = right - left, bottom - top
    part = ((x - left) * along_x + (y - top) * along_y) / (along_x**2 + along_y**2)
    part = min(max(part, 0), 1)
    return math.hypot(x - left - part * along_x, y - top - part * along_y) - BRANCH


def tree(x, y):
    nodes = (math.hypot(x - across, y - down) - NODE for across, down in (ROOT, *CHILDREN))
    return min(*nodes, *(branch(x, y, child) for child in CHILDREN))


def pixel(column, row, size):
    """Red, green, blue and opacity of a pixel."""
    x, y = (column + 0.5) / size, (row + 0.5) / size
    # How much of the pixel a shape covers.
    inside, inked = (min(max(0.5 - shape(x, y) * size, 0), 1) for shape in (tile, tree))
    ground = (top + (bottom - top) * y for top, bottom in zip(TOP, BOTTOM))
    return [round(colour + (ink - colour) * inked) for colour, ink in zip(ground, INK)] + [round(255 * inside)]


def bitmap(rows, size):
    """An image as icons have it: its lines from below, and a mask, which is not used with an opacity."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    colours = b"".join(bytes((blue, green, red, opacity)) for row in reversed(rows) for red, green, blue, opacity in row)
    return header + colours + bytes((size + 31) // 32 * 4 * size)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def compressed(rows, size):
    """An image as PNG."""
    lines = b"".join(b"\0" + bytes(part for colours in row for part in colours) for row in rows)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    parts = chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b"")
    return b"\x89PNG\r\n\x1a\n" + parts


def icon():
    images = []
    for size in SIZES:
        rows = [[pixel(column, row, size) for column in range(size)] for row in range(size)]
        images.append((compressed if size >= COMPRESSED else bitmap)(rows, size))
    directory = struct.pack("<HHH", 0, 1, len(SIZES))
    place = len(directory) + 16 * len(SIZES)
    for size, image in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), place)
        place += len(image)
    return directory + b"".join(images)


if __name__ == "__main__":
    pathlib.Path(sys.argv[1]).write_bytes(icon())
