"""What zppcodec promises to its users: streams, pipes, refusals, and files left alone.

usage: test_zppcodec.py PROGRAM [unittest arguments]
"""

import array
import math
import os
import pty
import resource
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import wave
import zlib

PROGRAM = []  # in a build for another processor, behind its emulator
DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "data")
WIDTHS = {"g726-16": 2, "g726-24": 3, "g726-32": 4, "g726-40": 5}


def data(name):
    with open(os.path.join(DATA, name), "rb") as file:
        return file.read()


def run(*args, stdin=b""):
    return subprocess.run([*PROGRAM, *args], input=stdin, capture_output=True, timeout=120)


def samples(pcm):
    values = array.array("h", pcm)
    if sys.byteorder == "big":
        values.byteswap()
    return values


def codes(packed, width, most_significant_first):
    """The codes of a packed stream, by reading it as one long number."""
    number = int.from_bytes(packed, "big" if most_significant_first else "little")
    count = 8 * len(packed) // width
    places = range(count - 1, -1, -1) if most_significant_first else range(count)
    return bytes(number >> width * place & (1 << width) - 1 for place in places)


def has_sndfile():
    return b"has no libsndfile" not in run("encode", "-c", "g711-alaw", "-", "-").stderr


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def file(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def wav(self, name, pcm=None, rate=8000, channels=1):
        with wave.open(self.path(name), "wb") as file:
            file.setnchannels(channels)
            file.setsampwidth(2)
            file.setframerate(rate)
            file.writeframes(data("speech.pcm") if pcm is None else pcm)
        return self.path(name)

    def assertDone(self, result, output=None):
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        if output is not None:
            self.assertTrue(result.stdout == output, "the output differs")

    def assertRefused(self, result, status, *words):
        """One sentence that holds the words, and the exit status."""
        message = result.stderr.decode()
        self.assertEqual(result.returncode, status, message)
        self.assertRegex(message, r"\Azppcodec: [^\n]+\n\Z")
        for word in words:
            self.assertIn(word, message)

    def assertFiles(self, *names):
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(names))


class Streams(ProgramTest):
    def test_g726_equals_the_golden_streams(self):
        speech = data("speech.pcm")
        for codec, width in WIDTHS.items():
            streams = {framing: data(f"speech.{codec}.{framing}") for framing in ("rfc3551", "aal2")}
            streams["codes"] = codes(streams["aal2"], width, True)
            self.assertEqual(streams["codes"], codes(streams["rfc3551"], width, False))
            for framing, stream in streams.items():
                with self.subTest(codec=codec, framing=framing):
                    options = ["-c", codec, "--framing", framing, "--raw", "-", "-"]
                    self.assertDone(run("encode", *options, stdin=speech), stream)
                    self.assertDone(run("decode", *options, stdin=stream), data(f"speech.{codec}.pcm"))

    def test_rfc3551_is_the_default(self):
        self.assertDone(run("encode", "-c", "g726-24", "--raw", "-", "-", stdin=data("speech.pcm")),
                        data("speech.g726-24.rfc3551"))

    def test_g711_expands_every_code_word_by_the_standard_and_takes_it_back(self):
        for codec, twin in (("g711-mulaw", {127: 255}), ("g711-alaw", {})):  # mu-law has two zeros
            with self.subTest(codec=codec):
                words = bytes(range(256))
                linear = data(f"expansion.{codec}.pcm")
                self.assertDone(run("decode", "-c", codec, "--raw", "-", "-", stdin=words), linear)
                self.assertDone(run("encode", "-c", codec, "--raw", "-", "-", stdin=linear),
                                bytes(twin.get(word, word) for word in words))

    def test_the_last_group_is_completed_with_silence(self):
        speech = data("speech.pcm")[2000:2026]  # 13 samples
        for codec, width, whole in (("g726-16", 2, 16), ("g726-24", 3, 16), ("g726-32", 4, 14), ("g726-40", 5, 16)):
            with self.subTest(codec=codec):
                options = ["-c", codec, "--raw"]
                stream = run("encode", *options, "-", "-", stdin=speech).stdout
                silence = bytes(2 * (whole - 13))
                self.assertDone(run("encode", *options, "-", "-", stdin=speech + silence), stream)
                self.assertEqual(len(stream), whole * width // 8)
                self.assertEqual(len(run("decode", *options, "-", "-", stdin=stream).stdout), 2 * whole)
                single = run("encode", *options, "--framing", "codes", "-", "-", stdin=speech)
                self.assertDone(single, codes(stream, width, False)[:13])

    def test_pieces_of_any_size_and_a_long_input_give_the_same_stream(self):
        speech = data("speech.pcm") * 12  # beyond the program's blocks
        for codec in ("g726-24", "g726-40", "g711-alaw"):
            with self.subTest(codec=codec):
                whole = run("encode", "-c", codec, "--raw", "-", "-", stdin=speech).stdout
                coder, decoder = [subprocess.Popen([*PROGRAM, command, "-c", codec, "--raw", "-", "-"], stdin=subprocess.PIPE,
                                                   stdout=subprocess.PIPE) for command in ("encode", "decode")]
                stream = b""
                for start in range(0, 1001, 77):  # an odd number of bytes: samples arrive in halves
                    coder.stdin.write(speech[start:start + 77])
                    coder.stdin.flush()
                    time.sleep(0.002)
                stream = coder.communicate(speech[start + 77:])[0]
                self.assertTrue(stream == whole, "the stream depends on the pieces")
                for start in range(0, 1001, 7):
                    decoder.stdin.write(stream[start:start + 7])
                    decoder.stdin.flush()
                decoded = decoder.communicate(stream[start + 7:])[0]
                self.assertDone(run("decode", "-c", codec, "--raw", "-", "-", stdin=stream), decoded)
                self.assertEqual((coder.returncode, decoder.returncode), (0, 0))

    def test_a_stream_flows_while_its_input_is_still_open(self):
        with subprocess.Popen([*PROGRAM, "encode", "-c", "g726-32", "--raw", "-", "-"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as coder:
            coder.stdin.write(data("speech.pcm")[:320])
            coder.stdin.flush()
            stream = b""
            while len(stream) < 80 and select.select([coder.stdout], [], [], 30)[0]:
                stream += os.read(coder.stdout.fileno(), 80)
            self.assertEqual(stream, data("speech.g726-32.rfc3551")[:80])
            coder.communicate()

    def test_every_listed_codec_and_framing_codes_and_decodes(self):
        rows = [line.split("\t") for line in run("list", "--tsv").stdout.decode().splitlines()]
        self.assertGreaterEqual(len(rows), 6)
        for name, _, frame, _, _, framings in rows:
            length = 2 * (4000 // int(frame) * int(frame))
            for framing in framings.split(","):
                with self.subTest(codec=name, framing=framing):
                    options = ["-c", name, "--framing", framing, "--raw", "-", "-"]
                    stream = run("encode", *options, stdin=data("speech.pcm"))
                    self.assertDone(stream)
                    decoded = run("decode", *options, stdin=stream.stdout)
                    self.assertDone(decoded)
                    self.assertGreaterEqual(len(decoded.stdout), length)


class G723(ProgramTest):
    """The standard's streams, with the options that some of its runs need."""

    @staticmethod
    def vectors(name):
        return data(os.path.join("..", "..", "vectors", "g723", "streams", name))

    def test_streams_with_switched_rates_and_pauses(self):
        speech, words = self.vectors("pauses.pcm"), struct.Struct("<H")
        cases = self.vectors("decoded.cases").decode().splitlines()
        rates = next(line for line in cases if line.startswith("out u8 rate")).split()[4:]
        file = self.file("rates", b"".join(words.pack(int(rate)) for rate in rates))
        mixed = run("encode", "-c", "g723.1", "--rates", file, "--dtx", "--raw", "-", "-", stdin=speech)
        self.assertDone(mixed, self.vectors("pauses-mixed.bit"))
        plain = run("encode", "-c", "g723.1-6.3", "--no-highpass", "--raw", "-", "-", stdin=self.vectors("codewords-6.3.pcm"))
        self.assertDone(plain, self.vectors("codewords-6.3.bit"))
        # A lost frame of speech: all before it stays.
        lost = self.file("lost", words.pack(0) * 31 + words.pack(1))
        options = ["-c", "g723.1", "--no-postfilter", "--raw", "-", "-"]
        whole = run("decode", *options, stdin=mixed.stdout).stdout
        holed = run("decode", "--lost", lost, *options, stdin=mixed.stdout).stdout
        self.assertEqual((len(holed), holed[:14880] == whole[:14880]), (len(speech), True))
        self.assertFalse(holed == whole)

    def test_refusals(self):
        rates = self.file("rates", bytes(2))
        missing = run("encode", "-c", "g723.1-5.3", "--rates", rates, "--raw", "-", "-", stdin=bytes(960))
        self.assertEqual(missing.returncode, 1)
        cut = run("decode", "-c", "g723.1", "--raw", "-", "-", stdin=self.vectors("pauses-5.3.bit")[:30])
        self.assertEqual(cut.returncode, 2)
        self.assertIn(b"10 bytes that are no whole frame", cut.stderr)

    @unittest.skipUnless(shutil.which("ffmpeg"), "no ffmpeg")
    def test_another_decoder_hears_the_same(self):
        speech = data("speech.pcm") * 6
        for codec in "g723.1-5.3", "g723.1-6.3":
            with self.subTest(codec=codec):
                stream = run("encode", "-c", codec, "--raw", "-", "-", stdin=speech).stdout
                ours = samples(run("decode", "-c", codec, "--raw", "-", "-", stdin=stream).stdout)
                command = ["ffmpeg", "-v", "error", "-f", "g723_1", "-i", self.file("stream", stream), "-f", "s16le", "-"]
                theirs = samples(subprocess.run(command, capture_output=True, timeout=120).stdout)
                self.assertEqual(len(theirs), len(ours))
                error = sum((a - b) ** 2 for a, b in zip(ours, theirs))
                self.assertLess(error, 1e-3 * sum(a * a for a in ours))


class GsmAmr(ProgramTest):
    """Whole streams are compared in codecs_test; here what the program adds."""

    @staticmethod
    def vectors(name):
        return data(os.path.join("..", "..", "vectors", "amr", "streams", name))

    def test_rates_detectors_and_receive_types(self):
        speech, modes = self.vectors("check.pcm"), self.vectors("check.modes")
        rates = self.file("rates", b"".join(struct.pack("<H", mode) for mode in modes))
        for detector, checksum in (("1", 0x4867a850), ("2", 0x0843ab3f)):
            options = ["-c", "amr", "--framing", "words", "--rates", rates, "--dtx", "--vad", detector, "--raw", "-", "-"]
            stream = run("encode", *options, stdin=speech)
            self.assertDone(stream)
            self.assertEqual(zlib.crc32(stream.stdout), checksum)
        types = self.file("types", b"".join(b"%d\n" % kind for kind in self.vectors("types-random.types")))
        heard = run("decode", "-c", "amr", "--frame-types", types, "--raw", "-", "-", stdin=self.vectors("types-random.amr"))
        self.assertDone(heard)
        self.assertEqual(zlib.crc32(heard.stdout), 0x9560aa61)
        # A decoder takes the rate from the stream, whatever its name says.
        stream = run("encode", "-c", "amr-5.15", "--raw", "-", "-", stdin=speech).stdout
        heard = [run("decode", "-c", name, "--raw", "-", "-", stdin=stream).stdout for name in ("amr-12.2", "amr", "amr-5.15")]
        self.assertTrue(heard[0] == heard[1] == heard[2])

    def test_refusals(self):
        stream = run("encode", "-c", "amr-4.75", "--raw", "-", "-", stdin=bytes(640)).stdout
        decode = ["decode", "-c", "amr", "--raw", "-", "-"]
        self.assertRefused(run(*decode, stdin=stream[6:]), 2, "#!AMR")
        self.assertRefused(run(*decode, stdin=b"RIFF"), 2, "#!AMR")
        self.assertRefused(run(*decode, stdin=stream[:-1]), 2, "12 bytes that are no whole frame")
        rates = self.file("rates", bytes(2))
        self.assertRefused(run("encode", "-c", "amr-4.75", "--rates", rates, "--raw", "-", "-", stdin=bytes(320)), 1, "--rates")
        rates = self.file("rates", b"\x08\0")
        self.assertRefused(run("encode", "-c", "amr", "--rates", rates, "--raw", "-", "-", stdin=bytes(320)), 2, "rate 8")

    def assertSimilar(self, theirs, ours, limit):
        theirs, ours = samples(theirs), samples(ours)
        self.assertGreaterEqual(len(theirs), len(ours))
        error = sum((a - b) ** 2 for a, b in zip(ours, theirs))
        self.assertLess(error, limit * sum(a * a for a in ours))

    @unittest.skipUnless(shutil.which("ffmpeg"), "no ffmpeg")
    def test_another_decoder_hears_nearly_the_same(self):
        for codec in "amr-4.75", "amr-7.95", "amr-12.2":
            with self.subTest(codec=codec):
                stream = run("encode", "-c", codec, "--raw", "-", "-", stdin=self.vectors("check.pcm")).stdout
                ours = run("decode", "-c", codec, "--raw", "-", "-", stdin=stream).stdout
                command = ["ffmpeg", "-v", "error", "-f", "amr", "-i", self.file("stream", stream), "-f", "s16le", "-"]
                theirs = subprocess.run(command, capture_output=True, timeout=120).stdout
                self.assertSimilar(theirs, ours, 0.05)

    @unittest.skipUnless(shutil.which("sox") and b"amr-nb" in subprocess.run(["sox", "--help"], capture_output=True).stdout,
                         "no sox that knows GSM-AMR")
    def test_files_are_exchanged(self):
        speech = self.file("speech.raw", self.vectors("check.pcm"))
        pcm = ["-t", "raw", "-e", "signed", "-b", "16", "-r", "8000", "-c", "1"]
        stream = self.path("theirs.amr-nb")
        for mode, codec in enumerate(("amr-4.75", "amr-5.15", "amr-5.90", "amr-6.70", "amr-7.40", "amr-7.95", "amr-10.2", "amr-12.2")):
            with self.subTest(codec=codec):
                subprocess.run(["sox", *pcm, speech, "-C", str(mode), stream], check=True, timeout=120)
                theirs = run("decode", "-c", codec, "--raw", stream, "-")
                self.assertDone(theirs)
                ours = run("encode", "-c", codec, "--raw", speech, self.path("ours.amr-nb"))
                self.assertDone(ours)
                own = run("decode", "-c", codec, "--raw", self.path("ours.amr-nb"), "-").stdout
                heard = subprocess.run(["sox", self.path("ours.amr-nb"), *pcm, "-"], capture_output=True, timeout=120).stdout
                self.assertSimilar(heard, own, 0.02)
                self.assertSimilar(theirs.stdout, own, 0.5)


class AmrWb(ProgramTest):
    """Storage files: rates that change, receive types and losses from files, and other programs."""

    @staticmethod
    def vectors(name):
        return data(os.path.join("..", "..", "vectors", "amrwb", "streams", name))

    def test_rates_types_and_losses_come_from_files(self):
        stored = self.vectors("pauses.awb")
        speech, words = self.vectors("pauses.pcm"), struct.Struct("<H")
        rates = [8, 8, 5] + 5 * [8] + [5] + 3 * [0] + 8 * [2] + 8 * [8] + 8 * [0] + 9 * [2] + [1]
        file = self.file("rates", b"".join(words.pack(rate) for rate in rates))
        mixed = run("encode", "-c", "amr-wb", "--rates", file, "--dtx", "--raw", "-", "-", stdin=speech)
        self.assertDone(mixed, stored)
        options = ["-c", "amr-wb", "--raw", "-", "-"]
        whole = run("decode", *options, stdin=stored).stdout
        # The third frame lost, by a list of losses and by receive types
        lost = self.file("lost", words.pack(0) * 2 + words.pack(1))
        types = self.file("types", b"0 0\n2\n")
        holed = run("decode", "--lost", lost, *options, stdin=stored).stdout
        self.assertEqual((len(holed), holed[:1280] == whole[:1280], holed == whole), (len(speech), True, False))
        self.assertDone(run("decode", "--frame-types", types, *options, stdin=stored), holed)

    def test_refusals(self):
        options = ["decode", "-c", "amr-wb-12.65", "--raw", "-", "-"]
        for stream, reason in (b"#!AMR\n" + bytes(9), b"#!AMR-WB"), (self.vectors("mode2.awb")[:-1], b"no whole frame"):
            refused = run(*options, stdin=stream)
            self.assertEqual(refused.returncode, 2)
            self.assertIn(reason, refused.stderr)

    @unittest.skipUnless(shutil.which("ffmpeg"), "no ffmpeg")
    def test_another_decoder_hears_the_same(self):
        # The other decoder computes in floating point, and its noise above 6.4 kHz is another.
        for codec, most in ("amr-wb-12.65", 0.03), ("amr-wb-23.85", 0.03), ("amr-wb-6.60", 0.15):
            with self.subTest(codec=codec):
                stream = run("encode", "-c", codec, "--raw", "-", "-", stdin=self.vectors("speech.pcm")).stdout
                ours = samples(run("decode", "-c", codec, "--raw", "-", "-", stdin=stream).stdout)
                command = ["ffmpeg", "-v", "error", "-f", "amr", "-i", self.file("speech.awb", stream), "-f", "s16le", "-"]
                theirs = samples(subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=120).stdout)
                self.assertEqual(len(theirs), len(ours))
                error = sum((a - b) ** 2 for a, b in zip(ours, theirs))
                self.assertLess(error, most * sum(a * a for a in ours))


class Measures(ProgramTest):
    def test_roundtrip_measures_the_signal_that_decode_delivers(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        for codec in WIDTHS:
            with self.subTest(codec=codec):
                result = run("roundtrip", "-c", codec, "--raw", "--tsv", speech, self.path("out.pcm"))
                self.assertDone(result)
                self.assertEqual(self.content("out.pcm"), data(f"speech.{codec}.pcm"))
                name, count, size, whole, segmental = result.stdout.decode().split()
                self.assertEqual((name, int(count), int(size)), (codec, 4000, 4000 * WIDTHS[codec] // 8))
                signal, decoded = samples(data("speech.pcm")), samples(data(f"speech.{codec}.pcm"))

                def ratio(start, end):
                    error = sum((a - b) ** 2 for a, b in zip(signal[start:end], decoded[start:end]))
                    return 10 * math.log10(sum(a * a for a in signal[start:end]) / error)

                loud = [n for n in range(0, 4000, 160) if sum(a * a for a in signal[n:n + 160]) >= 160 * 32.768 ** 2]
                expected = sum(min(60, max(-10, ratio(n, n + 160))) for n in loud) / len(loud)
                self.assertAlmostEqual(float(whole), ratio(0, 4000), delta=0.006)
                self.assertAlmostEqual(float(segmental), expected, delta=0.006)

    def test_roundtrip_of_silence_and_of_a_perfect_copy(self):
        silence = run("roundtrip", "-c", "g711-mulaw", "--raw", "--tsv", "-", stdin=bytes(3200)).stdout.split()
        self.assertEqual(silence[3:], [b"n/a", b"n/a"])
        levels = data("expansion.g711-mulaw.pcm")
        exact = run("roundtrip", "-c", "g711-mulaw", "--raw", "--tsv", "-", stdin=levels).stdout.split()
        self.assertEqual(exact[3], b"inf")

    def test_decoded_speech_and_the_report_do_not_mix(self):
        result = run("roundtrip", "-c", "g726-40", "--raw", "-", "-", stdin=data("speech.pcm"))
        self.assertEqual(result.stdout, data("speech.g726-40.pcm"))
        self.assertIn(b"SNR", result.stderr)

    def test_bench_reports_plausible_figures(self):
        speech = self.file("speech.pcm", data("speech.pcm") * 4)
        for source in ([], ["--raw", speech]):
            name, encode, decode, channels = run("bench", "-c", "g726-32", "--tsv", *source).stdout.decode().split()
            self.assertEqual(name, "g726-32")
            self.assertAlmostEqual(float(channels), 1 / (1 / float(encode) + 1 / float(decode)), delta=2)
            self.assertGreater(float(channels), 5)


class Refusals(ProgramTest):
    def test_usage(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        out = self.path("out")
        for args, words in (
            ([], ["encode", "--help"]),
            (["transcode"], ["transcode"]),
            (["encode", "--raw", speech, out], ["--codec"]),
            (["encode", "-c", "g726-32", "--raw", speech], ["OUT"]),
            (["encode", "-c", "g726-32", "--raw", speech, out, "more"], ["more"]),
            (["encode", "-c", "g726-33", "--raw", speech, out], ["g726-33", "g726-32"]),
            (["encode", "-c", "g726-32", "--framing", "rtp", "--raw", speech, out], ["rtp", "rfc3551", "aal2", "codes"]),
            (["encode", "-c", "", "--raw", speech, out], ["no codec ''", "g726-32"]),
            (["decode", "-c", "g711-alaw", "--framing", "aal2", "--raw", speech, out], ["aal2", "octets"]),
            (["bench", "-c", "nothing"], ["nothing"]),
            (["bench", "--framing", "aal2"], ["--codec"]),
            (["encode", "-c", "g726-32", "--raw", "", out], ["IN", "empty"]),
            (["encode", "-c", "g726-32", "--raw", speech, ""], ["OUT", "empty"]),
            (["roundtrip", "-c", "g726-32", "--raw", speech, ""], ["OUT", "empty"]),
            (["encode", "-c", "amr", "--rates", "", "--raw", speech, out], ["--rates", "empty"]),
        ):
            with self.subTest(args=args):
                self.assertRefused(run(*args), 1, *words)
                self.assertFiles("speech.pcm")

    def test_unusable_input(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        sound = self.wav("speech.wav")
        empty = self.file("empty", b"")
        odd = self.file("odd", data("speech.pcm") + b"x")
        stream24 = self.file("cut.24", data("speech.g726-24.rfc3551")[:-1])
        stream40 = self.file("cut.40", data("speech.g726-40.aal2")[:-1])
        large = self.file("large", bytes(1000) + b"\x10")
        files = sorted(os.listdir(self.folder))
        out = self.path("out")
        for args, words in (
            (["encode", "-c", "g726-32", "--raw", self.path("none"), out], ["none", "No such file"]),
            (["encode", "-c", "g726-32", "--raw", self.folder, out], ["directory"]),
            (["encode", "-c", "g726-32", "--raw", empty, out], ["no samples"]),
            (["encode", "-c", "g726-32", "--raw", odd, out], ["odd", "two bytes"]),
            (["encode", "-c", "g726-32", "--raw", sound, out], ["WAV", "--raw"]),
            (["roundtrip", "-c", "g726-32", "--raw", odd, out], ["odd", "two bytes"]),
            (["bench", "-c", "g726-32", "--raw", empty], ["no samples"]),
            (["decode", "-c", "g726-32", "--raw", empty, out], ["empty"]),
            (["decode", "-c", "g726-24", "--raw", stream24, out], ["cut.24", "truncated", "2 bytes"]),
            (["decode", "-c", "g726-40", "--framing", "aal2", "--raw", stream40, out], ["truncated", "4 bytes"]),
            (["decode", "-c", "g726-32", "--framing", "codes", "--raw", large, out], ["large", "codes", "4 bits"]),
            (["decode", "-c", "g726-32", "--raw", sound, out], ["WAV", "bit stream"]),
            (["encode", "-c", "g726-32", "--raw", speech, self.path("none/out")], ["cannot write", "none/out"]),
            (["encode", "-c", "g726-32", "--raw", speech, self.folder], ["cannot write", "directory"]),
            (["encode", "-c", "g726-32", "--raw", speech, os.path.join(empty, "out")], ["cannot write"]),
            (["encode", "-c", "g726-32", "--raw", speech, "/dev/full"], ["cannot write", "No space"]),
            (["encode", "-c", "g726-32", "--raw", speech, out + "/"], ["cannot write", "directory"]),
            (["decode", "-c", "g726-32", self.path("a\n\x1b[7m\x7f\u009bb"), out], [r"a\x0a\x1b[7m\x7f\xc2\x9bb"]),
            (["decode", "-c", "g726-32", self.path("größer"), out], ["größer"]),
        ):
            with self.subTest(args=args):
                self.assertRefused(run(*args), 2, *words)
                self.assertFiles(*files)

    def test_a_closed_pipe_is_reported(self):
        for args in (["encode", "-c", "g726-32", "--raw", "-", "-"], ["list"], ["--help"], ["bench", "-c", "g711-alaw"]):
            with self.subTest(args=args):
                reader, writer = os.pipe()
                os.close(reader)
                result = subprocess.run([*PROGRAM, *args], input=data("speech.pcm"), stdout=writer, stderr=subprocess.PIPE)
                os.close(writer)
                self.assertRefused(result, 2, "standard output")

    def test_information_goes_to_standard_output(self):
        for args, word in ((["--help"], b"roundtrip"), (["encode", "--help"], b"--framing"), (["--version"], b"zppcodec 4.")):
            result = run(*args)
            self.assertDone(result)
            self.assertIn(word, result.stdout)


class Files(ProgramTest):
    def encode(self, source, target):
        return run("encode", "-c", "g726-32", "--raw", source, target)

    def test_the_input_is_never_overwritten(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        os.symlink("speech.pcm", self.path("link"))
        os.link(speech, self.path("hard"))
        for target in (speech, self.path("link"), self.path("hard"), os.path.join(self.folder, ".", "speech.pcm")):
            for command in ("encode", "decode", "roundtrip"):
                with self.subTest(target=target, command=command):
                    self.assertRefused(run(command, "-c", "g711-alaw", "--raw", speech, target), 1, "the input itself")
        self.assertRefused(self.encode(self.path("link"), speech), 1, "the input itself")
        with open(speech, "r+b") as both:
            for source, target in (("-", speech), (speech, "-")):
                result = subprocess.run([*PROGRAM, "encode", "-c", "g711-alaw", "--raw", source, target],
                                        stdin=both, stdout=both, stderr=subprocess.PIPE)
                self.assertRefused(result, 1, "the input itself")
        self.assertEqual(self.content("speech.pcm"), data("speech.pcm"))
        self.assertFiles("speech.pcm", "link", "hard")

    def test_an_older_output_is_replaced_whole_or_kept(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        odd = self.file("odd", data("speech.pcm")[1:])
        out = self.file("out", b"older")
        os.chmod(out, 0o640)
        os.symlink("out", self.path("link"))
        self.assertRefused(self.encode(odd, out), 2, "middle of a sample")
        self.assertEqual(self.content("out"), b"older")
        self.assertDone(self.encode(speech, self.path("link")))
        self.assertTrue(os.path.islink(self.path("link")))
        self.assertEqual(self.content("out"), data("speech.g726-32.rfc3551"))
        self.assertEqual(os.stat(out).st_mode & 0o777, 0o640)
        self.assertFiles("speech.pcm", "odd", "out", "link")

    def test_links_are_written_through(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        os.mkdir(self.path("folder"))
        for link, target in (("dangling", "folder/new"), ("chain", "dangling"), ("loop", "pool"), ("pool", "loop"),
                             ("lost", "none/new")):
            os.symlink(target, self.path(link))
        files = os.listdir(self.folder)
        self.assertRefused(self.encode(speech, self.path("loop")), 2, "loop", "symbolic links")
        self.assertRefused(self.encode(speech, self.path("lost")), 2, "lost", "No such file")
        self.assertDone(self.encode(speech, self.path("chain")))
        self.assertFiles(*files)
        self.assertTrue(all(os.path.islink(self.path(link)) for link in ("dangling", "chain", "loop", "pool", "lost")))
        self.assertEqual(os.listdir(self.path("folder")), ["new"])
        self.assertEqual(self.content("folder/new"), data("speech.g726-32.rfc3551"))

    def test_a_full_disk_or_a_size_limit_leaves_nothing(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        for program in ("encode", "roundtrip"):
            limited = subprocess.run([*PROGRAM, program, "-c", "g711-alaw", "--raw", speech, self.path("out")], capture_output=True,
                                     preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)))
            self.assertRefused(limited, 2, "cannot write", "large")
            self.assertFiles("speech.pcm")

    def test_names_of_any_length_that_the_system_allows(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        longest = "n" * 255
        self.assertDone(self.encode(speech, self.path(longest)))
        self.assertRefused(self.encode(speech, self.path(longest + "n")), 2, "name too long")
        deep = self.path("d" * 200)
        while len(deep) + 256 < 4095:
            deep += "/" + "d" * min(200, 4095 - len(deep) - 3)
        os.makedirs(deep)
        deep += "/" + "n" * (4095 - len(deep) - 1)
        self.assertDone(self.encode(speech, deep))
        self.assertTrue(os.path.isfile(deep))
        self.assertFiles("speech.pcm", longest, "d" * 200)

    def test_a_new_output_has_the_usual_permissions(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        before = os.umask(0o027)
        self.addCleanup(os.umask, before)
        self.assertDone(self.encode(speech, self.path("out")))
        self.assertEqual(os.stat(self.path("out")).st_mode & 0o777, 0o640)

    def test_devices_are_written_in_place(self):
        speech = self.file("speech.pcm", data("speech.pcm"))
        self.assertDone(self.encode(speech, "/dev/null"))
        self.assertTrue(os.path.exists("/dev/null") and not os.path.isfile("/dev/null"))
        self.assertDone(self.encode(speech, "/dev/stdout"), data("speech.g726-32.rfc3551"))

    def test_progress_shows_on_a_terminal_and_an_interrupted_run_leaves_nothing(self):
        with open(self.path("long.pcm"), "wb") as file:
            file.truncate(1 << 30)  # sparse: minutes of work, cut short below
        terminal, slave = pty.openpty()
        coder = subprocess.Popen([*PROGRAM, "encode", "-c", "g726-40", "--raw", self.path("long.pcm"), self.path("out")],
                                 stderr=slave)
        os.close(slave)
        shown = b""
        while b"%" not in shown and select.select([terminal], [], [], 30)[0]:
            shown += os.read(terminal, 200)
        coder.send_signal(signal.SIGTERM)
        self.assertEqual(coder.wait(30), -signal.SIGTERM)
        os.close(terminal)
        self.assertRegex(shown, rb"encoding \[#*\.*\] +\d+%")
        self.assertFiles("long.pcm")


class Wav(ProgramTest):
    """Audio files, in builds with libsndfile; the others refuse them."""

    def setUp(self):
        super().setUp()
        if not has_sndfile():
            result = run("encode", "-c", "g726-32", self.wav("speech.wav"), self.path("out"))
            self.assertRefused(result, 1, "libsndfile", "--raw")
            result = run("decode", "-c", "g726-32", self.file("stream", data("speech.g726-32.rfc3551")), self.path("out.wav"))
            self.assertRefused(result, 1, "libsndfile", "--raw")
            self.assertFiles("speech.wav", "stream")
            self.skipTest("a build without libsndfile")

    def test_files_and_pipes_carry_what_raw_pcm_carries(self):
        sound = self.wav("speech.wav")
        with open(sound, "rb") as file:
            whole = file.read()
        stream = data("speech.g726-32.rfc3551")
        self.assertDone(run("encode", "-c", "g726-32", sound, "-"), stream)
        self.assertDone(run("encode", "-c", "g726-32", "-", "-", stdin=whole), stream)
        unknown = whole[:40] + b"\xff\xff\xff\xff" + whole[44:]  # as programs write into a pipe
        self.assertDone(run("encode", "-c", "g726-32", "-", "-", stdin=unknown), stream)
        for name in ("-", self.path("out.wav"), self.path("OUT.WAV")):
            result = run("decode", "-c", "g726-32", "-", name, stdin=stream)
            self.assertDone(result)
            with wave.open(self.file("copy.wav", result.stdout) if name == "-" else name, "rb") as file:
                self.assertEqual(file.getparams()[:4], (1, 2, 8000, 4000))
                self.assertEqual(file.readframes(4001), data("speech.g726-32.pcm"))

    def test_other_formats(self):
        stream = data("speech.g726-32.rfc3551")
        again = run("encode", "-c", "g726-32", "--raw", "-", "-", stdin=data("speech.g726-32.pcm")).stdout
        for ending in ("flac", "au", "aiff"):
            with self.subTest(ending=ending):
                out = self.path("out." + ending)
                self.assertDone(run("decode", "-c", "g726-32", "-", out, stdin=stream))
                self.assertNotEqual(self.content("out." + ending)[:4], b"RIFF")
                self.assertDone(run("encode", "-c", "g726-32", out, "-"), again)
        self.assertRefused(run("decode", "-c", "g726-32", "-", self.path("out.pcm"), stdin=stream), 1, ".pcm", ".wav", "--raw")
        floats = struct.pack("<4000f", *(value / 32768 for value in samples(data("speech.pcm"))))
        header = b"RIFF" + struct.pack("<I", 36 + len(floats)) + b"WAVEfmt " + struct.pack(
            "<IHHIIHH", 16, 3, 1, 8000, 32000, 4, 32) + b"data" + struct.pack("<I", len(floats))
        self.assertDone(run("encode", "-c", "g726-32", "-", "-", stdin=header + floats), stream)

    def test_refusals(self):
        with open(self.wav("speech.wav"), "rb") as file:
            whole = file.read()
        self.wav("stereo.wav", channels=2)
        self.wav("wide.wav", rate=16000)
        self.wav("silent.wav", pcm=b"")
        self.file("cut.wav", whole[:-100])
        self.file("head.wav", whole[:30])
        self.file("text.wav", b"This is no sound at all.\n" * 20)
        files = sorted(os.listdir(self.folder))
        for name, words in (
            ("stereo.wav", ["2 channels", "needs one"]),
            ("wide.wav", ["16000", "8000"]),
            ("silent.wav", ["no samples"]),
            ("cut.wav", ["truncated"]),
            ("head.wav", ["truncated"]),
            ("text.wav", ["no audio file", "--raw"]),
        ):
            for command in ("encode", "roundtrip"):
                with self.subTest(name=name, command=command):
                    result = run(command, "-c", "g726-32", self.path(name), self.path("out.wav"))
                    self.assertRefused(result, 2, name, *words)
                    self.assertFiles(*files)


if __name__ == "__main__":
    PROGRAM = [*os.environ.get("EMULATOR", "").split(), os.path.abspath(sys.argv.pop(1))]
    unittest.main()
