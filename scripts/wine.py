#!/usr/bin/env python3
"""Runs the Windows build under Wine, with a prefix of its own in build-win32/wine and a screen in memory (Xvfb).

  scripts/wine.py PROGRAM [ARGUMENT...]      e.g. scripts/wine.py build-win32/qxview.exe list samples/dns.pcap

As a module: `with Session() as wine: wine.run([PROGRAM, ...])`; a session ends what it started, and nothing hangs in it.
"""
import fcntl
import os
import shutil
import signal
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build-win32")
PREFIX = os.path.join(FOLDER, "wine")
BOOT_SECONDS = 180


def is_here():
    """Whether this machine has what a session takes."""
    return all(shutil.which(program) for program in ("wine", "wineserver", "Xvfb"))


def run_bounded(command, seconds, **options):
    """subprocess.run whose whole process group is ended when the time is up; the exit status is then -9."""
    with subprocess.Popen(command, start_new_session=True, **options) as process:
        try:
            out, err = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            out, err = process.communicate()
    return subprocess.CompletedProcess(command, process.returncode, out, err)


class Session:
    """A Wine server and a screen that live as long as the `with` block."""

    def __init__(self):
        self.environment = {**os.environ, "WINEPREFIX": PREFIX, "WINEARCH": "win32", "WINEDEBUG": "-all",
                            "LC_ALL": "C.UTF-8",   # which file names are read in, too
                            "WINEDLLOVERRIDES": "mscoree,mshtml,winemenubuilder.exe="}
        self.screen = self.lock = None

    def __enter__(self):
        os.makedirs(PREFIX, exist_ok=True)
        self.lock = open(os.path.join(FOLDER, "wine.lock"), "w", encoding="ascii")
        fcntl.flock(self.lock, fcntl.LOCK_EX)   # the end of a session would take the programs of another one with it
        try:
            self._start_screen()
            quiet = {"env": self.environment, "stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                     "stderr": subprocess.DEVNULL}
            run_bounded(["wineserver", "-p"], BOOT_SECONDS, **quiet)
            # The session's services start with its first program and keep its output open: it must not be a pipe.
            boot = ["wine", "cmd", "/c", "exit"] if os.path.exists(os.path.join(PREFIX, "system.reg")) else [
                "wine", "wineboot", "-i"]
            if run_bounded(boot, BOOT_SECONDS, **quiet).returncode != 0:
                raise OSError("Wine does not start")
        except BaseException:
            self.__exit__()
            raise
        return self

    def _start_screen(self):
        read, write = os.pipe()
        self.screen = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-nolisten", "tcp", "-screen", "0",
                                        "1024x768x24"], pass_fds=[write], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as number:
            display = number.readline().strip()
        if not display:
            raise OSError("Xvfb does not start")
        self.environment["DISPLAY"] = ":" + display

    def __exit__(self, *_):
        quiet = {"env": self.environment, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        run_bounded(["wineserver", "-k"], 30, **quiet)
        run_bounded(["wineserver", "-w"], 30, **quiet)
        if self.screen:
            self.screen.terminate()
            self.screen.wait()
        self.lock.close()

    def run(self, command, seconds=600, **options):
        """Runs a Windows program; options as for subprocess.Popen."""
        return run_bounded(["wine", *command], seconds, env=self.environment, **options)


def main(arguments):
    if not arguments or arguments[0] in ("-h", "--help"):
        print(__doc__.strip())
        return 0 if arguments else 2
    if not is_here():
        print("wine: Wine and Xvfb are not on this machine (scripts/setup.sh wine)", file=sys.stderr)
        return 1
    with Session() as wine:
        return wine.run(arguments).returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
