"""The Abstract Test Suite of OGC KML 2.2, OGC 07-134r2, as far as it is about what a super-overlay has.

CHECKS says of each test what it asks, and which function sees to it; NOT_APPLICABLE says of each other test
why it is not here. Together they are the whole suite: 1 to 41 are level 1 (must), 42 to 68 level 2 (should),
69 to 77 level 3 (may). "derived" is what no test asks, though the clauses of OGC 07-147r2 say it.

A resolver is a function that has from the text of a link what it leads to: resolve(href, length) returns the
first bytes of it, all for -1; None where there is nothing; LookupError where that cannot be told."""

import kml_ats_should  # noqa: F401  # enters its checks
from kml_ats_must import CHECKS, root_element

NOT_APPLICABLE = {
    **dict.fromkeys((3, 12, 13, 14, 15, 16, 17, 43, 48, 66, 69, 70), "no geometry"),
    **dict.fromkeys((29, 34, 44, 50, 55, 73), "no Model"),
    **dict.fromkeys((32, 75), "no Model, and so no Orientation"),
    **dict.fromkeys((19, 35, 52, 62), "no PhotoOverlay"),
    **dict.fromkeys((20, 22, 23), "no NetworkLinkControl, and so no Update"),
    **dict.fromkeys((24, 30, 31), "no address, phone number or author"),
    **dict.fromkeys((25, 26, 27, 28, 49), "no Schema and no data of its own"),
    **dict.fromkeys((42, 63), "no style of geometry"),
    57: "no ScreenOverlay",
    67: "no Placemark",
}


def faults_of_root(root, resolve=None):
    """All sentences about one file."""
    wrong_root = list(root_element(root, resolve))
    if wrong_root:
        return wrong_root
    return [each for group in CHECKS.values() for _, check in group for each in check(root, resolve)]
