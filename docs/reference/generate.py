"""Writes what Doxygen reads: annotated copies of the public headers, and the pages with their diagrams and tables filled in."""
import re

import functions
import headers

# Header, group, title
CODECS = [('core', 'vectors', 'Vector primitives'), ('lpc', 'lpc', 'Linear prediction shared by codecs'), ('g711', 'g711', 'G.711'),
          ('g726', 'g726', 'G.726'), ('g7221', 'g7221', 'G.722.1'), ('g723', 'g723', 'G.723.1'), ('g728', 'g728', 'G.728'),
          ('g729', 'g729', 'G.729'), ('gsmfr', 'gsmfr', 'GSM full rate'), ('amr', 'amr', 'GSM-AMR'), ('amrwb', 'amrwb', 'AMR-WB')]


def constants(include):
    text = (include / 'zppsc/types.h').read_text() + (include / 'zppcodecs.h').read_text()
    return set(re.findall(r'^\s+((?:zppSts|ZPP_RATE_|ZPPC_)\w+) = ', text, re.M))


def meanings(include):
    """{status: what it means in general}"""
    return dict(re.findall(r'^  (zppSts\w+) = -?\d+,? +/\* (.*?) \*/', (include / 'zppsc/types.h').read_text(), re.M))


def block_text(block, form):
    if block.kind == 'verbatim':
        return '@verbatim\n' + '\n'.join(block.lines) + '\n@endverbatim'
    if block.kind == 'list':
        return '<ul>' + ''.join(f'<li>{form(" ".join(i.split()))}</li>' for i in headers.items(block)) + '</ul>'
    return '\n'.join(f'<p>{form(" ".join(i.split()))}</p>' for i in headers.items(block))


def plain_title(title, codec):
    """'G.728: postfilter (clause 4.6)' is 'Postfilter (clause 4.6)' among the groups of G.728."""
    title = re.sub(r'^%s(?:, |: )' % re.escape(codec), '', title)
    return title[:1].upper() + title[1:]


def annotated_primitives(name, group, title, sections, library):
    out = [f'/** @file\n * @brief {title}: primitives of libzppsc. Include zppsc.h. */',
           f'#include "zppsc/types.h"\n/** @defgroup {group} {title}\n * @ingroup primitives']
    first = sections[0]
    steps = len(sections) > 1
    introduction = sections[0].blocks if not first.functions or not steps else []
    if not steps:
        introduction = first.blocks
    out += [block_text(b, library.format) for b in introduction] + [' */']
    for i, section in enumerate(sections):
        inside = group
        if steps and section.functions:
            inside = f'{group}_{i}'
            heading = plain_title(section.title, title)
            out += [f'/** @defgroup {inside} {heading}\n * @ingroup {group}']
            out += [block_text(b, library.format) for b in section.blocks] + [' */']
        for function in section.functions:
            out += [library.comment(function, inside) + function.prototype.replace('ZPPAPI ', '') + ';']
    return '\n'.join(out) + '\n'


def commented(text):
    """Plain C comments of types, enumerators and members as documentation."""
    text = re.sub(r'^([ ]*[^/\s*][^\n]*[;,{=\w][ ]*)/\* ((?:(?!\*/).)*?) ?\*/', r'\1/**< \2 */', text, flags=re.M | re.S)
    return re.sub(r'^(\s*)/\* ((?:(?!\*/).)*?) ?\*/(?=\n\s*(?:typedef|enum|struct))', r'\1/** \2 */', text, flags=re.M | re.S)


def annotated_types(include, library):
    text = (include / 'zppsc/types.h').read_text()
    text = text[text.index('typedef uint8_t'):text.index('#ifdef __cplusplus\n}')]
    text = re.sub(r'/\* ----.*?\*/', '', text)
    text = re.sub(r'/\* The version record.*?\*/', '', text).replace('/* Result of every function', '/** Result of every function')
    text = commented(text).replace('ZPPAPI ', '')
    introduction = headers.Comment(headers.comment_lines((include / 'zppsc.h').read_text().split('#ifndef')[0].strip()))
    body = introduction.blocks()
    for plain in ('Zpp16u', 'Zpp64s', 'Zpp32f', 'Zpp64f'):
        text = re.sub(r'^(typedef \w+ %s;)' % plain, r'\1 /**< @brief plain number */', text, flags=re.M)
    text = text.replace('typedef struct {\n  Zpp16s re, im;', '/** @brief A complex sample. */\ntypedef struct {\n  Zpp16s re; /**< real part */\n  Zpp16s im; /**< imaginary part */')
    text = text.replace('enum {\n  zppStsOk = 0,', '/** @brief What a function reports. */\nenum ZppStatusValues {\n  zppStsOk = 0, /**< success */')
    text = text.replace('typedef struct {\n  Zpp32s major;', '/** @brief What zppscGetLibVersion tells. */\ntypedef struct {\n  Zpp32s major;')
    text = text.replace('const ZppLibraryVersion* zppscGetLibVersion', '/** @brief The version record of the library.\n\nThe same static, read-only record on every call. */\nconst ZppLibraryVersion* zppscGetLibVersion')
    return ('/** @file\n * @brief Types, statuses and rates of libzppsc. Include zppsc.h. */\n#include <stdint.h>\n'
            '/** @defgroup frame Types, statuses, conventions\n * @ingroup primitives\n * @brief What all primitives share\n' +
            '\n'.join(block_text(b, library.format) for b in body[1:]) + '\n @{ */\n' + text + '\n/** @} */\n')


def annotated_codecs(include, sections, library):
    whole = (include / 'zppcodecs.h').read_text()
    introduction = headers.Comment(headers.comment_lines(whole[:whole.index('#ifndef')].strip())).blocks()
    text = whole[whole.index('typedef struct ZppcEncoder'):whole.index('#ifdef __cplusplus\n}')]
    for function in (f for s in sections for f in s.functions):
        text = re.sub(r'(?:/\*(?:(?!\*/).)*\*/\n)?ZPPCAPI[^;]*\b%s\([^;]*;' % function.name,
                      lambda _: library.comment(function, 'codecs') + function.prototype.replace('ZPPCAPI ', '') + ';', text, flags=re.S)
    text = re.sub(r'(/\* (?:(?!\*/).)*\*/\n)(?=/\*\* @ingroup)', '', text, flags=re.S)
    text = commented(text)
    text = text.replace('typedef struct ZppcEncoder', '/** @brief A stream that is being coded. */\ntypedef struct ZppcEncoder', 1)
    text = text.replace('typedef struct ZppcDecoder', '/** @brief A stream that is being decoded. */\ntypedef struct ZppcDecoder', 1)
    text = re.sub(r'(/\*\* Results below zero.*?\*/\n)enum', r'\1enum ZppcError', text, flags=re.S)
    text = re.sub(r'(/\*\* Features of a codec.*?\*/\n)enum', r'\1enum ZppcFeature', text, flags=re.S)
    for member in ('int bitRateCount;', 'int defaultBitRate;'):
        text = text.replace(member, member + (' /**< length of that list */' if 'Count' in member else ' /**< bit/s */'))
    return ('/** @file\n * @brief Complete codecs: libzppcodecs. */\n#include <stddef.h>\n#include <stdint.h>\n'
            '/** @defgroup codecs Complete codecs (libzppcodecs)\n * @brief Frames of speech in, payloads out, and back\n' +
            '\n'.join(block_text(b, library.format) for b in introduction[1:]) + '\n @{ */\n' + text + '\n/** @} */\n')


def read(source):
    include = source / 'include'
    sections = {name: headers.read(include / f'zppsc/{name}.h') for name, _, _ in CODECS}
    sections['zppcodecs'] = headers.read(include / 'zppcodecs.h')
    return sections, functions.Functions(sections, functions.Contract(source / 'docs/reference/contract.tsv'), constants(include), meanings(include))


def write_headers(source, target):
    """Writes the annotated headers into target; returns the library and its sections."""
    include = source / 'include'
    sections, library = read(source)
    (target / 'zppsc').mkdir(parents=True, exist_ok=True)
    for name, group, title in CODECS:
        (target / f'zppsc/{name}.h').write_text(annotated_primitives(name, group, title, sections[name], library))
    (target / 'zppsc/types.h').write_text(annotated_types(include, library))
    (target / 'zppcodecs.h').write_text(annotated_codecs(include, sections['zppcodecs'], library))
    return sections, library
