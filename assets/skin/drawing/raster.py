"""From a sheet to PNG by librsvg, and on to rows of pixels and the bytes of a 24-bit BMP."""

import struct
import subprocess
import zlib


def rows_of_png(data, alpha=False):
    """Rows of (red, green, blue) bytes of an 8-bit PNG without interlace, or of four with `alpha`, which it then has."""
    at, packed = 8, b""
    while at < len(data):
        size, kind = struct.unpack(">I4s", data[at : at + 8])
        body = data[at + 8 : at + 8 + size]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            if depth != 8 or colour not in (2, 6) or interlace:
                raise ValueError("a kind of PNG that is not read here")
            channels = 3 if colour == 2 else 4
        elif kind == b"IDAT":
            packed += body
        at += 12 + size
    raw, stride, kept = zlib.decompress(packed), width * channels, 4 if alpha else 3
    if kept > channels:
        raise ValueError("a PNG without alpha")
    above, rows = bytearray(stride), []
    for y in range(height):
        start = y * (stride + 1)
        row = unfilter(raw[start], bytearray(raw[start + 1 : start + 1 + stride]), above, channels)
        rows.append(b"".join(bytes(row[x : x + kept]) for x in range(0, stride, channels)))
        above = row
    return rows


def unfilter(kind, row, above, channels):
    for i in range(len(row)):
        left = row[i - channels] if i >= channels else 0
        corner = above[i - channels] if i >= channels else 0
        guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
        row[i] = (row[i] + guess) & 255
    return row


def paeth(left, up, corner):
    by_distance = ((abs(up - corner), 0, left), (abs(left - corner), 1, up), (abs(left + up - 2 * corner), 2, corner))
    return min(by_distance)[2]


def bmp(rows):
    width, height = len(rows[0]) // 3, len(rows)
    padding = b"\0" * (-3 * width % 4)
    pixels = b""
    for row in reversed(rows):
        swapped = bytearray(row)
        swapped[0::3], swapped[2::3] = row[2::3], row[0::3]
        pixels += bytes(swapped) + padding
    head = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54) + head + pixels


def png(sheet):
    done = subprocess.run(["rsvg-convert", "-f", "png"], input=sheet.source().encode(), capture_output=True, check=True)
    return done.stdout


def rendered(sheet):
    return rows_of_png(png(sheet))
