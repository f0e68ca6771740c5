#!/usr/bin/env python3
"""Makes the pictures beside it: drawings of the kind that people have as their avatar.

Usage: make_pictures.py [DIR]     (needs Debian's python3-pil)

They are drawn at a larger scale and reduced, which smooths the edges. What is what:

anna.jpg        256 x 256   JPEG, a face
boris.png       240 x 240   PNG with an alpha channel, a face in a round cut-out
cat.bmp          24 x 24    BMP, 24 bits a pixel, tiny
chloe.gif       200 x 200   GIF of 32 colours, a face
harbour.jpg     960 x 640   JPEG, wider than a handset's screen
invitation.jpg              a text, no picture at all
lighthouse.gif  600 x 1800  GIF of 24 colours, wider and taller than a screen
mountains.png  1200 x 300   PNG without alpha channel, a panorama
torn.png                    the first five bytes of boris.png
tulip.jpg       320 x 960   JPEG, narrower but taller than a screen
"""
import math
import os
import random
import sys

from PIL import Image, ImageDraw

SCALE = 3


class Canvas:
    """A drawing board in units of the finished picture."""

    def __init__(self, width, height, colour):
        self.size = (width, height)
        self.image = Image.new("RGB", (width * SCALE, height * SCALE), colour)
        self.draw = ImageDraw.Draw(self.image)

    @staticmethod
    def _scaled(points):
        return [(x * SCALE, y * SCALE) for x, y in points]

    def gradient(self, top, bottom, y0, y1):
        for y in range(int(y0 * SCALE), int(y1 * SCALE)):
            part = (y - y0 * SCALE) / ((y1 - y0) * SCALE)
            colour = tuple(round(a + (b - a) * part) for a, b in zip(top, bottom))
            self.draw.line([(0, y), (self.image.width, y)], fill=colour)

    def polygon(self, points, colour):
        self.draw.polygon(self._scaled(points), fill=colour)

    def box(self, x0, y0, x1, y1, colour, radius=0):
        self.draw.rounded_rectangle(self._scaled([(x0, y0), (x1, y1)]), radius * SCALE,
                                    fill=colour)

    def oval(self, x, y, rx, ry, colour):
        self.draw.ellipse(self._scaled([(x - rx, y - ry), (x + rx, y + ry)]), fill=colour)

    def arc(self, x, y, rx, ry, start, end, colour, width):
        self.draw.arc(self._scaled([(x - rx, y - ry), (x + rx, y + ry)]), start, end,
                      fill=colour, width=round(width * SCALE))

    def finished(self, size=None):
        return self.image.resize(size or self.size, Image.LANCZOS)


def few_colours(picture, count=32):
    return picture.quantize(count, dither=Image.Dither.NONE)


def face(canvas, skin, hair, shirt, style):
    """A head on shoulders that fills a square canvas."""
    u = canvas.size[0] / 100
    oval = lambda x, y, rx, ry, colour: canvas.oval(x * u, y * u, rx * u, ry * u, colour)
    shade = tuple(max(0, c - 28) for c in skin)
    if style == "long":
        oval(50, 47, 29, 32, hair)
        canvas.box(21 * u, 47 * u, 79 * u, 88 * u, hair, 10 * u)
    if style == "bun":
        oval(50, 13, 12, 11, hair)
    oval(50, 106, 40, 30, shirt)
    canvas.box(42 * u, 62 * u, 58 * u, 82 * u, shade, 7 * u)
    oval(50, 48, 22, 26, skin)
    oval(27.5, 50, 4, 6, skin)
    oval(72.5, 50, 4, 6, skin)
    fringe = {"long": [(27, 46), (30, 24), (50, 17), (70, 24), (73, 46), (62, 31), (45, 28)],
              "short": [(27, 50), (26, 26), (42, 14), (62, 15), (75, 27), (73, 50), (68, 33),
                        (50, 34), (32, 33)],
              "bun": [(27, 44), (29, 26), (50, 18), (71, 26), (73, 44), (66, 32), (50, 27),
                      (34, 32)]}[style]
    canvas.polygon([(x * u, y * u) for x, y in fringe], hair)
    for x in (41, 59):
        oval(x, 48, 4.6, 3.4, (255, 255, 255))
        oval(x, 48, 2.6, 3, (52, 60, 72))
        oval(x + 0.9, 47, 0.8, 0.8, (255, 255, 255))
        canvas.arc(x * u, 45 * u, 6 * u, 5 * u, 205, 335, hair, 1.7 * u)
    oval(36, 57, 4.5, 3, tuple((c + d) // 2 for c, d in zip(skin, (235, 120, 110))))
    oval(64, 57, 4.5, 3, tuple((c + d) // 2 for c, d in zip(skin, (235, 120, 110))))
    canvas.arc(50 * u, 53 * u, 3 * u, 3.5 * u, 30, 150, shade, 1.3 * u)
    canvas.arc(50 * u, 58 * u, 9 * u, 7 * u, 25, 155, (170, 62, 66), 2 * u)


def anna():
    canvas = Canvas(256, 256, (250, 214, 165))
    canvas.gradient((255, 226, 178), (246, 190, 150), 0, 256)
    face(canvas, (246, 208, 178), (120, 62, 36), (46, 110, 130), "long")
    return canvas.finished()


def boris():
    canvas = Canvas(240, 240, (126, 186, 214))
    face(canvas, (232, 184, 148), (58, 46, 42), (196, 84, 62), "short")
    picture = few_colours(canvas.finished(), 48).convert("RGBA")
    cutout = Image.new("L", (240 * SCALE, 240 * SCALE), 0)
    ImageDraw.Draw(cutout).ellipse([2, 2, 240 * SCALE - 3, 240 * SCALE - 3], fill=255)
    picture.putalpha(cutout.resize((240, 240), Image.LANCZOS))
    return picture


def cat():
    canvas = Canvas(24, 24, (150, 205, 160))
    fur = (70, 70, 84)
    canvas.polygon([(3, 11), (4, 2), (11, 6)], fur)
    canvas.polygon([(21, 11), (20, 2), (13, 6)], fur)
    canvas.oval(12, 13.5, 9.5, 8.5, fur)
    for x in (8.2, 15.8):
        canvas.oval(x, 12.5, 2.1, 2.4, (250, 220, 90))
        canvas.oval(x, 12.5, 0.8, 2, (20, 20, 24))
    canvas.polygon([(10.8, 16), (13.2, 16), (12, 17.6)], (240, 150, 160))
    return canvas.finished()


def chloe():
    canvas = Canvas(200, 200, (204, 190, 232))
    canvas.oval(100, 100, 88, 88, (184, 166, 222))
    face(canvas, (150, 98, 70), (34, 26, 30), (244, 196, 72), "bun")
    return canvas.finished()


def harbour():
    canvas = Canvas(1200, 800, (0, 0, 0))
    canvas.gradient((252, 196, 130), (250, 232, 196), 0, 460)
    canvas.oval(860, 330, 80, 80, (255, 244, 214))
    rng = random.Random(5)
    x = 0
    while x < 1200:
        width, height = rng.randint(60, 120), rng.randint(90, 230)
        colour = rng.choice([(196, 110, 86), (212, 150, 96), (150, 104, 110), (226, 186, 140)])
        canvas.box(x, 460 - height, x + width, 462, colour)
        canvas.polygon([(x - 6, 460 - height), (x + width / 2, 460 - height - 46),
                        (x + width + 6, 460 - height)], (122, 66, 62))
        for window_y in range(460 - height + 24, 430, 52):
            for window_x in range(x + 14, x + width - 24, 34):
                canvas.box(window_x, window_y, window_x + 16, window_y + 24, (255, 236, 170))
        x += width
    canvas.gradient((120, 170, 186), (42, 92, 122), 460, 800)
    for row in range(1, 9):
        for _ in range(6):
            x, y = rng.randint(0, 1200), 460 + row * 38
            canvas.box(x, y, x + 30 + row * 12, y + 3, (170, 208, 214), 1)
    boat(canvas, 300, 640, 1.3, (178, 52, 52))
    boat(canvas, 880, 560, 0.8, (48, 74, 110))
    return canvas.finished((960, 640))


def boat(canvas, x, y, size, hull):
    at = lambda points: [(x + px * size, y + py * size) for px, py in points]
    canvas.polygon(at([(0, -200), (0, -20), (110, -20)]), (252, 248, 238))
    canvas.polygon(at([(-8, -180), (-8, -20), (-80, -20)]), (240, 226, 204))
    canvas.polygon(at([(-4, -206), (4, -206), (4, 0), (-4, 0)]), (90, 62, 48))
    canvas.polygon(at([(-120, -8), (140, -8), (104, 44), (-92, 44)]), hull)


def lighthouse():
    canvas = Canvas(600, 1800, (34, 46, 88))
    for y, colour in ((500, (54, 66, 112)), (800, (88, 88, 134)), (1050, (138, 110, 146)),
                      (1250, (204, 140, 140)), (1400, (246, 184, 140))):
        canvas.box(0, y, 600, 1800, colour)
    rng = random.Random(11)
    for _ in range(50):
        x, y, r = rng.randint(0, 600), rng.randint(0, 760), rng.choice([2, 3, 4])
        canvas.oval(x, y, r, r, (250, 246, 220))
    canvas.polygon([(300, 560), (600, 400), (600, 700)], (112, 112, 150))
    canvas.box(0, 1500, 600, 1800, (30, 64, 96))
    for y in range(1530, 1800, 44):
        canvas.box((y * 7) % 400, y, (y * 7) % 400 + 150, y + 6, (70, 110, 140), 3)
    canvas.polygon([(90, 1620), (180, 1480), (420, 1470), (520, 1620)], (58, 54, 62))
    edge = lambda y: 70 + (y - 620) * 0.055
    for stripe in range(6):
        y0, y1 = 620 + stripe * 145, 620 + (stripe + 1) * 145
        canvas.polygon([(300 - edge(y0), y0), (300 + edge(y0), y0), (300 + edge(y1), y1),
                        (300 - edge(y1), y1)],
                       (206, 62, 58) if stripe % 2 == 0 else (250, 244, 232))
    canvas.box(212, 604, 388, 626, (44, 44, 54))
    canvas.box(250, 510, 350, 606, (255, 232, 140))
    canvas.box(296, 510, 304, 606, (44, 44, 54))
    canvas.polygon([(230, 512), (300, 430), (370, 512)], (150, 44, 44))
    return canvas.finished()


def mountains():
    canvas = Canvas(1600, 400, (0, 0, 0))
    canvas.gradient((96, 158, 210), (232, 236, 224), 0, 300)
    canvas.oval(1250, 95, 42, 42, (255, 244, 200))
    for base, height, step, colour, seed in ((270, 190, 190, (140, 164, 192), 2),
                                             (310, 150, 150, (96, 130, 150), 3),
                                             (345, 105, 120, (66, 108, 100), 7)):
        rng = random.Random(seed)
        points = [(-60, 400)]
        for i, x in enumerate(range(-60, 1800, step // 2)):
            rise = height * rng.uniform(0.7, 1) if i % 2 else height * rng.uniform(0.2, 0.4)
            points.append((x + rng.randint(-16, 16), base - rise))
        canvas.polygon(points + [(1800, 400)], colour)
        if seed == 2:
            for x, y in points[2:-1:2]:
                canvas.polygon([(x, y), (x - 26, y + 36), (x - 8, y + 28), (x + 4, y + 40),
                                (x + 24, y + 34)], (246, 248, 250))
    canvas.box(0, 330, 1600, 400, (58, 128, 148))
    for x in range(0, 1600, 34):
        h = 26 + 16 * math.sin(x * 1.7)
        canvas.polygon([(x - 12, 400), (x, 372 - h), (x + 12, 400)], (34, 72, 60))
    return canvas.finished((1200, 300))


def tulip():
    canvas = Canvas(320, 960, (0, 0, 0))
    canvas.gradient((206, 232, 240), (244, 246, 220), 0, 960)
    canvas.box(0, 850, 320, 960, (122, 92, 66))
    canvas.box(152, 330, 168, 870, (76, 142, 72), 6)
    canvas.polygon([(160, 840), (60, 480), (74, 640), (120, 800)], (96, 164, 84))
    canvas.polygon([(160, 850), (264, 420), (246, 640), (196, 800)], (84, 150, 76))
    canvas.oval(160, 270, 86, 110, (222, 60, 84))
    canvas.polygon([(74, 270), (82, 116), (150, 200)], (222, 60, 84))
    canvas.polygon([(246, 270), (238, 116), (170, 200)], (222, 60, 84))
    canvas.polygon([(112, 240), (160, 100), (208, 240)], (240, 96, 112))
    canvas.oval(160, 280, 50, 92, (240, 96, 112))
    return canvas.finished()


def main():
    directory = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    at = lambda name: os.path.join(directory, name)
    anna().save(at("anna.jpg"), quality=80)
    boris().save(at("boris.png"), optimize=True)
    cat().save(at("cat.bmp"))
    few_colours(chloe()).save(at("chloe.gif"), optimize=True)
    harbour().save(at("harbour.jpg"), quality=55, optimize=True)
    few_colours(lighthouse(), 24).save(at("lighthouse.gif"), optimize=True)
    # Few colours keep the file small; it still has three channels and no alpha.
    few_colours(mountains(), 24).convert("RGB").save(at("mountains.png"), optimize=True)
    tulip().save(at("tulip.jpg"), quality=70)
    with open(at("boris.png"), "rb") as whole, open(at("torn.png"), "wb") as torn:
        torn.write(whole.read(5))
    with open(at("invitation.jpg"), "w", encoding="utf-8") as text:
        text.write("Not a picture: somebody renamed a note.\n")


if __name__ == "__main__":
    main()
