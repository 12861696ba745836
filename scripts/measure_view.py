#!/usr/bin/env python3
"""Measures the packet view at a terminal as its user sees it: bytes go into a pseudo-terminal, and the clock stops with the last
byte of the picture that answers.

  scripts/measure_view.py CAPTURE [--program PATH] [--moves N] [--size COLUMNSxROWS] [--wait SECONDS]

Tells the load of the machine beside every run's times: from the start to the first whole screen, to the end of the index, from
there to the last packet, single moves (the next packet, over places all through the capture), and the memory. Medians, and the worst.
"""
import argparse
import fcntl
import os
import pty
import re
import select
import signal
import statistics
import struct
import sys
import tempfile
import termios
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QUIET, GAP = 0.06, 0.012   # seconds without a byte: nothing goes on, and a picture is whole
ESCAPES = re.compile(rb"\x1b\[[0-9;?]*[A-Za-z]|\x1b[()][A-Z0-9]|\x1b[=>78]|\r")


class View:
    """The program on a pseudo-terminal."""

    def __init__(self, program, capture, size):
        self.folder = tempfile.TemporaryDirectory()
        self.seen = b""
        self.started = time.monotonic()
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            fcntl.ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", size[1], size[0], 0, 0))
            os.environ.update(TERM="xterm-256color", LC_ALL="C.UTF-8", XDG_STATE_HOME=self.folder.name)
            os.execv(program, [program, "view", capture])
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", size[1], size[0], 0, 0))

    def read(self, seconds):
        """What comes within the time; empty for nothing."""
        if not select.select([self.terminal], [], [], max(seconds, 0))[0]:
            return b""
        try:
            got = os.read(self.terminal, 1 << 16)
        except OSError:   # it ended
            return b""
        self.seen = (self.seen + got)[-200000:]
        return got

    def type(self, keys):
        os.write(self.terminal, keys)

    def until(self, wanted, seconds):
        """When everything that is wanted was on the screen; None when it was not."""
        end = time.monotonic() + seconds
        shown = b""
        while time.monotonic() < end:
            got = self.read(end - time.monotonic())
            when = time.monotonic()
            shown += got
            plain = ESCAPES.sub(b" ", shown)
            if all(re.search(pattern, plain) for pattern in wanted):
                return when
        return None

    def answer(self, keys):
        """Seconds from the keys to the last byte of the picture that they change."""
        while self.read(QUIET):   # what it draws on its own
            pass
        start = time.monotonic()
        self.type(keys)
        last = None
        while self.read(GAP if last else 5):
            last = time.monotonic()
        return (last or time.monotonic()) - start

    def memory(self):
        """The most that was resident, in megabytes, and what is now without the pages of files."""
        with open(f"/proc/{self.pid}/status", encoding="ascii") as file:
            told = dict(line.split(":", 1) for line in file)
        return int(told["VmHWM"].split()[0]) / 1024, int(told["RssAnon"].split()[0]) / 1024

    def end(self):
        """Leaves by the key; the exit status."""
        self.type(b"q")
        end = time.monotonic() + 5
        while time.monotonic() < end:
            self.read(0.05)
            pid, status = os.waitpid(self.pid, os.WNOHANG)
            if pid:
                return os.waitstatus_to_exitcode(status)
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
        return -1


def milliseconds(times):
    return f"{statistics.median(times) * 1000:.1f} ms, at most {max(times) * 1000:.1f} ms (of {len(times)})"


def tell(name, value):
    print(f"{name:34} {value}   (load {os.getloadavg()[0]:.1f})", flush=True)


def measure_start(arguments, size):
    """From the start to the whole screen: the list, the tree, the bytes, and the bar with the first packet's number."""
    times = []
    for _ in range(5):
        view = View(arguments.program, arguments.capture, size)
        when = view.until([rb"No\.", rb"Packet 1\b", rb"0000 "], 10)
        if when is None:
            raise SystemExit("the first screen does not come")
        while view.read(0.005):   # the rest of that picture
            when = time.monotonic()
        times.append(when - view.started)
        view.end()
    tell("first whole screen", milliseconds(times))


def measure_moves(view, count, moves, name):
    times = []
    for i in range(moves):
        if i % 10 == 0:   # another place
            view.answer(b"g%d\r" % (1 + count * i // moves))
        times.append(view.answer(b"J"))
    tell(name, milliseconds(times))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("capture")
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "qxview"))
    parser.add_argument("--moves", type=int, default=100)
    parser.add_argument("--size", default="160x50")
    parser.add_argument("--wait", type=float, default=0, help="seconds to learn before the last moves are measured")
    arguments = parser.parse_args()
    size = tuple(map(int, arguments.size.split("x")))
    measure_start(arguments, size)
    view = View(arguments.program, arguments.capture, size)
    indexed = view.until([rb"learning|\d packets +(?!reading)[^%]*\n"], 300)
    if indexed is None:
        raise SystemExit("the index does not come to its end")
    tell("index", f"{indexed - view.started:.2f} s")
    tell("to the last packet", f"{view.answer(b'G') * 1000:.1f} ms")
    view.seen = b""
    view.answer(b"\x0c")   # the whole screen anew
    count = int(re.findall(rb"Packet (\d+)", ESCAPES.sub(b" ", view.seen))[-1])
    tell("packets", str(count))
    measure_moves(view, count, arguments.moves, "a move while it learns")
    if arguments.wait:
        end = time.monotonic() + arguments.wait
        while time.monotonic() < end:
            view.read(0.5)
        measure_moves(view, count, arguments.moves, "a move later")
    most, own = view.memory()
    tell("memory", f"{most:.0f} MB at most, {own:.0f} MB of its own now")
    if view.end() != 0:
        raise SystemExit("it did not end as it should")


if __name__ == "__main__":
    sys.exit(main())
