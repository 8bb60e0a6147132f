"""Compares the instructions that each codec and each kernel takes, counted by callgrind, with a checked-in table.

usage: test_budgets.py CODEC_BUDGETS KERNELS_TEST TABLE COLUMN COMPILER [--update]

COLUMN is the word size, COMPILER what the counts depend on; where the table is of another compiler the test is skipped (77).
--update writes what has been counted into the table.
"""

import glob
import os
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.02
CALLS = 16  # of a kernel


def counts(collect, *command):
    """What is named in the dumps of a program's run -> instructions."""
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(["valgrind", "-q", "--tool=callgrind", "--collect-atstart=" + collect,
                              "--callgrind-out-file=" + os.path.join(folder, "out"), *command],
                             capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(f"{command} under callgrind: status {run.returncode}\n{run.stderr}")
        result = {}
        dumps = glob.glob(os.path.join(folder, "out.*"))
        for path in sorted(dumps, key=lambda path: int(path.rsplit(".", 1)[1])):
            with open(path) as file:
                dump = file.read()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", dump, re.M)
            if name:
                result[name[1]] = int(re.search(r"^(?:totals|summary): (\d+)", dump, re.M)[1])
        return result, run.stdout


def measured(codec_budgets, kernels_test):
    codecs, printed = counts("no", codec_budgets)
    frames = int(printed.split()[0])
    kernels, _ = counts("yes", kernels_test, "--count")
    assert len(codecs) > 50 and len(kernels) > 100, (len(codecs), len(kernels))
    return {**{name: round(total / frames) for name, total in codecs.items()},
            **{name: round(total / CALLS) for name, total in kernels.items()}}


def read(path):
    with open(path) as file:
        compiler, heading, *rows = [line.rstrip("\n") for line in file]
    columns = heading.split("\t")[1:]
    table = {}
    for row in rows:
        name, *values = row.split("\t")
        table[name] = {column: int(value) for column, value in zip(columns, values) if value}
    return compiler, columns, table


def write(path, compiler, columns, table):
    with open(path, "w") as file:
        file.write(compiler + "\n" + "\t".join(["instructions a frame or call", *columns]) + "\n")
        for name, values in table.items():
            file.write("\t".join([name, *(str(values.get(column, "")) for column in columns)]) + "\n")


def main(codec_budgets, kernels_test, path, column, compiler, *options):
    written_with, columns, table = read(path)
    if "--update" not in options and written_with != compiler:
        print(f"skipped: the table is for {written_with}, this is {compiler}")
        return 77
    now = measured(codec_budgets, kernels_test)
    if "--update" in options:
        merged = {name: {**table.get(name, {}), column: count} for name, count in now.items()}
        write(path, compiler, columns, merged)
        return 0
    notes = []
    complaints = [f"{name}: no such row in the table" for name in now if column not in table.get(name, {})]
    complaints += [f"{name}: is in the table but was not counted" for name in table if name not in now and column in table[name]]
    for name, count in now.items():
        budget = table.get(name, {}).get(column)
        if budget is None or abs(count - budget) <= TOLERANCE * budget + 2:
            continue
        verdict = f"{name}: {count} instructions, {budget} in the table ({100 * (count / budget - 1):+.1f} %)"
        (complaints if count > budget else notes).append(verdict)
    if notes:
        print("Faster than the table; update it to keep the gain:", *notes, sep="\n")
    if complaints:
        print("Slower than the table, or not in both:", *complaints, sep="\n")
    print(f"{len(now) - len(complaints)} within budget, {len(complaints)} not; see CONTRIBUTING.md for the update")
    return 1 if complaints else 0


sys.exit(main(*sys.argv[1:]))
