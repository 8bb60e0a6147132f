"""The page in headless Chromium: its codecs against the native library, its keys, files, microphone; and pictures of it.

    page_test.py PAGE LIBZPPCODECS SPEECH OUT

PAGE: index.html. SPEECH: the directory of speech-8000.wav and speech-16000.wav, the page's samples. OUT: where pictures go.
"""
import base64
import csv
import ctypes
import functools
import http.server
import io
import math
import pathlib
import struct
import sys
import threading
import unittest
import wave

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

PAGE, LIBRARY, SPEECH, OUT = (pathlib.Path(argument).resolve() for argument in sys.argv[1:5])

# What the page can be asked for beside each codec's bit rates
VARIANTS = {"g726", "g723.1", "g728", "amr"}


class Native:
    """libzppcodecs, as zppcodecs.h declares it"""

    class Codec(ctypes.Structure):
        _fields_ = [("name", ctypes.c_char_p), ("standard", ctypes.c_char_p), ("rtpEncoding", ctypes.c_char_p)] + [
            (field, ctypes.c_int) for field in ("sampleRate", "frameSamples", "delaySamples", "maxPayload")
        ] + [("bitRates", ctypes.POINTER(ctypes.c_int)), ("bitRateCount", ctypes.c_int), ("defaultBitRate", ctypes.c_int),
             ("features", ctypes.c_uint)]

    class Options(ctypes.Structure):
        _fields_ = [("bitRate", ctypes.c_int), ("dtx", ctypes.c_int), ("variant", ctypes.c_int)]

    def __init__(self, path):
        self.lib = ctypes.CDLL(str(path))
        self.lib.zppcCodecs.restype = ctypes.POINTER(self.Codec)
        for side in ("Encoder", "Decoder"):
            create = getattr(self.lib, f"zppc{side}Create")
            create.restype, create.argtypes = ctypes.c_void_p, [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p]
            getattr(self.lib, f"zppc{side}Destroy").argtypes = [ctypes.c_void_p]
        self.lib.zppcEncode.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int, ctypes.c_char_p, ctypes.c_int]
        self.lib.zppcDecode.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int, ctypes.c_char_p, ctypes.c_int]
        count = ctypes.c_int()
        rows = self.lib.zppcCodecs(ctypes.byref(count))
        self.codecs = {rows[n].name.decode(): rows[n] for n in range(count.value)}

    def create(self, side, codec, options):
        stream = getattr(self.lib, f"zppc{side}Create")(ctypes.addressof(self.codecs[codec]), ctypes.byref(options), None)
        assert stream, f"no {side} of {codec}"
        return stream

    def encode(self, codec, options, speech, samples):
        """The payloads of frames of so many samples"""
        encoder, payloads = self.create("Encoder", codec, options), []
        room = ctypes.create_string_buffer(samples * 8)
        for at in range(0, len(speech), 2 * samples):
            octets = self.lib.zppcEncode(encoder, speech[at:at + 2 * samples], samples, room, len(room))
            assert octets >= 0, f"{codec}: error {octets}"
            payloads.append(room.raw[:octets])
        self.lib.zppcEncoderDestroy(encoder)
        return payloads

    def decode(self, codec, options, payloads, samples):
        """The speech of payloads; of lost ones, which are None, too"""
        decoder, speech = self.create("Decoder", codec, options), []
        room = ctypes.create_string_buffer(2 * samples)
        for payload in payloads:
            got = self.lib.zppcDecode(decoder, payload, 0 if payload is None else len(payload), room, samples)
            assert got == samples, f"{codec}: {got} samples"
            speech.append(room.raw)
        self.lib.zppcDecoderDestroy(decoder)
        return b"".join(speech)


def pcm(rate):
    with wave.open(str(SPEECH / f"speech-{rate}.wav")) as sound:
        return sound.readframes(sound.getnframes())


def start_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                     "--use-fake-device-for-media-stream", "--use-fake-ui-for-media-stream"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    browser.set_script_timeout(120)
    return browser


class Page:
    """What a person does on the page, and what they get"""

    def __init__(self, browser, url):
        self.browser = browser
        browser.get(url)
        self.wait()

    def js(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def wait(self):
        WebDriverWait(self.browser, 120, 0.05).until(
            lambda _: self.js("return document.getElementById('bench').getAttribute('aria-busy') === 'false'"))

    def text(self, element):
        return self.js("return document.getElementById(arguments[0]).textContent", element)

    def element(self, name):
        return self.browser.find_element(By.ID, name)

    def sample(self, number):
        self.js("document.querySelector(`[data-sample=\"${arguments[0]}\"]`).click()", number)
        WebDriverWait(self.browser, 60, 0.05).until(lambda _: ("16 kHz" in self.text("source")) == (number == 1))
        self.wait()

    def set(self, codec, bit_rate, dtx=False, variant=False, loss="none", percent=5, burst=4, seed=1):
        self.js("""
            const [codec, bitRate, dtx, variant, loss, percent, burst, seed] = arguments;
            const pick = (name, value) => {
              const input = document.querySelector(`input[name="${name}"][value="${value}"]`);
              input.checked = true;
              input.dispatchEvent(new Event("input", { bubbles: true }));
            };
            pick("codec", codec);
            for (const [id, value] of Object.entries({ percent, burst, seed })) document.getElementById(id).value = value;
            document.getElementById("dtx").checked = dtx;
            document.getElementById("variant").checked = variant;
            pick("loss", loss);
            pick("rate", bitRate);
        """, codec, bit_rate, dtx, variant, loss, percent, burst, seed)
        self.wait()

    def saved(self, button):
        """The file that a button gives"""
        return base64.b64decode(self.browser.execute_async_script("""
            const [button, done] = arguments;
            const make = URL.createObjectURL, click = HTMLAnchorElement.prototype.click;
            let blob;
            URL.createObjectURL = (content) => make.call(URL, (blob = content));
            HTMLAnchorElement.prototype.click = () => {};
            document.getElementById(button).click();
            URL.createObjectURL = make;
            HTMLAnchorElement.prototype.click = click;
            const reader = new FileReader();
            reader.onload = () => done(reader.result.slice(reader.result.indexOf(",") + 1));
            reader.readAsDataURL(blob);
        """, button))

    def payloads(self):
        return list(csv.DictReader(io.StringIO(self.saved("save-payloads").decode())))

    def speech(self):
        with wave.open(io.BytesIO(self.saved("save-speech"))) as sound:
            return sound.readframes(sound.getnframes())


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = start_browser()
        cls.addClassCleanup(cls.browser.quit)
        cls.native = Native(LIBRARY)

    def setUp(self):
        self.page = Page(self.browser, PAGE.as_uri())

    def tearDown(self):
        severe = [entry["message"] for entry in self.browser.get_log("browser") if entry["level"] == "SEVERE"]
        self.assertEqual(severe, [])

    def check_against_native(self, codec, bit_rate, dtx, variant, loss):
        self.page.set(codec, bit_rate, dtx, variant, loss, percent=12, burst=5, seed=77)
        table, heard = self.page.payloads(), self.page.speech()
        row = self.native.codecs[codec]
        samples = len(heard) // 2 // len(table)
        options = self.native.Options(bit_rate, int(dtx), int(variant))
        speech = pcm(row.sampleRate).ljust(len(heard), b"\0")
        self.assertLessEqual(len(pcm(row.sampleRate)) + 2 * row.delaySamples, len(heard))
        native = self.native.encode(codec, options, speech, samples)
        self.assertEqual(len(native), len(table))
        received = []
        for n, (line, payload) in enumerate(zip(table, native)):
            if line["kind"] != "nothing sent":
                self.assertEqual(line["payload"], payload.hex(), f"payload of frame {n}")
            elif codec != "gsm-fr":  # whose pauses the link cuts, not the encoder
                self.assertLessEqual(len(payload), 1)
            received.append(None if line["kind"] == "lost" else b"" if line["kind"] == "nothing sent" else payload)
        kinds = {line["kind"] for line in table}
        self.assertEqual("lost" in kinds, loss != "none")
        expected = self.native.decode(codec, options, received, samples)
        for n in range(0, len(heard), 2 * samples):
            self.assertEqual(heard[n:n + 2 * samples], expected[n:n + 2 * samples], f"speech of frame {n // 2 // samples}")
        return kinds

    def test_every_codec_gives_the_native_bytes(self):
        cases, pausing = 0, set()
        for sample, rate in enumerate((8000, 16000)):
            self.page.sample(sample)
            for name, row in self.native.codecs.items():
                if row.sampleRate != rate:
                    continue
                for bit_rate in row.bitRates[:row.bitRateCount]:
                    for dtx in (False, True) if row.features & 1 else (False,):
                        for variant in (False, True) if name in VARIANTS else (False,):
                            for loss in ("none", "random", "bursts"):
                                with self.subTest(codec=name, bit_rate=bit_rate, dtx=dtx, variant=variant, loss=loss):
                                    kinds = self.check_against_native(name, bit_rate, dtx, variant, loss)
                                    cases += 1
                                    if dtx and "silence descriptor" in kinds:
                                        pausing.add(name)
        self.assertEqual(pausing, {name for name, row in self.native.codecs.items() if row.features & 1})
        print(f"{cases} settings of {len(self.native.codecs)} codecs give the native bytes")

    def test_speed(self):
        """Prints times real time; a run warms the codecs up."""
        for sample, rate in enumerate((8000, 16000)):
            self.page.sample(sample)
            for name, row in self.native.codecs.items():
                if row.sampleRate == rate:
                    for _ in range(3):
                        self.page.set(name, row.defaultBitRate)
                    print(f"{name:12} {row.defaultBitRate / 1000:6} kbit/s  {self.page.text('speed')}")

    def test_losses_change_with_their_seed_only(self):
        lost = lambda: [line["frame"] for line in self.page.payloads() if line["kind"] == "lost"]
        self.page.set("g729", 8000, loss="random", percent=20, seed=5)
        first = lost()
        self.page.set("g729", 8000, loss="random", percent=20, seed=6)
        self.assertNotEqual(first, lost())
        self.page.set("g729", 8000, loss="random", percent=20, seed=5)
        self.assertEqual(first, lost())
        pairs = {int(n) // 2 for n in first}
        self.assertEqual(len(first), 2 * len(pairs), "packets of two frames are lost whole")

    def test_from_a_server(self):
        class Handler(http.server.SimpleHTTPRequestHandler):
            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=PAGE.parent))
        self.addCleanup(server.server_close)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.shutdown)
        page = Page(self.browser, f"http://127.0.0.1:{server.server_port}/{PAGE.name}")
        self.assertIn("kbit/s", page.text("used-rate"))
        requests = page.js("""return performance.getEntriesByType("resource").map(({ name }) => name)
            .filter((name) => !/^(blob|data):/.test(name))""")
        self.assertEqual(requests, [])

    def test_keys(self):
        page, browser = self.page, self.browser
        press = lambda *keys: ActionChains(browser).send_keys(*keys).perform()
        focused = lambda: page.js("const e = document.activeElement; return e.id || e.name || e.dataset.sample || e.tagName")
        seen = []
        for _ in range(40):
            press(Keys.TAB)
            seen.append(focused())
            if seen[-1] == "BODY":
                break
            ring = page.js("""const e = document.activeElement, shown = e.closest(".choices") ? e.nextElementSibling : e;
                const { outlineStyle, outlineWidth } = getComputedStyle(shown);
                return e.matches(":focus-visible") && outlineStyle === "solid" && parseFloat(outlineWidth) >= 2""")
            self.assertTrue(ring, f"no ring around {seen[-1]}")
        for name in ("open", "record", "codec", "rate", "dtx", "loss", "save-speech", "save-payloads", "play", "voice",
                     "zoom-in", "timeline", "difference-kind"):
            self.assertIn(name, seen)
        self.assertNotIn("file", seen)

        nameless = page.js("""return [...document.querySelectorAll("button, input, [role]")].filter((e) =>
            !e.hidden && !e.getAttribute("aria-label") && !e.getAttribute("aria-labelledby") && !e.textContent.trim() &&
            !e.labels?.length).map((e) => e.outerHTML)""")
        self.assertEqual([tag for tag in nameless if "status" not in tag], [])

        page.js("document.querySelector('input[name=codec]:checked').focus()")
        before = page.js("return document.querySelector('input[name=codec]:checked').value")
        press(Keys.ARROW_RIGHT)
        page.wait()
        self.assertNotEqual(before, page.js("return document.querySelector('input[name=codec]:checked').value"))

        voice = lambda: page.js("return document.querySelector('input[name=voice]:checked').value")
        for key, expected in (("1", "original"), ("3", "difference"), ("2", "decoded"), ("x", "original"), ("x", "decoded")):
            press(key)
            self.assertEqual(voice(), expected)

        page.js("document.getElementById('timeline').focus()")
        place = lambda: float(page.element("timeline").get_attribute("aria-valuenow"))
        press(Keys.HOME)
        press(Keys.ARROW_RIGHT)
        self.assertGreater(place(), 0)
        press(Keys.PAGE_DOWN)
        self.assertEqual(place(), 0)
        press("+")
        press(Keys.END)
        self.assertGreater(place(), 5)
        press("0", Keys.HOME, Keys.SPACE)
        self.assertEqual(page.element("play").get_attribute("aria-label"), "Pause")
        WebDriverWait(browser, 20).until(lambda _: place() > 0.3)
        press("1")
        self.assertGreater(place(), 0.3, "listening to another voice keeps the place")
        press(Keys.SPACE)
        self.assertEqual(page.element("play").get_attribute("aria-label"), "Play")

    def test_files_and_microphone(self):
        page, directory = self.page, OUT
        tone = directory / "tone-48000-stereo.wav"
        sine = lambda hertz, n: round(12000 * math.sin(2 * math.pi * hertz * n / 48000))
        with wave.open(str(tone), "wb") as sound:  # 1 kHz on one side, 6 kHz, which is too high for a telephone, on the other
            sound.setparams((2, 2, 48000, 0, "NONE", None))
            sound.writeframes(b"".join(struct.pack("<hh", sine(1000, n), sine(6000, n)) for n in range(48000)))
        page.element("file").send_keys(str(tone))
        WebDriverWait(self.browser, 30).until(lambda _: "48 kHz" in page.text("source"))
        page.wait()
        self.assertIn("1.0 s at 48 kHz", page.text("source"))
        page.set("g711-alaw", 64000)
        heard = struct.unpack("<8000h", page.speech()[:16000])
        for n in range(1000, 7000):  # half of the tone, as both sides are mixed; A-law's steps are up to 3 % there
            self.assertAlmostEqual(heard[n], sine(1000, 6 * n) / 2, delta=200)

        nothing = directory / "nothing.wav"
        nothing.write_bytes(b"RIFF\x04\0\0\0WAVE")
        page.element("file").send_keys(str(nothing))
        WebDriverWait(self.browser, 30).until(lambda _: "cannot read nothing.wav" in page.text("status"))
        self.assertIn("1.0 s at 48 kHz", page.text("source"), "what was there stays")

        page.element("record").click()
        WebDriverWait(self.browser, 30).until(lambda _: "Stop (1 s)" in page.text("record"))
        page.element("record").click()
        WebDriverWait(self.browser, 30).until(lambda _: page.text("source").startswith("Recording: "))
        page.wait()
        self.assertIn("kbit/s", page.text("used-rate"))

    def test_pictures(self):
        """Nothing sticks out sideways; pictures to look at."""
        devtools = self.browser.execute_cdp_cmd
        for scheme in ("light", "dark"):
            devtools("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
            for width, height, ratio in ((1400, 1180, 1), (820, 2100, 1), (390, 2500, 2)):
                devtools("Emulation.setDeviceMetricsOverride",
                         {"width": width, "height": height, "deviceScaleFactor": ratio, "mobile": ratio == 2})
                self.page.set("amr", 7950, dtx=True, loss="bursts", percent=8, burst=3, seed=3)
                self.assertLessEqual(self.page.js("return document.documentElement.scrollWidth"), width)
                self.browser.execute_async_script("requestAnimationFrame(() => requestAnimationFrame(arguments[0]))")
                picture = devtools("Page.captureScreenshot", {"format": "png"})["data"]
                (OUT / f"page-{width}-{scheme}.png").write_bytes(base64.b64decode(picture))
        devtools("Emulation.clearDeviceMetricsOverride", {})


if __name__ == "__main__":
    OUT.mkdir(parents=True, exist_ok=True)
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)
