"""The program's icon: a pad of the page with the bars of the wordmark on it, drawn for each size by itself."""

import struct

import raster
from svg import BLACK, BRIGHT, DEEP_GREEN, GREEN, GROUND, LINE, WHITE, Sheet, mix

# For each size the pad's margin and corners, and the bars: left, width, step from one to the next, and heights.
SIZES = {
    16: (0, 3, (2, 2, 3, (4, 10, 8, 4))),
    24: (0, 4, (3, 3, 5, (6, 14, 12, 6))),
    32: (1, 6, (6, 4, 5, (8, 20, 14, 8))),
    48: (2, 9, (9, 6, 8, (12, 28, 20, 12))),
    64: (2, 12, (12, 9, 11, (16, 38, 28, 16))),
    128: (5, 23, (24, 17, 21, (32, 74, 54, 32))),
    256: (10, 46, (48, 34, 42, (64, 148, 108, 64))),
}
COLOURS = (DEEP_GREEN, GREEN, BRIGHT, DEEP_GREEN)
IN_ONE_FILE = (16, 32, 48, 256)  # for systems that keep all sizes in one file
PACKED_FROM = 256  # so large an image is a PNG in it; smaller ones are bitmaps, which every reader of icons knows


def drawing(size):
    margin, corner, (left, width, step, heights) = SIZES[size]
    sheet = Sheet(size, size, None)
    side, line = size - 2 * margin, max(1, size // 48)
    sheet.rect(margin, margin, side, side, mix(GROUND, BLACK, 0.55), corner)
    body = sheet.gradient(mix(LINE, GROUND, 0.12), mix(LINE, GROUND, 0.55), mix(LINE, GROUND, 0.85))
    edge = sheet.gradient(mix(LINE, WHITE, 0.45), mix(LINE, GROUND, 0.25), mix(LINE, BLACK, 0.45))
    sheet.rect(margin + line, margin + line, side - 2 * line, side - 2 * line, edge, corner - line)
    sheet.rect(margin + 2 * line, margin + 2 * line, side - 4 * line, side - 4 * line, body, corner - 2 * line)
    for i, (height, colour) in enumerate(zip(heights, COLOURS)):
        place = (left + step * i, (size - height) / 2, width, height)
        sheet.rect(*place, sheet.gradient(mix(colour, WHITE, 0.2), colour, mix(colour, BLACK, 0.12)), size // 64)
    return sheet


def bitmap(rows):
    """A 32-bit bitmap from the bottom up, and behind it a mask of 1-bit that its alpha stands in for."""
    size = len(rows)
    pixels = b""
    for row in reversed(rows):
        swapped = bytearray(row)
        swapped[0::4], swapped[2::4] = row[2::4], row[0::4]
        pixels += bytes(swapped)
    mask = b"\0" * ((size + 31) // 32 * 4 * size)
    head = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(pixels) + len(mask), 0, 0, 0, 0)
    return head + pixels + mask


def ico(images):
    """The bytes of an icon file; `images` are (size, bytes), each a bitmap or a PNG."""
    head = struct.pack("<HHH", 0, 1, len(images))
    at, table = len(head) + 16 * len(images), b""
    for size, data in images:
        table += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), at)
        at += len(data)
    return head + table + b"".join(data for _, data in images)


def file():
    images = []
    for size in IN_ONE_FILE:
        png = raster.png(drawing(size))
        images.append((size, png if size >= PACKED_FROM else bitmap(raster.rows_of_png(png, alpha=True))))
    return ico(images)
