"""The page's panel: plates, wells and labels. The strip's and the pad block's grounds are windows of the same drawing,
so that no seam shows where the page lays them over it."""

import places
import raster
from svg import BLACK, BLUE, BRIGHT, DEEP_GREEN, GREEN, GROUND, LIGHT, LINE, PLATE, SHADE, WARM, WHITE, Sheet, mix, paint

TITLES, CAPTIONS = "Liberation Sans", "Liberation Sans Narrow"
TEXT_SIZE, HEADING_SIZE = 9.7, 11.6  # small letters are 5 and 6 whole pixels high, so that they stay sharp
HEADING = mix(LIGHT, WHITE, 0.9)  # titles
TEXT = mix(LIGHT, WHITE, 0.7)  # captions: so light since the strokes of small letters are less than a pixel wide
STRIP_BASELINE, STRIP_SIZE = 243, 8.7  # between the edge of the strip's plate and its well there are ten pixels
HINT = "Drop WAV loops on pads, or gather them in the Loop Bin and drag them onto pads. Hold a pad to hear it."


def label(sheet, x, baseline, words, colour=TEXT, anchor="start", family=CAPTIONS, size=TEXT_SIZE, **more):
    """Words that stay to be read: `covered_labels` looks for them."""
    sheet.text(x, baseline, words, colour, size, anchor, family, **more)
    sheet.labels.append(sheet.parts[-1])


def heading(sheet, x, baseline, words, size=HEADING_SIZE, **more):
    label(sheet, x, baseline, words, HEADING, family=TITLES, size=size, font_weight="bold", **more)


def plate(sheet, x, y, width, height):
    sheet.rect(x - 1, y, width + 2, height + 2, BLACK, 4, opacity=0.35)
    sheet.rect(x, y, width, height, PLATE, 3)
    sheet.frame(x, y, width, height, sheet.gradient(mix(PLATE, WHITE, 0.24), PLATE, mix(PLATE, BLACK, 0.3)), 3)


def title_band(sheet, x, y, width):
    """The head of a plate, which catches more light than the rest."""
    sheet.rect(x + 1, y + 1, width - 2, 15, sheet.gradient(mix(PLATE, WHITE, 0.13), mix(PLATE, WHITE, 0.03)), 2)
    sheet.rect(x + 3, y, width - 6, 1, mix(PLATE, WHITE, 0.3))
    groove(sheet, x + 1, y + 16, width - 2)


def well(sheet, x, y, width, height, fill=GROUND, radius=2):
    """Sunk around a rectangle that is painted later: its edge lies outside."""
    sheet.frame(x - 2, y - 2, width + 4, height + 4,
                sheet.gradient(mix(PLATE, BLACK, 0.16), mix(PLATE, WHITE, 0.16)), radius + 1)
    sheet.frame(x - 1, y - 1, width + 2, height + 2, mix(GROUND, BLACK, 0.5), radius)
    sheet.rect(x, y, width, height, fill)


def channel(sheet, x, y, width, height):
    """A recess that a scroller and the buttons at its end share."""
    sheet.rect(x, y, width, height, SHADE, 2)
    sheet.frame(x, y, width, height, sheet.gradient(mix(GROUND, BLACK, 0.55), mix(PLATE, WHITE, 0.16)), 2)


def groove(sheet, x, y, width):
    """A line milled into a plate."""
    sheet.rect(x, y, width, 1, mix(PLATE, BLACK, 0.32))
    sheet.rect(x, y + 1, width, 1, mix(PLATE, WHITE, 0.1))


def upright_groove(sheet, x, y, height):
    sheet.rect(x, y, 1, height, mix(PLATE, BLACK, 0.32))
    sheet.rect(x + 1, y, 1, height, mix(PLATE, WHITE, 0.1))


def chassis():
    sheet = Sheet(*places.PAGE[2:], ground=GROUND)
    steel = sheet.gradient(mix(GROUND, BLACK, 0.12), mix(GROUND, BLACK, 0.35))
    sheet.rect(*places.PAGE, steel)
    return sheet


def wordmark(sheet):
    for i, (height, colour) in enumerate([(4, DEEP_GREEN), (8, GREEN), (6, BRIGHT), (4, DEEP_GREEN)]):
        sheet.rect(10 + 3 * i, 11 - height / 2, 2, height, colour)
    heading(sheet, 26, 15, "MARNOTH", letter_spacing=1.6)


def bin_plate(sheet):
    plate(sheet, 2, 2, 133, 231)
    title_band(sheet, 2, 2, 133)
    wordmark(sheet)
    groove(sheet, 9, 48, 119)
    heading(sheet, 14, 63, "Loop Bin")
    well(sheet, *places.BIN_LIST)
    for track in places.SCROLLERS[2:]:
        well(sheet, *track, fill=BLUE, radius=1)


def pad_plate(sheet):
    plate(sheet, 136, 2, 359, 231)
    for line in (1, 2, 3):
        groove(sheet, 139, 3 + 57 * line, 353)
        upright_groove(sheet, 136 + 89 * line, 6, 223)
    for pad in range(16):
        x, y = places.pad_corner(pad)
        label(sheet, x + 66, y - 25, "Vol")
        label(sheet, x + 63.4, y - 5, "Pan", anchor="end")


def settings_plate(sheet):
    plate(sheet, 497, 2, 101, 231)
    title_band(sheet, 497, 2, 101)
    heading(sheet, 502, 15, "Pad")
    for combo, words in zip(places.COMBOS, ("Output", "Channel", "Root")):
        well(sheet, *combo)
        label(sheet, 500, combo[1] + 10, words)
    for y in (75, 115, 170):
        groove(sheet, 501, y, 93)
    for place in places.EDITS[3:]:
        well(sheet, *place)
    for baseline, words in ((92, "Velocity"), (131, "Keys")):
        label(sheet, 500, baseline, words)
    for baseline, words in ((92, "low"), (109, "high"), (131, "root"), (148, "low"), (165, "high")):
        label(sheet, 550, baseline, words, anchor="end")
    for x, baseline, words in ((512, 184, "Tail"), (560, 184, "One shot"), (512, 198, "Key follow")):
        label(sheet, x, baseline, words)
    display(sheet)


def display(sheet):
    """The two read-outs shine in one dark pane."""
    x, y, width, height = 499, 203, 95, 28
    sheet.rect(x, y, width, height, sheet.gradient(mix(GROUND, BLACK, 0.55), mix(GROUND, BLACK, 0.2)), 3)
    sheet.frame(x, y, width, height, sheet.gradient(mix(GROUND, BLACK, 0.7), mix(PLATE, WHITE, 0.2)), 3)
    for (left, top, wide, high), words in zip(places.READ_OUTS, ("Volume", "Pan")):
        sheet.frame(left - 2, top - 2, wide + 4, high + 4, BLUE, 2, opacity=0.16)
        sheet.frame(left - 1, top - 1, wide + 2, high + 2, BLUE, 1, opacity=0.45)
        sheet.rect(left, top, wide, high, BLUE)
        label(sheet, left, 213, words)


def grain_plate(sheet):
    plate(sheet, 2, 342, 94, 209)
    title_band(sheet, 2, 342, 94)
    heading(sheet, 12, 355, "Pad Editor")
    label(sheet, 15, 376, "Selected grain")
    for place, words, unit in zip(places.EDITS, ("Transpose", "Volume", "Pan"), ("st", "dB", "")):
        well(sheet, *place)
        label(sheet, 15, place[1] - 6, words)
        if unit:
            label(sheet, 78, place[1] + 10, unit)
    groove(sheet, 9, 498, 80)
    label(sheet, 21, 510, "Snap")
    well(sheet, *places.COMBOS[3])


def view_plate(sheet):
    plate(sheet, 98, 342, 500, 209)
    channel(sheet, 583, 347, 13, 184)
    channel(sheet, 99, 534, 479, 14)
    well(sheet, *places.PAD_VIEW)
    sheet.rect(584, 350, 1, 178, SHADE)
    for x, y, width, height in places.SCROLLERS[:2]:
        sheet.rect(x, y, width, height, BLUE)
    magnifier(sheet)


def magnifier(sheet):
    """Milled into the plate as the grooves are: it names what the four buttons beside it do, and is none itself."""
    for drop, ink in ((1, mix(PLATE, WHITE, 0.1)), (0, mix(PLATE, BLACK, 0.4))):
        sheet.element("circle", cx=586, cy=539 + drop, r=3, fill="none", stroke=paint(ink), stroke_width=1.2)
        sheet.stroke("M588.2,%g l3.2,3.2" % (541.2 + drop), ink, 1.5)


def tabs(sheet, key_map):
    """A slot in which the key of the shown view stands up and shines."""
    x, width = places.KEY_MAP_TAB[0], places.KEY_MAP_TAB[2]
    top, middle, bottom = 238, places.WAVEFORM_TAB[1], 337
    sheet.rect(x, top, width, bottom - top, SHADE, 3)
    sheet.frame(x, top, width, bottom - top, sheet.gradient(mix(GROUND, BLACK, 0.55), mix(PLATE, WHITE, 0.16)), 3)
    tab(sheet, x + 1, top + 1, middle, "Keys", key_map, keyboard_icon)
    tab(sheet, x + 1, middle, bottom - 1, "Wave", not key_map, wave_icon)


def tab(sheet, x, top, bottom, words, lit, icon):
    width, height = places.KEY_MAP_TAB[2] - 2, bottom - top
    if lit:
        sheet.rect(x, top, width, height, mix(GROUND, BLACK, 0.5), 2.5)
        sheet.rect(x + 1, top + 1, width - 2, height - 2, sheet.gradient(mix(LINE, WHITE, 0.08), mix(LINE, GROUND, 0.4)),
                   1.5)
        sheet.rect(x + 2, top + 1, width - 4, 1, mix(LINE, WHITE, 0.32))
        sheet.rect(x + 1, top + 4, 2, height - 8, GREEN, 1)
    icon(sheet, x + 5, top + 6, BRIGHT if lit else BLUE)
    cx, cy = x + 13, bottom - 6
    label(sheet, cx, cy, words, HEADING if lit else TEXT, transform="rotate(-90 %g %g)" % (cx, cy))


def keyboard_icon(sheet, x, y, ink):
    for i in range(4):
        sheet.rect(x + 3 * i, y, 2, 9, ink)
    for i in (0, 2):
        sheet.rect(x + 3 * i + 2, y, 1, 5, ink)


def wave_icon(sheet, x, y, ink):
    for i, height in enumerate((3, 7, 11, 5, 9, 3)):
        sheet.rect(x + 2 * i, y + 5 - height // 2, 1, height, ink)


def strip_plate(sheet, key_map, hint):
    plate(sheet, 2, 234, 596, 106)
    tabs(sheet, key_map)
    well(sheet, *places.STRIP_PLOT)
    heading(sheet, 37, STRIP_BASELINE, "Key Map" if key_map else "Waveform", STRIP_SIZE)
    if key_map:
        for x, colour, words in ((514, BLUE, "range"), (553, WARM, "root")):
            sheet.rect(x, STRIP_BASELINE - 6, 6, 6, colour)
            label(sheet, x + 9, STRIP_BASELINE, words)
    if hint:
        label(sheet, 100, STRIP_BASELINE, HINT)


def whole_page(key_map=False, hint=False):
    sheet = chassis()
    for draw in (bin_plate, pad_plate, settings_plate, grain_plate, view_plate):
        draw(sheet)
    strip_plate(sheet, key_map, hint)
    return sheet


def covered_labels(sheet):
    """The rectangles of controls that a label reaches into."""
    words_only = Sheet(sheet.width, sheet.height, BLACK)
    words_only.parts += sheet.labels
    rows = raster.rendered(words_only)
    return [(x, y, width, height) for x, y, width, height in places.all_controls()
            if any(any(row[3 * x : 3 * (x + width)]) for row in rows[y : y + height])]
