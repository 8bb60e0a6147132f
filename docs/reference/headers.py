"""Reads the public headers: their sections, and each function with its comment taken apart.

The convention is the one that the headers are written in anyway. A line "/* ---- Title ---- */" opens a section; text below the
title holds for all of its functions. The comment before one or more prototypes says what they do; "name: ..." or "name, other: ..."
describes parameters, "Status: ..." what is returned when, "Source: ..." the standard's clause.
"""
import re
from dataclasses import dataclass, field

TITLE = re.compile(r'-{4}\s*(.+?)\s*-{4,}\s*')
STATUS = re.compile(r'\b(?:zppSts|ZPPC_ERROR_)\w+')


def sentences(text):
    return [s for s in re.split(r'(?<=[.!])\s+(?=[A-Z*_"(]|dst|src)', text) if s]


@dataclass
class Block:
    """A paragraph, list or table of a comment."""
    kind: str  # 'text', 'list', 'verbatim'
    lines: list


@dataclass
class Section:
    title: str
    blocks: list
    parent: 'Section' = None
    functions: list = field(default_factory=list)

    def segments(self):
        texts, rest = parameter_texts([' '.join(i.split()) for b in self.blocks if b.kind == 'text' for i in items(b)], None)
        texts = {name: sentences(text)[0] for name, text in texts.items() if text}  # what follows is about something else
        listed, _ = parameter_texts([' '.join(i.split()) for b in self.blocks if b.kind == 'list' for i in items(b)], None)
        return {**texts, **listed}, rest


@dataclass
class Comment:
    lines: list

    def blocks(self):
        blocks, current = [], []
        for line in self.lines + ['']:
            if line.strip():
                current.append(line)
            elif current:
                blocks.append(block_of(current))
                current = []
        return blocks


@dataclass
class Function:
    name: str
    returns: str
    parameters: list  # (type, name)
    prototype: str
    comment: Comment
    section: Section
    note: str = ''  # behind the prototype
    siblings: list = field(default_factory=list)  # functions of the same comment
    before: 'Function' = None  # the last function of the comment before
    description: list = field(default_factory=list)
    texts: dict = field(default_factory=dict)  # parameter: what its comment says
    source: list = field(default_factory=list)
    statuses: list = field(default_factory=list)  # (name, when)


def block_of(lines):
    if all(line.startswith('  ') for line in lines):
        return Block('verbatim', lines)
    return Block('list' if lines[0].startswith('- ') else 'text', lines)


def items(block):
    """The entries of a list, the lines of text that begin a statement."""
    result = []
    for line in block.lines:
        begins = line.startswith('- ') if block.kind == 'list' else not line.startswith(' ') and (
            not result or re.search(r'\.\)?$', result[-1]))
        if begins or not result:
            result.append(line.removeprefix('- '))
        else:
            result[-1] += ' ' + line.strip()
    return result


def comment_lines(text):
    body = re.sub(r'^/\*+ ?|\s*\*/$', '', text, flags=re.S)
    lines = [re.sub(r'^ \* ?', '', line).rstrip() for line in body.split('\n')]
    return lines


def parameter_texts(statements, names):
    """{parameter: text} of statements "name, other: text; third: text", and the statements that are none. names: the parameters
    to look for; None: whatever stands in that place."""
    name = r'\*?(?:%s)' % ('|'.join(sorted(map(re.escape, names), key=len, reverse=True)) if names else r'[a-z]\w*')
    item = name + r'(?:\s*\([^)]*\))?'
    opening = re.compile(r'(?:(?<=[.;,)])\s|^)(%s(?:(?:,| and|, and) %s)*):(?=\s)' % (item, item))
    texts, rest = {}, []
    for statement in statements:
        found = list(opening.finditer(statement))
        if not names:
            found = [f for f in found if f.group(1) not in ('out', 'in', 'others')]
        head = statement[:found[0].start()].strip() if found else statement
        if head:
            rest.append(head)
        for i, match in enumerate(found):
            end = found[i + 1].start() if i + 1 < len(found) else len(statement)
            text = statement[match.end():end].strip().rstrip(';,')
            for one in re.finditer(r'\*?([A-Za-z]\w*)(\s*\([^)]*\))?', match.group(1)):
                if names is None or one.group(1) in names:
                    extent = one.group(2).strip(' ()') + ', ' if one.group(2) else ''
                    texts.setdefault(one.group(1), extent + text)
    return texts, rest


def take_apart(function, names):
    """Description, parameters, statuses and source of a function from its comment."""
    statements = [s for block in function.comment.blocks() for s in items(block)]
    plain = []
    for statement in statements:
        statement = ' '.join(statement.split())
        # "Status: ...", "Source: ..." and "Clause ..." may follow in the same line
        parts = re.split(r'(?:(?<=[.;])\s|^)(?=(?:Status\b|Source:|Clause \w|Returns zppSts|Errors?[:,]|Errors also))', statement)
        for part in parts:
            if re.match(r'Status|Returns zppSts|Errors', part):
                tail = re.search(r'(?<=\.)\s(?=(?!Warnings|The |A null|Whether)[A-Z][a-z]+ )', part)
                function.statuses.append(part)
                if tail and not STATUS.search(part[tail.end():]):
                    function.statuses[-1] = part[:tail.start()]
                    plain.append(part[tail.end():])
            elif re.match(r'Source:|Clause \w', part):
                function.source.append(part.removeprefix('Source:').strip())
            elif part:
                plain.append(part)
    function.texts, function.description = parameter_texts(plain, names)


def read(path):
    """Sections of a header with their functions, in order."""
    text = path.read_text()
    text = text[text.index('extern "C" {'):]
    token = re.compile(r'/\*.*?\*/|^(?:ZPPAPI|ZPPCAPI)\s[^;]*;(?:[ ]*/\*[^\n]*?\*/)?', re.S | re.M)
    sections, section, comment, group, before = [], None, None, [], None
    for match in token.finditer(text):
        piece = match.group()
        if piece.startswith('/*'):
            lines = comment_lines(piece)
            title = TITLE.match(lines[0])
            if title:
                section = Section(title.group(1), Comment(lines[1:]).blocks())
                sections.append(section)
                comment, group, before = None, [], None
            else:
                if group:
                    before = group[-1]
                elif comment and section:  # one that no prototype follows holds for the section
                    section.blocks += comment.blocks()
                comment, group = Comment(lines), []
            continue
        prototype, _, note = piece.partition(';')
        parts = re.fullmatch(r'(?:ZPPAPI|ZPPCAPI)\s+(.*?[\s*])(\w+)\((.*)\)', ' '.join(prototype.split()))
        parameters = [] if parts[3] == 'void' else [
            re.fullmatch(r'(.*?[\s*])(\w+)', p.strip()).groups() for p in parts[3].split(',')]
        if section is None:
            section = Section('', [])
            sections.append(section)
        function = Function(parts[2], parts[1].strip(), [(t.strip(), n) for t, n in parameters], ' '.join(prototype.split()),
                            comment or Comment([]), section, note.strip(' /*'))
        function.before = before
        group.append(function)
        for one in group:
            one.siblings = group
        section.functions.append(function)
    for section in sections:
        for function in section.functions:
            take_apart(function, {n for s in function.siblings for _, n in s.parameters})
    return sections
