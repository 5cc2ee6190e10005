"""A sheet of SVG, as large as the picture that it becomes, and the house's colours."""

GROUND = (37, 43, 52)  # wells: what the page paints itself is filled with it
PLATE = (58, 66, 80)  # plates: the one flat colour around every control
SHADE = (28, 32, 39)  # the bottom of a recess that parts share
BLUE = (124, 144, 173)
LIGHT = (160, 172, 191)
LINE = (91, 99, 120)
GREEN = (152, 214, 147)
DEEP_GREEN = (90, 128, 88)
BRIGHT = (206, 255, 202)
WARM = (200, 200, 150)
WHITE = (255, 255, 255)
BLACK = (0, 0, 0)


def mix(a, b, share):
    """The colour that lies `share` of the way from a to b."""
    return tuple(round(x + (y - x) * share) for x, y in zip(a, b))


def paint(colour):
    """A colour as an attribute: a triple, or the reference to a gradient."""
    return colour if isinstance(colour, str) else "#%02x%02x%02x" % colour


class Sheet:
    """Opaque, or with None for its ground transparent where nothing is drawn."""

    def __init__(self, width, height, ground=PLATE):
        self.width, self.height = width, height
        self.defs, self.parts, self.labels = [], [], []
        if ground:
            self.rect(0, 0, width, height, ground)

    def element(self, name, text=None, **attributes):
        words = " ".join('%s="%s"' % (key.replace("_", "-"), value) for key, value in attributes.items())
        self.parts.append("<%s %s/>" % (name, words) if text is None else "<%s %s>%s</%s>" % (name, words, text, name))

    def gradient(self, *stops, across=False, radial=False):
        """Evenly spaced stops from top to bottom, from left to right, or from the centre out."""
        name = "g%d" % len(self.defs)
        inner = "".join(
            '<stop offset="%.3f" stop-color="%s"/>' % (i / (len(stops) - 1), paint(s)) for i, s in enumerate(stops)
        )
        kind = "radialGradient" if radial else "linearGradient"
        run = 'cx="0.5" cy="0.45" r="0.7"' if radial else ('x2="1"' if across else 'x2="0" y2="1"')
        self.defs.append('<%s id="%s" %s>%s</%s>' % (kind, name, run, inner, kind))
        return "url(#%s)" % name

    def rect(self, x, y, width, height, fill, radius=0, **more):
        self.element("rect", x=x, y=y, width=width, height=height, rx=radius, fill=paint(fill), **more)

    def frame(self, x, y, width, height, stroke, radius=0, **more):
        """A line of one pixel just inside the rectangle."""
        self.element("rect", x=x + 0.5, y=y + 0.5, width=width - 1, height=height - 1, rx=radius, fill="none",
                     stroke=paint(stroke), **more)

    def circle(self, x, y, radius, fill, **more):
        self.element("circle", cx=x, cy=y, r=radius, fill=paint(fill), **more)

    def fill(self, path, colour, **more):
        self.element("path", d=path, fill=paint(colour), **more)

    def stroke(self, path, colour, width=1, **more):
        self.element("path", d=path, fill="none", stroke=paint(colour), stroke_width=width, **more)

    def text(self, x, baseline, words, colour=LIGHT, size=10, anchor="start", family="Liberation Sans", **more):
        self.element("text", words, x=x, y=baseline, fill=paint(colour), font_size=size, text_anchor=anchor,
                     font_family=family, **more)

    def source(self):
        size = (self.width, self.height)
        return ('<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d"><defs>%s</defs>\n%s\n</svg>\n'
                % (*size, *size, "".join(self.defs), "\n".join(self.parts)))
