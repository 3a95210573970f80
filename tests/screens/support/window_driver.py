"""Drives the real window under Xvfb: starts it over a home, types, clicks and takes pictures. Parts are found by their
object names: `driven_window` is the program's window with an answer to where they stand (driven_window.cpp).

    with Display(1240, 840) as display:
        with display.window(home, appearance="dark") as window:
            window.press("ctrl+4")
            window.click_part("updateButton")
            window.picture("out.png")
"""

from __future__ import annotations

import contextlib
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[3]
PROGRAM = os.environ.get("CORVANE_WINDOW", str(ROOT / "build/dev/bin/corvane"))
DRIVEN = os.environ.get("CORVANE_DRIVEN_WINDOW", str(ROOT / "build/dev/tests/screens/support/driven_window"))
PATIENCE = 30.0

# WM_DELETE_WINDOW to the window of the given number; xdotool only has ways that don't ask.
CLOSE = """
import ctypes, sys
x = ctypes.CDLL("libX11.so.6")
x.XOpenDisplay.restype = x.XInternAtom.restype = ctypes.c_void_p
class Message(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send", ctypes.c_int), ("display", ctypes.c_void_p),
                ("window", ctypes.c_ulong), ("kind", ctypes.c_ulong), ("format", ctypes.c_int),
                ("data", ctypes.c_long * 5), ("rest", ctypes.c_long * 12)]
display = ctypes.c_void_p(x.XOpenDisplay(None))
atom = lambda name: x.XInternAtom(display, name, 0)
message = Message(type=33, send=1, window=int(sys.argv[1]), kind=atom(b"WM_PROTOCOLS"), format=32)
message.data[0] = atom(b"WM_DELETE_WINDOW")
x.XSendEvent(display, message.window, 0, 0, ctypes.byref(message))
x.XCloseDisplay(display)
"""


def wait_until(condition, what, patience=PATIENCE):
    """Polls an outside program, which has no event to wait for."""
    deadline = time.monotonic() + patience
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited in vain for {what}")
        time.sleep(0.05)


def said_by(process):
    """Everything that the program wrote on its standard error so far."""
    process.said.seek(0)
    return process.said.read()


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


class Display:
    """An X server of its own, with a screen of the given size."""

    def __init__(self, width=1240, height=840):
        self.width, self.height = width, height

    def __enter__(self):
        for tool in ("Xvfb", "xdotool"):
            if shutil.which(tool) is None:
                raise unittest.SkipTest(f"{tool} is not installed: the window can't be driven")
        self._folder = tempfile.TemporaryDirectory()
        read_end, write_end = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{self.width}x{self.height}x24",
             "-nolisten", "tcp", "-noreset", "-fbdir", self._folder.name],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.environment = {**os.environ, "DISPLAY": f":{number}", "QT_QPA_PLATFORM": "xcb",
                            "QT_QUICK_BACKEND": "software", "LC_ALL": "C.UTF-8"}
        for unwanted in ("WAYLAND_DISPLAY", "QT_SCALE_FACTOR"):
            self.environment.pop(unwanted, None)
        return self

    def __exit__(self, *_):
        self._server.terminate()
        self._server.wait()
        self._folder.cleanup()

    def pixels(self):
        """The screen's memory: rows of four bytes a pixel, blue first (as XWD files have it)."""
        dump = (pathlib.Path(self._folder.name) / "Xvfb_screen0").read_bytes()
        header_size, = struct.unpack_from(">I", dump)
        row_size, = struct.unpack_from(">I", dump, 48)
        colours, = struct.unpack_from(">I", dump, 76)
        first = header_size + colours * 12
        return dump[first:first + row_size * self.height], row_size

    def run(self, *command, **options):
        return subprocess.run(command, env=self.environment, check=True, **options)

    def start(self, home, *arguments, appearance="light", program=PROGRAM):
        """The program without waiting for its window."""
        runtime = pathlib.Path(home) / "runtime"
        runtime.mkdir(mode=0o700, exist_ok=True)
        # A file: nobody reads while the test goes on, and a full pipe would hold the program up.
        said = tempfile.TemporaryFile("w+")
        process = subprocess.Popen(
            [program, "--home", str(home), "--appearance", appearance, *arguments],
            env={**self.environment, "XDG_RUNTIME_DIR": str(runtime)},
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=said, text=True)
        process.said = said
        return process

    @contextlib.contextmanager
    def window(self, home, *arguments, appearance="light", program=DRIVEN):
        process = self.start(home, *arguments, appearance=appearance, program=program)
        try:
            window = Window(self, process)
            window.wait_for_picture()
            yield window
        finally:
            if process.poll() is None:
                process.terminate()
            process.communicate(timeout=PATIENCE)


class Window:
    def __init__(self, display, process):
        self._display, self.process = display, process
        self.id = wait_until(self._find, "the window")

    def _find(self):
        if self.process.poll() is not None:
            raise RuntimeError("the program ended: " + said_by(self.process))
        found = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid), "--name", "^Corvane"],
            env=self._display.environment, capture_output=True, text=True)
        return found.stdout.split()[0] if found.stdout.split() else None

    def wait_for_picture(self):
        """A window that has painted has more than its background. It gets the keyboard, for which a real desktop has
        a window manager."""
        wait_until(lambda: len(set(self._display.pixels()[0][::997])) > 3, "the first picture")
        self._display.run("xdotool", "windowfocus", "--sync", self.id)

    def ask(self, question):
        self.process.stdin.write(question + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline() or "null")

    def part(self, name):
        """Place and state of a part that is in view, None where there is none; "A/B" is B within A."""
        return self.ask("part " + name) or None

    def wait_for_part(self, name, condition=lambda part: True):
        def found():
            part = self.part(name)
            return part if part and condition(part) else None
        return wait_until(found, f"{name} (it was {self.part(name)}, the keyboard at {self.focus()})")

    def click_part(self, name, button=1):
        """The middle of a part, once it can be pressed and stands still: sheets move while they open."""
        places = []

        def stands(part):
            places.append([part[side] for side in ("x", "y", "width", "height")])
            return part["enabled"] and len(places) > 3 and all(place == places[-1] for place in places[-4:])
        part = self.wait_for_part(name, stands)
        self.click(round(part["x"] + part["width"] / 2), round(part["y"] + part["height"] / 2), button)

    def focus(self):
        """The part that has the keyboard, None where nothing has."""
        return self.ask("focus") or None

    def wait_for_focus(self, name, shown=False):
        """Until the part has the keyboard, and shows it where that is asked for."""
        def has():
            focus = self.focus()
            return focus and name in focus["names"] and (focus["showsFocus"] or not shown)
        wait_until(has, f"{name} to have the keyboard")

    def wait_for_clipboard(self, condition):
        """Its text; large copies are made in the background."""
        def copied():
            text = self.ask("clipboard")["text"]
            return text if condition(text) else None
        return wait_until(copied, "the copied text")

    def press(self, *keys):
        """Returns when the window has taken the keys, or has ended by them."""
        def taken():
            with contextlib.suppress(BrokenPipeError):
                answer = self.process.poll() is None and self.ask("keys")
                return not answer or answer["keys"] >= wanted
            return True
        wait_until(lambda: self.ask("keys")["ready"], "what has appeared to take keys")
        before = self.ask("keys")["keys"]
        self._display.run("xdotool", "key", "--delay", "20", *keys)
        wanted = before + sum(len(key.split("+")) for key in keys)
        wait_until(taken, f"{keys} to arrive")

    def press_to(self, name, key, most=40):
        """Presses the key until the part has the keyboard, and shows it. The names of what had it on the way."""
        way = []
        for _ in range(most):
            # Between a part that goes and the one that takes over nothing has it.
            focus = wait_until(self.focus, "anything to have the keyboard")
            way.append(focus["names"][0] if focus["names"] else "?")
            if name in focus["names"]:
                self.wait_for_focus(name, shown=True)
                return way
            self.press(key)
        raise AssertionError(f"{key} doesn't come to {name}, only to {way}")

    def tab_to(self, name):
        return self.press_to(name, "Tab")

    def type(self, text):
        self._display.run("xdotool", "type", "--delay", "20", text)

    def ask_to_close(self):
        """As the button of the title bar does, which a window manager draws."""
        subprocess.run([sys.executable, "-c", CLOSE, self.id], env=self._display.environment, check=True)

    def click(self, x, y, button=1):
        self.move(x, y)
        self._display.run("xdotool", "click", str(button))

    def move(self, x, y):
        self._display.run("xdotool", "mousemove", "--window", self.id, str(x), str(y))

    def geometry(self):
        """x, y, width, height."""
        said = self._display.run("xdotool", "getwindowgeometry", "--shell", self.id, capture_output=True, text=True)
        values = dict(line.split("=") for line in said.stdout.split())
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def resize(self, width, height):
        self._display.run("xdotool", "windowsize", "--sync", self.id, str(width), str(height))

    def settled(self, still=0.4):
        """Waits until nothing on the window has changed for a while."""
        last, since = None, time.monotonic()
        deadline = since + PATIENCE
        while time.monotonic() < deadline:
            pixels, _ = self._display.pixels()
            if pixels != last:
                last, since = pixels, time.monotonic()
            elif time.monotonic() - since > still:
                return
            time.sleep(0.05)

    def picture(self, path):
        """The whole screen as a PNG."""
        self.settled()
        pixels, row_size = self._display.pixels()
        width, height = self._display.width, self._display.height
        rows = bytearray()
        for y in range(height):
            row = pixels[y * row_size:y * row_size + 4 * width]
            rgb = bytearray(3 * width)
            rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
            rows += b"\0" + rgb
        path = pathlib.Path(path)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(b"\x89PNG\r\n\x1a\n"
                         + _chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                         + _chunk(b"IDAT", zlib.compress(bytes(rows))) + _chunk(b"IEND", b""))

    def quit(self):
        """Asks the program to end, as a session manager does. Its exit status and what it said."""
        if self.process.poll() is None:
            self.process.terminate()
        self.process.communicate(timeout=PATIENCE)
        return self.process.returncode, said_by(self.process)
