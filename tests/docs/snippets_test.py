"""Compiles every C and C++ snippet of the named pages as the body of a function, behind its own #include lines.

    snippets_test.py INCLUDE_DIRECTORY C_COMPILER CXX_COMPILER PAGE...

A snippet that uses what it does not declare is preceded by a comment that readers do not see: <!-- given: int16_t pcm[80]; -->
"""
import os
import pathlib
import re
import subprocess
import sys

include, c, cpp, *pages = sys.argv[1:]
compilers = {"c": [*c.split(), "-std=c11", "-x", "c"], "cpp": [*cpp.split(), "-std=c++20", "-x", "c++"]}
count, failed = 0, []
for page in map(pathlib.Path, pages):
    text = page.read_text(encoding="utf-8")
    for match in re.finditer(r"(?:<!-- given: (.*?) -->\s*)?^```(c|cpp)\n(.*?)^```", text, re.DOTALL | re.MULTILINE):
        given, language, code = match.groups()
        includes = "".join(re.findall(r"^#include.*\n", code, re.MULTILINE))
        body = re.sub(r"^#include.*\n", "", code, flags=re.MULTILINE)
        program = f"{includes}void snippet(void);\nvoid snippet(void) {{\n{given or ''}\n{body}\n}}\n"
        result = subprocess.run([*compilers[language], "-fsyntax-only", "-Wall", "-Wno-unused", f"-I{include}", "-"],
                                input=program, text=True, capture_output=True)
        count += 1
        if result.returncode or result.stderr:
            failed.append(f"{os.path.basename(page)}, line {text[:match.start()].count(chr(10)) + 1}:\n{program}\n{result.stderr}")
print("\n".join(failed))
print(f"{count} snippets, {len(failed)} do not compile")
sys.exit(1 if failed or count == 0 else 0)
