#!/usr/bin/env python3
"""Draws the images that lines of the decode tree have, one bitmap each: resources/tr0.bmp to tr21.bmp. For screens of 144
and 192 dots per inch they stand side by side in one bitmap each: resources/tr_144.bmp and tr_192.bmp.

  scripts/draw_images.py             writes them (and the list of them, resources/images.rc)
  scripts/draw_images.py --check     exit status 1 when a file differs from what would be written

Every style is told by its shape and its colour alike. Images 9 to 12 are the nesting levels 2 to 5, which packets go
through from the link header to the application; 6 are raw data and 13 bit fields and dump rows. The others are free for
decoder libraries: 7, 8 and 14 to 17 are bolder, 0 to 5 and 18 to 21 plainer.
"""
import os
import struct
import sys

WIDTH, HEIGHT = 15, 16
FOLDER = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "resources")
# The first colour is the one that image lists leave out.
COLOURS = {".": 0xFF00FF, "w": 0xFFFFFF, "k": 0x404040, "a": 0x909090, "l": 0xD8D8D8, "b": 0x1F4FA0, "B": 0x6FA8F0,
           "g": 0x1E7A34, "G": 0x6CCB7C, "o": 0xB06A00, "O": 0xFFC04D, "r": 0xA82020, "R": 0xF08080, "p": 0x6B2FA0,
           "P": 0xC39BE8}
MIDDLE = 7      # column and row that shapes stand around; row 15 stays free between lines


def square(x, y, size):
    return max(abs(x), abs(y)) <= size


def circle(x, y, size):
    return x * x + y * y <= size * size + 2


def diamond(x, y, size):
    return abs(x) + abs(y) <= size


def triangle(x, y, size):      # to the right
    return -size < x <= size and 2 * abs(y) <= size - x


def hexagon(x, y, size):
    return abs(y) <= size and 2 * abs(x) + abs(y) <= 2 * size + 1


def cross(x, y, size):
    return min(abs(x), abs(y)) <= 1 and max(abs(x), abs(y)) <= size


class Style:
    """An image by its shape, drawn at any size: the letters of its colours by place, in units of the smallest image."""

    def __init__(self, shape, size, line, fill, core=None):
        self.shape, self.size, self.line, self.fill, self.core = shape, size, line, fill, core

    def letter(self, x, y, scale):
        """The shape outlined and filled, with a smaller one in its middle when it has a core."""
        x, y, grown = x - MIDDLE, y - MIDDLE, (1 - 1 / scale) / 2   # of a pixel of the smallest the outer half, too
        if not self.shape(x, y, self.size + grown):
            return "."
        if not all(self.shape(x + dx, y + dy, self.size + grown) for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1))):
            return self.line
        return self.core if self.core and self.shape(x, y, self.size - 3 + grown) else self.fill


class Pixels:
    """An image by its pixels, which are larger on other screens."""

    def __init__(self, rows):
        self.rows = rows

    def letter(self, x, y, _scale):
        return self.rows[int(y + 0.5)][int(x + 0.5)]


def draw(style, scale=1):
    """Rows of colour letters."""
    def place(pixel):
        return (pixel + 0.5) / scale - 0.5
    return ["".join(style.letter(place(x), place(y), scale) for x in range(int(WIDTH * scale)))
            for y in range(int(HEIGHT * scale))]


def raw_data():
    """A page of byte values."""
    return ["." * WIDTH, "..kkkkkkkkkkk.."] + ["..kwwwwwwwwwk..", "..kwawawawawk.."] * 5 + [
        "..kwwwwwwwwwk..", "..kkkkkkkkkkk..", "." * WIDTH, "." * WIDTH]


def bit_field():
    """A word with one of its bits set."""
    edge, inside = "." + "k" * 13 + ".", ".kwwwkPPPkwwwk."
    return ["." * WIDTH] * 4 + [edge] + [inside] * 5 + [edge] + ["." * WIDTH] * 5


IMAGES = [
    Style(square, 3, "a", "l"), Style(square, 5, "b", "w"), Style(circle, 5, "g", "w"), Style(diamond, 5, "o", "w"),
    Style(triangle, 5, "r", "w"), Style(hexagon, 5, "p", "w"),
    Pixels(raw_data()),
    Style(square, 6, "k", "l", "k"), Style(hexagon, 6, "k", "a", "w"),
    Style(square, 6, "b", "B"), Style(circle, 6, "g", "G"), Style(diamond, 6, "o", "O"), Style(triangle, 6, "r", "R"),
    Pixels(bit_field()),
    Style(square, 6, "b", "w", "b"), Style(circle, 6, "g", "w", "g"), Style(diamond, 6, "o", "w", "o"),
    Style(hexagon, 6, "p", "w", "p"),
    Style(circle, 3, "b", "B"), Style(circle, 3, "g", "G"), Style(circle, 3, "r", "R"), Style(cross, 5, "k", "k"),
]
LARGER = {144: 1.5, 192: 2}   # dots per inch: times the smallest, which is for 96


def bitmap(rows):
    """The file of an image: 16 colours, rows from below, each of whole words."""
    letters = list(COLOURS)
    width, height = len(rows[0]), len(rows)
    stride = (width + 7) // 8 * 4
    palette = b"".join(struct.pack("<I", COLOURS[letter]) for letter in letters) + bytes(4 * (16 - len(letters)))
    pixels = b""
    for row in reversed(rows):
        indexes = [letters.index(letter) for letter in row] + [0] * (2 * stride - width)
        pixels += bytes(high << 4 | low for high, low in zip(indexes[::2], indexes[1::2]))
    start = 14 + 40 + len(palette)
    return (struct.pack("<2sIII", b"BM", start + len(pixels), 0, start)
            + struct.pack("<IiiHHIIiiII", 40, width, height, 1, 4, 0, len(pixels), 0, 0, 16, 0) + palette + pixels)


def files():
    """What stands in resources/: name and bytes."""
    listed = "// The images of the decode tree's lines, drawn by scripts/draw_images.py.\n"
    for number, style in enumerate(IMAGES):
        yield f"tr{number}.bmp", bitmap(draw(style))
        listed += f'TR{number} BITMAP "resources/tr{number}.bmp"\n'
    for dots, scale in LARGER.items():
        yield f"tr_{dots}.bmp", bitmap(["".join(row) for row in zip(*(draw(style, scale) for style in IMAGES))])
        listed += f'TR_{dots} BITMAP "resources/tr_{dots}.bmp"\n'
    yield "images.rc", listed.encode()


def main():
    checking = "--check" in sys.argv[1:]
    wrong = 0
    for name, content in files():
        path = os.path.join(FOLDER, name)
        if not checking:
            os.makedirs(FOLDER, exist_ok=True)
            with open(path, "wb") as file:
                file.write(content)
        elif not os.path.isfile(path) or open(path, "rb").read() != content:
            print(f"resources/{name} is not what scripts/draw_images.py draws")
            wrong += 1
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
