"""Cameras with chaos, eight viewers and recordings for a long time: is everything at the end as it was at the start?

Usage: bench/soak/soak.py TOOL FOLDER MINUTES. Leaves a picture of the screen, the samples and the programs' messages in FOLDER.
Fails if a program ends by itself, if memory after warm-up isn't the same within 1 %, if handles or threads aren't the same, or if
pictures come later than at the start."""

import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

import pictures
import programs
import screen

FRAMES = 12  # A second.
CHAOS = ["--cut", "0.03", "--garbage", "0.1", "--corrupt", "0.03"]
WINDOW_SIZES = ((272, 204), (352, 264), (384, 288))
CYCLE = 20  # Seconds in which everything happens once.


class Soak:
    def __init__(self, tool, folder, work, minutes):
        self.tool, self.folder, self.work = tool, folder, work
        self.length = 60 * minutes
        self.screen = screen.Screen(work, 2000, 810)
        self.programs, self.viewers, self.others = [], [], []
        self.done = {"restarts": 0, "viewers": 0, "recordings": 0, "sizes": 0, "full screens": 0}
        self.dice = random.Random(1)
        self.begun = time.monotonic()

    def now(self):
        return time.monotonic() - self.begun

    # ---- Programs

    def start(self, name, *words):
        with open(self.folder / f"{name.replace(', ', '-').replace(' ', '-')}.log", "ab") as log:
            process = subprocess.Popen([self.tool, *words], env=self.screen.environment, stdin=subprocess.DEVNULL, stderr=log,
                                       stdout=subprocess.PIPE if words[0] == "camera" else subprocess.DEVNULL, text=True)
        self.others.append(process)
        return process

    def stay(self, name, *words):
        """Starts a program that runs throughout."""
        program = programs.Program(name, self.start(name, *words))
        self.programs.append(program)
        return program

    def end(self, process, how=signal.SIGTERM, code=0):
        """Ends a program, and checks how it ended."""
        process.send_signal(how)
        if process.wait(20) != code:
            raise SystemExit(f"soak: {' '.join(map(str, process.args[1:]))} ended with {process.returncode}")
        self.others.remove(process)

    def serve(self, port="0", raw_port="0"):
        return ["--port", port, "--raw-port", raw_port, "--fps", str(FRAMES), *CHAOS]

    def addresses(self, process):
        """The camera's /stream, /mjpeg and plain port."""
        lines = [process.stdout.readline().strip() for _ in range(5)]
        return {"raw": lines[4], "stream": lines[1], "mjpeg": lines[2]}

    # ---- What runs

    def open_cameras(self):
        self.numbered = pictures.numbered(self.tool, self.work)
        self.changing = pictures.changing(self.tool, self.work)
        self.steady = self.addresses(self.stay("camera, numbers", "camera", self.numbered, *self.serve()).process)
        self.harbour = self.addresses(self.stay("camera, harbour", "camera", "--size", "320x240", *self.serve()).process)
        self.flaky_camera = self.start("camera, changing", "camera", self.changing, *self.serve())
        self.flaky = self.addresses(self.flaky_camera)
        self.arrivals = pictures.Arrivals(self.tool, self.numbered, int(self.steady["raw"].rsplit(":", 1)[1]))

    def open_viewers(self):
        for column, way in enumerate(("raw", "raw", "stream", "mjpeg")):
            program = self.stay(f"viewer {column + 1}, {way}", "view", self.steady[way])
            self.viewers.append((program, screen.Window(self.screen, program.process, (400 * column, 0))))
        for column, (way, *options) in enumerate((("raw",), ("stream", "--screen", "16"), ("mjpeg", "--grid", "--statistics"))):
            program = self.stay(f"viewer {column + 5}, sizes, {way}", "view", self.flaky[way], *options)
            screen.Window(self.screen, program.process, (660 * column, 320))
        self.stay("recording, sizes", "record", self.flaky["stream"], "-o", "-")
        self.passer = self.recording = None
        self.restart_viewer()
        self.restart_recording()

    # ---- What happens

    def restart_viewer(self):
        """Ends the eighth viewer, by its key or by force, and starts another one."""
        if self.passer and self.done["viewers"] % 2:
            self.passer[1].press("q")
            self.end(self.passer[0], 0)
        elif self.passer:
            self.end(self.passer[0], signal.SIGKILL, -signal.SIGKILL)
        way = list(self.harbour)[self.done["viewers"] % 3]
        process = self.start("viewer 8", "view", self.harbour[way])
        self.passer = process, screen.Window(self.screen, process, (1600, 0))
        self.done["viewers"] += 1

    def restart_recording(self):
        path = self.work / "recording.vlr"
        if self.recording:
            self.end(self.recording, signal.SIGINT)
            output = subprocess.run([self.tool, "info", path], check=True, capture_output=True, text=True).stdout
            if output.count("\n") < FRAMES:
                raise SystemExit("soak: too few frames were recorded")
        self.recording = self.start("recording", "record", self.harbour["stream"], "-o", path)
        self.done["recordings"] += 1

    def restart_camera(self):
        self.end(self.flaky_camera)
        ports = [self.flaky[way].split("/")[2].rsplit(":", 1)[1] for way in ("stream", "raw")]
        self.flaky_camera = self.start("camera, changing", "camera", self.changing, *self.serve(*ports))
        self.done["restarts"] += 1

    def resize(self):
        for _, window in self.viewers[1:3]:
            window.resize(self.dice.choice(WINDOW_SIZES))
            self.done["sizes"] += 1

    def resize_back(self):
        for _, window in self.viewers[1:3]:
            window.resize((pictures.WIDTH, pictures.HEIGHT))

    def full_screen(self):
        window = self.viewers[0][1]
        window.press("f")
        time.sleep(1.5)
        window.press("f")
        self.done["full screens"] += 1

    def watch_delay(self):
        """Watches the numbered pictures for two seconds, and compares the time of each with its arrival at a plain client."""
        shown = [window.number() for _, window in self.viewers]
        end = time.monotonic() + 2
        while time.monotonic() < end:
            time.sleep(0.002)
            for place, (program, window) in enumerate(self.viewers):
                number, now = window.number(), time.monotonic()
                if number is None or number == shown[place]:
                    continue
                shown[place] = number
                delay = now - self.arrivals.times.get(number, -1e9)
                # An older arrival belongs to an earlier picture of this number; this one was damaged on its way.
                if delay < pictures.COUNT / FRAMES - 0.1:
                    program.delays.append((now - self.begun, delay))

    # ---- The run

    def tick(self, until):
        """Takes samples each second until then."""
        while True:
            for program in self.programs:
                if program.process.poll() is not None:
                    raise SystemExit(f"soak: {program.name} ended with {program.process.returncode}")
                program.sample(self.now())
            if self.now() >= until:
                return
            time.sleep(min(1, max(0.01, until - self.now())))

    def run(self):
        self.open_cameras()
        self.open_viewers()
        self.begun = time.monotonic()
        actions = (self.restart_viewer, self.restart_camera, self.resize, self.watch_delay, self.resize_back, self.restart_viewer,
                   self.full_screen, self.restart_viewer, self.restart_recording)
        cycle, pictured = 0, False
        while self.now() < self.length:
            for place, action in enumerate(actions):
                action()
                self.tick(CYCLE * (cycle + (place + 1) / len(actions)))
            cycle += 1
            if not pictured and self.now() > self.length / 2:
                self.screen.picture(self.folder / "screen.png")
                pictured = True

    def report(self):
        end = self.now()
        warm = max(30.0, end / 10)
        part = max(2 * CYCLE, (end - warm) / 10)
        first, last = (warm, warm + part), (end - part, end)
        programs.save(self.programs, self.folder / "samples.csv")
        programs.table(self.programs, first, last)
        found = [f"{program.name}: {flaw}" for program in self.programs for flaw in programs.flaws(program, first, last)]
        done = ", ".join(f"{count} {name}" for name, count in self.done.items())
        print(f"soak: {end / 60:.1f} minutes, {done}; " + ("; ".join(found) if found else "everything as at the start"))
        return bool(found)

    def close(self):
        for process in self.others:
            process.kill()
            process.wait()
        self.screen.close()


def main():
    tool, folder, minutes = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve(), float(sys.argv[3])
    folder.mkdir(parents=True, exist_ok=True)
    for log in folder.glob("*.log"):
        log.unlink()
    with tempfile.TemporaryDirectory() as work:
        soak = Soak(tool, folder, pathlib.Path(work), minutes)
        try:
            soak.run()
            return soak.report()
        finally:
            soak.close()


if __name__ == "__main__":
    sys.exit(main())
