"""Where things lie on the page, in client pixels: left, top, width, height."""

PAGE = (0, 0, 600, 553)
PAD_BLOCK = (135, 2, 360, 232)
STRIP = (1, 232, 599, 108)
HINT = (98, 236, 400, 10)

BIN_LIST = (14, 69, 105, 149)
STRIP_PLOT = (37, 248, 544, 79)
KEY_MAP_TAB = (6, 234, 21, 52)
WAVEFORM_TAB = (6, 286, 21, 52)
PAD_VIEW = (101, 348, 482, 180)

SCROLLERS = [(100, 537, 453, 8), (585, 350, 8, 154), (124, 69, 8, 149), (14, 220, 105, 8)]
COMBOS = [(534, 22, 60, 12), (534, 40, 60, 12), (534, 58, 60, 12), (21, 515, 60, 12)]
EDITS = [(43, 399, 30, 12), (43, 438, 30, 12), (43, 477, 30, 12)] + [(554, y, 34, 12) for y in (82, 99, 121, 138, 155)]
READ_OUTS = [(504, 216, 34, 12), (554, 216, 34, 12)]
GRAIN_KNOBS = [(15, y, 17, 17) for y in (397, 435, 474)]

# Pictures with fixed places: numbers up and down, then the place.
BUTTONS = [
    (212, 213, (10, 29, 15, 14)),
    (286, 287, (31, 29, 15, 14)),
    (288, 289, (50, 27, 20, 19)),
    (273, 272, (71, 27, 20, 19)),
    (274, 274, (92, 27, 20, 19)),
    (218, 219, (113, 27, 21, 19)),
    (280, 279, (98, 52, 15, 14)),
    (214, 215, (115, 52, 15, 14)),
    (276, 277, (500, 176, 9, 9)),
    (276, 277, (500, 190, 9, 9)),
    (276, 277, (548, 176, 9, 9)),
    (229, 230, (567, 535, 10, 12)),
    (231, 232, (556, 535, 10, 12)),
    (233, 234, (583, 519, 12, 10)),
    (235, 236, (583, 508, 12, 10)),
]


def pad_corner(pad):
    return 138 + 89 * (pad % 4), 43 + 57 * (pad // 4)


def pad_image(pad):
    x, y = pad_corner(pad)
    return x, y - 38, 44, 38


def pad_knobs(pad):
    x, y = pad_corner(pad)
    return [(x + 47, y - 37, 17, 17), (x + 65, y - 17, 17, 17)]


def pad_buttons(pad):
    x, y = pad_corner(pad)
    row = [(205, 206, 19), (281, 282, 36), (208, 209, 53), (210, 211, 70)]
    return [(216, 217, (x + 2, y + 1, 15, 14))] + [(up, down, (x + dx, y + 1, 16, 15)) for up, down, dx in row]


def all_controls():
    """Every rectangle that the page or one of its controls paints over."""
    rects = [BIN_LIST, STRIP_PLOT, PAD_VIEW, *SCROLLERS, *COMBOS, *EDITS, *READ_OUTS, *GRAIN_KNOBS]
    rects += [place for _, _, place in BUTTONS]
    for pad in range(16):
        rects += [pad_image(pad), *pad_knobs(pad)] + [place for _, _, place in pad_buttons(pad)]
    return rects
