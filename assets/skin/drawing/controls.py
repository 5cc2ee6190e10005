"""The pictures of controls: pads, buttons, knobs and cursors."""

import math

from svg import BLACK, BLUE, BRIGHT, DEEP_GREEN, GREEN, GROUND, LIGHT, LINE, PLATE, SHADE, WARM, WHITE, Sheet, mix

KNOB_FRAMES, KNOB_SIZE, KNOB_TURN = 64, 17, 270
CRISP = {"shape_rendering": "crispEdges"}
CURSOR_SIZE = 32


def pad(number, playing):
    """A key of rubber: it rests, or all of it is lit from behind and its light falls on what surrounds it."""
    sheet = Sheet(44, 38)
    if playing:
        surround = sheet.gradient(mix(GREEN, DEEP_GREEN, 0.5), mix(DEEP_GREEN, BLACK, 0.25))
        body = sheet.gradient(mix(BRIGHT, WHITE, 0.6), BRIGHT, mix(BRIGHT, GREEN, 0.7), mix(GREEN, DEEP_GREEN, 0.25),
                              radial=True)
        edge = sheet.gradient(mix(BRIGHT, WHITE, 0.7), mix(GREEN, BRIGHT, 0.3), GREEN)
        ink, led = mix(DEEP_GREEN, BLACK, 0.7), WHITE
    else:
        surround = mix(GROUND, BLACK, 0.55)
        body = sheet.gradient(mix(LINE, GROUND, 0.12), mix(LINE, GROUND, 0.45), mix(LINE, GROUND, 0.68))
        edge = sheet.gradient(mix(LINE, WHITE, 0.32), mix(LINE, GROUND, 0.25), mix(LINE, BLACK, 0.45))
        ink, led = mix(LIGHT, WHITE, 0.6), mix(GROUND, DEEP_GREEN, 0.3)
    sheet.rect(0, 0, 44, 38, surround, 5)
    sheet.rect(1, 1, 42, 35, body, 4)
    sheet.frame(1, 1, 42, 35, edge, 3.5)
    sheet.text(6, 31, str(number), ink, 11.6, font_weight="bold")
    if not playing:
        sheet.rect(28, 28, 10, 4, mix(LINE, WHITE, 0.1), 1.5, opacity=0.5)
        sheet.rect(28, 27, 10, 4, mix(GROUND, BLACK, 0.5), 1.5)
    sheet.rect(29, 28, 8, 2, led, 1)
    return sheet


class Face:
    """The face of a button: its sheet, and the colour that signs on it have. `margin` pixels of the plate stay free at
    its right."""

    def __init__(self, width, height, down, lamp=GREEN, ground=PLATE, margin=0):
        self.sheet = sheet = Sheet(width, height, ground)
        width -= margin
        sheet.rect(0, 0, width, height, mix(GROUND, BLACK, 0.5), 2.5)
        if down:
            sheet.rect(1, 1, width - 2, height - 2, sheet.gradient(mix(lamp, BLACK, 0.2), mix(lamp, WHITE, 0.12)), 1.5)
            sheet.rect(2, 1, width - 4, 1, mix(lamp, BLACK, 0.45))
            self.ink = mix(lamp, BLACK, 0.82)
        else:
            sheet.rect(1, 1, width - 2, height - 2, sheet.gradient(mix(LINE, WHITE, 0.08), mix(LINE, GROUND, 0.4)), 1.5)
            sheet.rect(2, 1, width - 4, 1, mix(LINE, WHITE, 0.32))
            self.ink = mix(LIGHT, WHITE, 0.45)


def letter(sheet, words, ink):
    sheet.text(8, 11, words, ink, 10, "middle", font_weight="bold")


def mute(down):
    """A light that went out: the key stays in, dark, and its letter is struck through."""
    if not down:
        face = Face(16, 15, False)
        letter(face.sheet, "M", face.ink)
        return face.sheet
    sheet = Sheet(16, 15)
    sheet.rect(0, 0, 16, 15, mix(GROUND, BLACK, 0.5), 2.5)
    sheet.rect(1, 1, 14, 13, sheet.gradient(mix(GROUND, BLACK, 0.75), mix(GROUND, BLACK, 0.4)), 1.5)
    letter(sheet, "M", mix(LINE, LIGHT, 0.7))
    sheet.stroke("M2.5,12.5 L13.5,2.5", mix(GROUND, BLACK, 0.6), 2.4)
    sheet.stroke("M2.5,12.5 L13.5,2.5", WARM, 1.2)
    return sheet


def solo(down):
    face = Face(16, 15, down, WARM)
    letter(face.sheet, "S", face.ink)
    return face.sheet


def synced(down):
    """A metronome."""
    face = Face(16, 15, down)
    face.sheet.stroke("M6.4,2.5 h3.2 L12,12 H4 z", face.ink, 1, stroke_linejoin="round")
    face.sheet.rect(4, 10, 8, 2, face.ink)
    face.sheet.stroke("M7.6,10 L12.6,3.4", face.ink, 1.1)
    return face.sheet


def looping(down):
    """An arrow that runs back into itself."""
    face = Face(16, 15, down)
    face.sheet.stroke("M10.5,4.5 h-4 a3,3 0 0 0 0,6 h3 a3,3 0 0 0 2.9,-2.4", face.ink, 1.3)
    face.sheet.fill("M9.6,1.6 L13,4.5 L9.6,7.4 z", face.ink)
    return face.sheet


def open_project(down):
    """A folder."""
    face = Face(15, 14, down)
    face.sheet.fill("M2.5,11 V3.5 h3.6 l1.2,1.5 h4.2 v1.2 H5 L3.4,11 z", face.ink)
    face.sheet.fill("M5.6,7 h7.4 L11.4,11 H4.1 z", face.ink)
    return face.sheet


def load_into_bin(down):
    """An arrow down into a tray."""
    face = Face(15, 14, down)
    face.sheet.stroke("M2.5,7.5 v3.5 h10 v-3.5", face.ink, 1, **CRISP)
    face.sheet.rect(7, 2, 1, 4, face.ink)
    face.sheet.fill("M4.5,5.4 h6 L7.5,9 z", face.ink)
    return face.sheet


def load_onto_pad(down):
    """An arrow that enters a pad from its side."""
    face = Face(15, 14, down)
    face.sheet.stroke("M6.5,3.6 v-0.1 a1,1 0 0 1 1,-1 h4 a1,1 0 0 1 1,1 v7 a1,1 0 0 1 -1,1 h-4 a1,1 0 0 1 -1,-1 v-1.6",
                      face.ink)
    face.sheet.rect(2, 6, 4, 1, face.ink)
    face.sheet.fill("M5.6,3.5 v6 L9.8,6.5 z", face.ink)
    return face.sheet


def save_project(down):
    face = Face(15, 14, down)
    face.sheet.fill("M3,3 h7.5 l1.5,1.5 V11 H3 z M5,3.8 v2.4 h4.6 v-2.4 z M5,8 v3 h5 v-3 z", face.ink,
                    fill_rule="evenodd")
    face.sheet.rect(8, 3.8, 1, 1.7, face.ink)
    return face.sheet


def delete_file(down):
    """A bin."""
    face = Face(15, 14, down, WARM)
    face.sheet.rect(3, 4, 9, 1, face.ink)
    face.sheet.rect(6, 2.6, 3, 1, face.ink)
    face.sheet.fill("M4,5.8 h7 L10.4,11.6 h-5.8 z", face.ink)
    for x in (6, 8):
        face.sheet.rect(x, 6.8, 1, 3.8, mix(face.ink, LINE, 0.75))
    return face.sheet


def clear_project(down):
    """An eraser, and the line that it wipes out."""
    face = Face(20, 19, down, WARM)
    face.sheet.fill("M10.9,3.4 L15.6,8.1 L12,11.7 L7.3,7 z", face.ink)
    face.sheet.stroke("M6.6,7.8 L3.9,10.5 L7.1,13.7 h2.4 L11.2,12.4", face.ink, 1, stroke_linejoin="round")
    face.sheet.rect(4, 14, 12, 1, face.ink)
    return face.sheet


def play(down):
    face = Face(20, 19, down)
    face.sheet.fill("M7,5 L14.5,9.5 L7,14 z", face.ink if down else GREEN)
    return face.sheet


def stop(_):
    face = Face(20, 19, False)
    face.sheet.rect(6, 6, 8, 7, face.ink, 0.5)
    return face.sheet


def audition(down):
    """A loudspeaker."""
    face = Face(21, 19, down, margin=2)
    face.sheet.fill("M3,7.5 h2.6 L9,4.4 v10.2 L5.6,11.5 H3 z", face.ink)
    face.sheet.stroke("M11,7 a3.6,3.6 0 0 1 0,5", face.ink, 1.2)
    face.sheet.stroke("M13,5 a6.2,6.2 0 0 1 0,9", face.ink, 1.2)
    return face.sheet


def lamp(down):
    sheet = Sheet(9, 9)
    sheet.rect(0, 0, 9, 9, mix(GROUND, BLACK, 0.5), 2)
    if down:
        sheet.rect(1, 1, 7, 7, sheet.gradient(BRIGHT, GREEN, DEEP_GREEN, radial=True), 1.2)
    else:
        sheet.rect(1, 1, 7, 7, sheet.gradient(mix(GROUND, BLACK, 0.1), mix(GROUND, WHITE, 0.1)), 1.2)
    return sheet


def zoom(more, upright):
    """Plus or minus, at the end of the scroller whose axis it zooms."""
    def draw(down):
        width, height = (12, 10) if upright else (10, 12)
        face = Face(width, height, down, ground=SHADE)
        face.sheet.rect(width / 2 - 2.5, height / 2 - 0.5, 5, 1, face.ink, **CRISP)
        if more:
            face.sheet.rect(width / 2 - 0.5, height / 2 - 2.5, 1, 5, face.ink, **CRISP)
        return face.sheet
    return draw


def around(x, radius, degrees):
    """The point at an angle, which counts clockwise from the top."""
    turn = math.radians(degrees)
    return "%.3f,%.3f" % (x + radius * math.sin(turn), KNOB_SIZE / 2 - radius * math.cos(turn))


def knob_frame(sheet, frame, body, edge):
    x = KNOB_SIZE * frame + KNOB_SIZE / 2
    angle = KNOB_TURN * (frame / (KNOB_FRAMES - 1) - 0.5)
    half = KNOB_TURN / 2
    arc = "M%s A%g,%g 0 %d %d %s"
    sheet.stroke(arc % (around(x, 7.4, -half), 7.4, 7.4, 1, 1, around(x, 7.4, half)), mix(GROUND, BLACK, 0.35), 1.7)
    if abs(angle) > 4:
        sheet.stroke(arc % (around(x, 7.4, 0), 7.4, 7.4, 0, angle > 0, around(x, 7.4, angle)), GREEN, 1.7)
    sheet.circle(x, 9.1, 5.7, mix(GROUND, BLACK, 0.6), opacity=0.8)
    sheet.circle(x, 8.5, 5.4, edge)
    sheet.circle(x, 8.5, 4.5, body)
    sheet.stroke("M%s L%s" % (around(x, 1.0, angle), around(x, 5.0, angle)), BRIGHT, 1.6, stroke_linecap="round")


def knobs():
    sheet = Sheet(KNOB_FRAMES * KNOB_SIZE, KNOB_SIZE)
    edge = sheet.gradient(mix(LINE, WHITE, 0.6), mix(LINE, GROUND, 0.5))
    body = sheet.gradient(mix(LINE, GROUND, 0.1), mix(LINE, GROUND, 0.75))
    for frame in range(KNOB_FRAMES):
        knob_frame(sheet, frame, body, edge)
    return sheet


def cursor(outline, inner):
    """White with a black edge, in the left half; in the right half its mask, white where it shows."""
    sheet = Sheet(2 * CURSOR_SIZE, CURSOR_SIZE, BLACK)
    sheet.fill(outline, BLACK, **CRISP)
    sheet.fill(inner, WHITE, **CRISP)
    sheet.fill(outline, WHITE, transform="translate(%d 0)" % CURSOR_SIZE, **CRISP)
    return sheet


def drag_copy():
    """An arrow with its tip at 0, 0, and a plus in a box."""
    arrow = "M0,-1 L0,17 L3.8,13.4 L7,20.4 L10.4,19 L7.4,12 L13,12 z"
    inner = "M1,2.5 L1,14.5 L4.2,11.4 L7.3,18.8 L9.1,18.1 L6.1,11 L9.6,11 z"
    box = " M12,19 h13 v11 h-13 z"
    sheet = cursor(arrow + box, inner + " M13,20 h11 v9 h-11 z")
    sheet.rect(18, 21, 1, 7, BLACK)
    sheet.rect(15, 24, 7, 1, BLACK)
    return sheet


def size_bar(upright):
    """Two arrows that point away from a bar, around 15, 15."""
    def path(*points):
        return "M" + " L".join("%g,%g" % ((y, x) if upright else (x, y)) for x, y in points) + " z "
    outline = (path((5, 15.5), (11, 9.5), (11, 13), (20, 13), (20, 9.5), (26, 15.5), (20, 21.5), (20, 18), (11, 18),
                    (11, 21.5)) + path((13, 7), (18, 7), (18, 24), (13, 24)))
    inner = (path((7, 15.5), (10, 12.5), (10, 18.5)) + path((24, 15.5), (21, 12.5), (21, 18.5))
             + path((10, 15), (21, 15), (21, 16), (10, 16)) + path((15, 8), (16, 8), (16, 23), (15, 23)))
    return cursor(outline, inner)


CURSORS = [("drag-copy", drag_copy), ("size-bar-h", lambda: size_bar(False)), ("size-bar-v", lambda: size_bar(True))]

# Numbers of the two states, up and down, and what draws them.
BUTTON_PICTURES = [
    (205, 206, mute),
    (281, 282, solo),
    (208, 209, synced),
    (210, 211, looping),
    (212, 213, open_project),
    (214, 215, load_into_bin),
    (216, 217, load_onto_pad),
    (286, 287, save_project),
    (280, 279, delete_file),
    (288, 289, clear_project),
    (273, 272, play),
    (274, 274, stop),
    (218, 219, audition),
    (276, 277, lamp),
    (229, 230, zoom(True, False)),
    (231, 232, zoom(False, False)),
    (233, 234, zoom(True, True)),
    (235, 236, zoom(False, True)),
]
