#!/usr/bin/env python3
"""Draws every picture of the skin and writes it as a BMP, and the program's icon, which goes into ../icon too.

Usage: draw.py DIRECTORY [--svg DIRECTORY]"""

import argparse
import pathlib

import controls
import icon
import panel
import places
import raster


def pages():
    """The page in both views of its strip and with what it tells while it is empty, checked."""
    for key_map, hint in ((False, False), (True, False), (False, True)):
        page = panel.whole_page(key_map, hint)
        covered = panel.covered_labels(page)
        if covered:
            raise SystemExit("a label reaches under a control: %s" % covered)
        yield page


def cut(rows, place):
    """Cut out pixel by pixel, so that a part lies on the whole without a seam."""
    x, y, width, height = place
    return [row[3 * x : 3 * (x + width)] for row in rows[y : y + height]]


def drawings():
    """Name and sheet of each picture that is drawn by itself; most have only a number for a name."""
    for pad in range(16):
        yield 240 + 2 * pad, controls.pad(pad + 1, playing=True)
        yield 241 + 2 * pad, controls.pad(pad + 1, playing=False)
    for up, down, draw in controls.BUTTON_PICTURES:
        yield up, draw(False)
        if down != up:
            yield down, draw(True)
    yield 237, controls.knobs()
    for name, draw in controls.CURSORS:
        yield name, draw()


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("directory", type=pathlib.Path)
    options.add_argument("--svg", type=pathlib.Path, help="keeps the vector drawings here too")
    words = options.parse_args()

    def write(name, rows):
        (words.directory / ("%s.bmp" % name)).write_bytes(raster.bmp(rows))

    def render(name, sheet):
        if words.svg:
            (words.svg / ("%s.svg" % name)).write_text(sheet.source())
        return raster.rendered(sheet)

    names = ("page", "page-key-map", "page-empty")
    waveform, key_map, empty = (render(name, page) for name, page in zip(names, pages()))
    write(201, waveform)
    write(227, cut(key_map, places.STRIP))
    write(228, cut(waveform, places.STRIP))
    write(226, cut(empty, places.HINT))
    write(290, cut(waveform, places.PAD_BLOCK))
    for name, sheet in drawings():
        write(name, render(name, sheet))
    (words.directory / "marnoth.ico").write_bytes(icon.file())
    icons = words.directory.parent / "icon"
    for size in icon.SIZES:
        (icons / ("%d.png" % size)).write_bytes(raster.png(icon.drawing(size)))
    (icons / "marnoth.svg").write_text(icon.drawing(max(icon.SIZES)).source())


main()
