"""Says of a KML file, and of a super-overlay of many, which rules it breaks: of the schema of OGC KML 2.2
(kml_schema.py), of its Abstract Test Suite (kml_ats.py), and of those by which a super-overlay
is seen without holes and doubles (kml_overlay.py).

    self.assertEqual(kml_rules.faults(text), [])
    self.assertEqual(kml_rules.faults_of_overlay(folder / "doc.kml"), [])

By hand: python3 kml_rules.py [--overlay] FILE..., or --rules for the list."""

import pathlib
import sys

from kml_ats import CHECKS, NOT_APPLICABLE, faults_of_root
from kml_overlay import faults_of_overlay
from kml_tree import NotWellFormed, parse

__all__ = ["faults", "faults_of_overlay", "rules"]


def faults(content, resolve=None):
    """Sentences about one file, a str or bytes; empty where all is well. What links lead to is looked at with
    a resolver only (kml_ats.py)."""
    try:
        return faults_of_root(parse(content), resolve)
    except NotWellFormed as error:
        return [str(error)]


def rules():
    """One line for each test of the suite, and for what is derived."""
    lines = [(number, f"ATC {number}: not applicable, {why}") for number, why in NOT_APPLICABLE.items()]
    for number, group in CHECKS.items():
        for asks, check in group:
            name = f"{check.__module__}.{check.__name__}"
            derived = number == "derived"
            lines.append(
                (78, f"derived: {asks} ({name})") if derived else (number, f"ATC {number}: {asks} ({name})")
            )
    return [line for _, line in sorted(lines)]


def main(words):
    if words == ["--rules"]:
        print("\n".join(rules()))
        return 0
    check = faults_of_overlay if "--overlay" in words else lambda path: faults(path.read_bytes())
    found = [each for word in words if word != "--overlay" for each in check(pathlib.Path(word))]
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
