"""The whole tool and FFmpeg's programs on the same streams: pictures to files, pictures to a window, and memory."""

import contextlib
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import tempfile
import time

QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


def timed(command, environment=None):
    """Runs a program. Gives the seconds by the clock and of processor time, children included."""
    start = time.monotonic()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=environment, **QUIET)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"bench: this failed: {' '.join(map(str, command))}")
    return wall, usage.ru_utime + usage.ru_stime


def side_by_side(ours, theirs, turns, environment=None, between=lambda: None):
    """Runs both in turn. Gives the medians of seconds by the clock, of processor time, and of the ratios in each turn."""
    times = []
    for turn in range(turns):
        pair = {}
        for command in (ours, theirs) if turn % 2 == 0 else (theirs, ours):
            pair[id(command)] = timed(command, environment)
            between()
        times.append((pair[id(ours)], pair[id(theirs)]))
    result = {}
    for kind, name in enumerate(("seconds", "processor")):
        result[name] = round(statistics.median(own[kind] for own, _ in times), 4)
        result[name + "Peer"] = round(statistics.median(peer[kind] for _, peer in times), 4)
        result[name + "Ratio"] = round(statistics.median(peer[kind] / own[kind] for own, peer in times), 3)
    return result


@contextlib.contextmanager
def virtual_screen():
    """The environment for programs that show something on a virtual screen, drawn by the processor."""
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x900x24", "-nolisten", "tcp"],
                              pass_fds=[writing], **QUIET)
    os.close(writing)
    with os.fdopen(reading) as pipe:
        display = pipe.readline().strip()
    try:
        yield os.environ | {"DISPLAY": f":{display}", "SDL_VIDEODRIVER": "x11", "SDL_RENDER_DRIVER": "software"}
    finally:
        server.terminate()
        server.wait()


def export(tool, stream, turns):
    """Times the export of all pictures of a stream to BMP files, in memory."""
    folder = pathlib.Path(tempfile.mkdtemp(dir="/dev/shm" if os.path.isdir("/dev/shm") else None))
    pattern = folder / "%04d.bmp"
    ours = [tool, "export", stream, "-o", pattern]
    theirs = ["ffmpeg", "-v", "error", "-threads", "1", "-f", "mjpeg", "-i", stream, "-vsync", "passthrough", "-pix_fmt", "bgr24",
              "-threads", "1", pattern]

    def wipe():
        for file in folder.iterdir():
            file.unlink()

    try:
        return side_by_side(ours, theirs, turns, between=wipe)
    finally:
        shutil.rmtree(folder)


def view(tool, stream, frames, turns, environment):
    """Times a stream in a window: as fast as possible, and at a camera's rate."""
    shown = [tool, "view", stream, "--frames", str(frames), "--fps"]
    # ffplay waits 10 ms after each picture, whatever rate it is given; the window of ffmpeg doesn't.
    unpaced = ["ffmpeg", "-v", "error", "-threads", "1", "-f", "mjpeg", "-i", stream, "-vsync", "passthrough", "-pix_fmt", "bgr24",
               "-f", "sdl2", "stream"]
    paced = ["ffplay", "-v", "error", "-threads", "1", "-f", "mjpeg", "-framerate", "50", "-autoexit", "-noframedrop", stream]
    return side_by_side(shown + ["1000"], unpaced, turns, environment), side_by_side(shown + ["50"], paced, 1, environment)


def peak_memory(command, stream):
    """Peak memory of a program in kilobytes, after it was given all of a stream on its standard input."""
    process = subprocess.Popen(command, stdin=subprocess.PIPE, **QUIET)
    process.stdin.write(stream.read_bytes())
    process.stdin.flush()
    time.sleep(0.3)  # For what is still in the pipe.
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    process.stdin.close()
    if process.wait() != 0:
        raise SystemExit(f"bench: this failed: {' '.join(map(str, command))}")
    return int(next(line.split()[1] for line in status.splitlines() if line.startswith("VmHWM:")))


def memory(tool, stream):
    with tempfile.TemporaryDirectory(dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as folder:
        picture = pathlib.Path(folder) / "picture.bmp"
        return {
            "info": peak_memory([tool, "info", "-"], stream),
            "info --text": peak_memory([tool, "info", "--text", "-"], stream),
            "export": peak_memory([tool, "export", "-", "-o", f"{folder}/%d.bmp", "--every", "10"], stream),
            "ffmpeg": peak_memory(["ffmpeg", "-v", "error", "-threads", "1", "-f", "mjpeg", "-i", "-", "-vsync", "passthrough",
                                   "-pix_fmt", "bgr24", "-threads", "1", "-update", "1", "-y", picture], stream),
        }


def stages(tool, stream):
    """The tool's own figures: frames a second, and the shares of the stages."""
    output = subprocess.run([tool, "bench", stream, "--json"], check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return json.loads(output.stdout)


def measure(build, recording, quick):
    """Runs and prints all of this, and gives the results as records."""
    tool, turns, frames = build / "velarto", 2 if quick else 5, 100 if quick else 300
    streams = {}
    for width, height in ((640, 480), (1280, 720)):
        streams[height] = build / f"street-{width}x{height}.jfif"
        subprocess.run([build / "compare", "--recording", recording, "--stream", streams[height], "--width", str(width), "--height",
                        str(height), "--frames", str(frames)], check=True, **QUIET)
    records = [{"type": "tool", "work": "export", "peer": "ffmpeg", "width": 640, "height": 480, "frames": frames} |
               export(tool, streams[480], turns)]
    with virtual_screen() as environment:
        fast, slow = view(tool, streams[720], frames, turns, environment)
    records += [{"type": "stages", "width": 640, "height": 480} | stages(tool, streams[480])]
    size = {"width": 1280, "height": 720, "frames": frames}
    records += [{"type": "tool", "work": "view", "peer": "ffmpeg -f sdl2"} | size | fast,
                {"type": "tool", "work": "view --fps 50", "peer": "ffplay"} | size | slow,
                {"type": "memory", "width": 640, "height": 480, "KB": memory(tool, streams[480])}]
    report(records)
    return records


def report(records):
    print("\nThe whole tool: seconds by the clock, of processor time")
    for record in records:
        if record["type"] == "memory":
            print("Peak memory: " + ", ".join(f"{name} {size / 1024:.1f} MB" for name, size in record["KB"].items()))
            continue
        if record["type"] == "stages":
            shares = ", ".join(f"{name} {share * 100:.0f} %" for name, share in record["shares"].items())
            print(f"  bench, {record['width']}x{record['height']}: {record['framesPerSecond']:.0f} frames a second; {shares}")
            continue
        print(f"  {record['work']}, {record['frames']} frames of {record['width']}x{record['height']}: "
              f"velarto {record['seconds']:.2f}, {record['processor']:.2f}; "
              f"{record['peer']} {record['secondsPeer']:.2f}, {record['processorPeer']:.2f}; "
              f"ratio {record['secondsRatio']:.2f}, {record['processorRatio']:.2f}")
