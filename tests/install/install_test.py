"""Installs a build into a clean prefix and uses it as applications do: through CMake and pkg-config, shared and static; and
has the sources as a part of another project.

    install_test.py BUILD_DIRECTORY SOURCE_DIRECTORY [--build-subproject]
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD, SOURCE = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
BUILD_SUBPROJECT = "--build-subproject" in sys.argv  # compiles the libraries once more
HERE = pathlib.Path(__file__).resolve().parent
SAYS = {"primitive": "32767 3 -32768 0\n", "stream": "10 octets, 80 samples\n", "both": "agree\n"}


def run(*command, environment=None):
    result = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env={**os.environ, **(environment or {})})
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}\n{result.stdout}")
    return result.stdout


def cached(name):
    return re.search(f"^{name}:[A-Z]+=(.*)$", (BUILD / "CMakeCache.txt").read_text(), re.MULTILINE).group(1)


LIBDIR = cached("CMAKE_INSTALL_LIBDIR")
FLAGS = cached("CMAKE_C_FLAGS").split()
COMPILERS = {".c": [cached("CMAKE_C_COMPILER"), *FLAGS], ".cpp": [cached("CMAKE_CXX_COMPILER"), *FLAGS, "-std=c++20"]}


def configure(source, build, *settings):
    compilers = [f"-DCMAKE_{language}_{what}={cached(f'CMAKE_{language}_{what}')}"
                 for language in ("C", "CXX") for what in ("COMPILER", "FLAGS")]
    return run("cmake", "-G", "Ninja", "-S", source, "-B", build, "-DCMAKE_BUILD_TYPE=Release", *compilers, *settings)


class Installed(unittest.TestCase):
    """Everything is used from a place that the installation has been moved to."""

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="zppsc-install-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = cls.folder / "moved"
        run("cmake", "--install", BUILD, "--prefix", cls.folder / "installed")
        (cls.folder / "installed").rename(cls.prefix)

    def uses(self, program, environment=None):
        self.assertEqual(run(program, environment=environment), SAYS[pathlib.Path(program).name])

    def test_has_every_part(self):
        libraries = self.prefix / LIBDIR
        for link, soname in (("libzppsc.so", "libzppsc.so.4"), ("libzppcodecs.so", "libzppcodecs.so.1")):
            self.assertEqual(os.readlink(libraries / link), soname)
            self.assertRegex(os.readlink(libraries / soname), re.escape(soname) + r"\.\d+")
        headers = {path.relative_to(SOURCE / "include") for path in (SOURCE / "include").rglob("*.h*")}
        self.assertEqual(headers, {path.relative_to(self.prefix / "include") for path in (self.prefix / "include").rglob("*.h*")})
        for page in ("man1/zppcodec.1", "man3/zppsc.3", "man3/zppcodecs.3"):
            self.assertTrue((self.prefix / "share/man" / page).is_file(), page)

    def test_names_no_directory_of_the_build(self):
        for path in self.prefix.rglob("*"):
            if path.is_file() and not path.is_symlink():
                content = path.read_bytes()
                for place in (SOURCE, self.folder / "installed"):
                    self.assertNotIn(str(place).encode(), content, path)

    def test_is_found_by_cmake(self):
        for static in ("OFF", "ON"):
            with self.subTest(static=static):
                build = self.folder / f"consumer-{static}"
                configure(HERE / "consumer", build, f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DSTATIC={static}")
                run("cmake", "--build", build)
                for name in SAYS:
                    self.uses(build / name)
                self.assertEqual("libzpp" in run("readelf", "-d", build / "both"), static == "OFF")

    def test_of_another_word_size_is_passed_over_by_cmake(self):
        own, other = (32, 64) if "-m32" in FLAGS else (64, 32)
        run_elsewhere = subprocess.run(
            ["cmake", "-G", "Ninja", "-S", HERE / "consumer", "-B", self.folder / "other", f"-DCMAKE_PREFIX_PATH={self.prefix}",
             f"-DCMAKE_C_FLAGS=-m{other}", f"-DCMAKE_CXX_FLAGS=-m{other}"], text=True, capture_output=True)
        if "is not able to compile" in run_elsewhere.stderr:
            self.skipTest(f"no compiler for {other} bit")
        self.assertNotEqual(run_elsewhere.returncode, 0)
        self.assertRegex(run_elsewhere.stderr, rf"zppscConfig.cmake, version: \S+ \({own}bit\)")

    @unittest.skipUnless(shutil.which("pkg-config"), "pkg-config is missing")
    def test_is_found_by_pkg_config(self):
        environment = {"PKG_CONFIG_PATH": str(self.prefix / LIBDIR / "pkgconfig")}

        def ask(*words):
            return run("pkg-config", *words, environment=environment).split()

        for static in (False, True):
            for name, packages in (("primitive", ["zppsc"]), ("stream", ["zppcodecs"]), ("both", ["zppcodecs", "zppsc"])):
                with self.subTest(static=static, program=name):
                    source = next((HERE / "consumer").glob(f"{name}.c*"))
                    program = self.folder / name
                    libraries = ask("--libs", *(["--static"] if static else []), *packages)
                    run(*COMPILERS[source.suffix], *(["-static"] if static else []), *ask("--cflags", *packages), source,
                        "-o", program, *libraries, f"-Wl,-rpath-link,{self.prefix / LIBDIR}")
                    self.uses(program, None if static else {"LD_LIBRARY_PATH": str(self.prefix / LIBDIR)})

    def test_completes_commands_codecs_and_framings(self):
        program = self.prefix / "bin/zppcodec"
        if not program.exists():
            self.skipTest("the program is not part of this build")
        completion = self.prefix / "share/bash-completion/completions/zppcodec"

        def completed(*words):
            script = ('. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zppcodec 2>/dev/null; '
                      'printf "%s\\n" "${COMPREPLY[@]}"')
            return run("bash", "-c", script, "bash", completion, program, *words).split()

        self.assertEqual(completed("de"), ["decode"])
        self.assertEqual(completed("encode", "-c", "g726-2"), ["g726-24"])
        self.assertEqual(completed("encode", "--codec", "g728", "--framing", ""), ["itu", "rfc3551", "words"])
        self.assertIn("--lost", completed("decode", "--"))
        self.assertNotIn("--lost", completed("encode", "--"))


class Subproject(unittest.TestCase):
    @staticmethod
    def shared_libraries():
        return {path.name for path in BUILD.glob("libzpp*.so.*.*")}

    def test_builds_and_installs_nothing_but_what_the_project_uses(self):
        with tempfile.TemporaryDirectory(prefix="zppsc-subproject-") as folder:
            configure(HERE / "superproject", folder, f"-DZPPSC_SOURCE={SOURCE}")
            steps = run("ninja", "-C", folder, "-n", "-v")
            sources = re.findall(rf" -c {SOURCE}/(\S+)", steps)
            self.assertIn("src/core/frame.cpp", sources)
            self.assertEqual([source for source in sources if not re.match("(src|codecs/(?!framing)|tests/install)", source)], [])
            self.assertEqual(set(re.findall(r"-o \S*(lib\S+\.(?:so|a)\S*)", steps)), self.shared_libraries())
            if BUILD_SUBPROJECT:
                run("cmake", "--build", folder)
                for name in ("primitive", "stream"):
                    self.assertEqual(run(f"{folder}/{name}"), SAYS[name])
                run("cmake", "--install", folder, "--prefix", f"{folder}/prefix")
                self.assertFalse(os.path.exists(f"{folder}/prefix"))


if __name__ == "__main__":
    del sys.argv[1:]
    unittest.main()
