#!/usr/bin/env python3
"""Builds the reference documentation: build.py SOURCE TARGET. Any warning, gap or dead link is an error."""
import html
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml

import generate
import pages


def fail(messages):
    print('\n'.join(messages), file=sys.stderr)
    sys.exit(f'{len(messages)} problems in the reference documentation')


def run_doxygen(source, target, inputs):
    version = re.search(r'project\(zppsc VERSION ([\d.]+)', (source / 'CMakeLists.txt').read_text()).group(1)
    text = (source / 'docs/reference/Doxyfile.in').read_text()
    for key, value in {'INPUT': inputs, 'OUTPUT': target, 'VERSION': version, 'STYLE': source / 'docs/reference/style.css'}.items():
        text = text.replace(f'@{key}@', str(value))
    (target / 'Doxyfile').write_text(text)
    done = subprocess.run(['doxygen', target / 'Doxyfile'], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    messages = [line for line in done.stdout.splitlines() if line.strip()]
    if messages or done.returncode:
        fail(messages or [f'doxygen: exit status {done.returncode}'])


def addresses(tag_file):
    """{function: file#anchor}"""
    return {m.findtext('name'): m.findtext('anchorfile') + '#' + m.findtext('anchor')
            for m in xml.parse(tag_file).iter('member') if m.get('kind') == 'function'}


def link(folder, where):
    """Puts the address of a function in the place of "ref:name", as diagrams have it."""
    dead = []

    def address(match):
        if match.group(1) not in where:
            dead.append(f'no page of {match.group(1)}')
        return f'href="{where.get(match.group(1), "")}"'
    for path in folder.glob('*.html'):
        text = path.read_text()
        if 'href="ref:' in text:
            path.write_text(re.sub(r'(?:xlink:)?href="ref:(\w+)"', address, text))
    return dead


def dead_links(folder):
    """Links within the documentation that lead nowhere."""
    anchors, dead = {}, []
    for path in folder.glob('*.html'):
        anchors[path.name] = set(re.findall(r'\b(?:id|name)="([^"]+)"', path.read_text()))
    for path in folder.glob('*.html'):
        for target in set(re.findall(r'href="([^"]+)"', path.read_text())):
            if re.match(r'[a-z]+:', target):
                continue
            name, _, anchor = html.unescape(target).partition('#')
            name = name or path.name
            if not (folder / name).exists() or anchor and name in anchors and anchor not in anchors[name]:
                dead.append(f'{path.name}: {target} leads nowhere')
    return dead


def main():
    source, target = (pathlib.Path(a).resolve() for a in sys.argv[1:3])
    inputs = target / 'input'
    for old in (inputs, target / 'html'):
        shutil.rmtree(old, ignore_errors=True)
    target.mkdir(parents=True, exist_ok=True)
    _, library = generate.write_headers(source, inputs)
    problems = list(library.problems) + pages.write(source, inputs)
    if problems:
        fail(problems)
    run_doxygen(source, target, inputs)
    for chart in (source / 'docs/performance').glob('*.svg'):
        shutil.copy(chart, target / 'html')
    where = addresses(target / 'zppsc.tag')
    exported = [*(source / 'tests/library/exports.txt').read_text().split(), *library.by_name]
    problems = [f'{name}: not documented' for name in exported if name not in where]
    problems += link(target / 'html', where) + dead_links(target / 'html')
    if problems:
        fail(problems)
    print(f'{len(where)} functions, {len(list((target / "html").glob("*.html")))} pages: {target}/html/index.html')


if __name__ == '__main__':
    main()
