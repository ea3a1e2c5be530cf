"""All that ./run bench measures, as a table, a file of results and a chart.

Usage: bench/measure.py BUILD [--quick] [--levels LEVEL,LEVEL]. A full run writes bench/results/PROCESSOR.jsonl and doc/speed.svg,
a quick one quick.jsonl and quick.svg in BUILD."""

import argparse
import json
import pathlib
import re
import subprocess
import sys

import chart
import tool

ROOT = pathlib.Path(__file__).resolve().parent.parent
RECORDING = ROOT / "samples/street.vlr"
# Photographs from the package lomiri-wallpapers-16.04, by Aitzol Berasategi (CC-BY-4.0), Clemens Engelhardt (CC0-1.0) and Sander
# Klootwijk (CC-BY-SA-4.0).
PHOTOGRAPHS = {
    "mountains": "picosdeeuropa_by_Aitzol_Berasategi.jpg",
    "brook": "life_by_Aitzol_Berasategi.jpg",
    "dandelions": "seeding_by_Clements_Engelhardt.jpg",
    "bridge": "Bridge_by_Sander_Klootwijk.jpg",
}


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return "unknown processor"


def kernels(build, quick):
    """Times each kernel at each level."""
    path = build / "kernels.json"
    command = [build / "kernels_bench", f"--benchmark_min_time={0.02 if quick else 0.1}", f"--benchmark_out={path}",
               "--benchmark_out_format=json"]
    subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
    runs = json.loads(path.read_text())["benchmarks"]
    return [{"type": "kernel", "name": run["name"], "time": round(run["cpu_time"], 1), "unit": run["time_unit"]} for run in runs]


def frames(build, quick, levels):
    """Times whole frames, of velarto and of the peers."""
    path = build / "compare.jsonl"
    command = [build / "compare", "--recording", RECORDING, "--lines", path, "--photo"]
    command += [f"{name}=/usr/share/backgrounds/{file}" for name, file in PHOTOGRAPHS.items()]
    command += ["--quick"] if quick else []
    command += ["--levels", levels] if levels else []
    run = subprocess.run(command, stderr=subprocess.PIPE, text=True)
    sys.stderr.write("".join(line + "\n" for line in run.stderr.splitlines() if not line.startswith("speed=")))
    if run.returncode != 0:
        raise SystemExit(run.returncode)
    return [json.loads(line) for line in path.read_text().splitlines()]


def main():
    parser = argparse.ArgumentParser(prog="./run bench", description="Measures velarto and its peers.")
    parser.add_argument("build", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true", help="a short run that changes no file of the repository")
    parser.add_argument("--levels", metavar="LEVEL,LEVEL", help="kernel levels to measure: plain, sse2, avx2 (default: all)")
    options = parser.parse_args()
    print(processor(), flush=True)
    kernel_records = kernels(options.build, options.quick)
    records = frames(options.build, options.quick, options.levels) + kernel_records
    records[0] = {"type": "about", "processor": processor()} | records[0]
    sys.stdout.flush()
    records += tool.measure(options.build, RECORDING, options.quick)
    name = re.sub("[^a-z0-9]+", "-", processor().lower()).strip("-")
    results, drawing = ROOT / f"bench/results/{name}.jsonl", ROOT / "doc/speed.svg"
    if options.quick:
        results, drawing = options.build / "quick.jsonl", options.build / "quick.svg"
    results.parent.mkdir(exist_ok=True)
    results.write_text("".join(json.dumps(record, separators=(",", ":")) + "\n" for record in records))
    chart.draw(records, drawing)
    print(f"\nwritten: {results}, {drawing}")


main()
