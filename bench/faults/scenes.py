"""The rows of the matrix in which a connection, a client, a disk, a display or memory fails, not the stream."""

import os
import pathlib
import re
import socket
import subprocess
import threading
import time

import programs
import servers

SLOW_FRAMES, RATE = 100, 25
FILE_LIMIT = 700 * 1024


def half_open(matrix):
    """The server goes silent after 40 frames; a second connection to it gets the others."""
    fault = "Half-open connection: silence after 40 frames"
    frames = matrix.frames["jfif"]
    first, second = servers.response(servers.parts(frames[:40])) + [None], servers.response(servers.parts(frames[40:]))
    first[0] = first[0].removesuffix(b"--frame--\r\n")
    recording = matrix.work / "half-open.jfif"
    results = {}

    def record():
        with servers.Server(first, second) as server:
            command = [matrix.tool, "record", server.address, "-o", recording, "--frames", str(len(frames))]
            results["record"] = programs.finish(programs.start(command))

    def decode(decoder):
        with servers.Server(first, second) as server:
            results[decoder.name] = programs.judge(decoder, server.address, range(len(frames)), limit=programs.LIVE_TIME)

    works = [threading.Thread(target=record)]
    works += [threading.Thread(target=decode, args=[decoder]) for decoder in (matrix.velarto, *matrix.peers)]
    for work in works:
        work.start()
    for work in works:
        work.join()
    text = results["record"].text
    matrix.check(fault, "no data for 10 seconds); trying again" in text and "the connection is back" in text, results["record"])
    export = results["velarto"]
    matrix.check(fault, export.exit == 1 and "no data for 10 seconds" in export.text and len(export.right) == 40, export)
    ours = results["record"]._replace(right=programs.judge(matrix.velarto, recording, range(len(frames))).right)
    matrix.check(fault, ours.exit == 0 and len(ours.right) == len(frames), ours)
    matrix.add(fault, "`record` reconnects after 10 s; `export` ends with the frames that it has and exit code 1", len(frames), len(frames),
               ours, [results[peer.name] for peer in matrix.peers])


# ---- A client that doesn't read --------------------------------------------------------------------------------------

def live_frames(matrix, port):
    """The frames that another client gets meanwhile, as a list of their numbers."""
    known = {frame: index for index, frame in enumerate(matrix.frames["jfif"])}
    numbers, held = [], b""
    with socket.create_connection(("127.0.0.1", port), 5) as client:
        client.settimeout(5)
        while len(numbers) < SLOW_FRAMES:
            piece = client.recv(65536)
            if not piece:
                break
            *whole, held = (held + piece).split(b"\xff\xd9")
            numbers += [known[frame + b"\xff\xd9"] for frame in whole]
    return numbers[:SLOW_FRAMES]


def silent_client(port):
    client = socket.socket()
    client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    for _ in range(100):
        if client.connect_ex(("127.0.0.1", port)) == 0:
            break
        time.sleep(0.05)
    return client


def with_silent_client(matrix, command):
    """Lets a camera serve a client that doesn't read and one that does. Frames count as right if none is missing before them."""
    with socket.create_server(("127.0.0.1", 0)) as free:
        port = free.getsockname()[1]
    process = programs.start([word.replace("PORT", str(port)) for word in map(str, command)])
    with silent_client(port):
        time.sleep(1)
        numbers = live_frames(matrix, port)
    programs.stop_child(process)
    count = len(matrix.frames["jfif"])
    gapless = {at for at, number in enumerate(numbers) if at == 0 or (numbers[at - 1] + 1) % count == number}
    return programs.finish(process)._replace(right=frozenset(gapless))


def slow_reader(matrix):
    fault = f"Slow reader: one client of the camera reads nothing, another one does ({RATE} frames a second)"
    pictures = matrix.work / "live"
    pictures.mkdir()
    for index, frame in enumerate(matrix.frames["jfif"]):
        (pictures / f"{index:04}.jpg").write_bytes(frame)
    stream = matrix.stream("jfif", b"".join(matrix.frames["jfif"]))
    ours = with_silent_client(matrix, [matrix.tool, "camera", stream, "--fps", str(RATE), "--port", "0", "--raw-port", "PORT"])
    theirs = with_silent_client(matrix, ["gst-launch-1.0", "-q", "multifilesrc", f"location={pictures}/%04d.jpg", "loop=true",
                                         f"caps=image/jpeg,framerate={RATE}/1", "!", "tcpserversink", "host=127.0.0.1", "port=PORT"])
    matrix.check(fault, ours.exit == 0 and len(ours.right) == SLOW_FRAMES, ours)
    matrix.add(fault, "The other client misses nothing", SLOW_FRAMES, SLOW_FRAMES, ours, [None, theirs])


# ---- A full disk -----------------------------------------------------------------------------------------------------

def disk_full(matrix):
    fault = f"Disk full while recording, at {FILE_LIMIT // 1024} KB"
    frames = matrix.frames["jfif"]
    stream, target = matrix.stream("jfif", b"".join(frames)), matrix.work / "full.jfif"
    commands = [[matrix.tool, "record", stream, "-o", target],
                ["ffmpeg", "-nostdin", "-v", "error", "-f", "mjpeg", "-i", stream, "-c", "copy", "-f", "mjpeg", "-y", target],
                ["gst-launch-1.0", "-q", "filesrc", f"location={stream}", "!", "filesink", f"location={target}"]]
    results = []
    for command in commands:
        target.unlink(missing_ok=True)
        result = programs.finish(programs.start(command, most_file=FILE_LIMIT))
        written = target.read_bytes()
        results.append(result._replace(right=programs.judge(matrix.velarto, target, range(len(frames))).right))
        if len(results) == 1:
            matrix.check(fault, written == b"".join(frames[:len(results[0].right)]), "the file doesn't end with a whole frame")
    fitting = sum(1 for end in range(1, len(frames) + 1) if sum(map(len, frames[:end])) <= FILE_LIMIT)
    ours = results[0]
    matrix.check(fault, ours.exit == 1 and "can't write" in ours.text and "File too large" in ours.text, ours)
    matrix.check(fault, ours.right == set(range(fitting)), f"{fitting} {ours}")
    device = programs.finish(programs.start([matrix.tool, "record", stream, "-o", "/dev/full"]))
    matrix.check(fault, device.exit == 1 and "can't write /dev/full: No space left on device" in device.text, device)
    matrix.add(fault, "Reports it; the file ends with the last frame that fits", len(frames), fitting, ours, results[1:])


# ---- A display that goes away ----------------------------------------------------------------------------------------

def on_lost_display(command):
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "800x600x24", "-nolisten", "tcp"], pass_fds=[writing],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as pipe:
        display = pipe.readline().strip()
    environment = os.environ | {"DISPLAY": f":{display}", "SDL_VIDEODRIVER": "x11", "SDL_RENDER_DRIVER": "software"}
    process = programs.start(command, environment=environment)
    time.sleep(3)
    # Without collecting its exit code, which finish() does.
    shown = os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT) is None
    server.kill()
    server.wait()
    return shown, programs.finish(process, limit=10)._replace(right=None)


def display_lost(matrix):
    fault = "Display lost: the X server killed under the viewer"
    stream = matrix.stream("jfif", b"".join(matrix.frames["jfif"]))
    commands = [[matrix.tool, "view", stream, "--loop"], ["ffplay", "-v", "error", "-f", "mjpeg", "-loop", "0", stream],
                ["gst-launch-1.0", "-q", "multifilesrc", f"location={stream}", "loop=true", "!", "jpegdec", "!", "videoconvert", "!",
                 "ximagesink"]]
    results = [on_lost_display(command) for command in commands]
    ours = results[0][1]
    matrix.check(fault, all(shown for shown, _ in results), "a program ended before its display did")
    matrix.check(fault, ours.exit == 1 and re.search("connection to .*broken|fatal IO error", ours.text), ours)
    matrix.add(fault, "Ends at once, reports that the connection to the display is broken, exit code 1", "–", "–", ours,
               [result for _, result in results[1:]])


# ---- No memory -------------------------------------------------------------------------------------------------------

def memory(matrix):
    fault = "Out of memory at each allocation"
    result = programs.finish(programs.start([matrix.build / "memory_faults"]))
    lines = [line.split("\t") for line in result.text.splitlines() if line.count("\t") == 3]
    matrix.check(fault, result.exit == 0 and len(lines) == 7, result)
    runs = sum(int(line[2]) for line in lines)
    sites = ", ".join(f"{line[1]} to {line[0]}" for line in lines)
    happens = f"The call fails, or does without the memory; then the next frame is shown, and no object is left alive. Allocations: " \
              f"{sites}. Each fails once alone, and once with all that follow"
    ours = result._replace(right=frozenset(range(runs)) if result.exit == 0 else frozenset())
    matrix.add(fault, happens, runs, runs, ours, [None, None])
