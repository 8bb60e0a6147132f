import os

import pytest
from hypothesis import given
from hypothesis import strategies as st

import zppcodecs
from zppcodecs import storage

CODECS = zppcodecs.codecs()


@given(st.sampled_from(CODECS), st.binary(max_size=300), st.booleans())
def test_any_octets_are_read_or_refused(row, data, magic):
    data = storage._MAGIC.get(row.name, b"") + data if magic else data
    try:
        payloads = list(storage.unpack(data, row))
    except storage.StorageError:
        return
    if all(payloads):  # nothing unsent: then the file is the only one of these payloads
        assert storage.pack(payloads, row) == data


def test_frames_that_were_not_sent_and_lost_ones_keep_their_places():
    for name, payloads, dtx in (
        ("g729", [bytes(10), b"", bytes(2), None], True),
        ("amr", [bytes(13), b"", bytes(13)], False),
        ("amr-wb", [b"", bytes(18)], False),
        ("g723.1", [bytes(24), b"", b"\x01" * 20, b"\x02" * 4], False),
    ):
        assert list(storage.unpack(storage.pack(payloads, name, dtx=dtx), name, dtx=dtx)) == payloads
    with pytest.raises(ValueError, match="files of g729 cannot tell"):
        storage.pack([b""], "g729")


def test_damaged_files_are_refused():
    with pytest.raises(storage.StorageError, match="1 octets are missing"):
        list(storage.unpack(bytes(19), "g729"))
    with pytest.raises(storage.StorageError, match="does not begin with the line #!AMR"):
        list(storage.unpack(bytes(19), "amr"))


def test_a_file_appears_whole_or_not_at_all(tmp_path, monkeypatch):
    target = tmp_path / "speech.g729"
    storage.write(target, [bytes(10)], "g729")
    assert target.read_bytes() == bytes(10)
    assert target.stat().st_mode & 0o777 == 0o666 & ~storage._umask()

    def fail(*_):
        raise OSError("disk full")

    monkeypatch.setattr(os, "fsync", fail)
    with pytest.raises(OSError, match="disk full"):
        storage.write(target, [bytes(10), bytes(10)], "g729")
    assert os.listdir(tmp_path) == ["speech.g729"] and target.read_bytes() == bytes(10)
