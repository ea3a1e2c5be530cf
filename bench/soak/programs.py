"""The programs that run throughout: their memory, handles and threads, second by second."""

import math
import os
import pathlib
import statistics

MEMORY, HANDLES, THREADS = "memory", "handles", "threads"
MOST_GROWTH = 0.01
MOST_DELAY = 20  # Milliseconds, a quarter of a frame's time: no queue may be longer than at the start.


class Program:
    """A program that runs throughout, with what was measured of it."""

    def __init__(self, name, process):
        self.name, self.process = name, process
        self.samples = []  # (seconds, {MEMORY: bytes, HANDLES: ..., THREADS: ...})
        self.delays = []  # (seconds, seconds from camera to window)

    def sample(self, now):
        folder = pathlib.Path(f"/proc/{self.process.pid}")
        resident = int((folder / "statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")
        self.samples.append((now, {MEMORY: resident, HANDLES: len(os.listdir(folder / "fd")),
                                   THREADS: len(os.listdir(folder / "task"))}))

    def between(self, what, start, end):
        """What was sampled between two moments: the mean of the memory, which varies with the work; the median of the numbers,
        which differ only for moments, while something restarts."""
        found = [sample[what] for now, sample in self.samples if start <= now < end]
        return statistics.mean(found) if what == MEMORY else statistics.median(found)

    def delay(self, start, end):
        """The median delay between two moments in milliseconds, NaN if none was measured."""
        delays = [delay for now, delay in self.delays if start <= now < end]
        return 1000 * statistics.median(delays) if delays else math.nan


def flaws(program, first, last):
    """What differs between two spans: `first` and `last` are (start, end) in seconds."""
    found = []
    growth = program.between(MEMORY, *last) / program.between(MEMORY, *first) - 1
    if abs(growth) > MOST_GROWTH:
        found.append(f"memory {100 * growth:+.2f} %")
    found += [what for what in (HANDLES, THREADS) if program.between(what, *first) != program.between(what, *last)]
    # NaN fails too.
    if program.delays and not program.delay(*last) - program.delay(*first) < MOST_DELAY:
        found.append("delay")
    return found


def save(programs, path):
    with open(path, "w", encoding="utf-8") as file:
        for program in programs:
            for now, sample in program.samples:
                print(program.name.replace(",", ""), f"{now:.1f}", *sample.values(), sep=",", file=file)


def table(programs, first, last):
    print(f"{'':24}{'memory, MB':>18}{'':>10}{'handles':>10}{'threads':>10}{'delay, ms':>16}")
    for program in programs:
        memory = [program.between(MEMORY, *span) for span in (first, last)]
        counts = "".join(f"{program.between(what, *first):>5g}{program.between(what, *last):>5g}" for what in (HANDLES, THREADS))
        delays = "".join(f"{program.delay(*span):8.1f}" for span in (first, last)) if program.delays else ""
        growth = 100 * (memory[1] / memory[0] - 1)
        print(f"{program.name:24}{memory[0] / 1e6:9.2f}{memory[1] / 1e6:9.2f}{growth:+8.2f} %{counts}{delays}")
