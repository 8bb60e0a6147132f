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


def folded(title, content):
    return f'\\htmlonly <details><summary>{title}</summary> \\endhtmlonly {content} \\htmlonly </details> \\endhtmlonly'


def figure(drawing):
    return ('\\htmlonly <div class="scroll figure">' + diagrams.svg(drawing) + '</div> \\endhtmlonly\n' + folded('The same as a table', steps(drawing)))


def steps(drawing):
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
            lines.append(f'<tr><td><code>{heading}</code></td><td>{html.escape(body, quote=False)}</td></tr>')
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
            lines.append('<tr>' + ''.join('<td>' + re.sub(r'`([^`]+)`', r'<code>\1</code>', html.escape(c, quote=False)) + '</td>' for c in cells) + '</tr>')
    return functions.table('page', ['Codec', 'Framing', 'Bytes'], lines)


def conformance(source, codec):
    """Of docs/conformance.tsv, which scripts/conformance writes."""
    rows = [line.split('\t')[1:] for line in (source / 'docs/conformance.tsv').read_text().splitlines() if line.startswith(codec + '\t')]
    if not rows:
        raise SystemExit(f'docs/conformance.tsv: nothing about {codec}')
    text = ('<p>`scripts/conformance` runs the program of both word sizes on the sequences and compares every byte. Sequences are those distributed with the '
            'standard; further streams were made with the standard\'s own program.</p>')
    for kind, title in (('official', 'official sequences'), ('further', 'further streams')):
        chosen = [r for r in rows if r[0] == kind]
        if not chosen:
            continue
        passed = sum(r[3] == r[4] == 'passed' for r in chosen)
        lines = [f'<tr><td>{html.escape(test, quote=False)}</td><td><code>{html.escape(expected, quote=False)}</code></td>' +
                 ''.join(f'<td class="{b}">{b}</td>' for b in (bits32, bits64)) + '</tr>' for _, test, expected, bits32, bits64 in chosen]
        listing = functions.table('page', ['Test', 'Expected file', '32 bit', '64 bit'], lines)
        text += (f'<p><b>{passed} of {len(chosen)} {title} pass in both word sizes.</b></p>' +
                 (listing if kind == 'official' else folded('The further streams', listing)))
    return text.replace('`scripts/conformance`', '<code>scripts/conformance</code>')


# ---- Processor levels, costs --------------------------------------------------------------------------------------------------------

LEVELS = {'px': 'portable code only', 'a6': 'SSE', 'w7': 'SSE2', 't7': 'SSE3', 'v3': 'AVX2 (x86-64-v3)'}


def kernels(source):
    """[(room, kernel, levels)] of the lists in kernels.h."""
    found = []
    for path in sorted((source / 'src').rglob('kernels.h')):
        for name, variants in re.findall(r'KERNEL\((own\w+),\s*((?:[A-Z]\d_?)+),', path.read_text()):
            found.append((path.parent.relative_to(source / 'src').parts[0], name, variants.lower().split('_')))
    return found


def levels(source):
    known = re.search(r'set\(ZPPSC_LEVELS (.*?)\)', (source / 'cmake/ProcessorLevel.cmake').read_text()).group(1).split()
    rows = kernels(source)
    default = re.search(r'set\(_default (?!px)(\w+)\)', (source / 'cmake/ProcessorLevel.cmake').read_text()).group(1)
    lines = [f'<tr><td><code>{level}</code></td><td>{LEVELS[level]}</td><td class="number">{sum(level in v for _, _, v in rows) or ""}</td>'
             f'<td><code>x86-{level}</code>, <code>x64-{level}</code>' + (f'; <code>x86</code>, <code>x64</code>' if level == default else '') + '</td></tr>'
             for level in known]
    return functions.table('page', ['Level', 'Needs', 'Kernels of its own', 'Presets'], lines)


def variants(source):
    rooms = {}
    for room, name, of in kernels(source):
        for level in of:
            rooms.setdefault(room, {}).setdefault(level, []).append(name)
    lines = [f'<tr><td>{room}</td><td><code>{level}</code></td><td>{", ".join(n[3:] for n in names)}</td></tr>'
             for room, of in sorted(rooms.items()) for level, names in sorted(of.items())]
    return functions.table('page', ['Room', 'Level', 'Kernels'], lines)


def instructions(source):
    """Of tests/budgets/budgets.tsv: instructions a frame in both word sizes."""
    path = source / 'tests/budgets/budgets.tsv'
    rows = [line.split('\t') for line in path.read_text().splitlines()[2:]] if path.exists() else []
    table = {}
    for name, *cells in rows:
        codec, _, direction = name.partition(' ')
        if direction in ('encode', 'decode'):
            table.setdefault(codec, {})[direction] = cells
    if not table:
        return 'This tree has no counts.'
    lines = [f'<tr><td><code>{codec}</code></td>' + ''.join(f'<td class="number">{c}</td>' for d in ('encode', 'decode') for c in of.get(d, ['', ''])) +
             '</tr>' for codec, of in table.items()]
    return functions.table('page', ['Codec', 'Encoding, 32 bit', '64 bit', 'Decoding, 32 bit', '64 bit'], lines)


def measurements(source):
    """{page: file}: docs/performance.md and docs/performance/, which scripts/benchmark writes, where they are."""
    files = [f for f in [source / 'docs/performance.md', *sorted((source / 'docs/performance').glob('*.md'))] if f.exists()]
    return {'performance_' + re.sub(r'\W', '_', f.parent.name + '_' + f.stem): f for f in files}


def measured(source):
    lines = [f'- @subpage {name}' for name in measurements(source)]
    return '## Measurements\n\n' + '\n'.join(lines) if lines else ''


def adapted(path, name):
    """A page that is written for readers of the repository: its charts, and its links to other such pages."""
    text = re.sub(r'!\[([^\]]*)\]\(([^)/]+\.svg)\)', r'\\htmlonly <div class="scroll"><img class="chart" alt="\1" src="\2"/></div> \\endhtmlonly', path.read_text())
    text = re.sub(r'\[([^\]]*)\]\([^)]*\bperformance\.md\)', r'@ref performance "\1"', text)
    text = re.sub(r'\[([^\]]*)\]\((?!http)[^)]*\)', r'\1', text)
    return re.sub(r'^# (.+)$', r'# \1 {#%s}' % name, text, count=1, flags=re.M)


def write(source, inputs):
    """Writes all pages; returns problems."""
    problems = []
    target = inputs / 'pages'
    target.mkdir(parents=True, exist_ok=True)
    fill = {'levels': lambda: levels(source), 'variants': lambda: variants(source), 'instructions': lambda: instructions(source),
            'performance': lambda: measured(source)}
    for path in sorted((source / 'docs/pages').glob('*.md')):
        (target / path.name).write_text(re.sub(r'\[\[(\w+)\]\]', lambda m: fill[m[1]](), path.read_text()))
    for name, path in measurements(source).items():
        (target / f'{name}.md').write_text(adapted(path, name))
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
            text = text.replace(f'[[diagram {name}]]', figure(drawing))
        text = re.sub(r'\[\[payload (.*?)\]\]', lambda m: payload(source, m[1].split()), text)
        text = re.sub(r'\[\[framings (.*?)\]\]', lambda m: framings(source, m[1].split()), text)
        text = re.sub(r'\[\[conformance\]\]', lambda _: conformance(source, codec), text)
        problems += [f'{path.name}: {left} is not known' for left in re.findall(r'\[\[[^\]]*\]\]', text)]
        (target / f'codec_{path.name}').write_text(text)
    program = (source / 'docs/zppcodec.md').read_text()
    (target / 'zppcodec.md').write_text(re.sub(r'^# zppcodec', '# The program zppcodec {#zppcodec}', program))
    return problems
