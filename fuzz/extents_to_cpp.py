"""Writes the table of extents (bindings/python/src/zppcodecs/extents.txt) as initialisers of C++: extents_to_cpp.py TABLE OUTPUT

Its expressions are Python's; the few kinds that occur are translated, another one is an error.
"""
import ast
import re
import sys

ARGUMENT = re.compile(r"\s*(?P<name>\w+)(?P<null>\??)(?:(?P<state>[=:])(?P<kind>\w+))?(?:\[(?P<extent>[^\]]*)\])?\s*(?:,|$)")
OPERATORS = {ast.Add: "+", ast.Sub: "-", ast.Mult: "*", ast.Eq: "==", ast.LtE: "<=", ast.GtE: ">=", ast.Lt: "<", ast.Gt: ">"}


def cpp(node):
    match node:
        case ast.Constant(value):
            return f"Number{{{value}}}"
        case ast.Name(name):
            return f"Number{{{name}}}" if name.startswith("ZPP_") else f'v["{name}"]'
        case ast.Attribute(ast.Name(whole), part):
            return f'v["{whole}.{part}"]'
        case ast.UnaryOp(ast.USub(), operand):
            return f"-({cpp(operand)})"
        case ast.BinOp(left, ast.FloorDiv(), right):
            return f"floorDiv({cpp(left)}, {cpp(right)})"
        case ast.BinOp(ast.Constant(left), ast.Pow(), ast.Constant(right)):
            return f"Number{{{left**right}}}"
        case ast.BinOp(left, operator, right):
            return f"({cpp(left)} {OPERATORS[type(operator)]} {cpp(right)})"
        case ast.BoolOp(ast.Or(), [left, right]):
            return f"({cpp(left)} != 0 ? {cpp(left)} : {cpp(right)})"
        case ast.BoolOp(ast.And(), values):
            return "(" + " && ".join(cpp(value) for value in values) + ")"
        case ast.Compare(left, [ast.In()], [ast.Tuple(values)]):
            return "(" + " || ".join(f"{cpp(left)} == {cpp(value)}" for value in values) + ")"
        case ast.Compare(left, operators, values):
            sides = [left, *values]
            terms = [f"{cpp(a)} {OPERATORS[type(o)]} {cpp(b)}" for a, o, b in zip(sides, operators, values)]
            return "(" + " && ".join(terms) + ")"
        case ast.IfExp(test, body, orelse):
            return f"({cpp(test)} ? {cpp(body)} : {cpp(orelse)})"
        case ast.Call(ast.Name("max"), [left, right]):
            return f"std::max<Number>({cpp(left)}, {cpp(right)})"
    sys.exit(f"no way to translate {ast.unparse(node)}")


def function(text):
    return f"[]([[maybe_unused]] const Values& v) -> Number {{ return {cpp(ast.parse(text.strip(), mode='eval').body)}; }}"


def lines(table):
    for line in table:
        if not line.strip() or line.startswith("#"):
            continue
        name, _, text = line.strip().partition(":")
        text, _, condition = text.partition(" where ")
        yield f'{{"{name}", {function(condition or "1")}, {{'
        position = 0
        while position < len(text):
            match = ARGUMENT.match(text, position)
            if match is None or match.end() == position:
                sys.exit(f"no way to read '{text[position:]}' of {name}")
            before, _, after = (match["extent"] or "0").rpartition(":")
            starts = "true" if match["state"] == "=" else "false"
            yield f'  {{"{match["name"]}", {function(before or "0")}, {function(after)}, "{match["kind"] or ""}", {starts}}},'
            position = match.end()
        yield "}},"


with open(sys.argv[1], encoding="utf-8") as source, open(sys.argv[2], "w", encoding="utf-8") as target:
    target.writelines(line + "\n" for line in lines(source))
