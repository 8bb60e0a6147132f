import copy
import pickle
import threading

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import zppcodecs
from zppcodecs import Codec, CodecError, Decoder, Encoder, Feature, storage

CODECS = zppcodecs.codecs()
LINES = {  # names of zppcodec: row, bit rate, dtx
    "g711-mulaw": ("g711-mulaw", 64000, False), "g711-alaw": ("g711-alaw", 64000, False),
    "g726-16": ("g726", 16000, False), "g726-24": ("g726", 24000, False), "g726-32": ("g726", 32000, False),
    "g726-40": ("g726", 40000, False), "g722.1-24": ("g722.1", 24000, False), "g722.1-32": ("g722.1", 32000, False),
    "g723.1-5.3": ("g723.1", 5300, False), "g723.1-6.3": ("g723.1", 6300, True), "g728": ("g728", 16000, False),
    "g729": ("g729", 8000, False), "g729a": ("g729a", 8000, False), "g729b": ("g729", 8000, True),
    "g729ab": ("g729a", 8000, True), "g729d": ("g729i", 6400, False), "g729e": ("g729i", 11800, False),
    "g729f": ("g729f", 8000, False), "g729af": ("g729af", 8000, False), "gsm-fr": ("gsm-fr", 13000, True),
    "amr-4.75": ("amr", 4750, False), "amr-7.95": ("amr", 7950, True), "amr-12.2": ("amr", 12200, False),
    "amr-wb-6.60": ("amr-wb", 6600, True), "amr-wb-23.85": ("amr-wb", 23850, False),
}  # fmt: skip


def speech(samples, rate=8000, seed=1):
    """Bursts of a buzzing voice with pauses between them, in a little noise."""
    random, t = np.random.default_rng(seed), np.arange(samples) / rate
    voice = sum(np.sin(2 * np.pi * 110 * k * t + k * np.sin(2 * np.pi * 3 * t)) / k for k in range(1, 20))
    pause = (t % 1.5) < 0.8
    return np.clip(2500 * voice * pause + random.normal(0, 12, samples), -32768, 32767).astype(np.int16)


def whole(row: Codec, seconds: float):
    size = row.packet_samples
    return speech(int(seconds * row.sample_rate) // size * size, row.sample_rate)


def test_the_table_is_the_librarys():
    assert [c.name for c in CODECS][:3] == ["g711-mulaw", "g711-alaw", "g726"] and len(CODECS) == 14
    g729 = zppcodecs.find_codec("g729")
    assert (g729.sample_rate, g729.frame_samples, g729.max_payload, g729.bit_rates) == (8000, 80, 10, (8000,))
    assert g729.features == Feature.DTX | Feature.CONCEALMENT
    with pytest.raises(KeyError, match="no codec 'g730'; there are g711-mulaw"):
        zppcodecs.find_codec("g730")
    assert pickle.loads(pickle.dumps(g729)) == g729


@pytest.mark.parametrize("line", LINES)
def test_streams_and_speech_are_those_of_the_program(zppcodec, tmp_path, line):
    name, bit_rate, dtx = LINES[line]
    row = zppcodecs.find_codec(name)
    signal = whole(row, 3)
    framing = ["--framing", "rfc5577"] if name == "g722.1" else []
    switch = ["--dtx"] if dtx and not line.endswith("b") else []
    signal.tofile(tmp_path / "in.pcm")
    zppcodec("encode", "-c", line, *framing, *switch, "--raw", tmp_path / "in.pcm", tmp_path / "theirs")
    zppcodec("decode", "-c", line, *framing, *switch, "--raw", tmp_path / "theirs", tmp_path / "theirs.pcm")
    payloads = zppcodecs.encode(signal, row, bit_rate, dtx=dtx)
    storage.write(tmp_path / "ours", payloads, row, dtx=dtx)
    assert (tmp_path / "ours").read_bytes() == (tmp_path / "theirs").read_bytes()
    assert storage.read(tmp_path / "theirs", row, bit_rate, dtx=dtx) == payloads
    assert dtx is False or name == "gsm-fr" or len(set(map(len, payloads))) > 1
    heard = zppcodecs.decode(payloads, row, bit_rate, dtx=dtx)
    assert np.array_equal(heard, np.fromfile(tmp_path / "theirs.pcm", np.int16))


@pytest.mark.parametrize("name", ["g723.1", "g729i", "amr", "amr-wb"])
def test_bit_rates_switch_from_frame_to_frame(name):
    row = zppcodecs.find_codec(name)
    encoder, sizes = Encoder(row), {}
    for n, frame in enumerate(whole(row, 2).reshape(-1, row.frame_samples)):
        encoder.bit_rate = row.bit_rates[n % len(row.bit_rates)]
        sizes.setdefault(encoder.bit_rate, set()).add(len(encoder.encode(frame)))
    assert all(len(s) == 1 for s in sizes.values()) and len(set.union(*sizes.values())) == len(row.bit_rates)
    with pytest.raises(CodecError, match=r"zppcEncoderSetBitRate: .* \(-3\)"):
        encoder.bit_rate = 7
    assert encoder.bit_rate in row.bit_rates


def test_a_codec_of_one_rate_does_not_switch():
    with pytest.raises(CodecError):
        Encoder("g726").bit_rate = 16000


@pytest.mark.parametrize("row", CODECS, ids=lambda c: c.name)
def test_a_copy_continues_the_stream(row):
    packets = whole(row, 1).reshape(-1, row.packet_samples)
    half = len(packets) // 2
    encoder, decoder = Encoder(row), Decoder(row)
    for packet in packets[:half]:
        decoder.decode(encoder.encode(packet))
    twins = [f(pair) for f in (copy.copy, copy.deepcopy, lambda p: pickle.loads(pickle.dumps(p))) for pair in [(encoder, decoder)]]
    twins[0] = (encoder.copy(), decoder.copy())
    expected = [(payload := encoder.encode(packet), decoder.decode(payload)) for packet in packets[half:]]
    for encoder, decoder in twins:
        for packet, (payload, heard) in zip(packets[half:], expected, strict=True):
            assert encoder.encode(packet) == payload
            assert np.array_equal(decoder.decode(payload), heard)


def test_streams_of_another_build_are_refused():
    state = Encoder("g729").__getstate__()
    for wrong, message in (({**state, "build": "9.9"}, "of another build"), ({**state, "memory": b"short"}, "of 5 bytes")):
        with pytest.raises(ValueError, match=message):
            Encoder.__new__(Encoder).__setstate__(wrong)


@pytest.mark.parametrize("row", CODECS, ids=lambda c: c.name)
def test_lost_frames_are_concealed_or_silent(row):
    payloads = zppcodecs.encode(whole(row, 1), row)
    decoder = Decoder(row)
    for payload in payloads[:30]:
        last = decoder.decode(payload)
    lost = decoder.decode(None)
    assert len(lost) == len(last)
    assert lost.any() == bool(row.features & Feature.CONCEALMENT)
    if row.features & Feature.SAMPLE_BASED:
        assert len(decoder.decode(None, 400)) == 400


def test_options_reach_the_codec():
    signal = speech(16000)
    assert zppcodecs.encode(signal, "g726", 32000, variant=1) != zppcodecs.encode(signal, "g726", 32000)
    assert not np.array_equal(zppcodecs.roundtrip(signal, "g728", variant=1), zppcodecs.roundtrip(signal, "g728"))
    for options in ({"bit_rate": 1}, {"bit_rate": 0}, {"dtx": True}, {"variant": 5}):
        with pytest.raises(CodecError, match="does not have this bit rate or option"):
            Encoder("g722.1", **options)


def test_roundtrip_is_in_time_with_the_signal():
    for row in CODECS:
        signal = speech(3 * row.sample_rate + 7, row.sample_rate)
        heard = zppcodecs.roundtrip(signal, row)
        assert heard.dtype == np.int16 and len(heard) == len(signal)
        a, b = (np.convolve(np.abs(x.astype(float)), np.hanning(row.sample_rate // 100), "same") for x in (signal, heard))
        a, b = a - a.mean(), b - b.mean()
        lags = range(-row.sample_rate // 100, row.sample_rate // 100 + 1)  # 10 ms
        assert abs(max(lags, key=lambda lag: np.dot(a[400:-400], np.roll(b, -lag)[400:-400]))) <= row.sample_rate // 500, row.name


def test_wrong_frames_and_payloads_raise():
    encoder, decoder = Encoder("g729"), Decoder("g729")
    with pytest.raises(CodecError, match=r"^zppcEncode: .*\(-4\)"):
        encoder.encode(np.zeros(79, np.int16))
    with pytest.raises(TypeError, match="int16 samples, not of float64"):
        encoder.encode(np.zeros(80))
    with pytest.raises(ValueError, match="one channel"):
        encoder.encode(np.zeros((2, 40), np.int16))
    with pytest.raises(CodecError, match=r"^zppcDecode: .*\(-4\)"):
        decoder.decode(bytes(9))
    for samples in (0, -1, 1 << 40):
        with pytest.raises(ValueError):
            Decoder("g711-alaw").decode(None, samples)
    assert len(Encoder("g711-alaw").encode(np.zeros(100, np.int16)[::-2])) == 50  # any layout
    assert zppcodecs.encode(np.zeros(0, np.int16), "g729") == []
    assert len(zppcodecs.decode([], "g729")) == 0


@given(st.sampled_from(CODECS), st.lists(st.one_of(st.none(), st.binary(max_size=70), st.integers(0, 255)), max_size=12), st.randoms())
def test_no_payload_crashes_a_decoder(row, drawn, random):
    decoder = Decoder(row, random.choice(row.bit_rates), variant=0)
    sizes = sorted({len(p) for p in zppcodecs.encode(np.zeros(4 * row.packet_samples, np.int16), row)})
    for payload in drawn:
        if isinstance(payload, int):  # of a size that the stream has
            payload = bytes([payload]) + random.randbytes(random.choice(sizes) - 1)
        before = pickle.dumps(decoder)
        try:
            heard = decoder.decode(payload)
            assert heard.dtype == np.int16
        except CodecError:
            assert pickle.dumps(decoder) == before


@given(st.sampled_from(CODECS), st.randoms())
def test_any_frames_are_coded(row, random):
    encoder, decoder = Encoder(row, random.choice(row.bit_rates), dtx=bool(row.features & Feature.DTX)), None
    decoder = Decoder(row, encoder.bit_rate, dtx=encoder.dtx)
    for _ in range(4):
        noise = np.frombuffer(random.randbytes(2 * row.packet_samples), np.int16) >> random.randrange(16)
        payload = encoder.encode(noise)
        assert len(decoder.decode(payload)) == row.packet_samples


def test_threads_share_a_stream_without_harm():
    """Calls on one stream wait for each other: it is as if the frames had come in some order."""
    encoder, frame = Encoder("g711-alaw"), speech(8000)
    expected, results = encoder.encode(frame), []
    threads = [threading.Thread(target=lambda: results.extend(encoder.encode(frame) for _ in range(50))) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [expected] * 200
