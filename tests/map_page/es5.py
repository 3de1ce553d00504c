"""Finds in a script what browsers from the time of ECMAScript 5 do not know. It is no parser: it looks for
the usual newer words and signs in what is left when texts, comments and regular expressions are taken out."""

import re

# In this order: what begins first is what it is. A regular expression stands where a value is expected.
TEXTS = re.compile(
    r"""/\*.*?\*/ | //[^\n]* | '(?:\\.|[^'\\\n])*' | "(?:\\.|[^"\\\n])*" |
        (?<=[(,=:\[!&|?;{}\n])\s*/(?:\\.|\[(?:\\.|[^\]\\\n])*\]|[^/\\\n\[])+/[a-z]*""",
    re.DOTALL | re.VERBOSE,
)
NEWER = {
    "words of newer versions": r"\b(let|const|class|extends|super|async|await|yield|import|export)\b(?!\s*:)",
    "arrow": r"=>",
    "template text": r"`",
    "spread or rest": r"\.\.\.",
    "power": r"\*\*",
    "optional chain or ??": r"\?\.(?!\d)|\?\?",
    "for of": r"\bfor\s*\([^;()]*\bof\b",
    "default of a parameter": r"\bfunction\b[^(){]*\([^){]*=",
    "comma after the last parameter": r"\bfunction\b[^(){]*\([^){]*,\s*\)",
    "destructuring": r"\bvar\s*[\[{]",
    "short method": r"[{,]\s*(?!(if|for|while|switch|with|function|catch)\b)[A-Za-z_$][\w$]*"
    r"\s*\([^()]*\)\s*\{",
    "short property": r"[{,]\s*[A-Za-z_$][\w$]*\s*,\s*[A-Za-z_$][\w$]*\s*\}",
    "computed property": r"[{,]\s*\[[^\]]*\]\s*:",
    "binary or octal number": r"\b0[bBoO]\d",
    "catch without a name": r"\bcatch\s*\{",
    "object of newer versions": r"(?<![\w$.])(Promise|Map|Set|WeakMap|Symbol|Proxy|Reflect|fetch|URL"
    r"|URLSearchParams|ResizeObserver|IntersectionObserver|globalThis|BigInt)\b(?!\s*:)",
    "function of newer versions": r"\b(Object\.(assign|entries|values|is)|Array\.(from|of)"
    r"|Number\.(is\w+|parse\w+)"
    r"|Math\.(a?sinh|a?cosh|a?tanh|hypot|trunc|sign|cbrt|log2|log10|log1p|expm1|fround|clz32))\b",
    "method of newer versions": r"\.(includes|startsWith|endsWith|repeat|padStart|padEnd|find|findIndex|fill"
    r"|flat|closest|matches|append|prepend|before|after|replaceWith|replaceChildren|toggleAttribute)\s*\(",
}


def newer_than_es5(script):
    """Sentences with the line of each thing that is too new."""
    plain = TEXTS.sub(lambda found: "''" + "\n" * found[0].count("\n"), script)
    return [
        f"line {plain.count(chr(10), 0, found.start()) + 1}: {name}: {found[0]}"
        for name, pattern in NEWER.items()
        for found in re.finditer(pattern, plain)
    ]
