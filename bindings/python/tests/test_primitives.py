import copy
import pickle
import sys
import threading

import numpy as np
import pytest
from calls import Caller
from conftest import ROOT, thorough
from hypothesis import given
from hypothesis import strategies as st

from zppcodecs import primitives as zpp

s16, s32 = np.int16, np.int32
NAMES = sorted(zpp._functions)


def test_every_export_is_there_under_its_name():
    exported = (ROOT / "tests" / "library" / "exports.txt").read_text(encoding="utf-8").split()
    assert sorted(NAMES + ["zppscGetLibVersion"]) == sorted(exported)
    assert all(callable(getattr(zpp, name)) for name in exported)
    assert zpp.zppscGetLibVersion().Version.startswith("v4.")


def test_extents_agree_with_the_table_of_exports(rows):
    """What the C++ tests call a function with, at readable memory exactly so long, must be enough here too."""
    for name in NAMES:
        function, row = getattr(zpp, name), rows[name]
        scalars, wrong = {}, []
        for a, p in zip(row["arguments"], function.prototype.parameters, strict=True):
            if not p.pointer:
                lengths = [b["count"] for b in row["arguments"] if a["lengthOf"] and b["name"] == a["lengthOf"]]
                scalars[p.name] = a["value"] if p.type == "Zpp32f" else int(lengths[0] if lengths else a["value"])
        kept = zpp.State(0)
        kept._scalars = {"order": 50, "lenNew": 20, "lenNonRec": 35}  # of the state that the rows start
        for a, p in zip(row["arguments"], function.prototype.parameters, strict=True):
            assert p.pointer == (a["role"] != "value")
            if p.pointer:
                extent = function.extents.buffers[p.name]
                before, after = (zpp._value(e, {**scalars, "state": kept}) for e in (extent.before, extent.after))
                if p.type != "void" and not (before == a["history"] and after <= a["count"]) or extent.null != a["optional"]:
                    wrong.append((p.name, before, after, a))
                assert p.const <= (a["role"] == "in")
        # Rows with a history at one end of what the function allows
        known = {"zppsHarmonicNoiseShaping_G723_16s", "zppsPitchPostFilter_G723_16s"}
        assert not wrong or name in known, (name, wrong)


def test_no_call_reads_or_writes_beside_its_extents(rows):
    """Every primitive, with buffers that end or begin at unreadable memory: a wrong extent kills the test."""
    calls = 500 if thorough() else 40
    for name in NAMES:
        caller, function, accepted = Caller(rows, name), getattr(zpp, name), 0
        for _ in range(calls):
            try:
                function(*caller.arguments(function, rows[name]))
                accepted += 1
            except ValueError:
                pass
        assert accepted, f"{name} never accepts what is drawn"


anything = st.one_of(
    st.none(), st.integers(), st.integers(-3, 300), st.floats(), st.just("text"), st.binary(max_size=9), st.just(zpp.State(400)),
    st.builds(
        lambda dtype, size, step, read: _array(dtype, size, step, read),
        st.sampled_from([np.uint8, s16, np.uint16, s32, np.uint32, np.float32, np.float64, np.int64, object]),
        st.integers(0, 700), st.sampled_from([1, 1, 1, 2, -1]), st.booleans(),
    ),
)  # fmt: skip


def _array(dtype, size, step, read):
    array = np.zeros(size, dtype)[::step]
    array.flags.writeable = array.flags.writeable and not read
    return array


@given(st.sampled_from(NAMES), st.data())
def test_wrong_arguments_raise_and_never_crash(name, data):
    function = getattr(zpp, name)
    drawn = [data.draw(anything) for _ in function.prototype.parameters]
    for i, p in enumerate(function.prototype.parameters):  # right ones among them, so that checks behind the first are met
        if data.draw(st.integers(0, 3)):
            drawn[i] = np.zeros(700, zpp._TYPES[p.type][1]) if p.pointer and p.type != "void" else drawn[i]
            drawn[i] = data.draw(st.integers(-2, 200)) if not p.pointer else drawn[i]
    try:
        function(*drawn)
    except (TypeError, ValueError) as error:
        assert name in str(error)


def test_what_is_wrong_is_told_before_the_call():
    src, dst = np.arange(10, dtype=s16), np.zeros(10, s16)
    fixed = np.zeros(10, s16)
    fixed.flags.writeable = False
    unaligned = np.zeros(21, np.uint8)[1:].view(s16)
    for wrong, message in (
        ((src, dst, 11), "src has 10 elements, and 11 are needed"),
        ((src[::2], dst, 5), "src is not contiguous"),
        ((unaligned, dst, 5), "src is not contiguous and aligned"),
        ((src, fixed, 10), "read-only"),
        ((src, dst, 1 << 31), "outside -2147483648..2147483647"),
    ):
        with pytest.raises(ValueError, match=message):
            zpp.zppsAbs_16s(*wrong)
    for wrong, message in (
        ((src.astype(s32), dst, 10), "src is an array of int16, not of int32"),
        ((src.astype(">i2"), dst, 10), "not of >i2"),
        ((list(src), dst, 10), "not list"),
        ((None, dst, 10), "not NoneType"),
        ((src, dst, 10.0), "len is a int, not float"),
        ((src, dst), "takes 3 arguments, not 2"),
    ):
        with pytest.raises(TypeError, match=message):
            zpp.zppsAbs_16s(*wrong)
    assert not dst.any()


def test_errors_name_function_and_status_and_warnings_are_returned():
    with pytest.raises(zpp.PrimitiveError, match=r"^zppsAbs_16s: zppStsBadSize \(-6\)$") as caught:
        zpp.zppsAbs_16s(np.zeros(1, s16), np.zeros(1, s16), 0)
    assert caught.value.function == "zppsAbs_16s" and caught.value.status is zpp.Status.zppStsBadSize
    loud, lags, norm = np.full(240, 32767, s16), np.zeros(11, s32), np.zeros(1, s32)
    assert zpp.zppsAutoCorr_NormE_16s32s(loud, 240, lags, 11, norm) == zpp.zppStsOverflowWarn
    assert zpp.zppsAutoCorr_NormE_16s32s(loud >> 4, 240, lags, 11, norm) == zpp.zppStsOk and lags[0]
    assert zpp._zppsToeplizMatrix_GSMAMR_16s32s(np.zeros(40, s16), np.zeros(40, s16), np.zeros((40, 40), s32)) is None


def test_history_is_what_lies_before_the_slice():
    whole, a, out = np.arange(60, dtype=s16), np.zeros(11, s16), np.zeros(40, s16)
    a[10] = 4096  # ten samples ago
    zpp.zppsResidualFilter_G729_16s(a, whole[10:], out, 40)
    assert np.array_equal(out, whole[:40])
    zpp.zppsResidualFilter_G729_16s(a, whole[5:][5:], out, 40)  # a slice of a slice knows what it is of
    for short in (whole, whole[9:], whole[10:].copy()):
        with pytest.raises(ValueError, match="10 elements before it are needed"):
            zpp.zppsResidualFilter_G729_16s(a, short, out, 40)
    with pytest.raises(ValueError, match="src has 39 elements"):
        zpp.zppsResidualFilter_G729_16s(a, whole[10:49], out, 40)  # behind the pointer the slice is what counts


def test_states_belong_to_their_kind_and_are_copied_whole():
    size = np.zeros(1, s32)
    zpp.zppsEncodeGetStateSize_G726_16s8u(size)
    state, other = zpp.State(size[0]), zpp.State(size[0] - 1)
    speech, codes, again = np.arange(-80, 80, dtype=s16) * 9, np.zeros(160, np.uint8), np.zeros(160, np.uint8)
    with pytest.raises(ValueError, match="a state of Encode_G726, and is one of nothing"):
        zpp.zppsEncode_G726_16s8u(state, speech, codes, 160)
    with pytest.raises(ValueError, match="87 bytes, and 88 are needed"):
        zpp.zppsEncodeInit_G726_16s8u(other, zpp.ZPP_RATE_32000)
    with pytest.raises(zpp.PrimitiveError, match="zppStsOutOfRange"):
        zpp.zppsEncodeInit_G726_16s8u(state, 0)
    assert state.kind is None
    zpp.zppsEncodeInit_G726_16s8u(state, zpp.ZPP_RATE_32000)
    zpp.zppsEncode_G726_16s8u(state, speech, codes, 160)
    with pytest.raises(ValueError, match="a state of Decode_G726, and is one of Encode_G726"):
        zpp.zppsDecode_G726_8u16s(state, codes, np.zeros(160, s16), 160)
    twins = [copy.copy(state), copy.deepcopy(state), pickle.loads(pickle.dumps(state))]
    zpp.zppsEncode_G726_16s8u(state, speech, codes, 160)
    for twin in twins:
        zpp.zppsEncode_G726_16s8u(twin, speech, again, 160)
        assert np.array_equal(again, codes) and bytes(twin) == bytes(state)
    with pytest.raises(ValueError, match="of another build"):
        zpp._restored_state(bytes(state), state.kind, {}, "v9")


def test_extents_follow_the_numbers_that_a_state_was_started_with():
    order, new, rest = 10, 20, 30
    size, valid = np.zeros(1, s32), np.zeros(1, s32)
    zpp.zppsWinHybridGetStateSize_G728_16s(order, new, rest, size)
    state = zpp.State(size[0])
    zpp.zppsWinHybridInit_G728_16s(np.full(60, 32767, s16), order, new, rest, 1, state)
    zpp.zppsWinHybrid_G728_16s(np.arange(20, dtype=s16), np.zeros(11, s16), valid, state)
    for src, dst in ((19, 11), (20, 10)):
        with pytest.raises(ValueError, match="are needed"):
            zpp.zppsWinHybrid_G728_16s(np.zeros(src, s16), np.zeros(dst, s16), valid, state)
    with pytest.raises(ValueError, match="bytes, and"):
        zpp.zppsWinHybridInit_G728_16s(np.full(61, 32767, s16), order, new, rest + 1, 1, zpp.State(size[0]))


def test_other_threads_run_during_a_call():
    """With a switch interval of an hour nobody takes the interpreter's lock away: another thread runs because it is released."""
    entered, left, seen = threading.Event(), threading.Event(), []
    source, target = np.ones(30000, s16), np.zeros(30000, s32)

    def call():
        entered.set()
        zpp.zppsConvPartial_16s32s(source, source, target, len(source))  # some hundred milliseconds
        left.set()

    before = sys.getswitchinterval()
    sys.setswitchinterval(3600)
    try:
        thread = threading.Thread(target=call)
        thread.start()
        entered.wait()
        seen.append(left.is_set())
    finally:
        sys.setswitchinterval(before)
    thread.join()
    assert seen == [False]
