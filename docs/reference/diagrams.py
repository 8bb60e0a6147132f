"""Draws block diagrams from a description, by Graphviz, as SVG to be laid into a page.

    diagram encoder: Encoder, once a vector of 5 samples
    in speech: Speech
    out index: Index
    box target: Target | zppsSub_16s zppsTargetNormalize_G728_16s
    group Search: target codebook
    speech -> target -> codebook -> index
    codebook ~> target: what goes back, for the next vector

A box without primitives is the codec's own arithmetic.
"""
import html
import re
import subprocess
from dataclasses import dataclass, field


@dataclass
class Diagram:
    name: str
    title: str
    boxes: dict = field(default_factory=dict)  # name: (kind, title, primitives)
    groups: list = field(default_factory=list)  # (title, boxes)
    edges: list = field(default_factory=list)  # (from, to, label, whether it goes back)

    def primitives(self):
        return [p for _, _, primitives in self.boxes.values() for p in primitives]


def read(path):
    diagrams = []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        line = line.strip()
        if not line or line.startswith('#'):
            continue
        where = f'{path.name}:{number}'
        if match := re.match(r'diagram (\w+): (.+)', line):
            diagrams.append(Diagram(*match.groups()))
            continue
        diagram = diagrams[-1]
        if match := re.match(r'(in|out|box) (\w+): ([^|]+)(?:\|(.*))?$', line):
            diagram.boxes[match[2]] = (match[1], match[3].strip(), (match[4] or '').split())
        elif match := re.match(r'group ([^:]+): (.+)', line):
            diagram.groups.append((match[1], match[2].split()))
        elif '->' in line or '~>' in line:
            chain, _, label = line.partition(':')
            back = '~>' in chain
            names = [n.strip() for n in re.split('[-~]>', chain)]
            for one, other in zip(names, names[1:]):
                for name in (one, other):
                    if name not in diagram.boxes:
                        raise SystemExit(f'{where}: no box {name}')
                diagram.edges.append((one, other, label.strip(), back))
        else:
            raise SystemExit(f'{where}: {line}')
    return diagrams


def box(name, kind, title, primitives):
    if kind != 'box':
        return f'"{name}" [shape=plaintext class="end" label="{title}"];'
    title = '<BR/>'.join(html.escape(t) for t in title.split('\\n'))
    rows = f'<TR><TD ALIGN="CENTER">{title}</TD></TR>'
    rows += ''.join(f'<TR><TD ALIGN="LEFT" HREF="ref:{p}" TOOLTIP="{p}"><FONT POINT-SIZE="9">{p}</FONT></TD></TR>' for p in primitives)
    return (f'"{name}" [shape=box class="{"primitive" if primitives else "own"}" margin="0.06,0.03" '
            f'label=<<TABLE BORDER="0" CELLBORDER="0" CELLSPACING="0" CELLPADDING="2">{rows}</TABLE>>];')


def svg(diagram):
    grouped = {n for _, names in diagram.groups for n in names}
    lines = ['digraph {', 'rankdir=TB; nodesep=0.22; ranksep=0.3; bgcolor=transparent; fontname="DejaVu Sans"; fontsize=11;',
             'node [fontname="DejaVu Sans" fontsize=11 height=0.3]; edge [fontname="DejaVu Sans" fontsize=9 arrowsize=0.6];']
    for i, (title, names) in enumerate(diagram.groups):
        lines.append(f'subgraph cluster_{i} {{ label="{title}"; labeljust=l; class="step"; style=rounded;')
        lines += [box(n, *diagram.boxes[n]) for n in names]
        lines.append('}')
    lines += [box(n, *b) for n, b in diagram.boxes.items() if n not in grouped]
    for a, b, label, back in diagram.edges:
        options = ([f'label="{label}"'] if label else []) + (['constraint=false', 'class="back"', 'style=dashed'] if back else [])
        lines.append(f'"{a}" -> "{b}" [{" ".join(options)}];')
    lines.append('}')
    drawn = subprocess.run(['dot', '-Tsvg'], input='\n'.join(lines), capture_output=True, text=True, check=True)
    if drawn.stderr.strip():
        raise SystemExit(drawn.stderr)
    text = drawn.stdout[drawn.stdout.index('<svg'):]
    text = re.sub(r'<!--.*?-->\n?', '', text)
    text = re.sub(r'<title>.*?</title>\n?', '', text)
    text = re.sub(r' id="[^"]*"', '', text)  # several diagrams share a page
    text = re.sub(r' (?:fill|stroke|font-family|xmlns|xmlns:xlink)="[^"]*"', '', text)  # the stylesheet's business
    text = text.replace('xlink:title', 'title').replace('<svg ', f'<svg class="diagram" role="img" aria-label="{html.escape(diagram.title)}" ', 1)
    return text.strip().replace('\n', ' ')
