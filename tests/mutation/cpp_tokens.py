"""The tokens of a C++ source, as far as mutants need them. Comments and directives are none."""

import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""
    (?P<skipped> //(?:[^\n\\]|\\.|\\\n)* | /\*.*?\*/ | ^[ \t]*\#(?:[^\n\\]|\\.|\\\n)* )
  | (?P<string> (?:u8|[uUL])?R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)" | (?:u8|[uUL])?"(?:[^"\\\n]|\\.)*" )
  | (?P<char> (?:u8|[uUL])?'(?:[^'\\\n]|\\.)+' )
  | (?P<number> \.?\d(?:[eEpP][+-]|'?[\w.])* )
  | (?P<name> [A-Za-z_]\w* )
  | (?P<operator> <=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[+\-*/%&|^]=|[^\w\s] )
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


class Tokens:
    """All tokens, and for each bracket its other half."""

    def __init__(self, source):
        self.source = source
        self.all = [
            Token(m.lastgroup, m[m.lastgroup], m.start(), m.end())
            for m in TOKEN.finditer(source)
            if m.lastgroup != "skipped"
        ]
        self.closing = {}  # index of an opening bracket: that of its closing one
        self.opening = {}  # the other way
        self.enclosing = []  # for each token: the index of the innermost bracket around it, or None
        open_brackets = []
        for i, token in enumerate(self.all):
            if open_brackets and token.text == CLOSING[self.all[open_brackets[-1]].text]:
                self.opening[i] = open_brackets.pop()
                self.closing[self.opening[i]] = i
            self.enclosing.append(open_brackets[-1] if open_brackets else None)
            if token.text in CLOSING:
                open_brackets.append(i)
        if open_brackets:
            raise ValueError(f"a bracket is not closed: {self.all[open_brackets[-1]]}")

    def __len__(self):
        return len(self.all)

    def __getitem__(self, index):
        return self.all[index]

    def text(self, index):
        """Empty before the first and behind the last one."""
        return self.all[index].text if 0 <= index < len(self.all) else ""

    def has_blanks_around(self, index):
        """clang-format puts them around operators of two operands, and not in templates and types."""
        token = self.all[index]
        return self.source[token.start - 1].isspace() and self.source[token.end].isspace()

    def find(self, texts, begin, end):
        """The first token of these texts from begin on that is in no further bracket; end without one."""
        i = begin
        while i < end and self.all[i].text not in texts:
            i = self.closing.get(i, i) + 1
        return min(i, end)

    def top_level(self, begin, end):
        """The texts of the tokens from begin to end that are in no further bracket."""
        texts = set()
        while begin < end:
            texts.add(self.all[begin].text)
            begin = self.closing.get(begin, begin) + 1
        return texts
