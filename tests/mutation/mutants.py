"""The mutants of a C++ source: small changes that its tests should notice, one at a time."""

import re
from dataclasses import dataclass

from cpp_tokens import Tokens

FLIPPED = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "+=": ["-="],
    "-=": ["+="],
}
ARITHMETIC = {"+", "-", "+=", "-="}
STEPS = {"++": "--", "--": "++"}
CONDITIONS = {"==", "!=", "<", "<=", ">", ">=", "&&", "||", "!", "=", ";", "?"}
INTEGER = re.compile(r"(0[xXbB][\da-fA-F']+|\d[\d']*)([uUlLzZ]*)")
# A statement that begins so is left, or changed in other ways. What else begins with a type and a name is
# a declaration: with a value, the value is changed.
NO_STATEMENT = set(
    "if for while switch do else try catch case default return break continue class struct enum union "
    "namespace template using typedef extern friend public private protected static_assert assert constexpr "
    "static".split()
)
DECLARATION = re.compile(
    r"(const |constexpr |static )*[\w:]+(<.*>)?[\s&*]*(const)? \w+(\[.*\])? = |(const )?auto\b"
)
# For these, {} stands as well.
DEFAULTS = {"{}", '""', "nullptr", "std::nullopt", "kNetSuccess"}
LEAVES = {"static_assert", "assert", "noexcept", "decltype", "alignas"}


@dataclass(frozen=True)
class Mutant:
    start: int
    end: int
    replacement: str
    line: int
    before: str  # the lines that it changes, blanks collapsed
    after: str

    def applied(self, source):
        return source[: self.start] + self.replacement + source[self.end :]


def mutants_of(source):
    """All mutants, in the order of their places."""
    changes = sorted(set(Operators(source).changes()))
    return [describe(source, *change) for change in changes]


def describe(source, start, end, replacement):
    begin_of_line = source.rfind("\n", 0, start) + 1
    end_of_line = source.find("\n", end)
    end_of_line = len(source) if end_of_line < 0 else end_of_line
    before = source[begin_of_line:end_of_line]
    after = source[begin_of_line:start] + replacement + source[end:end_of_line]
    return Mutant(
        start,
        end,
        replacement,
        source.count("\n", 0, start) + 1,
        " ".join(before.split()),
        " ".join(after.split()),
    )


class Operators:
    """Each method yields changes at one token: start, end, replacement."""

    def __init__(self, source):
        self.source = source
        self.tokens = Tokens(source)
        self.left_alone = self.find_left_alone()

    def changes(self):
        operators = (
            self.flip,
            self.remove_not,
            self.negate_condition,
            self.swap_choice,
            self.change_literal,
            self.change_return,
            self.change_jump,
            self.remove_statement,
        )
        for i in range(len(self.tokens)):
            if i in self.left_alone:
                continue
            for operator in operators:
                yield from operator(i)

    def find_left_alone(self):
        """What the compiler checks by itself, and what is no code."""
        tokens, left = self.tokens, set()
        for i, token in enumerate(tokens):
            following = tokens.text(i + 1)
            if token.text in LEAVES and following == "(":
                left.update(range(i, tokens.closing[i + 1] + 1))
            elif token.text == "[" and following == "[":
                left.update(range(i, tokens.closing[i] + 1))
            elif token.text == "template" and following == "<":
                left.update(range(i, tokens.find({">", ">>"}, i, len(tokens)) + 1))
            elif token.text == "using" or (token.text == "extern" and tokens[i + 1].kind == "string"):
                left.update(range(i, tokens.find({";", "{"}, i, len(tokens))))
        return left

    def span(self, first, last, replacement):
        return self.tokens[first].start, self.tokens[last].end, replacement

    def flip(self, i):
        text = self.tokens[i].text
        if text in STEPS:
            yield self.span(i, i, STEPS[text])
        if text not in FLIPPED or not self.tokens.has_blanks_around(i):
            return
        if text in ARITHMETIC and "string" in (self.tokens[i - 1].kind, self.tokens[i + 1].kind):
            return
        for replacement in FLIPPED[text]:
            yield self.span(i, i, replacement)

    def remove_not(self, i):
        if self.tokens[i].text == "!":
            yield self.span(i, i, "")

    def negate_condition(self, i):
        """Where nothing in the condition itself can be flipped."""
        tokens = self.tokens
        if tokens[i].text not in ("if", "while") or tokens.text(i + 1) != "(":
            return
        closing = tokens.closing[i + 1]
        if tokens.top_level(i + 2, closing) & CONDITIONS:
            return
        condition = self.source[tokens[i + 1].start : tokens[closing].end]
        yield self.span(i + 1, closing, f"(!{condition})")

    def swap_choice(self, i):
        tokens = self.tokens
        if tokens[i].text != "?":
            return
        colon = tokens.find({":"}, i, len(tokens))
        limit = tokens.closing.get(tokens.enclosing[i], len(tokens))
        end = tokens.find({";", ",", ":"}, colon + 1, limit)
        first = self.source[tokens[i + 1].start : tokens[colon - 1].end]
        second = self.source[tokens[colon + 1].start : tokens[end - 1].end]
        if "?" not in tokens.top_level(i + 1, end):
            yield self.span(i + 1, end - 1, f"{second} : {first}")

    def change_literal(self, i):
        token = self.tokens[i]
        if token.text in ("true", "false"):
            yield self.span(i, i, "false" if token.text == "true" else "true")
        integer = INTEGER.fullmatch(token.text)
        if token.kind == "number" and integer:
            digits, suffix = integer[1].replace("'", ""), integer[2]
            is_octal = digits[0] == "0" and digits.isdigit()
            yield self.span(i, i, str(int(digits, 8 if is_octal else 0) + 1) + suffix)
        if token.kind == "string" and (i == 0 or self.tokens[i - 1].kind != "string"):
            last = i
            while last + 1 < len(self.tokens) and self.tokens[last + 1].kind == "string":
                last += 1
            if last > i or token.text != '""':
                yield self.span(i, last, '""')

    def change_return(self, i):
        tokens = self.tokens
        if tokens[i].text != "return":
            return
        end = tokens.find({";"}, i, len(tokens))
        if end == i + 1:
            yield self.span(i, end, ";")
            return
        value = self.source[tokens[i + 1].start : tokens[end].start]
        if INTEGER.fullmatch(value) or value in ("true", "false"):
            return
        if value not in DEFAULTS:
            yield self.span(i, end, "return {};")
        yield self.span(i, end, "return true;")
        if tokens[end - 1].text == ")":
            yield self.span(i, end, "return;")

    def change_jump(self, i):
        """Those of loops; a break out of a switch goes."""
        tokens = self.tokens
        if tokens[i].text == "continue":
            yield self.span(i, i, "break")
        if tokens[i].text == "break":
            yield self.span(i, i, "" if self.is_in_switch(i) else "continue")

    def is_in_switch(self, i):
        tokens, around = self.tokens, self.tokens.enclosing[i]
        while around is not None:
            keyword = self.keyword_of(around - 1)
            if keyword in ("for", "while", "switch"):
                return keyword == "switch"
            around = tokens.enclosing[around]
        return False

    def keyword_of(self, parenthesis):
        """What stands before the parentheses that end here: "if", "switch", or the name of a function."""
        opening = self.tokens.opening.get(parenthesis)
        return "" if opening is None else self.tokens.text(opening - 1)

    def begins_statement(self, i):
        tokens = self.tokens
        previous = tokens.text(i - 1)
        if previous == ")":
            return self.keyword_of(i - 1) in ("if", "for", "while")
        around = tokens.enclosing[i]
        is_in_braces = around is None or tokens[around].text == "{"
        if previous == ":":
            return is_in_braces and self.is_label(i - 1)
        return is_in_braces and previous in (";", "{", "}", "else", "do")

    def is_label(self, colon):
        i = colon - 1
        while self.tokens.text(i) not in (";", "{", "}", "?", ""):
            if self.tokens[i].text in ("case", "default"):
                return True
            i -= 1
        return False

    def remove_statement(self, i):
        tokens = self.tokens
        if (
            not self.begins_statement(i)
            or tokens[i].text in NO_STATEMENT
            or tokens[i].text in (";", "{", "}")
        ):
            return
        limit = tokens.closing.get(tokens.enclosing[i], len(tokens))
        end = tokens.find({";", "{"}, i, limit)
        if end < limit and tokens[end].text == "{" and tokens[end - 1].kind == "name":
            end = tokens.find({";", "{"}, tokens.closing[end] + 1, limit)  # an object with braces
        if end == limit or tokens[end].text == "{":
            return
        statement = self.source[tokens[i].start : tokens[end].end]
        if not DECLARATION.match(" ".join(statement.split())):
            yield self.span(i, end, ";")
