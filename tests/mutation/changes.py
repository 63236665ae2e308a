# SPDX-License-Identifier: Apache-2.0

"""The changes that are made to a source, a place at a time.

A source is cut into tokens and not parsed: a change that is no C++ is refused by the compiler, which costs less than
knowing better. What is taken for granted is the layout of clang-format: blanks on both sides of a binary operator and
on one side at most of a sign that means something else, braces around every block.
"""

import re
from collections import Counter, namedtuple

# `text` takes the place of source[start:end]. A change is known by the text of its line, by what it does and by which
# of the same changes in lines of this text it is, so that it is known again where the line has moved.
Change = namedtuple("Change", "start end text line_number line what nth")
Token = namedtuple("Token", "kind text start end")

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ \t]*\#(?:[^\\\n]|\\.)*)
      | (?P<raw>R"(?P<delimiter>\w*)\(.*?\)(?P=delimiter)")
      | (?P<string>"(?:[^"\\\n]|\\.)*")
      | (?P<char>'(?:[^'\\\n]|\\.)+')
      | (?P<number>\d(?:[\w.']|[eE][+-])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s])""",
    re.X | re.S | re.M,
)

BINARY = {
    "==": ["!="], "!=": ["=="],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"],
    "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="],
}  # fmt: skip
OPENING = {"(": ")", "[": "]", "{": "}"}
CLOSING = set(OPENING.values())
# Where an operand of the operator ends, besides at brackets.
ENDS = {"?": {",", ";", "=", "+=", "return", "?", ":"}}
ENDS["||"] = ENDS["?"] | {"||"}
ENDS["&&"] = ENDS["||"] | {"&&"}

NO_CALL = {"if", "while", "for", "switch", "catch", "sizeof", "decltype", "alignof", "static_assert", "__attribute__"}
NO_TYPE = {"return", "delete", "throw", "new", "case", "else"}
NO_STATEMENT = {"return", "using", "static_assert", "typedef"}
BEFORE_A_BLOCK = {")", "]", "else", "do", "try", "const", "noexcept", "override"}
NOTHING = {"0", "false", "nullptr", "std::nullopt", "{}", '""'}
SQL_TYPES = {"INTEGER": "TEXT", "TEXT": "INTEGER"}


class Source:
    def __init__(self, text):
        self.text = text
        self.tokens = [
            Token(match.lastgroup if match.lastgroup != "delimiter" else "raw", match[0], match.start(), match.end())
            for match in TOKEN.finditer(text)
            if not match["comment"] and not match["directive"]
        ]
        self.partner = self._match_brackets()
        self.skipped = self._find_skipped()

    def _match_brackets(self):
        partner, opened = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in OPENING:
                opened.append(i)
            elif token.kind == "sign" and token.text in CLOSING:
                partner[i] = opened.pop()
                partner[partner[i]] = i
        return partner

    def _find_skipped(self):
        """Tokens of no consequence when the program runs."""
        skipped = set()
        for i, token in enumerate(self.tokens):
            if token.text in ("static_assert", "__attribute__", "asm"):
                skipped.update(range(i, self.partner[i + 1]))
        return skipped

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def is_type_end(self, i):
        """Whether what stands behind the token is declared by it: a type ends here, or it is a sign of one."""
        if self.at(i) in ("*", "&", ">"):
            return not self.is_binary(i)
        return 0 <= i and self.tokens[i].kind == "name" and self.at(i) not in NO_TYPE

    def is_used(self, name, first, last):
        return any(self.at(i) == name for i in range(first, last))

    def declared_name(self, first, last):
        """What a statement declares, if it does."""
        for i in range(first + 1, last + 1):
            if self.at(i) in ("=", "(", "{", "[", ";"):
                return self.at(i - 1) if self.is_type_end(i - 2) and i - 1 > first else None
        return None

    def is_binary(self, i):
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def left_operand(self, i):
        """The first token of the operand left of the operator `i`, and the last one."""
        first = i
        while first > 0 and self.at(first - 1) not in ENDS[self.at(i)] | set(OPENING) | {"}"}:
            first -= 1
            if self.at(first) in CLOSING:
                first = self.partner[first]
        return first, i - 1

    def right_operand(self, i):
        last = i
        while self.at(last + 1) not in ENDS[self.at(i)] | CLOSING:
            last += 1
            if self.at(last) in OPENING:
                last = self.partner[last]
        return i + 1, last

    def blocks(self):
        """The braces that hold statements."""
        for i, token in enumerate(self.tokens):
            if token.text == "{" and (self.at(i - 1) in BEFORE_A_BLOCK or self.at(i - 2) == "->"):
                yield i

    def statements(self, block):
        """The first token of each statement that is none of others, and its semicolon."""
        i, end = block + 1, self.partner[block]
        while i < end:
            text = self.at(i)
            if text in ("if", "for", "while", "switch", "catch"):
                i = self.partner[i + 1] + 1
            elif text in ("else", "do", "try"):
                i += 1
            elif text in ("case", "default"):
                while self.at(i) != ":":
                    i += 1
                i += 1
            elif text == "{":
                i = self.partner[i] + 1
            else:
                first = i
                while self.at(i) != ";" and i < end:
                    i = self.partner[i] if self.at(i) in OPENING else i
                    i += 1
                yield first, i
                i += 1


# Each of the following yields the first token that changes, the last one, what takes their place and, where the change
# does not speak for itself, what is done.


def operators(source):
    for i, token in enumerate(source.tokens):
        if token.kind != "sign":
            continue
        if token.text in ("<<", ">>") and source.tokens[i + 1].kind != "number":
            continue  # to or from a stream
        if token.text in BINARY and source.is_binary(i):
            for other in BINARY[token.text]:
                yield i, i, other
        elif token.text in ("++", "--"):
            yield i, i, "--" if token.text == "++" else "++"
        elif token.text in ("!", "-") and not source.is_binary(i):
            yield i, i, "", f"drop {token.text}"


def conditions(source):
    for i, token in enumerate(source.tokens):
        if token.text in ("&&", "||") and source.is_binary(i):
            first, last = source.left_operand(i)
            neutral = "true" if token.text == "&&" else "false"
            if source.at(first - 1) != token.text:
                yield first, last, neutral
            yield (*source.right_operand(i), neutral)
        elif token.text == "?" and source.is_binary(i):
            for value in ("true", "false"):
                yield (*source.left_operand(i), value)
        elif token.text == "if" and source.at(i + 1) == "(":
            close = source.partner[i + 1]
            for value in ("true", "false"):
                yield close, close, f"; {value})", f"if ({value})"
        elif token.text == "while":
            close = source.partner[i + 1]
            condition = source.text[source.tokens[i + 1].start : source.tokens[close].end]
            yield i + 1, close, f"({condition} && false)", "while (false)"


def changed_number(text):
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)", text)
    if not match:
        return [f"({text} * 2)"]
    value = int(match[1], 0)
    form = "0x{:X}" if match[1].lower().startswith("0x") else "{}"
    return [form.format(other) + match[2] for other in (value + 1, value - 1) if other >= 0]


def changed_text(quoted):
    characters = re.findall(r"\\x[0-9a-fA-F]+|\\.|[^\\]", quoted[1:-1])
    shorter = [characters[1:], characters[:-1]] if characters else [["x"]]
    return list(dict.fromkeys('"' + "".join(each) + '"' for each in shorter))


def constants(source):
    for i, token in enumerate(source.tokens):
        others = []
        if token.kind == "number":
            others = changed_number(token.text)
        elif token.kind == "string" and source.at(i - 1) != "extern":
            others = changed_text(token.text)
        elif token.kind == "char":
            others = ["'~'"]
        elif token.text in ("true", "false"):
            others = ["false" if token.text == "true" else "true"]
        elif re.fullmatch(r"[A-Z]+_[A-Z0-9_]+", token.text) and source.at(i + 1) != "(" and source.at(i - 1) != "case":
            others = [f"({token.text} + 1)"]
        for other in others:
            yield i, i, other


def names(source):
    """A value's name of a scope becomes the next other one of that scope, as far as this file uses them."""
    used = {}
    places = [
        i
        for i, token in enumerate(source.tokens)
        if token.kind == "name" and source.at(i - 1) == "::" and source.at(i - 2) not in ("std", "")
        if source.at(i + 1) not in ("::", "&", "*", ">") and source.tokens[i + 1].kind != "name"
        if not source.is_type_end(i - 3)
    ]
    for i in places:
        used.setdefault(source.at(i - 2), []).append(source.at(i))
    for i in places:
        siblings = sorted(set(used[source.at(i - 2)]))
        if len(siblings) > 1:
            yield i, i, siblings[(siblings.index(source.at(i)) + 1) % len(siblings)]


def arguments(source):
    for i, token in enumerate(source.tokens):
        if token.text != "(" or source.at(i - 1) in NO_CALL or source.tokens[i - 1].kind != "name":
            continue
        if source.at(source.partner[i] + 1) in ("{", "const", "noexcept", "override"):
            continue  # parameters
        parts, first, j = [], i + 1, i + 1
        while j <= source.partner[i]:
            if source.at(j) in OPENING:
                j = source.partner[j]
            elif source.at(j) == "," or j == source.partner[i]:
                parts.append((first, j - 1))
                first = j + 1
            j += 1
        for (a, b), (c, d) in zip(parts, parts[1:]):
            left, right = (source.text[source.tokens[x].start : source.tokens[y].end] for x, y in ((a, b), (c, d)))
            if left != right:
                yield a, d, f"{right}, {left}"


def statements(source):
    for block in source.blocks():
        for first, semicolon in source.statements(block):
            if source.at(first) == "return" and semicolon > first + 1:
                value = source.text[source.tokens[first + 1].start : source.tokens[semicolon - 1].end]
                if value not in NOTHING:
                    yield first + 1, semicolon - 1, "{}"
            elif source.is_used(source.declared_name(first, semicolon), semicolon, source.partner[block]):
                continue
            elif source.at(first) == "return" or source.at(first) not in NO_STATEMENT:
                yield first, semicolon, ";", "drop " + " ".join(
                    source.text[source.tokens[first].start : source.tokens[semicolon].end].split()
                )


def sql_words(source):
    """Yields places in the text, not tokens."""
    for token in source.tokens:
        if token.kind == "raw":
            for word in re.finditer(r"[A-Za-z_]\w*", token.text[: token.text.rindex(")")]):
                start = token.start + word.start()
                if start <= token.start + token.text.index("("):
                    continue
                if not word[0].isupper():
                    yield start, start + len(word[0]), word[0][:-1]
                elif word[0] in SQL_TYPES:
                    yield start, start + len(word[0]), SQL_TYPES[word[0]]


def places(source):
    for operator in (operators, conditions, constants, names, arguments, statements):
        for first, last, text, *what in operator(source):
            if first not in source.skipped:
                yield source.tokens[first].start, source.tokens[last].end, text, *what
    yield from sql_words(source)


def changes(text):
    """All changes of a source of that text, in the order of their places."""
    source = Source(text)
    lines = text.split("\n")
    found, seen, counts = [], set(), Counter()
    for start, end, new, *what in sorted(places(source), key=lambda place: (place[0], place[1])):
        if (start, end, new) in seen:
            continue
        seen.add((start, end, new))
        number = text.count("\n", 0, start)
        line = lines[number].strip()
        old = " ".join(text[start:end].split())
        said = what[0] if what else f"{old} -> {' '.join(new.split())}"
        counts[line, said] += 1
        found.append(Change(start, end, new, number + 1, line, said, counts[line, said]))
    return found
