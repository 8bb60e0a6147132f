import pathlib

import pytest
from conftest import ROOT, thorough
from golden import Replay, cases

VECTORS = ROOT / "tests" / "vectors"


@pytest.mark.parametrize("room", sorted(p.name for p in VECTORS.iterdir() if any(p.glob("*.vec"))))
def test_primitives_give_the_bits_of_the_golden_vectors(rows, room):
    replayed, functions = 0, set()
    for path in sorted(pathlib.Path(VECTORS / room).glob("*.vec")):
        function = path.name.split(".")[0]
        for case in cases(path, 0 if thorough() else 3):
            replay = Replay(rows[function], case)
            assert replay.difference() == "", f"{path.name}: {case['label']}"
            replayed += 1
            functions.add(function)
    assert replayed
    print(f"{room}: {replayed} cases of {len(functions)} functions")
