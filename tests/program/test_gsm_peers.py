"""Whether other programs understand what zppcodec writes of GSM full rate, and zppcodec what they write.

usage: test_gsm_peers.py PROGRAM [unittest arguments]
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

PROGRAM = []  # in a build for another processor, behind its emulator
DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "data")
BLOCK, BLOCK_SAMPLES = 65, 320


def wav49(blocks):
    """A WAVE file of format 0x31 around blocks of two frames."""
    count = len(blocks) // BLOCK * BLOCK_SAMPLES
    header = struct.pack("<4sIHHIIHHHH", b"fmt ", 20, 0x31, 1, 8000, 1625, BLOCK, 0, 2, BLOCK_SAMPLES)
    header += struct.pack("<4sII4sI", b"fact", 4, count, b"data", len(blocks))
    body = b"WAVE" + header + blocks + b"\0" * (len(blocks) % 2)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def blocks_of(wave):
    """The blocks in such a file."""
    at = 12
    while wave[at:at + 4] != b"data":
        at += 8 + (struct.unpack_from("<I", wave, at + 4)[0] + 1) // 2 * 2
    return wave[at + 8:at + 8 + struct.unpack_from("<I", wave, at + 4)[0]]


class Peer:
    def __init__(self, folder):
        self.folder = folder

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def run(self, *command, stdin=b""):
        return subprocess.run(command, input=stdin, capture_output=True, check=True, timeout=60).stdout


class Sox(Peer):
    PCM = ("-t", "raw", "-e", "signed", "-b", "16", "-r", "8000", "-c", "1")

    def decode(self, stream, ending):
        return self.run("sox", self.write("in" + ending, stream), *self.PCM, "-")

    def encode(self, pcm, ending):
        out = os.path.join(self.folder, "out" + ending)
        self.run("sox", *self.PCM, "-", *(("-e", "gsm") if ending == ".wav" else ()), out, stdin=pcm)
        with open(out, "rb") as file:
            return file.read()


class Ffmpeg(Peer):
    PCM = ("-f", "s16le", "-ar", "8000", "-ac", "1")

    def decode(self, stream, ending):
        return self.run("ffmpeg", "-v", "error", "-i", self.write("in" + ending, stream), *self.PCM, "-")

    def encode(self, pcm, ending):
        out = os.path.join(self.folder, "out" + ending)
        coder = "libgsm_ms" if ending == ".wav" else "libgsm"
        self.run("ffmpeg", "-v", "error", *self.PCM, "-i", "-", "-c:a", coder, out, stdin=pcm)
        with open(out, "rb") as file:
            return file.read()


def ours(command, framing, content):
    return subprocess.run(
        [*PROGRAM, command, "-c", "gsm-fr", "--raw", "--framing", framing, "-", "-"],
        input=content, capture_output=True, check=True, timeout=60).stdout


class GsmPeers(unittest.TestCase):
    def exchange(self, peer):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        peer = peer(folder.name)
        with open(os.path.join(DATA, "speech.pcm"), "rb") as file:
            speech = file.read()
        speech = speech[:len(speech) // 640 * 640]  # whole pairs of frames
        heard = ours("decode", "rfc3551", ours("encode", "rfc3551", speech))
        self.assertEqual(peer.decode(ours("encode", "rfc3551", speech), ".gsm"), heard)
        self.assertEqual(peer.decode(wav49(ours("encode", "wav49", speech)), ".wav"), heard)
        self.assertEqual(ours("decode", "rfc3551", peer.encode(speech, ".gsm")), heard)
        self.assertEqual(ours("decode", "wav49", blocks_of(peer.encode(speech, ".wav")))[:len(heard)], heard)

    @unittest.skipUnless(shutil.which("sox"), "sox is not installed")
    def test_sox(self):
        self.exchange(Sox)

    @unittest.skipUnless(shutil.which("ffmpeg"), "ffmpeg is not installed")
    def test_ffmpeg(self):
        self.exchange(Ffmpeg)


if __name__ == "__main__":
    PROGRAM = [*os.environ.get("EMULATOR", "").split(), os.path.abspath(sys.argv.pop(1))]
    unittest.main()
