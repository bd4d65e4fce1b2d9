#!/usr/bin/env python3
"""Whole-process figures of tnef-reader against cat and dd, in one run.

Called by bench/compare.sh, which builds what is needed and makes the
scratch folder. Every command runs under measure-run, which times it on the
wall clock and reads its peak resident size from its own rusage, so that
each figure belongs to one process alone (a child forked straight from this
interpreter would count the interpreter's memory in its peak).
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import time

MEASURE_RUN = "measure-run"  # set from --measure
MIB = 1 << 20
SUFFIXES = {"": 1, "K": 1 << 10, "M": 1 << 20, "G": 1 << 30}

# The targets of the design, as numbers.
OPEN_LIST_TARGET_MS = 5.0
EXTRACT_RATIO_TARGET = 0.75
PEAK_RSS_TARGET_MIB = 16.0
# "Scales with --jobs up to the core count": each added worker adds at least
# this share of one worker's throughput.
BATCH_EFFICIENCY_TARGET = 0.8


def parse_size(text):
    text = text.strip().upper().removesuffix("IB").removesuffix("B")
    number = text.rstrip("KMG")
    suffix = text[len(number):]
    if not number.isdigit() or suffix not in SUFFIXES:
        raise argparse.ArgumentTypeError(f"not a size: {text}")
    return int(number) * SUFFIXES[suffix]


def size_text(size):
    if size >= MIB and size % MIB == 0:
        return f"{size // MIB} MiB"
    if size >= MIB:
        return f"{size / MIB:.1f} MiB"
    if size >= 1024 and size % 1024 == 0:
        return f"{size // 1024} KiB"
    return f"{size} bytes"


class Run:
    """One finished child: wall seconds, peak resident KiB, exit code."""

    def __init__(self, seconds, peak_kib, code):
        self.seconds = seconds
        self.peak_kib = peak_kib
        self.code = code


def run(cmd, stdout_path=None):
    """Runs `cmd` to completion under measure-run; fails loudly when it does
    not exit 0."""
    measure = [MEASURE_RUN, "--stdout", stdout_path or os.devnull, "--"] + cmd
    result = subprocess.run(measure, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(f"compare: measure-run failed: {result.stderr}")
    figures = json.loads(result.stdout.splitlines()[-1])
    if figures["exit"] != 0:
        sys.exit(f"compare: {' '.join(cmd)} exited {figures['exit']}:\n{result.stderr}")
    return Run(figures["seconds"], figures["maxrssKiB"], figures["exit"])


def repeat(times, cmd, stdout_path=None, after=None):
    runs = []
    for _ in range(times):
        runs.append(run(cmd, stdout_path))
        if after:
            after()
    return runs


def median_s(runs):
    return statistics.median(r.seconds for r in runs)


def best_s(runs):
    return min(r.seconds for r in runs)


def peak_mib(runs):
    return max(r.peak_kib for r in runs) / 1024


def verdict(met):
    return "met" if met else "MISSED"


def remove(path):
    if os.path.isdir(path):
        shutil.rmtree(path)
    elif os.path.exists(path):
        os.unlink(path)


class Bench:
    def __init__(self, args):
        self.tool = os.path.abspath(args.tool)
        self.maker = os.path.abspath(args.maker)
        self.work = os.path.abspath(args.work)
        self.size = args.size
        self.repeat = args.repeat
        self.args = args
        self.cores = os.cpu_count() or 1

    def make_stream(self, name, size, *extra):
        path = os.path.join(self.work, name)
        result = subprocess.run([self.maker, path, str(size), *extra], check=True,
                                capture_output=True, text=True)
        return path, json.loads(result.stdout)

    def check_room(self):
        # The big stream, one copy of it at a time, the batch inputs and outputs.
        batch = 2 * self.args.batch_files * self.args.batch_size
        needed = 2 * self.size + batch + (1 << 30)
        free = shutil.disk_usage(self.work).free
        if free < needed:
            sys.exit(f"compare: {self.work} has {free // MIB} MiB free, needs {needed // MIB} MiB")

    def header(self):
        cat = subprocess.run(["cat", "--version"], capture_output=True, text=True).stdout
        fs = subprocess.run(["stat", "-f", "-c", "%T", self.work], capture_output=True,
                            text=True).stdout.strip()
        print(f"tnef-reader whole-process figures: {self.cores} cores, scratch {self.work} ({fs}), "
              f"{os.uname().release}")
        print(f"baselines: {cat.splitlines()[0] if cat else 'cat'} "
              f"(copies between regular files with copy_file_range since coreutils 9), "
              f"dd bs=128K (read and write)")
        print(f"best: the fastest of the runs shown, which a moment of other work on the machine "
              f"cannot slow; tool: {self.tool}")
        print()

    def open_list(self, big, tiny):
        n = max(self.repeat * 4, 11)
        commands = {"version": [self.tool, "--version"], "tiny": [self.tool, "list", tiny],
                    "big": [self.tool, "list", big]}
        runs = {key: [] for key in commands}
        # Interleaved, so that a busy moment of the machine meets all three.
        for _ in range(n):
            for key, cmd in commands.items():
                runs[key].append(run(cmd))
        best = {key: best_s(value) for key, value in runs.items()}
        beyond_tiny = (best["big"] - best["tiny"]) * 1000
        beyond_start = (best["big"] - best["version"]) * 1000
        print(f"{'Open + list':44} {'best':>10} {'median':>10} {'peak RSS':>10}   ({n} runs each)")
        for key, label in (("version", "tnef-reader --version"),
                           ("tiny", "tnef-reader list, 4 KiB stream"),
                           ("big", f"tnef-reader list, {size_text(self.size)} stream")):
            print(f"  {label:42} {best[key] * 1000:7.2f} ms {median_s(runs[key]) * 1000:7.2f} ms "
                  f"{peak_mib(runs[key]):6.1f} MiB")
        met = max(beyond_tiny, beyond_start) < OPEN_LIST_TARGET_MS
        print(f"  beyond start-up (best runs): {beyond_tiny:.2f} ms with the 4 KiB stream's list "
              f"taken off, {beyond_start:.2f} ms with --version taken off")
        print(f"  target: under {OPEN_LIST_TARGET_MS:g} ms -> {verdict(met)}")
        print()
        return runs["big"]

    def extraction(self, big, layout):
        out = os.path.join(self.work, "out")
        copy = os.path.join(self.work, "copy.bin")
        attachment = layout["largeDataBytes"]
        whole = layout["bytes"]
        tool_cmd = [self.tool, "extract", big, "-C", out, "--only", "1", "--overwrite"]
        runs = {"cat": [], "dd": [], "tool": []}
        # Interleaved, so that each kind meets the same state of the machine;
        # every output is removed before the next run, before it is written
        # back, so the disk stays out of the figures.
        for _ in range(self.repeat):
            runs["cat"].append(run(["cat", big], copy))
            remove(copy)
            runs["dd"].append(run(["dd", f"if={big}", f"of={copy}", "bs=128K", "status=none"]))
            remove(copy)
            runs["tool"].append(run(tool_cmd))
            extracted = os.path.join(out, "large.bin")
            if os.path.getsize(extracted) != attachment:
                sys.exit("compare: the extracted attachment has the wrong size")
            remove(out)
        def rate(key, pick):
            return (attachment if key == "tool" else whole) / pick(runs[key]) / 1e6

        print(f"{'Extraction of the ' + size_text(attachment) + ' attachment':44} "
              f"{'best':>10} {'median':>10} {'MB/s':>7} {'peak RSS':>10}   ({self.repeat} runs each)")
        for key, label in (("cat", f"cat STREAM > FILE ({size_text(whole)})"),
                           ("dd", f"dd bs=128K ({size_text(whole)})"),
                           ("tool", "tnef-reader extract --only 1")):
            print(f"  {label:42} {best_s(runs[key]) * 1000:7.1f} ms {median_s(runs[key]) * 1000:7.1f} ms "
                  f"{rate(key, best_s):7.0f} {peak_mib(runs[key]):6.1f} MiB")
        ratios = {base: (rate("tool", best_s) / rate(base, best_s),
                         rate("tool", median_s) / rate(base, median_s)) for base in ("cat", "dd")}
        print(f"  tool / cat: {ratios['cat'][0]:.2f} best, {ratios['cat'][1]:.2f} median   "
              f"tool / dd: {ratios['dd'][0]:.2f} best, {ratios['dd'][1]:.2f} median")
        print(f"  target: at least {EXTRACT_RATIO_TARGET} x cat (best runs) -> "
              f"{verdict(ratios['cat'][0] >= EXTRACT_RATIO_TARGET)}   "
              f"(x dd, a read-and-write copy: {verdict(ratios['dd'][0] >= EXTRACT_RATIO_TARGET)})")
        print()
        return runs["tool"]

    def memory_by_size(self, big, big_list, big_extract):
        sizes = sorted({s for s in (1 * MIB, 64 * MIB, 256 * MIB) if s < self.size})
        print(f"{'Peak memory of the tool by stream size':44} {'list':>10} {'extract':>10} "
              f"{'extract time':>14}")
        worst = 0.0
        rows = []
        for size in sizes:
            path, _ = self.make_stream("sized.tnef", size)
            out = os.path.join(self.work, "sized-out")
            listed = run([self.tool, "list", path])
            extracted = run([self.tool, "extract", path, "-C", out])
            rows.append((size, listed.peak_kib / 1024, extracted.peak_kib / 1024, extracted.seconds))
            remove(out)
            remove(path)
        out = os.path.join(self.work, "big-out")
        extracted_all = run([self.tool, "extract", big, "-C", out])
        remove(out)
        rows.append((self.size, peak_mib(big_list), max(peak_mib(big_extract),
                                                        extracted_all.peak_kib / 1024),
                     extracted_all.seconds))
        for size, listed, extracted, seconds in rows:
            worst = max(worst, listed, extracted)
            print(f"  {size_text(size):42} {listed:6.1f} MiB {extracted:6.1f} MiB "
                  f"{seconds * 1000:11.1f} ms")
        print(f"  target: under {PEAK_RSS_TARGET_MIB:g} MiB for any size -> "
              f"{verdict(worst < PEAK_RSS_TARGET_MIB)} (largest {worst:.1f} MiB)")
        print()

    def batch(self):
        count, size = self.args.batch_files, self.args.batch_size
        inputs = os.path.join(self.work, "batch-in")
        os.makedirs(inputs)
        first, _ = self.make_stream(os.path.join("batch-in", "mail-00.tnef"), size)
        for i in range(1, count):
            shutil.copyfile(first, os.path.join(inputs, f"mail-{i:02d}.tnef"))
        for name in os.listdir(inputs):  # read once, so every run finds them cached
            with open(os.path.join(inputs, name), "rb") as f:
                while f.read(MIB):
                    pass
        jobs = sorted({1, 2, self.cores} if self.cores >= 2 else {1})
        out = os.path.join(self.work, "batch-out")
        runs = {j: [] for j in jobs}
        for _ in range(self.repeat):
            for j in jobs:
                runs[j].append(run([self.tool, "batch", inputs, "-C", out, "--jobs", str(j)]))
                remove(out)
        remove(inputs)
        base = best_s(runs[1])
        print(f"{'Batch: ' + str(count) + ' streams of ' + size_text(size):44} {'best':>10} "
              f"{'median':>10} {'speed-up':>9} {'peak RSS':>10}   ({self.repeat} runs each)")
        met = True
        for j in jobs:
            speedup = base / best_s(runs[j])
            if 1 < j <= self.cores:
                met = met and speedup / j >= BATCH_EFFICIENCY_TARGET
            print(f"  tnef-reader batch --jobs {j:<17} {best_s(runs[j]) * 1000:7.1f} ms "
                  f"{median_s(runs[j]) * 1000:7.1f} ms {speedup:8.2f}x {peak_mib(runs[j]):6.1f} MiB")
        print(f"  target: scales up to {self.cores} cores (speed-up at least "
              f"{BATCH_EFFICIENCY_TARGET:g} x jobs) -> {verdict(met)}")
        print()

    def main(self):
        self.check_room()
        self.header()
        start = time.perf_counter()
        big, layout = self.make_stream("big.tnef", self.size)
        made = time.perf_counter() - start
        tiny, _ = self.make_stream("tiny.tnef", 4096, "--small", "256")
        print(f"made {size_text(self.size)} stream with our writer in {made:.2f} s: "
              f"{layout['subfiles'] - 1} attachments, the first {layout['largeDataBytes']} bytes")
        with open(big, "rb") as f:  # into the page cache, for every kind alike
            while f.read(16 * MIB):
                pass
        print()
        big_list = self.open_list(big, tiny)
        big_extract = self.extraction(big, layout)
        self.memory_by_size(big, big_list, big_extract)
        remove(big)
        self.batch()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--measure", required=True, help="the measure-run helper")
    parser.add_argument("--work", required=True, help="scratch folder (left for the caller to remove)")
    parser.add_argument("--size", type=parse_size, default=512 * MIB)
    parser.add_argument("--repeat", type=int, default=5)
    parser.add_argument("--batch-files", type=int, default=24)
    parser.add_argument("--batch-size", type=parse_size, default=8 * MIB)
    args = parser.parse_args()
    global MEASURE_RUN
    MEASURE_RUN = os.path.abspath(args.measure)
    Bench(args).main()


if __name__ == "__main__":
    main()
