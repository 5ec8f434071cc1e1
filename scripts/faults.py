#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The one-token faults that scripts/mutate puts into a C++ file, and what is known of them (scripts/mutants.txt)."""
import dataclasses
import re

TOKEN = re.compile(
    r"""(?P<blank>\s+|\\\n|//[^\n]*|/\*.*?\*/)
    |(?P<directive>^[ \t]*\#[ \t]*(?:include|error|pragma)\b[^\n]*)
    |(?P<text>"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*')
    |(?P<number>0[xX][0-9a-fA-F']+|[0-9][0-9.']*(?:[eE][+-]?[0-9]+)?)(?P<suffix>[A-Za-z_]*)
    |(?P<name>[A-Za-z_]\w*)
    |(?P<sign><<=|>>=|<=>|->\*|\.\.\.|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|->|::|[-+*/%&|^]=|\#\#|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

# Between two operands, with a blank on either side, as the formatter leaves it.
OPERATORS = {
    "<": ["<=", ">"], "<=": ["<", ">="], ">": [">=", "<"], ">=": [">", "<="], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["+", "/"], "/": ["*"], "%": ["/"], "<<": [">>"], ">>": ["<<"],
    "&&": ["||"], "||": ["&&"], "&": ["|"], "|": ["&"], "^": ["&"],
    "+=": ["-="], "-=": ["+="], "*=": ["+="], "/=": ["*="], "<<=": [">>="], ">>=": ["<<="], "&=": ["|="], "|=": ["&="],
}  # fmt: skip
PAIRS = [
    ("u", "v"), ("U", "V"), ("src", "dst"), ("srcImg", "dstImg"), ("source", "destination"), ("from", "to"), ("cb", "cr"),
    ("low", "high"), ("lo", "hi"), ("width", "height"), ("columns", "rows"), ("even", "odd"), ("first", "second"),
    ("first", "last"), ("upper", "lower"), ("left", "right"), ("min", "max"), ("true", "false"), ("zip1", "zip2"),
    ("uzp1", "uzp2"), ("trn1", "trn2"), ("vzip1", "vzip2"), ("vuzp1", "vuzp2"), ("vtrn1", "vtrn2"),
    ("unpacklo", "unpackhi"), ("mulhi", "mullo"), ("adds", "subs"), ("add", "sub"), ("r", "b"),
]  # fmt: skip
OTHER = {}
for one, two in PAIRS:
    OTHER.setdefault(one, []).append(two)
    OTHER.setdefault(two, []).append(one)

# What begins no statement that could be dropped alone.
NO_EXPRESSION = set(
    """return using typedef const constexpr consteval auto static struct class enum union template case default goto namespace extern
    inline if for while do else switch public private protected friend operator alignas unsigned signed int char short long bool
    float double void asm volatile static_assert requires concept try catch throw""".split()
)
DECLARATION = re.compile(r"^[\w:]+(\s*<[^;()]*>)?(::\w+)?\s*[&*]*\s+[&*]*\w+\s*(\[[^\]]*\]\s*)*(=[^=]|;|,|\{|\()")


@dataclasses.dataclass
class Fault:
    path: str
    start: int
    end: int
    replacement: str
    kind: str
    number: int = 0  # of the line
    before: str = ""  # the line or lines, blanks joined
    after: str = ""
    above: str = ""  # the line above, where others of the file read the same
    passed: list = dataclasses.field(default_factory=list)  # the builds whose quick tests all pass with it

    def key(self):
        return (self.path, self.above, self.before, self.after)


def _tokens(text):
    """(kind, text, start) of what may be changed and what stands around it."""
    tokens = []
    for match in TOKEN.finditer(text):
        kind = match.lastgroup
        if kind in ("blank", "directive"):
            continue
        if kind == "suffix":
            kind = "number"
        tokens.append((kind, match.group(), match.start()))
    return tokens


def _protected(tokens):
    """Whether each token stands in a static_assert or an attribute."""
    shielded, depth, closes = [], 0, None
    for i, (kind, word, _) in enumerate(tokens):
        if closes is None:
            if kind == "name" and word == "static_assert":
                closes, depth = ")", 0
            elif word == "[" and i + 1 < len(tokens) and tokens[i + 1][1] == "[":
                closes, depth = "]", 0
            else:
                shielded.append(False)
                continue
        shielded.append(True)
        if word in ("(", "["):
            depth += 1
        elif word in (")", "]"):
            depth -= 1
            if depth == 0 and word == closes:
                closes = None
    return shielded


def capabilities_at(text, start):
    """What a target must be capable of to compile this place, as `#if ZIV_HAS_...` around it says."""
    conditions = []
    for directive, rest in re.findall(r"(?m)^#[ \t]*(if\w*|elif|else|endif)\b(.*)", text[:start]):
        if directive == "endif":
            conditions.pop()
            continue
        if directive in ("elif", "else"):
            conditions.pop()
        asked = re.fullmatch(r"ZIV_HAS_(\w+)", rest.strip()) if directive == "if" else None
        conditions.append(asked.group(1) if asked else "")
    return [capability for capability in conditions if capability]


def _numbers(word):
    digits = re.match(r"0[xX][0-9a-fA-F']+|[0-9][0-9.']*(?:[eE][+-]?[0-9]+)?", word).group()
    suffix = word[len(digits) :]
    plain = digits.replace("'", "")
    if "." in plain or (re.search("[eE]", plain) and not plain[:2] in ("0x", "0X")):
        return [f"{float(plain) + 1}{suffix}", f"{float(plain) - 1}{suffix}", f"0.0{suffix}"]
    hexadecimal = plain[:2] in ("0x", "0X")
    value = int(plain, 16 if hexadecimal else 10)
    others = [value + 1] + ([value - 1] if value > 0 else []) + ([0] if value > 1 else [])
    return [(f"0x{other:X}" if hexadecimal else str(other)) + suffix for other in others]


def _names(word):
    """The name with one of its parts exchanged for the other of its pair."""
    found = []
    for part in re.finditer(r"[A-Za-z]+", word):
        for other in OTHER.get(part.group(), []):
            found.append(word[: part.start()] + other + word[part.end() :])
    for part in re.finditer(r"(?:zip|uzp|trn)[12]|unpack(?:lo|hi)", word):
        text = part.group()
        other = {"1": text[:-1] + "2", "2": text[:-1] + "1"}.get(text[-1]) or OTHER[text][0]
        found.append(word[: part.start()] + other + word[part.end() :])
    if re.fullmatch(r"[A-Za-z_]+[01]", word):  # one row for the other
        found.append(word[:-1] + ("1" if word[-1] == "0" else "0"))
    return sorted(set(found))


def _matching(tokens, closing):
    """The place of the bracket that this one closes."""
    depth = 0
    for i in range(closing, -1, -1):
        depth += tokens[i][1] in ")]}"
        depth -= tokens[i][1] in "([{"
        if depth == 0:
            return i
    return 0


def _statement(tokens, text, i):
    """(start, end) of the statement that begins with token i, semicolon left out, if it can go alone."""
    previous = tokens[i - 1][1] if i else "}"
    guarded = previous == "else"
    if previous == ")":
        opening = _matching(tokens, i - 1)
        guarded = opening > 0 and tokens[opening - 1][1] in ("if", "for", "while", "constexpr")
    if previous not in (";", "{", "}") and not guarded:
        return None
    kind, word, start = tokens[i]
    if kind == "name" and word in NO_EXPRESSION and not (guarded and word == "return"):
        return None
    if kind not in ("name",) and word not in ("(", "*", "++", "--"):
        return None
    depth = 0
    for kind, word, at in tokens[i:]:
        if word in ("(", "[", "{"):
            if word == "{" and depth == 0:
                return None
            depth += 1
        elif word in (")", "]", "}"):
            depth -= 1
            if depth < 0:
                return None
        elif word == ";" and depth == 0:
            statement = text[start : at + 1]
            one_line = " ".join(statement.split())
            is_return = one_line.startswith("return")
            if not is_return and DECLARATION.match(one_line) and not re.match(r"^\w+\s*(\[[^\]]*\]\s*)*[-+*/&|^<>]*=", one_line):
                return None
            if not is_return and not re.search(r"[=(]|\+\+|--|^(break|continue);", one_line):
                return None
            return start, at
    return None


def faults_of(path, text):
    """Lists of faults, one list for each place that can be changed."""
    tokens = _tokens(text)
    shielded = _protected(tokens)
    places = []
    for i, (kind, word, start) in enumerate(tokens):
        if shielded[i]:
            continue
        end = start + len(word)
        changes = []
        if kind == "number":
            size = text[start - 1 : start] == "<" or text[end : end + 1] == ">"
            changes = [("size" if size else "constant", other) for other in _numbers(word)]
        elif kind == "name":
            changes = [("name", other) for other in _names(word)]
        elif kind == "sign":
            spaced = text[start - 1 : start].isspace() and text[end : end + 1].isspace()
            template = i > 0 and tokens[i - 1][1] in ("template", "operator")
            if word in ("!", "~") and not spaced:
                changes = [("not", "")]
            elif word in ("++", "--"):
                changes = [("operator", "--" if word == "++" else "++")]
            elif spaced and not template:
                changes = [("operator", other) for other in OPERATORS.get(word, [])]
        place = [Fault(path, start, end, other, kind) for kind, other in changes]
        if place:
            places.append(place)
        statement = _statement(tokens, text, i)
        if statement:
            places.append([Fault(path, *statement, "", "dropped")])
    _describe(text, places)
    return places


def _describe(text, places):
    lines = text.split("\n")
    starts = [0]
    for line in lines:
        starts.append(starts[-1] + len(line) + 1)
    joined = [" ".join(line.split()) for line in lines]
    number = 0
    for place in sorted(places, key=lambda place: place[0].start):
        while starts[number + 1] <= place[0].start:
            number += 1
        for fault in place:
            last = number
            while starts[last + 1] <= fault.end:
                last += 1
            first_line, past = starts[number], starts[last + 1] - 1
            fault.number = number + 1
            fault.before = " ".join(text[first_line:past].split())
            fault.after = " ".join((text[first_line : fault.start] + fault.replacement + text[fault.end : past]).split())
            if joined.count(joined[number]) > 1:
                fault.above = next((line for line in reversed(joined[:number]) if line), "")


def read_verdicts(path):
    """What is known of faults: {(path, line above or "", line, faulty line or "*"): verdict}."""
    known, file, above, before, after = {}, "", "", "", ""
    with open(path) as lines:
        for line in lines:
            mark, rest = line[:2], line[2:].strip()
            if line.startswith("#") or not line.strip():
                continue
            if mark == "@ ":
                above = rest
            elif mark == "- ":
                before = rest
            elif mark == "+ ":
                after = rest
            elif mark == "= ":
                known[(file, above, before, after)] = rest
                above = before = after = ""
            else:
                file = line.strip()
    return known


def verdict_of(known, fault):
    return known.get(fault.key()) or known.get((fault.path, fault.above, fault.before, "*"))


def stale_verdicts(known):
    """The verdicts on what no file has any more."""
    stale, keys = [], {}
    for (path, above, before, after), verdict in known.items():
        if path not in keys:
            found = [fault for place in faults_of(path, _content(path)) for fault in place]
            keys[path] = {fault.key() for fault in found} | {(path, fault.above, fault.before, "*") for fault in found}
        if (path, above, before, after) not in keys[path]:
            stale.append(f"{path}: {before} = {verdict}")
    return stale


def _content(path):
    try:
        with open(path) as file:
            return file.read()
    except FileNotFoundError:
        return ""


def entry(fault, verdict):
    above = f"@ {fault.above}\n" if fault.above else ""
    return f"{above}- {fault.before}\n+ {fault.after}\n= {verdict}\n"
