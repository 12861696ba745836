#!/usr/bin/env python3
"""Draws the images that lines of the decode tree have, one bitmap each: resources/tr0.bmp to tr21.bmp.

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


def draw(shape, size, line, fill, core=None):
    """Rows of colour letters: the shape outlined and filled, with a smaller one in its middle when it has a core."""
    def pixel(x, y):
        if not shape(x, y, size):
            return "."
        if not all(shape(x + dx, y + dy, size) for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1))):
            return line
        return core if core and shape(x, y, size - 3) else fill
    return ["".join(pixel(x - MIDDLE, y - MIDDLE) for x in range(WIDTH)) for y in range(HEIGHT)]


def raw_data():
    """A page of byte values."""
    return ["." * WIDTH, "..kkkkkkkkkkk.."] + ["..kwwwwwwwwwk..", "..kwawawawawk.."] * 5 + [
        "..kwwwwwwwwwk..", "..kkkkkkkkkkk..", "." * WIDTH, "." * WIDTH]


def bit_field():
    """A word with one of its bits set."""
    edge, inside = "." + "k" * 13 + ".", ".kwwwkPPPkwwwk."
    return ["." * WIDTH] * 4 + [edge] + [inside] * 5 + [edge] + ["." * WIDTH] * 5


IMAGES = [
    draw(square, 3, "a", "l"), draw(square, 5, "b", "w"), draw(circle, 5, "g", "w"), draw(diamond, 5, "o", "w"),
    draw(triangle, 5, "r", "w"), draw(hexagon, 5, "p", "w"),
    raw_data(),
    draw(square, 6, "k", "l", "k"), draw(hexagon, 6, "k", "a", "w"),
    draw(square, 6, "b", "B"), draw(circle, 6, "g", "G"), draw(diamond, 6, "o", "O"), draw(triangle, 6, "r", "R"),
    bit_field(),
    draw(square, 6, "b", "w", "b"), draw(circle, 6, "g", "w", "g"), draw(diamond, 6, "o", "w", "o"),
    draw(hexagon, 6, "p", "w", "p"),
    draw(circle, 3, "b", "B"), draw(circle, 3, "g", "G"), draw(circle, 3, "r", "R"), draw(cross, 5, "k", "k"),
]


def bitmap(rows):
    """The file of an image: 16 colours, rows from below, each of whole words."""
    letters = list(COLOURS)
    stride = (WIDTH + 7) // 8 * 4
    palette = b"".join(struct.pack("<I", COLOURS[letter]) for letter in letters) + bytes(4 * (16 - len(letters)))
    pixels = b""
    for row in reversed(rows):
        indexes = [letters.index(letter) for letter in row] + [0] * (2 * stride - WIDTH)
        pixels += bytes(high << 4 | low for high, low in zip(indexes[::2], indexes[1::2]))
    start = 14 + 40 + len(palette)
    return (struct.pack("<2sIII", b"BM", start + len(pixels), 0, start)
            + struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 4, 0, len(pixels), 0, 0, 16, 0) + palette + pixels)


def files():
    """What stands in resources/: name and bytes."""
    listed = "// The images of the decode tree's lines, drawn by scripts/draw_images.py.\n"
    for number, rows in enumerate(IMAGES):
        assert len(rows) == HEIGHT and all(len(row) == WIDTH for row in rows), number
        yield f"tr{number}.bmp", bitmap(rows)
        listed += f'TR{number} BITMAP "resources/tr{number}.bmp"\n'
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
