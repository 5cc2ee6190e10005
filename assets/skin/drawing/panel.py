"""The page's panel: plates, wells and labels. The strip's and the pad block's grounds are windows of the same drawing,
so that no seam shows where the page lays them over it."""

import places
import raster
from svg import BLACK, BLUE, BRIGHT, DEEP_GREEN, GREEN, GROUND, LIGHT, PLATE, WARM, WHITE, Sheet, mix

NARROW = "Liberation Sans Narrow"
HEADING = mix(LIGHT, WHITE, 0.6)  # titles
TEXT = mix(LIGHT, WHITE, 0.2)  # names of controls
SOFT = mix(BLUE, LIGHT, 0.6)  # units and what only adds to a name

def label(sheet, x, baseline, words, colour=TEXT, size=10, anchor="start", family="Liberation Sans", **more):
    """Words that stay to be read: `covered_labels` looks for them."""
    sheet.text(x, baseline, words, colour, size, anchor, family, **more)
    sheet.labels.append(sheet.parts[-1])


def plate(sheet, x, y, width, height):
    sheet.rect(x - 1, y, width + 2, height + 2, BLACK, 4, opacity=0.35)
    sheet.rect(x, y, width, height, PLATE, 3)
    sheet.frame(x, y, width, height, sheet.gradient(mix(PLATE, WHITE, 0.22), PLATE, mix(PLATE, BLACK, 0.3)), 3)


def well(sheet, x, y, width, height, fill=GROUND, radius=2):
    """Sunk around a rectangle that is painted later: its edge lies outside."""
    sheet.frame(x - 2, y - 2, width + 4, height + 4,
                sheet.gradient(mix(PLATE, BLACK, 0.12), mix(PLATE, WHITE, 0.14)), radius + 1)
    sheet.frame(x - 1, y - 1, width + 2, height + 2, mix(GROUND, BLACK, 0.45), radius)
    sheet.rect(x, y, width, height, fill)


def groove(sheet, x, y, width):
    """A line milled into a plate."""
    sheet.rect(x, y, width, 1, mix(PLATE, BLACK, 0.32))
    sheet.rect(x, y + 1, width, 1, mix(PLATE, WHITE, 0.1))


def chassis():
    sheet = Sheet(*places.PAGE[2:], ground=GROUND)
    steel = sheet.gradient(mix(GROUND, BLACK, 0.12), mix(GROUND, BLACK, 0.35))
    sheet.rect(*places.PAGE, steel)
    return sheet


def wordmark(sheet):
    for i, (height, colour) in enumerate([(5, DEEP_GREEN), (9, GREEN), (7, BRIGHT), (4, DEEP_GREEN)]):
        sheet.rect(11 + 3 * i, 12 - height / 2 + 0.5 * (height % 2), 2, height, colour)
    label(sheet, 26, 16, "MARNOTH", HEADING, 11, font_weight="bold", letter_spacing=1.6)


def bin_plate(sheet):
    plate(sheet, 3, 3, 131, 228)
    wordmark(sheet)
    groove(sheet, 9, 22, 119)
    groove(sheet, 9, 48, 119)
    label(sheet, 14, 63, "Loop Bin", HEADING, 11, font_weight="bold")
    well(sheet, *places.BIN_LIST)
    for track in places.SCROLLERS[2:]:
        well(sheet, *track, fill=BLUE, radius=1)


def pad_plate(sheet):
    plate(sheet, 136, 3, 359, 230)
    for pad in range(16):
        pad_cell(sheet, pad)


def pad_cell(sheet, pad):
    x, y = places.pad_corner(pad)
    if pad % 4:
        sheet.rect(x - 1, y - 36, 1, 52, mix(PLATE, BLACK, 0.3))
        sheet.rect(x, y - 36, 1, 52, mix(PLATE, WHITE, 0.08))
    if pad // 4:
        sheet.rect(x + 3, y - 39, 82, 1, mix(PLATE, BLACK, 0.3))
    label(sheet, x + 66, y - 25, "Vol", SOFT, 9)
    label(sheet, x + 63, y - 5, "Pan", SOFT, 9, "end")


def settings_plate(sheet):
    plate(sheet, 497, 3, 101, 228)
    label(sheet, 503, 16, "Pad", HEADING, 11, font_weight="bold")
    for combo, words in zip(places.COMBOS, ("Output", "Channel", "Root")):
        well(sheet, *combo)
        label(sheet, 501, combo[1] + 10, words, size=9.5, family=NARROW)
    groove(sheet, 502, 75, 91)
    for place in places.EDITS[3:]:
        well(sheet, *place)
    label(sheet, 502, 92, "Velocity", family=NARROW)
    label(sheet, 550, 92, "low", SOFT, 10, "end", NARROW)
    label(sheet, 550, 109, "high", SOFT, 10, "end", NARROW)
    groove(sheet, 502, 115, 91)
    label(sheet, 502, 131, "Keys", family=NARROW)
    for baseline, words in ((131, "root"), (148, "low"), (165, "high")):
        label(sheet, 550, baseline, words, SOFT, 10, "end", NARROW)
    groove(sheet, 502, 171, 91)
    label(sheet, 512, 184, "Tail", family=NARROW)
    label(sheet, 560, 184, "One shot", family=NARROW)
    label(sheet, 512, 198, "Key follow", family=NARROW)
    groove(sheet, 502, 202, 91)
    for place, words in zip(places.READ_OUTS, ("Volume", "Pan")):
        well(sheet, *place, fill=BLUE)
        label(sheet, place[0] + place[2] / 2, 213, words, TEXT, 10, "middle", NARROW)


def grain_plate(sheet):
    plate(sheet, 3, 344, 94, 205)
    label(sheet, 12, 359, "Pad Editor", HEADING, 11, font_weight="bold")
    groove(sheet, 9, 366, 82)
    label(sheet, 15, 379, "Selected grain", SOFT, 10, family=NARROW)
    for place, words, unit in zip(places.EDITS, ("Transpose", "Volume", "Pan"), ("st", "dB", "")):
        well(sheet, *place)
        label(sheet, 15, place[1] - 5, words, family=NARROW)
        if unit:
            label(sheet, 78, place[1] + 10, unit, SOFT, 10, family=NARROW)
    groove(sheet, 9, 498, 82)
    label(sheet, 21, 511, "Snap", family=NARROW)
    well(sheet, *places.COMBOS[3])


def view_plate(sheet):
    plate(sheet, 98, 344, 500, 205)
    well(sheet, *places.PAD_VIEW)
    for track in places.SCROLLERS[:2]:
        well(sheet, *track, fill=BLUE, radius=1)
    sheet.circle(586.5, 539.5, 3, "none", stroke="#7c90ad", stroke_width=1.4)
    sheet.stroke("M589,542 l3.2,3.2", BLUE, 1.8)


def tab(sheet, place, words, lit, icon):
    x, y, width, height = place
    y, height = y + 1, height - 2
    sheet.rect(x, y, width, height, mix(PLATE, WHITE, 0.1) if lit else mix(PLATE, BLACK, 0.28), 2)
    sheet.frame(x, y, width, height, mix(PLATE, WHITE, 0.25) if lit else mix(PLATE, BLACK, 0.45), 2)
    ink = GREEN if lit else BLUE
    if lit:
        sheet.rect(x + 1, y + 4, 2, height - 8, GREEN, 1)
    icon(sheet, x + 5, y + 5, ink)
    cx, cy = x + 14, y + height - 4
    sheet.text(cx, cy, words, HEADING if lit else LIGHT, 9.5, family=NARROW, transform="rotate(-90 %g %g)" % (cx, cy))


def keyboard_icon(sheet, x, y, ink):
    for i in range(4):
        sheet.rect(x + 3 * i, y, 2, 9, ink)
    for i in (0, 2):
        sheet.rect(x + 3 * i + 2, y, 1, 5, ink)


def wave_icon(sheet, x, y, ink):
    for i, height in enumerate((3, 7, 11, 5, 9, 3)):
        sheet.rect(x + 2 * i, y + 5 - height // 2, 1, height, ink)


def strip_plate(sheet, key_map):
    plate(sheet, 3, 235, 595, 103)
    tab(sheet, places.KEY_MAP_TAB, "Keys", key_map, keyboard_icon)
    tab(sheet, places.WAVEFORM_TAB, "Wave", not key_map, wave_icon)
    well(sheet, *places.STRIP_PLOT)
    label(sheet, 38, 245, "Key Map" if key_map else "Waveform", HEADING, 10, font_weight="bold")
    if key_map:
        for x, colour, words in ((520, BLUE, "range"), (555, WARM, "root")):
            sheet.rect(x, 239, 6, 6, colour)
            label(sheet, x + 9, 245, words, TEXT, 10, family=NARROW)


def whole_page(key_map=False):
    sheet = chassis()
    for draw in (bin_plate, pad_plate, settings_plate, grain_plate, view_plate):
        draw(sheet)
    strip_plate(sheet, key_map)
    return sheet


def covered_labels(sheet):
    """The rectangles of controls that a label reaches into."""
    words_only = Sheet(sheet.width, sheet.height, BLACK)
    words_only.parts += sheet.labels
    rows = raster.rendered(words_only)
    return [(x, y, width, height) for x, y, width, height in places.all_controls()
            if any(any(row[3 * x : 3 * (x + width)]) for row in rows[y : y + height])]
