"""That the files of the map pages can be used as they are: by old browsers, without handlers in the HTML, and
with no address in them but the two of the background map."""

import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from es5 import newer_than_es5  # noqa: E402
from pyramid import LEAFLET, OWN_FILES, SOURCE_MAP, SOURCES  # noqa: E402

TOO_NEW = """
let a = 1;
const a = 1;
class A {}
f(x => x);
a = `text`;
f(...a);
a = b ** c;
a = b?.c;
a = b ?? c;
for (var a of b) {}
function f(a = 1) {}
function f(a, b,) {}
var {a} = b;
var [a] = b;
a = { f() { return 1; } };
a = { b, c };
a = { [b]: 1 };
a = 0b11;
try {} catch {}
a = new Promise(f);
a = Object.assign({}, b);
a = Math.sinh(b);
a = b.includes(c);
node.append(b);
async function f() {}
a = 'it\\'s' + `x`;
a = /'/; let b = '';
"""
FINE = """
/* let a = `x`; */ // const b => c
var a = 'let `x` => ...', b = "it's ?? const", c = /[`/]=>'/;
a = { 'class': 1, f: function (x, y) { return x > y ? .5 : y; }, let: 2 };
if (a) { b(); } for (var i = 0; i < a.length; i++) { if (a[i] >= b) { c(a[i]); } }
a = Object.keys(b).map(function (each) { return each / 2 / 3; });
switch (a) { case 1: b(); }
a = [1, 2], b = [c, a];
"""


class FilesTest(unittest.TestCase):
    def test_the_scripts_are_for_old_browsers_too(self):
        scripts = {
            name: (SOURCES / name).read_text(encoding="utf-8") for name in OWN_FILES if name.endswith(".js")
        }
        self.assertEqual(len(scripts), 4)
        page = (SOURCES / "page.html").read_text(encoding="utf-8")
        [scripts["page.html"]] = re.findall(r"<script>(.*?)</script>", page, re.DOTALL)
        for name, script in scripts.items():
            with self.subTest(name):
                self.assertEqual(newer_than_es5(script), [])

    def test_the_check_finds_what_is_too_new(self):
        for line in TOO_NEW.strip().splitlines():
            with self.subTest(line):
                self.assertNotEqual(newer_than_es5(line), [])
        self.assertEqual(newer_than_es5(FINE), [])
        self.assertRegex(newer_than_es5("/*\n*/\nlet a;")[0], "^line 3: ")

    def test_no_other_host_is_named_but_that_of_the_background(self):
        found = set()
        for path in SOURCES.iterdir():
            text = path.read_text(encoding="utf-8")
            found |= set(re.findall(r"(?:https?:)?//(?!#)[a-z0-9.-]+\.[a-z]+[^\s'\"]*", text))
        self.assertEqual(
            found,
            {
                "https://tile.openstreetmap.org/{z}/{x}/{y}.png",
                "https://www.openstreetmap.org/copyright",
                "http://www.w3.org/2000/svg",
            },
        )

    def test_the_page_has_no_handlers_and_known_marks(self):
        page = (SOURCES / "page.html").read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"\son[a-z]+\s*=", page), [])
        self.assertEqual(sorted(re.findall("@[A-Z]+@", page)), ["@DATA@", "@KIND@", "@TITLE@", "@TITLE@"])
        for script in OWN_FILES:
            self.assertNotIn("innerHTML", (SOURCES / script).read_text(encoding="utf-8"))

    def test_leaflet_is_left_with_no_reference_to_its_sources(self):
        for name in ("leaflet.css", "leaflet.min.js"):
            text = (LEAFLET / name).read_text(encoding="utf-8")
            self.assertNotIn("sourceMappingURL", SOURCE_MAP.sub("", text))
            self.assertGreater(len(SOURCE_MAP.sub("", text)), len(text) - 100)


if __name__ == "__main__":
    unittest.main()
