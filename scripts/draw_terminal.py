#!/usr/bin/env python3
"""Draws what a terminal shows as a picture: the text of `tmux capture-pane -p -e -N` from standard input to OUT.png.

    tmux capture-pane -p -e -N | scripts/draw_terminal.py docs/view.png [COLUMNS]
"""
import re
import sys

try:
    from PIL import Image, ImageDraw, ImageFont
except ImportError:
    sys.exit("draw_terminal: Python's imaging library is not installed (Debian: python3-pil; scripts/setup.sh test brings it along)")

FONTS = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono{}.ttf"
SIZE, CELL = 15, (9, 19)
FRONT, BACK = (208, 208, 208), (24, 24, 28)
BASIC = [(0, 0, 0), (205, 49, 49), (13, 188, 121), (229, 229, 16), (36, 114, 200), (188, 63, 188), (17, 168, 205),
         (229, 229, 229), (102, 102, 102), (241, 76, 76), (35, 209, 139), (245, 245, 67), (59, 142, 234), (214, 112, 214), (41, 184, 219),
         (255, 255, 255)]


def color(index):
    """One of the 256 colours."""
    if index < 16:
        return BASIC[index]
    if index >= 232:
        return (8 + 10 * (index - 232),) * 3
    steps = (0, 95, 135, 175, 215, 255)
    index -= 16
    return steps[index // 36], steps[index // 6 % 6], steps[index % 6]


class Pen:
    """What the escapes so far say of the text that follows."""

    def __init__(self):
        self.take([0])

    def take(self, codes):
        codes = list(codes)
        while codes:
            code = codes.pop(0)
            if code == 0:
                self.front, self.back, self.bold, self.reverse = FRONT, BACK, False, False
            elif code in (1, 7):
                self.bold, self.reverse = self.bold or code == 1, self.reverse or code == 7
            elif code in (38, 48) and codes[:1] == [5]:
                setattr(self, "front" if code == 38 else "back", color(codes[1]))
                codes = codes[2:]
            elif 30 <= code <= 37 or 90 <= code <= 97:
                self.front = color(code - 30 if code < 90 else code - 82)
            elif 40 <= code <= 47:
                self.back = color(code - 40)
            elif code in (39, 49):
                setattr(self, "front" if code == 39 else "back", FRONT if code == 39 else BACK)

    def colors(self):
        return (self.back, self.front) if self.reverse else (self.front, self.back)


def draw(lines, columns, path):
    fonts = [ImageFont.truetype(FONTS.format(kind), SIZE) for kind in ("", "-Bold")]
    margin = 8
    image = Image.new("RGB", (columns * CELL[0] + 2 * margin, len(lines) * CELL[1] + 2 * margin), BACK)
    canvas, pen = ImageDraw.Draw(image), Pen()
    for row, line in enumerate(lines):
        column = 0
        for escape, text in re.findall(r"\x1b\[([\d;]*)m|([^\x1b])", line):
            if not text:
                pen.take([int(code or 0) for code in escape.split(";")])
                continue
            x, y = margin + column * CELL[0], margin + row * CELL[1]
            front, back = pen.colors()
            canvas.rectangle((x, y, x + CELL[0] - 1, y + CELL[1] - 1), fill=back)
            canvas.text((x, y), text, font=fonts[pen.bold], fill=front)
            column += 1
    image.quantize(64).save(path, optimize=True)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    lines = sys.stdin.read().rstrip("\n").split("\n")
    widest = max(len(re.sub(r"\x1b\[[\d;]*m", "", line)) for line in lines)
    draw(lines, int(sys.argv[2]) if len(sys.argv) == 3 else widest, sys.argv[1])


if __name__ == "__main__":
    main()
