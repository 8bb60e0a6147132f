"""The promises of a built shared library: what it exports, what it needs, and what it must not hold.

    library_test.py LIBRARY HEADER LEVEL [COMMAND]

COMMAND runs exports_test. The environment's OBJDUMP knows the library's processor.
"""
import os
import pathlib
import re
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
import instructions  # noqa: E402, beside this file

LIBRARY, HEADER, LEVEL = sys.argv[1:4]
EXPORTS_TEST = sys.argv[4:]
FILE = os.path.basename(os.path.realpath(LIBRARY))
PRIMITIVES = bool(EXPORTS_TEST)  # the other library is libzppcodecs
SONAME, VERSION_NODE = ("libzppsc.so.4", "ZPPSC_4") if PRIMITIVES else ("libzppcodecs.so.1", "ZPPCODECS_1")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def declared():
    headers = [pathlib.Path(HEADER), *pathlib.Path(HEADER).with_suffix("").glob("*.h")]
    pattern = re.compile(r"^ZPPC?API [^;(]*?(\w+)\(", re.MULTILINE)
    return {name for header in headers for name in pattern.findall(header.read_text())}


def exported():
    """The exported names; each has the one version that programs bind to."""
    lines = output("nm", "-D", "--defined-only", LIBRARY).splitlines()
    names = [line.split()[-1] for line in lines if line.split()[-2] != "A"]
    assert all(name.endswith("@@" + VERSION_NODE) for name in names)
    return {name.split("@")[0] for name in names}


class Exports(unittest.TestCase):
    def test_are_those_of_the_header(self):
        self.assertEqual(exported(), declared())

    @unittest.skipUnless(PRIMITIVES, "libzppsc's")
    def test_are_those_that_the_interface_promises(self):
        """exports.txt is the binary interface: a name that it lists stays for good."""
        path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "exports.txt")
        self.assertEqual(sorted(exported()), open(path, encoding="utf-8").read().split())

    def test_are_those_that_packages_depend_on(self):
        """The symbols file of the Debian package says since which version each is there."""
        name, generation = SONAME.split(".so.")
        path = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "debian" / f"{name}{generation}.symbols"
        self.assertEqual(set(re.findall(rf"^ (\w+)@{VERSION_NODE} ", path.read_text(), re.MULTILINE)), exported() | {VERSION_NODE})

    @unittest.skipUnless(PRIMITIVES, "libzppsc's")
    def test_have_a_row_in_the_table_of_exports(self):
        listed = output(*EXPORTS_TEST, "--gtest_list_tests")
        rows = set(re.findall(r"AcceptsItsArgumentsAndWritesOnlyItsOutputs/(\w+)", listed))
        self.assertEqual(declared() - rows, {"zppscGetLibVersion"})


class Binary(unittest.TestCase):
    def test_has_its_soname_and_needs_the_c_runtime_only(self):
        dynamic = output("readelf", "-dW", LIBRARY)
        self.assertTrue(FILE.startswith(SONAME + "."))
        self.assertIn(f"[{SONAME}]", re.search("SONAME.*", dynamic).group())
        runtime = {"libc.so.6", "libm.so.6"} | (set() if PRIMITIVES else {"libzppsc.so.4"})
        self.assertLessEqual(set(re.findall(r"NEEDED.*\[(.*)\]", dynamic)), runtime)
        self.assertNotIn("TEXTREL", dynamic)

    def test_calls_nothing_but_memory_blocks_and_mathematics(self):
        names = {line.split()[-1].split("@")[0] for line in output("nm", "-D", "--undefined-only", LIBRARY).splitlines()}
        allowed = {"memcpy", "memmove", "memset", "sqrt", "sqrtf", "cos", "cosf", "acos", "acosf", "pow", "powf", "log10", "log10f",
                   "log", "exp", "floor"}
        if "ARM\n" in output("readelf", "-hW", LIBRARY):
            allowed.add("raise")  # of the compiler's division of 64 bits
        if not PRIMITIVES:
            names = {name for name in names if not re.match("_?zpps", name)}
            allowed |= {"malloc", "calloc", "free", "strcmp", "memcmp", "bcmp", "frexp", "ldexp"}  # Create, Destroy, FindCodec; single precision
        self.assertLessEqual(names, allowed)

    def test_has_read_only_tables_and_no_writable_data(self):
        sections = output("readelf", "-SW", LIBRARY)
        self.assertIn(".rodata", sections)
        for name, size in re.findall(r"\] (\.\S+)\s+\S+\s+[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+)", sections):
            if name in (".data", ".bss", ".tdata", ".tbss", ".init_array", ".fini_array", ".ctors"):
                self.assertEqual(int(size, 16), 0, name)
        self.assertRegex(output("readelf", "-lW", LIBRARY), r"GNU_STACK.*RW ")

    def test_uses_no_instruction_set_beyond_its_level(self):
        text = output(os.environ.get("OBJDUMP", "objdump"), "-d", "--no-show-raw-insn", LIBRARY)
        if processor() not in ("Advanced Micro Devices X86-64", "Intel 80386"):
            # No second rounding may be missing, and on aarch64 nothing that is not in every one of them may be there.
            self.assertNotRegex(text, r"\b(fn?m(add|sub)|fml[as]|vfn?m[as])\b|\bm[as][de]br\b|\bwfm[as][sd]b\b")
            self.assertNotRegex(text, r"\b[su]u?dot\b|\bsqrdml[as]h\b|\bldadd|\bcasa?l?\b|\bz\d+\.[bhsd]\b")
            return
        self.assertGreater(len(instructions.LINE.findall(text)), 10000)
        self.assertEqual(instructions.beyond(text, LEVEL, word_size()), [])
        if LEVEL == "v3":
            self.assertIn("%ymm", text)

    def test_would_notice_an_instruction_beyond_the_level(self):
        order = ["px", "a6", "w7", "t7", "later"]
        firsts = {"a6": ["movaps %xmm0,%xmm1", "sqrtss %xmm0,%xmm0"], "w7": ["addsd %xmm0,%xmm1", "pmaddwd %xmm0,%xmm1", "movdqu (%eax),%xmm1"],
                  "t7": ["lddqu (%eax),%xmm0", "haddps %xmm0,%xmm1", "fisttpll (%eax)"],
                  "later": ["ptest %xmm0,%xmm0", "pextrd $0x1,%xmm0,%eax", "popcnt %eax,%eax", "lzcnt %eax,%eax", "pshufb %xmm0,%xmm1",
                            "vpaddd %ymm0,%ymm1,%ymm2", "vpaddd %xmm0,%xmm1,%xmm2", "sarx %eax,%ecx,%edx", "movbe (%eax),%ecx",
                            "crc32b %al,%ecx", "rdrand %eax"]}
        for level in order[:-1]:
            for first, lines in firsts.items():
                for line in lines:
                    forged = f"    1000:\trepz {line}\n    1004:\tret\n"
                    self.assertEqual(bool(instructions.beyond(forged, level, 32)), order.index(first) > order.index(level), line)
        for line in ("vfmadd213ss %xmm0,%xmm1,%xmm2", "vpternlogd $1,%xmm0,%xmm1,%xmm2", "vpaddd %zmm0,%zmm1,%zmm2", "paddd %xmm0,%xmm1"):
            self.assertTrue(instructions.beyond(f"    1000:\t{line}\n", "v3", 64), line)


def processor():
    return re.search(r"Machine:\s*(.*)", output("readelf", "-h", LIBRARY)).group(1)


def word_size():
    return 32 if "ELF32" in output("readelf", "-h", LIBRARY) else 64


class Version(unittest.TestCase):
    @unittest.skipUnless(PRIMITIVES, "libzppsc's")
    def test_names_the_file_and_the_level(self):
        strings = open(LIBRARY, "rb").read()
        self.assertIn(b"libzppsc.so.4\0", strings)
        self.assertIn(b"Jul 22 2004\0", strings)
        self.assertIn(LEVEL.encode() + b"\0\0", strings)


if __name__ == "__main__":
    del sys.argv[1:]
    unittest.main()
