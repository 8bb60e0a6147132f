import pathlib
import re

README = pathlib.Path(__file__).resolve().parents[1] / "README.md"


def test_the_code_of_the_readme_runs(tmp_path, monkeypatch, capsys):
    monkeypatch.chdir(tmp_path)
    blocks = re.findall(r"^```python\n(.*?)^```", README.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
    assert len(blocks) > 5
    names = {}
    for block in blocks:
        exec(compile(block, str(README), "exec"), names)
    printed = capsys.readouterr().out
    assert float(printed.split()[0]) > 10  # dB
    assert "zppsAbs_16s zppStsBadSize" in printed
    assert "10 elements before it are needed" in printed
