"""Writes what scripts/benchmark has measured as Markdown tables and SVG charts.

usage: report.py RESULTS FOLDER LEVEL...

RESULTS holds <word size>-<level>.tsv (zppcodec bench), peers-<level>.json (codec_bench) and, beside it, the builds.
"""

import csv
import json
import os
import re
import subprocess
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "zppsc"
from matplotlib import pyplot  # noqa: E402

RESULTS, FOLDER, LEVELS = sys.argv[1], sys.argv[2], sys.argv[3:]
WORDS = {"x86": "32 bit", "x64": "64 bit"}
BUILDS = [(word, level) for word in WORDS for level in LEVELS]
LEVEL_NAMES = {"px": "portable", "t7": "SSE3", "v3": "AVX2"}
BEST = LEVELS[-1]


def processor():
    with open("/proc/cpuinfo") as file:
        return re.search(r"model name\s*: (.*)", file.read()).group(1)


def compiler():
    return subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.split("\n")[0]


def speeds(word, level):
    """Of each codec: times real time encoding and decoding, channels a core."""
    with open(os.path.join(RESULTS, f"{word}-{level}.tsv")) as file:
        return {row[0]: tuple(int(value) for value in row[1:]) for row in csv.reader(file, delimiter="\t")}


def contest(level):
    """(codec, direction, library) -> least nanoseconds of processor time a signal; and the state's bytes of our codecs."""
    with open(os.path.join(RESULTS, f"peers-{level}.json")) as file:
        rows = json.load(file)["benchmarks"]
    times, states = {}, {}
    for row in rows:
        if row["run_type"] != "iteration":
            continue
        key = codec, _, _ = tuple(row["run_name"].split("/")[:3])
        times[key] = min(times.get(key, float("inf")), row["cpu_time"])  # what other programs on the machine disturb least
        if "state" in row:
            states[codec] = int(row["state"])
    return times, states


def code_sizes():
    """Octets of code and tables a room, of the 64-bit build at the default level."""
    sizes = {}
    build = os.path.join(RESULTS, "..", "performance-x64-t7")
    for folder, _, files in os.walk(build):
        objects = [os.path.join(folder, name) for name in files if name.endswith(".o")]
        room = re.search(r"/(src|codecs)/(.*?)/?CMakeFiles/[^/]*\.dir(.*)", folder)
        if not objects or not room:
            continue
        library = "libzppsc" if room[1] == "src" else "libzppcodecs"
        name = room[2] or room[3].strip("/").split("/")[0]
        listing = subprocess.run(["size", "-B", *objects], capture_output=True, text=True, check=True).stdout
        total = sum(int(line.split()[0]) for line in listing.splitlines()[1:])
        sizes[library, name] = sizes.get((library, name), 0) + total
    return sizes


def table(heading, rows):
    """A Markdown table; the first column is text, the others are numbers."""
    lines = ["| " + " | ".join(heading) + " |", "|---|" + "---:|" * (len(heading) - 1)]
    return "\n".join(lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]) + "\n"


def bars(name, title, unit, rows, series):
    """A chart of horizontal bars: rows are (label, a value for each of the series)."""
    pyplot.rcParams.update({"font.size": 9, "font.family": "sans-serif", "svg.fonttype": "none"})
    figure, axes = pyplot.subplots(figsize=(8, 0.6 + 0.13 * len(rows) * (len(series) + 0.6)))
    colours = ["#b9c4cc", "#3d7ea6", "#12355b"][-len(series):]
    for n, (label, colour) in enumerate(zip(series, colours)):
        places = [row * (len(series) + 0.6) + n for row in range(len(rows))]
        axes.barh(places, [values[n] or 0 for _, values in rows], height=0.9, color=colour, label=label)
    axes.set_yticks([row * (len(series) + 0.6) + (len(series) - 1) / 2 for row in range(len(rows))], [label for label, _ in rows])
    axes.invert_yaxis()
    axes.set_xscale("log")
    axes.set_xlabel(unit)
    axes.set_title(title, loc="left", fontweight="bold")
    axes.grid(axis="x", color="#dddddd", linewidth=0.6)
    axes.set_axisbelow(True)
    for side in ("top", "right", "left"):
        axes.spines[side].set_visible(False)
    axes.legend(frameon=False, loc="lower right")
    figure.patch.set_facecolor("white")
    figure.savefig(os.path.join(FOLDER, name), bbox_inches="tight", metadata={"Date": None, "Creator": None})


def main():
    os.makedirs(FOLDER, exist_ok=True)
    measured = {build: speeds(*build) for build in BUILDS}
    codecs = list(measured[BUILDS[0]])
    contests = {level: contest(level) for level in LEVELS}
    states = contests["t7"][1]

    text = ["# Measured speed\n",
            "Written by `scripts/benchmark`; [performance.md](../performance.md) tells what the figures come from.\n",
            f"Processor: {processor()}. Compiler: {compiler()}, `-O2`. One core, one process; other machines give other times, so"
            " compare columns and ratios.\n",
            "## Channels a core\n",
            "Streams that are encoded and decoded at once, in real time, by one core (`zppcodec bench`).\n",
            "![Channels a core](channels.svg)\n"]
    heading = ["codec"] + [f"{WORDS[word]}, {LEVEL_NAMES[level]}" for word, level in BUILDS]
    text.append(table(heading, [[codec] + [measured[build][codec][2] for build in BUILDS] for codec in codecs]))

    text += ["## Times real time\n", "Encoding / decoding.\n",
             table(heading, [[codec] + ["{} / {}".format(*measured[build][codec][:2]) for build in BUILDS] for codec in codecs])]

    text += ["## Beside the packaged peers\n",
             "How many times as fast as the libraries that Debian packages, 64 bit, the same signal in the same run: best"
             " processor times of seven.\n", "![Ratio to the peers](peers.svg)\n"]
    pairs = sorted({key for key in contests["t7"][0] if key[2] != "zppcodecs"}, key=lambda key: (codecs.index(key[0]), key[1] == "decode"))
    rows = []
    for codec, direction, library in pairs:
        ratios = [contests[level][0][codec, direction, library] / contests[level][0][codec, direction, "zppcodecs"] for level in LEVELS]
        libraries = library.split("+")
        rows.append((codec, direction, libraries[0 if direction == "encode" else -1], ratios))
    text.append(table(["codec", "direction", "peer"] + [LEVEL_NAMES[level] for level in LEVELS],
                      [[codec, direction, library] + [f"{ratio:.2f}" for ratio in ratios] for codec, direction, library, ratios in rows])
                .replace("|---|---:|---:|", "|---|---|---|"))

    text += ["## Memory a channel and size of the code\n",
             "Octets of an encoder's and a decoder's block together, 64 bit. All of a stream's memory is in them.\n",
             table(["codec", "octets"], [[codec, states[codec]] for codec in codecs]),
             "Octets of code and constant tables a room, 64 bit, SSE3; `core` and `lpc` serve several codecs.\n"]
    sizes = code_sizes()
    rooms = sorted({room for _, room in sizes})
    text.append(table(["room", "libzppsc", "libzppcodecs"],
                      [[room] + [sizes.get((library, room), "") for library in ("libzppsc", "libzppcodecs")] for room in rooms]))
    with open(os.path.join(FOLDER, "README.md"), "w") as file:
        file.write("\n".join(text))

    bars("channels.svg", "Channels a core, 64 bit", "streams encoded and decoded in real time by one core",
         [(codec, [measured["x64", level][codec][2] for level in LEVELS]) for codec in codecs],
         [LEVEL_NAMES[level] for level in LEVELS])
    bars("peers.svg", "Times as fast as the packaged peer, 64 bit", "ratio of processor time in one run",
         [(f"{codec} {direction}", ratios) for codec, direction, _, ratios in rows], [LEVEL_NAMES[level] for level in LEVELS])


main()
