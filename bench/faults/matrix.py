"""The fault matrix of doc/robustness.md: velarto, FFmpeg and GStreamer on the same faulty bytes.

Usage: bench/faults/matrix.py BUILD. Runs every row, rewrites the section, and fails if velarto loses a frame that the rules let
it keep, or ends otherwise than the row says."""

import datetime
import os
import pathlib
import platform
import random
import sys
import tempfile
import textwrap
import time

import programs
import scenes
import servers
import streams

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PAGE = ROOT / "doc/robustness.md"
BEGIN, END = "<!-- ./run faults: begin -->", "<!-- ./run faults: end -->"
FORMS = ("compact", "prefixed", "jfif")

# Fault, what velarto does, and where an intact frame is lost.
STREAM_ROWS = {
    "garbage": ("Garbage before each frame, up to 4 KB", "Skipped", "its start directly follows a single FF"),
    "truncated": ("Each 10th frame truncated", "Decoded, with the bytes that follow in place of the missing ones",
                  "the announced bytes before it, in JFIF those up to the next end marker, include its start"),
    "holed": ("Each 10th frame with 100 to 1000 bytes missing", "Decoded, wrong after the gap",
              "the announced bytes before it include its start"),
    "overwritten": ("Each 10th frame with 50 bytes of its coded data overwritten", "Decoded, wrong from there on", ""),
    "headers": ("Each 10th header with a wrong bit in markers, length or size", "Skipped, or decoded at the size in the header",
                "a damaged header before it announces bytes that include its start"),
    "joined": ("Joined mid-frame", "The remainder of that frame is skipped", ""),
    "claim": ("700 bytes that claim 65500x65500 before each 10th frame", "Skipped, with a message for each", ""),
}


class Matrix:
    def __init__(self, build):
        self.tool = build / "velarto"
        self.build = build
        self.folder = tempfile.TemporaryDirectory()
        self.work = pathlib.Path(self.folder.name)
        self.velarto = programs.velarto(self.tool)
        self.peers = [programs.ffmpeg(), programs.gstreamer()]
        self.frames = {}
        self.rows, self.failures = [], []

    def check(self, row, condition, complaint):
        if not condition:
            self.failures.append(f"{row}: {complaint}")

    def stream(self, form, data):
        path = self.work / f"stream.{form}"
        path.write_bytes(data)
        return path

    def make_frames(self):
        """The pictures of the sample recording, as frames of each form."""
        pictures = self.work / "pictures"
        pictures.mkdir()
        programs.run([self.tool, "export", ROOT / "samples/street.vlr", "-o", pictures / "%04d.bmp"])
        for form in FORMS:
            path = self.stream(form, b"")
            programs.run([self.tool, "make", "--form", form, "-o", path, *sorted(pictures.iterdir())])
            self.frames[form] = programs.cut(self.tool, path)
            programs.learn(self.velarto, path, len(self.frames[form]), form)
        for peer in self.peers:
            programs.learn(peer, path, len(self.frames["jfif"]), "jfif")

    def add(self, fault, happens, intact, allowed, ours, theirs):
        """Adds a row. ours: a result, or one for each form; theirs: one for each peer, None where nothing comparable can be run."""
        results = [ours if isinstance(ours, list) else [ours]] + [[result] if result else None for result in theirs]
        self.rows.append([fault, happens, intact, allowed, *map(cell, results)])
        print(" | ".join(map(str, self.rows[-1])), flush=True)

    def stream_row(self, kind):
        fault, happens, reason = STREAM_ROWS[kind]
        intact, allowed, ours = [], [], []
        for form in FORMS:
            pieces = streams.STREAM_FAULTS[kind](self.frames[form], form, random.Random(kind))
            whole = [piece.index for piece in pieces if piece.index is not None]
            keep = streams.kept(pieces, form)
            path = self.stream(form, b"".join(piece.bytes for piece in pieces))
            result = programs.judge(self.velarto, path, whole, form)
            self.check(fault, result.exit == 0, f"{form}: {result}")
            self.check(fault, set(keep) == result.right, f"{form}: not as the rules say: {set(keep) ^ result.right}")
            self.check(fault, kind != "claim" or result.text.count("can't be decoded: skipped") == 12, result.text)
            intact.append(len(whole))
            allowed.append(len(keep))
            ours.append(result)
        theirs = [programs.judge(peer, path, whole) for peer in self.peers]
        if allowed != intact:
            happens += "; an intact frame is lost where " + reason
        self.add(fault, happens, intact[-1], "/".join(map(str, allowed)), ours, theirs)

    def endless_row(self, megabytes=400):
        fault = f"{megabytes} MB without an end marker, then good frames"
        frames = self.frames["jfif"]
        everyone = range(len(frames))
        results = [programs.judge(decoder, "-", everyone, chunks=streams.endless(frames, "jfif", megabytes))
                   for decoder in (self.velarto, *self.peers)]
        self.check(fault, results[0].exit == 0 and len(results[0].right) == len(frames), results[0])
        self.add(fault, "The start is given up after 512000 bytes", len(frames), len(frames), results[0], results[1:])

    def http_row(self, fault, happens, answer, lost=(), message=None, code=0):
        """The frames in a multipart body. lost: those that the rules of HTTP don't let a receiver find."""
        everyone = range(len(self.frames["jfif"]))
        results = []
        for decoder in (self.velarto, *self.peers):
            with servers.Server(answer) as server:
                results.append(programs.judge(decoder, server.address, everyone))
        keep = set(everyone) - set(lost)
        self.check(fault, results[0].exit == code and results[0].right == keep, f"{keep - results[0].right} {results[0]}")
        self.check(fault, not message or message in results[0].text, results[0].text)
        self.add(fault, happens, len(everyone), len(keep), results[0], results[1:])

    def http_rows(self):
        frames = self.frames["jfif"]
        body = servers.parts(frames)
        self.http_row("Multipart without a first boundary", "What comes before the first boundary is no part: one frame is lost",
                      servers.response(servers.parts(frames, first_boundary=False)), lost=[0])
        for by, size, happens in ((100, "large", "The boundary decides, not the length"),
                                  (-100, "small", "The frame is shown truncated, then up to the boundary")):
            self.http_row(f"Content-Length of each 10th part 100 bytes too {size}", happens,
                          servers.response(servers.parts(frames, length=servers.wrong_length(by))))
        self.http_row("Content-Length of the response too large: it ends early", "All frames, then an error and exit code 1",
                      servers.response(body, f"Content-Length: {len(body) + 1000}\r\n"), message="transfer closed with", code=1)
        self.http_row("Content-Length missing, of parts and response", "The boundary ends a part",
                      servers.response(servers.parts(frames, length=lambda index, size: None)))
        self.http_row("Chunked transfer, cut each 1000 bytes", "As without chunks", servers.chunked(body))

    def run(self):
        began = time.monotonic()
        self.make_frames()
        for kind in STREAM_ROWS:
            self.stream_row(kind)
        self.endless_row()
        self.http_rows()
        scenes.half_open(self)
        scenes.slow_reader(self)
        scenes.disk_full(self)
        scenes.display_lost(self)
        scenes.memory(self)
        self.seconds = time.monotonic() - began


def cell(results):
    """Correct frames, memory, processor time, and how a program ended if not with success."""
    if not results:
        return "–"
    counts = "/".join("–" if result.right is None else str(len(result.right)) for result in results)
    worst = max(results, key=lambda result: 1000 if result.exit is None else result.exit)
    text = f"{counts}; {max(result.memory for result in results):.0f} MB; {max(result.seconds for result in results):.2f} s"
    if worst.exit is None:
        return text + "; had to be stopped"
    return text + (f"; exit {worst.exit}" if worst.exit else "")


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def section(matrix):
    versions = [programs.first_line([matrix.tool, "--version"]), " ".join(programs.first_line(["ffmpeg", "-version"]).split()[:3]),
                programs.first_line(["gst-launch-1.0", "--version"])]
    header = ["Fault", "What velarto does", "Intact frames", "The rules keep", "velarto", "FFmpeg", "GStreamer"]
    made = f"Made by `./run faults` on {datetime.date.today()} in {matrix.seconds:.0f} s: {'; '.join([processor(), *versions])}."
    lines = [*textwrap.wrap(made, 100), "", "| " + " | ".join(header) + " |", "|---" * len(header) + "|"]
    lines += ["| " + " | ".join(map(str, row)) + " |" for row in matrix.rows]
    return "\n".join(lines)


def main():
    matrix = Matrix(pathlib.Path(sys.argv[1]).resolve())
    os.environ["LC_ALL"] = "C"
    matrix.run()
    page = PAGE.read_text()
    before, after = page.split(BEGIN)
    PAGE.write_text(before + BEGIN + "\n" + section(matrix) + "\n" + END + after.split(END)[1])
    for failure in matrix.failures:
        print("faults:", failure, file=sys.stderr)
    print(f"{len(matrix.rows)} rows, {len(matrix.failures)} failures, written to {PAGE}")
    sys.exit(1 if matrix.failures else 0)


if __name__ == "__main__":
    main()
