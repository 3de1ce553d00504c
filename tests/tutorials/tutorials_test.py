"""Whether the committed tutorials belong to their sources and are what a PDF viewer can work with."""

import pathlib
import re
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
TUTORIALS = TOP / "docs" / "tutorials"
sys.path.insert(0, str(TOP / "scripts"))

import checksums  # noqa: E402

# The names that the program opens, and their titles.
TITLES = {
    "MOS_InputOutput.pdf": "Input and output of Mosaicon",
    "Setup a simple Web Server for ZPD datasets.pdf": "Set up a simple web server for ZPD datasets",
}


class TutorialsTest(unittest.TestCase):
    def content(self, name):
        data = (TUTORIALS / name).read_bytes()
        self.assertTrue(data.startswith(b"%PDF-"))
        self.assertTrue(data.rstrip().endswith(b"%%EOF"))
        return data.decode("latin-1")

    def test_no_source_has_changed_since_the_tutorials_were_made(self):
        files = [path for path in TUTORIALS.iterdir() if path.name != "checksums.txt"]
        files.append(TOP / "resources" / "art" / "mosaicon.svg")
        self.assertEqual(
            checksums.problems(TUTORIALS / "checksums.txt", files), [], "run docs/tutorials/make-pdfs"
        )

    def test_the_two_tutorials_of_the_program_are_there(self):
        self.assertEqual({path.name for path in TUTORIALS.glob("*.pdf")}, set(TITLES))

    def test_each_has_several_pages(self):
        for name in TITLES:
            with self.subTest(name):
                pages = re.findall(r"/Type\s*/Page\b(?!s)", self.content(name))
                self.assertGreaterEqual(len(pages), 3)
                self.assertLessEqual(len(pages), 9)

    def test_each_has_a_title_and_bookmarks(self):
        for name, title in TITLES.items():
            with self.subTest(name):
                content = self.content(name)
                self.assertIn(f"/Title ({title})", content)
                self.assertRegex(content, r"/Outlines \d+ 0 R")
                self.assertGreater(len(re.findall(r"/Title \(", content)), 10, "bookmarks")

    def test_none_tells_when_it_was_made(self):
        for name in TITLES:
            with self.subTest(name):
                self.assertNotIn("/CreationDate", self.content(name))


if __name__ == "__main__":
    unittest.main()
