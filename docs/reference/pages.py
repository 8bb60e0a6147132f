"""Copies the pages and fills in what is generated: diagrams, tables of steps, payloads, framings, conformance."""
import html
import re

import diagrams
import functions


def primitives_used(folder):
    """The primitives that a codec's room calls, apart from those that only prepare a state."""
    found = set()
    for path in folder.rglob('*'):
        if path.suffix in ('.cpp', '.h'):
            found |= set(re.findall(r'\b_?zpps[A-Z]\w+', path.read_text()))
    return {f for f in found if not re.search(r'Init_|Init\b|GetStateSize|GetSize|Reset_', f)}


def figure(drawing):
    return ('\\htmlonly <div class="scroll figure">' + diagrams.svg(drawing) + '</div> \\endhtmlonly')


def steps(drawing, library):
    rows = []
    for kind, title, primitives in drawing.boxes.values():
        if kind == 'box' and primitives:
            cells = '<br/>'.join(f'@ref {p} "{p}"' for p in primitives)
            rows.append(f'<tr><td>{html.escape(title.replace(chr(92) + "n", " "))}</td><td>{cells}</td></tr>')
    return functions.table('page', ['Step', 'Primitives'], rows)


def payload(source, names):
    """Rows of the table in zppcodecs.h."""
    text = (source / 'include/zppcodecs.h').read_text()
    rows = re.findall(r'^ \*   (\S.*?)   +(\S.*(?:\n \*   {10,}\S.*)*)', text, re.M)
    lines = []
    for heading, body in rows:
        if set(heading.split(', ')) & set(names):
            body = ' '.join(re.sub(r'^ \*', '', line).strip() for line in body.split('\n'))
            lines.append(f'<tr><td><code>{heading}</code></td><td>{html.escape(body)}</td></tr>')
    return functions.table('page', ['Codec', 'Payload of a frame'], lines)


def framings(source, names):
    """Rows of the table in zppcodec.md."""
    lines, inside = [], False
    for line in (source / 'docs/zppcodec.md').read_text().splitlines():
        cells = [c.strip() for c in line.strip('|').split('|')] if line.startswith('|') else []
        if len(cells) != 3 or cells[0] in ('Codec',) or cells[0].startswith('---'):
            continue
        if cells[0] and not cells[0].startswith('all '):
            inside = any(re.match(r'%s(?![\w.])' % re.escape(n), c) for n in names for c in re.findall(r'`([^`]+)`', cells[0]))
        if inside:
            lines.append('<tr>' + ''.join('<td>' + re.sub(r'`([^`]+)`', r'<code>\1</code>', html.escape(c)) + '</td>' for c in cells) + '</tr>')
    return functions.table('page', ['Codec', 'Framing', 'Bytes'], lines)


def conformance(source, codec):
    """Of docs/conformance.tsv, which scripts/conformance writes."""
    lines, passed = [], 0
    rows = [line.split('\t') for line in (source / 'docs/conformance.tsv').read_text().splitlines()[1:]]
    rows = [r for r in rows if r[0] == codec]
    if not rows:
        raise SystemExit(f'docs/conformance.tsv: nothing about {codec}')
    for _, standard, test, reference, bits32, bits64 in rows:
        passed += bits32 == bits64 == 'passed'
        lines.append(f'<tr><td>{html.escape(standard)}</td><td>{html.escape(test)}</td><td><code>{html.escape(reference)}</code></td>' +
                     ''.join(f'<td class="{b.split()[0]}">{b}</td>' for b in (bits32, bits64)) + '</tr>')
    return (f'<p>{passed} of {len(rows)} comparisons pass in both word sizes: every byte equal.</p>' +
            functions.table('page', ['Sequences', 'Step', 'Expected file', '32 bit', '64 bit'], lines))


def write(source, inputs, library):
    """Writes all pages; returns problems."""
    problems = []
    target = inputs / 'pages'
    target.mkdir(parents=True, exist_ok=True)
    for path in sorted((source / 'docs/pages').glob('*.md')):
        (target / path.name).write_text(path.read_text())
    for path in sorted((source / 'docs/codecs').glob('*.md')):
        codec = path.stem
        drawings = {d.name: d for d in diagrams.read(path.with_suffix('.diagram'))}
        text = path.read_text()
        drawn = {p for d in drawings.values() for p in d.primitives()}
        used = primitives_used(source / 'codecs' / codec)
        problems += [f'{codec}.diagram: {p} is not called in codecs/{codec}' for p in sorted(drawn - used)]
        problems += [f'{codec}.diagram: {p}, called in codecs/{codec}, is in no box' for p in sorted(used - drawn)]
        for name, drawing in drawings.items():
            if f'[[diagram {name}]]' not in text:
                problems.append(f'{codec}.md: no [[diagram {name}]]')
            text = text.replace(f'[[diagram {name}]]', figure(drawing)).replace(f'[[steps {name}]]', steps(drawing, library))
        text = re.sub(r'\[\[payload (.*?)\]\]', lambda m: payload(source, m[1].split()), text)
        text = re.sub(r'\[\[framings (.*?)\]\]', lambda m: framings(source, m[1].split()), text)
        text = re.sub(r'\[\[conformance\]\]', lambda _: conformance(source, codec), text)
        problems += [f'{path.name}: {left} is not known' for left in re.findall(r'\[\[[^\]]*\]\]', text)]
        (target / f'codec_{path.name}').write_text(text)
    program = (source / 'docs/zppcodec.md').read_text()
    (target / 'zppcodec.md').write_text(re.sub(r'^# zppcodec', '# The program zppcodec {#zppcodec}', program))
    return problems
