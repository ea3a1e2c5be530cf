"""Runs velarto and its peers on a stream: which frames they decode correctly, how they end, and what it costs."""

import collections
import hashlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time

# exit: the code, or None for a program that had to be stopped; right: indices of the good frames that it decoded.
Result = collections.namedtuple("Result", "exit text memory seconds right", defaults=(frozenset(),))
MOST_SECONDS = 30
MOST_MEMORY = 3 << 20  # Kilobytes of address space: a program that wants more must not bring down the machine.
LIVE_TIME = 25  # Seconds for a program to notice that a connection is dead.


def child_of(pid):
    text = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return int(text[0]) if text else pid


def stop_child(process, number=signal.SIGINT):
    """Asks the measured program to end, or kills it, so that GNU time still reports what it used."""
    try:
        os.kill(child_of(process.pid), number)
    except (FileNotFoundError, ProcessLookupError):
        pass


def start(command, most_file=None, environment=None, stdin=subprocess.DEVNULL):
    """Starts a program under limits, through GNU time: a process inherits the peak memory of the one that forks it, and this
    interpreter is larger than velarto."""
    limits = f"ulimit -v {MOST_MEMORY};" + (f"trap '' XFSZ; ulimit -f {most_file // 512};" if most_file else "")
    notes = tempfile.NamedTemporaryFile()
    output = tempfile.TemporaryFile()
    measured = ["time", "-q", "-f", "%M", "-o", notes.name, "sh", "-c", limits + ' exec "$@"', "sh", *map(str, command)]
    process = subprocess.Popen(measured, stdin=stdin, stdout=output, stderr=subprocess.STDOUT, env=environment)
    process.notes, process.output = notes, output
    return process


def finish(process, limit=MOST_SECONDS):
    """Waits for the program. When the time is up it is asked to end, then killed."""
    timers = [threading.Timer(limit, stop_child, [process]), threading.Timer(limit + 5, stop_child, [process, signal.SIGKILL])]
    began = time.monotonic()
    for timer in timers:
        timer.start()
    _, status, usage = os.wait4(process.pid, 0)
    for timer in timers:
        timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    process.output.seek(0)
    text = process.output.read().decode(errors="replace")
    late = time.monotonic() - began >= limit
    numbers = re.findall(r"\d+", process.notes.read().decode())
    return Result(None if late else process.returncode, text, int(numbers[-1]) / 1024 if numbers else 0,
                  usage.ru_utime + usage.ru_stime)


def feed(process, chunks):
    """Writes to a program from a separate thread; the program may end before it has read everything."""
    def write():
        try:
            for chunk in chunks:
                process.stdin.write(chunk)
            process.stdin.close()
        except (BrokenPipeError, OSError):
            pass
    thread = threading.Thread(target=write, daemon=True)
    thread.start()


def hashes(folder):
    """Hashes of the files, in the order of the numbers in their names."""
    files = sorted(folder.iterdir(), key=lambda file: int(file.stem))
    return [hashlib.md5(file.read_bytes()).hexdigest() for file in files]


# ---- Decoders --------------------------------------------------------------------------------------------------------

# command(source, folder): decodes a source (a path, an address or "-") to files in the folder. pictures(folder): a hash for each
# picture. good: for each form, the index of a good frame by the hash of the program's own picture of it.
Decoder = collections.namedtuple("Decoder", "name command pictures good")


def velarto(tool):
    return Decoder("velarto", lambda source, folder: [tool, "export", source, "-o", folder / "%d.bmp"], hashes, {})


def ffmpeg():
    def command(source, folder):
        kind = [] if str(source).startswith("http") else ["-f", "mjpeg"]
        return ["ffmpeg", "-nostdin", "-v", "error", "-threads", "1", *kind, "-i", source, "-autoscale", "0", "-vsync", "passthrough",
                "-f", "framemd5", "-y", folder / "0"]

    def pictures(folder):
        lines = (folder / "0").read_text().splitlines() if (folder / "0").exists() else []
        return [line.split()[-1] for line in lines if not line.startswith("#")]
    return Decoder("FFmpeg", command, pictures, {})


def gstreamer():
    def command(source, folder):
        entry = ["filesrc", f"location={source}"] if source != "-" else ["fdsrc"]
        if str(source).startswith("http"):
            entry = ["souphttpsrc", f"location={source}", "!", "multipartdemux"]
        return ["gst-launch-1.0", "-q", *entry, "!", "jpegdec", "!", "multifilesink", f"location={folder}/%d"]
    return Decoder("GStreamer", command, hashes, {})


def decode(decoder, source, chunks=None, limit=MOST_SECONDS):
    """How the program ended, and the hashes of its pictures. chunks: bytes for its standard input."""
    folder = pathlib.Path(tempfile.mkdtemp())
    try:
        process = start(decoder.command(source, folder), stdin=subprocess.PIPE if chunks is not None else subprocess.DEVNULL)
        if chunks is not None:
            feed(process, chunks)
        return finish(process, limit), decoder.pictures(folder)
    finally:
        shutil.rmtree(folder)


def learn(decoder, source, count, form):
    """Keeps the program's own pictures of the undamaged stream, with which later ones are compared."""
    result, found = decode(decoder, source)
    if len(found) != count or len(set(found)) != count:
        raise SystemExit(f"faults: {decoder.name} doesn't decode the undamaged {form} stream: {result}")
    decoder.good[form] = {picture: index for index, picture in enumerate(found)}


def judge(decoder, source, intact, form="jfif", **how):
    """Runs the program; result.right has the intact frames that it decodes correctly."""
    result, found = decode(decoder, source, **how)
    return result._replace(right=frozenset({decoder.good[form].get(picture) for picture in found} & set(intact)))


def first_line(command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()[0]


def run(command):
    """Runs a program that must succeed."""
    result = finish(start(command))
    if result.exit != 0:
        raise SystemExit(f"faults: {command[:2]} failed: {result.text}")
    return result


def cut(tool, path):
    """The frames of a stream, as the tool finds them."""
    data, frames = path.read_bytes(), []
    output = subprocess.run([tool, "info", "--json", path], check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    for line in output.stdout.splitlines()[:-1]:
        frame = json.loads(line)
        frames.append(data[frame["offset"]:frame["offset"] + frame["bytes"]])
    assert b"".join(frames) == data
    return frames
