"""Which instructions of x86 each processor level may have, by the names that objdump prints.

Every name that is not listed is refused, so that no extension is overlooked, also none to come.
"""
import re

CONDITIONS = "(n?[abcegloszp]|n?[abgl]e|p[eo])"

# Of every processor that the builds are for: i686 with x87, in 64 bit its integers. tzcnt is bsf for all who do not know its prefix, and
# compilers use it where that makes no difference; endbr and the long nop are nothing to the old.
INTEGER = rf"""
    (adc|add|and|cmp|dec|div|idiv|imul|inc|lea|mov|mul|neg|not|or|pop|push|rcl|rcr|rol|ror|sal|sar|sbb|shl|shr|sub|test|xchg|xor)[bwlq]?
    (bsf|bsr|bt|btc|btr|bts|shld|shrd|tzcnt|bswap|xadd|cmpxchg)[bwlq]?
    mov[sz]([bwl][wlq])? movabs movslq|movsxd|cltq|cqto cltd|cwtl|cwtd|cbtw
    (movs|stos|lods|scas|cmps)[bwlq]? rep|repz|repnz|lock|notrack|bnd|data16|cs|ds|es|ss|fs|gs|addr32
    cmov{CONDITIONS}[wlq]? set{CONDITIONS} j{CONDITIONS} j[er]?cxz jmp[lqw]? call[lqw]? ret[lqw]? leave[lq]?
    loop|cld|std|cmc|clc|stc|sahf|lahf|enter|hlt|ud2|int3|nop[wlq]? endbr(32|64) pushf[lq]?|popf[lq]? xlat
"""
X87 = r"""
    f(i?add|i?sub|i?subr|i?mul|i?div|i?divr)p?[sl]? fi?(ld|st|stp)(l|s|t|ll|q)? f(ld1|ldz|ldpi|ldl2e|ldl2t|ldlg2|ldln2)
    fu?comi?p?p?[sl]? ficomp?[sl]? f(xch|chs|abs|sqrt|rndint|scale|prem1?|xtract|sin|cos|sincos|ptan|patan|2xm1|yl2x|yl2xp1|tst|xam)
    fcmov(n?[beu]|n?be) fn?(stcw|stsw|init|clex|stenv|save) f(ldcw|ldenv|rstor|free|incstp|decstp|nop|wait) fwait
"""
SSE = r"""
    (add|sub|mul|div|min|max|sqrt|rcp|rsqrt)[ps]s (and|andn|or|xor)ps cmp(eq|lt|le|unord|neq|nlt|nle|ord)?[ps]s u?comiss
    mov[au]ps mov[hl]ps mov(hl|lh)ps movss movmskps movntps shufps unpck[hl]ps
    cvt(pi2ps|t?ps2pi|t?ss2si[lq]?|si2ss[lq]?) prefetch(nta|t[012]) sfence ldmxcsr stmxcsr
"""
# On 64-bit registers %mm: MMX and what SSE added there
MMX = r"""
    (mov[dq]|pack(ss(wb|dw)|uswb)|padd(u?s?[bw]|d)|psub(u?s?[bw]|d)|pand|pandn|por|pxor|pcmp(eq|gt)[bwd]|pmaddwd|pmulhu?w|pmullw)
    ps(ll|rl)[wdq] psra[wd] punpck[hl](bw|wd|dq) pavg[bw] p(max|min)(sw|ub) pextrw|pinsrw|pmovmskb|psadbw|pshufw|maskmovq|movntq|emms
"""
SSE2 = r"""
    (add|sub|mul|div|min|max|sqrt)[ps]d (and|andn|or|xor)pd cmp(eq|lt|le|unord|neq|nlt|nle|ord)?[ps]d u?comisd
    mov[au]pd mov[hl]pd movsd movmskpd movnt(pd|i|dq) shufpd unpck[hl]pd maskmovdqu
    cvt(dq2p[sd]|t?p[sd]2dq|ps2pd|pd2ps|ss2sd|sd2ss|t?sd2si[lq]?|si2sd[lq]?|pi2pd|t?pd2pi)
    movdq[au] mov(dq2q|q2dq) paddq|psubq|pmuludq pshuf(d|hw|lw) ps[lr]ldq punpck[hl]qdq lfence|mfence|pause|clflush
"""
SSE3 = r"addsubp[sd] h(add|sub)p[sd] lddqu mov(d|sh|sl)dup fisttp(s|l|ll|q)?"
# The encodings of AVX for all of the above and SSSE3 to SSE4.2, what AVX and AVX2 added, and the integer extensions that come with them
LATER_SSE = r"""
    pabs[bwd] palignr ph(add|sub)(w|d|sw) pmaddubsw pmulhrsw pshufb psign[bwd] blendv?p[sd] pblend(vb|w) dpp[sd] extractps insertps mpsadbw
    packusdw pcmp(eq|gt)q pextr[bdq] pinsr[bdq] phminposuw p(max|min)(s[bd]|u[wd]) pmov[sz]x(b[wdq]|w[dq]|dq) pmul(dq|ld) ptest
    round[ps][sd] pcmp[ei]str[im] movntdqa
"""
AVX = r"""
    vbroadcast(s[sd]|[fi]128) v(extract|insert|perm2)[fi]128 v(maskmov)p[sd] vpermilp[sd] vtestp[sd] vzero(all|upper) vcmp\w+[ps][sd]
    vpbroadcast[bwdq] vpermd|vpermq|vpermp[sd] vpblendd vpmaskmov[dq] vps[lr]lv[dq] vpsravd vp?gather[dq](p[sd]|[dq])
    lzcnt[wlq]? popcnt[wlq]? movbe[wlq]? (andn|bextr|blsi|blsmsk|blsr|bzhi|mulx|pdep|pext|rorx|sarx|shlx|shrx)[lq]?
"""


def alternatives(words):
    return "|".join(f"(?:{word})" for word in words.split())


INTEGER, X87, SSE, MMX, SSE2, SSE3, LATER_SSE, AVX = map(alternatives, (INTEGER, X87, SSE, MMX, SSE2, SSE3, LATER_SSE, AVX))
LINE = re.compile(r"^ *[0-9a-f]+:\t((?:(?:rep|repz|repnz|lock|notrack|bnd|data16|cs|ds|es|ss|fs|gs|addr32|rex\S*) )*)(\S+)(.*)$", re.MULTILINE)


def allowed(level, bits):
    """Regular expressions of the names and, for registers, of what their operands must not have"""
    if level == "v3":
        vectors = f"v(?:{SSE}|{MMX}|{SSE2}|{SSE3}|{LATER_SSE})|{AVX}"
        return f"{INTEGER}|{X87}|{vectors}|prefetch.*|.fence|pause", r"%zmm|%k[0-7]|%[xy]mm(1[6-9]|[23]\d)|%mm|\{"
    if level == "px" and bits == 32:
        return f"{INTEGER}|{X87}", "%[xyz]?mm"
    if level == "a6" and bits == 32:
        return f"{INTEGER}|{X87}|{SSE}|{MMX}", "%[yz]mm"
    sets = f"{INTEGER}|{X87}|{SSE}|{MMX}|{SSE2}"
    return (f"{sets}|{SSE3}" if level == "t7" else sets), "%[yz]mm"


def beyond(text, level, bits):
    """The instructions in objdump's output that processors of the level may not know"""
    names, registers = allowed(level, bits)
    names, registers = re.compile(names), re.compile(registers)
    integer_in_vectors = re.compile(MMX)  # the same names on %xmm are SSE2
    found = set()
    for _, name, operands in LINE.findall(text):
        if name in ("(bad)", ".byte", ".word"):
            continue  # padding between functions
        operands = operands.split("#")[0].split("<")[0]
        if not names.fullmatch(name) or registers.search(operands):
            found.add(name + operands)
        elif level == "a6" and bits == 32 and "%xmm" in operands and integer_in_vectors.fullmatch(name):
            found.add(name + operands)
    return sorted(found)
