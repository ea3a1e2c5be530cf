"""A virtual screen whose pixels can be read, and the windows on it."""

import mmap
import os
import struct
import subprocess
import time

import pictures

QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


class Screen:
    """Xvfb keeps its pixels in a file, in the xwd format, which is mapped here."""

    def __init__(self, folder, width, height):
        reading, writing = os.pipe()
        size = f"{width}x{height}x24"
        command = ["Xvfb", "-displayfd", str(writing), "-fbdir", folder, "-screen", "0", size, "-nolisten", "tcp"]
        self.server = subprocess.Popen(command, pass_fds=[writing], **QUIET)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            display = pipe.readline().strip()
        self.environment = os.environ | {"DISPLAY": f":{display}", "SDL_VIDEODRIVER": "x11"}
        with open(folder / "Xvfb_screen0", "rb") as file:
            self.pixels = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        header = struct.unpack(">25I", self.pixels[:100])
        self.start, self.pitch = header[0] + 12 * header[19], header[12]

    def xdotool(self, *words):
        words = [str(word) for word in words]
        return subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True).stdout.split()

    def picture(self, path):
        subprocess.run(["import", "-window", "root", path], env=self.environment, check=True)

    def close(self):
        self.server.terminate()
        self.server.wait()


class Window:
    """The window of a viewer, with its place and size."""

    def __init__(self, screen, process, place, size=(pictures.WIDTH, pictures.HEIGHT)):
        self.screen, self.place, self.size = screen, place, size
        end = time.monotonic() + 20
        while not (found := screen.xdotool("search", "--onlyvisible", "--pid", process.pid)):
            if time.monotonic() > end or process.poll() is not None:
                raise SystemExit("soak: a viewer opened no window")
            time.sleep(0.1)
        self.handle = found[-1]
        screen.xdotool("windowmove", self.handle, *place)

    def resize(self, size):
        self.size = size
        self.screen.xdotool("windowsize", self.handle, *size)

    def press(self, key):
        self.screen.xdotool("windowfocus", "--sync", self.handle, "key", key)

    def number(self):
        """The number of the picture that is shown, None if it can't be read."""
        bits = []
        for x, y in pictures.number_places():
            column = self.place[0] + x * self.size[0] // pictures.WIDTH
            row = self.place[1] + y * self.size[1] // pictures.HEIGHT
            bits.append(self.screen.pixels[self.screen.start + row * self.screen.pitch + 4 * column + 1] > 127)
        plain, inverse = bits[:pictures.BITS], bits[pictures.BITS:]
        return sum(bit << place for place, bit in enumerate(plain)) if all(a != b for a, b in zip(plain, inverse)) else None
