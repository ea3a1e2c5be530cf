"""The pictures that the cameras of the soak send: some carry a number, some change their size."""

import json
import pathlib
import re
import socket
import subprocess
import threading
import time

WIDTH, HEIGHT = 320, 240
COUNT = 64  # Different numbers: at 12 frames a second, delays up to five seconds are told apart.
BITS = 6
SIZES = ((320, 240, "compact"), (160, 128, "prefixed"), (640, 480, "jfif"))


def number_places():
    """The pixels that hold the number: the middle of a square for each bit, white if it is set, then of an inverse one."""
    return [(28 + 24 * place, 222) for place in range(2 * BITS)]


def picture(width, height, number):
    """A PPM picture: moving slopes, and at 320 by 240 the number in squares at the lower edge."""
    wave = [abs((x * 3) % 510 - 255) for x in range(2 * width)]
    rows = []
    for y in range(height):
        start = (number * 7 + y) % width
        row = bytearray(3 * width)
        row[0::3] = bytes(wave[start:start + width])
        row[1::3] = bytes([y * 255 // height]) * width
        row[2::3] = bytes(wave[width - start:2 * width - start])
        if y >= 204 and width == WIDTH:
            bits = [number >> bit & 1 for bit in range(BITS)]
            row[48:48 + 2 * BITS * 72] = b"".join(bytes([255 * bit]) * 72 for bit in bits + [1 - bit for bit in bits])
        rows.append(bytes(row))
    return b"P6 %d %d 255\n" % (width, height) + b"".join(rows)


def make(tool, folder, form, pictures, name):
    """Makes a recording of those pictures."""
    names = []
    for number, content in enumerate(pictures):
        names.append(folder / f"{number}.ppm")
        names[-1].write_bytes(content)
    path = folder / name
    command = [tool, "make", *names, "-o", path, "--form", form]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return path


def numbered(tool, folder):
    return make(tool, folder, "prefixed", (picture(WIDTH, HEIGHT, number) for number in range(COUNT)), "numbered.vlr")


def changing(tool, folder):
    """Makes a recording of ten pictures of each size, each size in another form."""
    path = folder / "changing.vlr"
    with open(path, "wb") as file:
        for width, height, form in SIZES:
            some = (picture(width, height, number) for number in range(10))
            file.write(make(tool, folder, form, some, "part.vlr").read_bytes())
    return path


class Arrivals:
    """A plain client of the numbered camera, on its own thread: notes when each frame's last byte arrives. Frames whose end chaos
    cut or changed are not recognised."""

    def __init__(self, tool, recording, port):
        content = pathlib.Path(recording).read_bytes()
        output = subprocess.run([tool, "info", "--json", recording], check=True, capture_output=True, text=True).stdout
        frames = [json.loads(line) for line in output.splitlines()]
        ends = [content[frame["offset"]:][:frame["bytes"]][-32:] for frame in frames if frame["type"] == "frame"]
        assert len(set(ends)) == COUNT
        self.numbers = {end: number for number, end in enumerate(ends)}
        self.pattern = re.compile(b"|".join(map(re.escape, ends)), re.DOTALL)
        self.times = {}
        self.connection = socket.create_connection(("127.0.0.1", port))
        threading.Thread(target=self.run, daemon=True).start()

    def run(self):
        held = b""
        while chunk := self.connection.recv(65536):
            now = time.monotonic()
            held = held[-31:] + chunk
            for found in self.pattern.finditer(held):
                self.times[self.numbers[found.group()]] = now
