"""Turns what headers.py has read into comments for Doxygen, with a table of parameters and one of statuses a function."""
import html
import re

import headers

STATUS_VALUES = {'zppStsOk': 0, 'zppStsBadArgument': -5, 'zppStsBadSize': -6, 'zppStsOutOfRange': -7, 'zppStsNullPointer': -8,
                 'zppStsBadCodedParam': -11, 'zppStsOutOfDomain': -12, 'zppStsBadScale': -13, 'zppStsShiftErr': -32,
                 'zppStsLpcCalcErr': -117, 'zppStsOverflowWarn': 12, 'zppStsLSFLowClamped': 13, 'zppStsLSFHighClamped': 14,
                 'zppStsLSFBothClamped': 15}
STATUS_NAMES = {value: name for name, value in STATUS_VALUES.items()}
# What these names mean everywhere
USUAL = {'src': 'input', 'src1': 'first input', 'src2': 'second input', 'dst': 'result', 'srcDst': 'input, replaced by the result',
         'len': 'number of elements', 'size': 'receives the bytes that a state block needs',
         'state': 'state block of the stream, at any alignment', 'scaleFactor': 'see the text', 'value': 'see the text',
         'encoder': 'a stream that is being coded', 'decoder': 'a stream that is being decoded'}
# Parameters in lower case that are no English words
WORDS = {'src', 'dst', 'len', 'exc', 'coef', 'lsf', 'lsp', 'lpc', 'isf', 'isp', 'qp', 'idx', 'refl', 'lar', 'wsp', 'mem', 'hist', 'sid', 'pcm'}
LENGTHS = ('len', 'lenDst', 'order', 'lags', 'lenNew', 'count')
SYMBOLS = 'len|order|lenNew|lenDst|lags|maxLag|tMax - tMin|n'  # of which extents are made
ELEMENTS = 'values?|samples|words|lags|codes?|elements|autocorr|coefficients|predictor|blocks|newest|reflection'
NUMBERS = {1: 'one', 2: 'two', 3: 'three', 4: 'four', 8: 'eight', 10: 'ten', 16: 'sixteen'}
AS_ABOVE = re.compile(r'(?:\w+,? )?as (?:above|there|before|told above)\b')
ABOVE = re.compile(r'\babove\b|\b[Tt]he same\b|^As |^The (?:in-place|Annex A|full-rate|harmonic|two|matri)|^Both ', re.M)


class Problems(list):
    def add(self, function, text):
        self.append(f'{function.name}: {text}')


class Contract:
    """The list that tests/exports proves: directions, extents, null pointers allowed, values refused."""

    def __init__(self, path):
        self.rows = {}
        for line in path.read_text().splitlines():
            name, checks, status, *arguments = line.split('\t')
            self.rows[name] = (checks == '1', int(status), [self.argument(a) for a in arguments])

    @staticmethod
    def argument(text):
        role, element, _, history, count, null, value, length_of, _, _, _, refused = text.split(':')
        return {'role': role, 'element': element, 'history': int(history), 'count': int(count), 'null': null == '1',
                'value': float(value), 'length_of': length_of, 'refused': [int(r) for r in refused.split(',') if r]}


class Formatter:
    def __init__(self, functions, constants):
        self.functions, self.constants = functions, constants
        self.token = re.compile(r'_?zpp[sc]+[A-Z]\w*|zppSts\w+|ZPPC?_[A-Z]\w+|\*?\b[A-Za-z]\w*\[[^\]]*\]|\*[A-Za-z]\w*\b(?!\*)|\b[\w]+\b|.', re.S)

    def __call__(self, text, names=()):
        def one(match):
            word = match.group()
            if word in self.functions or word in self.constants:
                return f'@ref {word} "{word}"'
            bare = word.lstrip('*').split('[')[0]
            if word != '*' and (bare != word or bare in names and (bare in WORDS or not bare.isalpha() or bare != bare.lower())):
                return f'<code>{html.escape(word)}</code>'
            return html.escape(word, quote=False) if word not in '\\@#%' else '\\' + word
        return self.token.sub(one, text).replace('::', '\\::')


def inherited(function, name, depth=8):
    """Text of a parameter from the comments before, where this one refers to them."""
    while function.before is not None and depth:
        words = ' '.join(function.comment.lines)
        if not ABOVE.search(words):
            return None
        function, depth = function.before, depth - 1
        text = next((s.texts[name] for s in function.siblings if name in s.texts), None)
        if text and not AS_ABOVE.match(text):
            return text
    return None


def mention(function, name):
    for statement in function.description + list(function.texts.values()):
        for sentence in headers.sentences(statement):
            if re.search(r'(?<![\w])\*?%s\b' % name, sentence):
                return sentence.rstrip('.')
    return None


def meaning(function, name, section_texts):
    """What a parameter is; and whether a statement of its own says so."""
    text = function.texts.get(name)
    if text:
        above = inherited(function, name) if AS_ABOVE.match(text) else None
        general = section_texts.get(name, '')
        if above and above not in text:
            text = f'{text.rstrip(".")} ({above.rstrip(".")})'
        elif general and not re.search(r'\d', text) and re.search(r'\d', general):
            text = f'{text.rstrip(".")}; {general.rstrip(".")}'
        return text, True
    text = inherited(function, name) or section_texts.get(name)
    if text:
        return text, True
    if name in ('src', 'src1', 'src2', 'dst', 'srcDst', 'len', 'size', 'state', 'scaleFactor'):
        return USUAL[name], False
    return mention(function, name) or USUAL.get(name), False


def q_format(kind, text):
    if 'Zpp32f' in kind:
        return 'float'
    found = list(dict.fromkeys(re.findall(r'\bQ-?\d+\b', text)))
    return ', '.join(found[:3])


def direction(kind, name, argument, text):
    if '*' not in kind:
        return 'in'
    if 'const' in kind:
        return 'in'
    if kind.startswith('Zppc'):
        return 'in, out'
    # The contract run keeps what a warning leaves alone.
    if argument and argument['role'] == 'inout' and (
            re.match(r'out\b', text) or name in ('dst', 'norm', 'max', 'lag', 'maxLagOut', 'rc1') and not re.search(r'\bin\b|before|past', text)):
        return 'out'
    return {'in': 'in', 'out': 'out', 'inout': 'in, out'}.get(argument['role'], 'out') if argument else 'out'


def extent(function, index, arguments, text):
    """Elements from the pointer on, and those before it."""
    kind, name = function.parameters[index]
    argument = arguments[index]
    if kind.startswith(('void', 'const void')):
        sizes = [f for f in function.section.functions if 'Size_' in f.name]
        return 'as told by the size query' if sizes and len(sizes[0].parameters) > 1 else f'{argument["count"]} bytes'
    shown = str(argument['count'])
    leading = re.match(r'(?:out, |in, )?(?:the )?((?:\d+ \* )?(?:%s)(?: [-+*/] (?:\d+|%s))*)(?:[,.;]|$| \(?(?:%s))' % (SYMBOLS, SYMBOLS, ELEMENTS), text)
    if leading:
        shown = leading.group(1)
    elif not re.search(r'\b%d\b|\b%s\b' % (argument['count'], NUMBERS.get(argument['count'], '0')), text):
        for other, (_, length) in zip(arguments, function.parameters):
            if other['role'] != 'value' or length not in LENGTHS:
                continue
            accepted = other['value']
            if other['length_of']:
                accepted = next((a['count'] for a, (_, n) in zip(arguments, function.parameters) if n == other['length_of']),
                                next(a['count'] for a in arguments if a['role'] != 'value'))
            if argument['count'] > 1 and argument['count'] in (accepted, accepted + 1):
                shown = length if argument['count'] == accepted else length + ' + 1'
                break
    if argument['history']:
        shown += f'; {argument["history"]} before'
    return shown


def statuses(function, contract_row, functions, defaults):
    """{status: (arguments, when)}"""
    checks, accepted, arguments = contract_row
    found = {'zppStsOk': ([], '')}
    parameters = [n for _, n in function.parameters]
    if checks:
        pointers = [n for (t, n), a in zip(function.parameters, arguments) if '*' in t and not a['null']]
        if pointers:
            found['zppStsNullPointer'] = (pointers, 'a null pointer')
        for name, argument in zip(parameters, arguments):
            for value in argument['refused']:
                found.setdefault(STATUS_NAMES[value], ([], ''))[0].append(name)
    if accepted:
        found.setdefault(STATUS_NAMES[accepted], ([], ''))
    text = ' '.join(' '.join(function.comment.lines).split())
    sibling_refusals = {STATUS_NAMES[v] for s in function.siblings for a in functions.contract.rows[s.name][2] for v in a['refused']}
    for match in re.finditer(headers.STATUS, text):
        name = match.group()
        before = text[:match.start()]
        own = re.search(r'(_\w+): $', before)
        if own and not function.name.endswith(own.group(1)):
            continue
        sentence = re.split(r'(?<=[.;]) ', before)[-1]
        named = [s.name for s in function.siblings if s.name in sentence]
        if named and function.name not in named:
            continue
        if len(function.siblings) > 1 and name in sibling_refusals and name not in found:
            continue
        if re.search(r'without $', before):
            continue
        after = text[match.end():]
        if re.match(r' when (?:index|size) is|, null', after) and name == 'zppStsOk':
            continue
        when = re.split(r'zppSts\w+|(?<=[.;]) |\.$|Warnings|; others as told|, as told', after)[0]
        when = re.sub(r'^[ ,;]*and ', '', when)
        when = re.sub(r'(?:[,;]? ?(?:then|and|or|also|of|in order))+[ ,;]*$', '', when.strip(' ,;.')).strip(' ,;.()')
        if re.match(r'(?:for|when|unless|where|with|after|written|nothing|whatever|\W)', when) is None and name != 'zppStsOk':
            when = ''
        if name == 'zppStsOk':
            when = ''
        entry = found.setdefault(name, ([], ''))
        if when and not (name == 'zppStsNullPointer'):
            found[name] = (entry[0], when)
    # statuses that the comment takes over from another function
    for other in {m for m in re.findall(r'_?zpps\w+', ' '.join(function.statuses) + (text if 'warnings of' in text else ''))}:
        if other in functions.by_name and other != function.name and re.search(r'[Ss]tatus as|warnings of', text):
            for name, (_, when) in functions.statuses_of(other).items():
                if STATUS_VALUES[name] > 0:
                    found.setdefault(name, ([], when))
    if function.before is not None and re.search(r'[Ss]tatus(?: as|: as) above', text):
        for name, entry in functions.statuses_of(function.before.name).items():
            if name not in found and (STATUS_VALUES[name] > 0 or name == 'zppStsLpcCalcErr'):
                found[name] = ([], entry[1])
            elif name in found and not found[name][1]:
                found[name] = (found[name][0], entry[1])
    return found


class Functions:
    def __init__(self, sections_of, contract, constants, meanings):
        self.contract, self.meanings = contract, meanings
        self.by_name = {f.name: f for sections in sections_of.values() for s in sections for f in s.functions}
        self.format = Formatter(self.by_name, constants)
        self.problems = Problems()
        self.section_texts = {}
        for sections in sections_of.values():
            umbrella = known = {}
            for section in sections:
                if section.blocks:
                    known = {**umbrella, **section.segments()[0]}
                if not section.functions:
                    umbrella = known
                for function in section.functions:
                    self.section_texts[function.name] = known

    def statuses_of(self, name):
        return statuses(self.by_name[name], self.contract.rows[name], self, {})

    def parameter_table(self, function):
        names = {n for s in function.siblings for _, n in s.parameters}
        row = self.contract.rows.get(function.name)
        arguments = row[2] if row else [None] * len(function.parameters)
        if row and len(arguments) != len(function.parameters):
            self.problems.add(function, 'the prototype and contract.tsv disagree')
            return ''
        lines = []
        for i, (kind, name) in enumerate(function.parameters):
            text, own = meaning(function, name, self.section_texts[function.name])
            if not text:
                self.problems.add(function, f'no word about {name}')
                text = ''
            pointer = '*' in kind
            shown = extent(function, i, arguments, text) if pointer and row else ''
            null = ' or null' if row and pointer and arguments[i]['null'] else ''
            cells = [f'<code>{name}</code>', direction(kind, name, arguments[i], text), f'<code>{html.escape(kind)}</code>',
                     shown + null] if row else [f'<code>{name}</code>', direction(kind, name, None, text), f'<code>{html.escape(kind)}</code>']
            if row:
                cells.append(q_format(kind, text) if own else '')
            cells.append(self.format(text.strip().rstrip('.'), names))
            lines.append('<tr>' + ''.join(f'<td>{c}</td>' for c in cells) + '</tr>')
        heads = ['Parameter', 'Direction', 'Type', 'Extent', 'Format', 'Meaning'] if row else ['Parameter', 'Direction', 'Type', 'Meaning']
        return table('arguments', heads, lines)

    def status_table(self, function):
        if function.returns != 'ZppStatus':
            return ''
        names = {n for _, n in function.parameters}
        lines = []
        for name, (arguments, when) in sorted(self.statuses_of(function.name).items(), key=lambda e: (STATUS_VALUES[e[0]] != 0, -abs(STATUS_VALUES[e[0]]) if e[0] == 'zppStsNullPointer' else 0)):
            value = STATUS_VALUES[name]
            kind = 'success' if value == 0 else 'warning' if value > 0 else 'error'
            if name == 'zppStsNullPointer':
                when = 'null pointer: ' + ', '.join(arguments) if arguments else 'null pointer'
            elif arguments and not when:
                when = 'a value of ' + ' or '.join(arguments) + ' that the function does not take'
            elif not when:
                when = self.meanings.get(name, '')
            lines.append(f'<tr class="{kind}"><td>@ref {name} "{name}"</td><td>{value}</td><td>{kind}</td>'
                         f'<td>{self.format(when, names)}</td></tr>')
        return table('statuses', ['Status', 'Value', 'Kind', 'When'], lines)

    def error_table(self, function):
        """Of libzppcodecs."""
        text = ' '.join(' '.join(function.comment.lines).split())
        lines = []
        for match in dict.fromkeys(re.findall(r'ZPPC_ERROR_\w+', text)):
            when = re.search(match + r'((?: for| where)[^.;]*?)(?=[;.,]|$)', text)
            lines.append(f'<tr class="error"><td>@ref {match} "{match}"</td><td>{self.format(when.group(1).strip() if when else "")}</td></tr>')
        return table('statuses', ['Error', 'When'], lines) if lines else ''

    def comment(self, function, group):
        """The whole comment for Doxygen."""
        names = {n for s in function.siblings for _, n in s.parameters}
        description = [d for d in function.description]
        if not description and function.note:
            description = [f'Tells the bytes of a state block: *size = {function.note}.']
        if not description:
            self.problems.add(function, 'no description')
            description = ['']
        first = headers.sentences(description[0]) or ['']
        brief, rest = first[0], [' '.join(first[1:])] + description[1:]
        lines = [f'@ingroup {group}', f'@brief {self.format(brief.rstrip(".:;"), names)}', '']
        lines += [f'<p>{self.format(r, names)}</p>' for r in rest if r]
        if function.note and function.description:
            lines.append(f'<p>Bytes: {html.escape(function.note)}.</p>')
        if function.parameters:
            lines.append(self.parameter_table(function))
        lines.append(self.status_table(function) if function.name in self.contract.rows else self.error_table(function))
        row = self.contract.rows.get(function.name)
        if row and not row[0]:
            lines.append('<p class="aside">An internal step that codecs share: it trusts its arguments.</p>')
        if function.source:
            lines.append('<p class="aside"><b>Source:</b> ' + self.format(' '.join(function.source).rstrip('.')) + '</p>')
        if group:
            lines.append(f'<p class="aside"><b>Conventions:</b> @ref {group}</p>')
        others = [s.name for s in function.siblings if s is not function]
        if others:
            lines.append('<p class="aside"><b>Described together with:</b> ' + ', '.join(f'@ref {o} "{o}"' for o in others) + '</p>')
        if function.before is not None and ABOVE.search(' '.join(function.description + function.statuses + list(function.texts.values()))):
            lines.append(f'<p class="aside"><b>"Above" is:</b> @ref {function.before.name} "{function.before.name}"</p>')
        return '/** ' + '\n'.join(l for l in lines if l is not None) + '\n */\n'


def table(kind, heads, rows):
    """One line, so that Doxygen leaves it alone; in a box that scrolls where the window is narrow."""
    return (f'<div class="scroll"><table class="{kind}"><tr>' + ''.join(f'<th>{h}</th>' for h in heads) + '</tr>' + ''.join(rows) +
            '</table></div>')
