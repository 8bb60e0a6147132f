"""Compares the binary interface that a header promises with the one that was released (docs/abi.md).

    abi_test.py [--update] HEADER VERSION_SCRIPT SONAME BASELINE COMPILER [FLAG...]

The interface is that of a library of empty functions, made of the header's prototypes with debug information and linked as the
real one: of the real one, the compiler proves that it has these prototypes, and library_test that it has these names and this
version. More functions are no break, but belong into the baseline too. Exit status 77, skipped, where abidiff is missing.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

arguments = sys.argv[1:]
update = arguments[0] == "--update"
header, script, soname, baseline, *compiler = arguments[update:]
header, baseline = pathlib.Path(header), pathlib.Path(baseline)

if not shutil.which("abidiff"):
    print("abidiff is missing (Debian package abigail-tools)")
    sys.exit(77)

bodies = []
for part in [header, *sorted(header.with_suffix("").glob("*.h"))]:
    text = re.sub(r"/\*.*?\*/", "", part.read_text(encoding="utf-8"), flags=re.DOTALL)
    for prototype in re.findall(r"^ZPPC?API ([^;]*\));", text, re.MULTILINE):
        bodies.append(prototype + (" {}\n" if re.match(r"void \w", prototype) else " { return 0; }\n"))
print(f"{len(bodies)} functions")

with tempfile.TemporaryDirectory(prefix="zppsc-abi-") as folder:
    source, library = pathlib.Path(folder, "interface.c"), pathlib.Path(folder, soname)
    source.write_text(f'#include "{header.name}"\n' + "".join(bodies), encoding="utf-8")
    subprocess.run([*compiler, "-std=c11", "-g", "-O0", "-w", "-fPIC", "-fvisibility=hidden", "-shared", "-nostdlib",
                    f"-I{header.parent.resolve()}", f"-Wl,--version-script={pathlib.Path(script).resolve()}",
                    f"-Wl,-soname,{soname}", source.name, "-o", library], check=True, cwd=folder)
    if update:
        baseline.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["abidw", "--no-corpus-path", "--no-comp-dir-path", "--no-show-locs", "--no-elf-needed", library,
                        "--out-file", baseline], check=True)
        sys.exit(0)
    result = subprocess.run(["abidiff", "--no-show-locs", baseline, library], stdout=subprocess.PIPE, text=True)
print(result.stdout, end="")
if result.returncode == 0:
    sys.exit(0)
if "Functions changes summary: 0 Removed, 0 Changed" in result.stdout and not result.returncode & 8:
    print("Programs keep working. When the change is meant: the same command with --update, then commit the baseline.")
else:
    print(f"This breaks programs that were built with the released {soname}, or may do so.")
sys.exit(1)
