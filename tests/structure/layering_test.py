"""Whether the sources hang together as docs/architecture.md has it: who includes whom."""

import pathlib
import re
import unittest

SOURCES = pathlib.Path(__file__).resolve().parents[2] / "src"
INCLUDE = re.compile(r'^\s*#\s*include "(\w+)/([^"]+)"', re.MULTILINE)
FIRST_INCLUDE = re.compile(r'^\s*#\s*include ["<]([^">]+)[">]', re.MULTILINE)

# What each room may include besides itself. Nothing stands in both directions.
ROOMS = {
    "handles": set(),
    "files": {"handles"},
    "kvtools": {"files", "handles"},
    "mirror": {"files", "kvtools"},
    "mfc": {"files", "handles", "kvtools"},
    "net": set(),
    "tiler": {"files", "handles"},
    "crashrpt": {"files", "handles"},
    "progress": {"kvtools", "mfc"},
    "job": {"files", "handles", "kvtools", "mfc", "progress", "tiler"},
    "publish": {"files", "handles", "kvtools", "mfc", "net", "progress"},
    "batch": {"files", "handles", "job", "kvtools", "mfc", "mirror", "progress", "tiler"},
    "app": {"crashrpt", "job", "kvtools", "mfc", "publish"},
}
# No rooms: the numbers of the resources, and what supports tests.
EVERYBODYS = {"resources"}
FOR_TESTS = {"support"}


def source_files():
    return [p for p in sorted(SOURCES.glob("*/**/*")) if p.suffix in (".cpp", ".h")]


def room_of(path):
    return path.relative_to(SOURCES).parts[0]


def is_for_tests(path):
    """Tests stand beside what they test; what supports them is kept in a folder of the room."""
    return "testing" in pathlib.PurePath(path).parts or re.search(r"_(test|fuzz)\.", str(path)) is not None


def included(path):
    return INCLUDE.findall(path.read_text(encoding="utf-8"))


class Layers(unittest.TestCase):
    def test_every_room_is_known(self):
        self.assertEqual({room_of(path) for path in source_files()}, set(ROOMS))

    def test_rooms_stand_above_one_another(self):
        """The table itself has no circle."""
        above = dict(ROOMS)
        while above:
            lowest = {room for room, below in above.items() if not below & set(above)}
            self.assertTrue(lowest, f"a circle: {sorted(above)}")
            for room in lowest:
                del above[room]

    def test_no_room_includes_one_above_it(self):
        for path in source_files():
            room = room_of(path)
            allowed = ROOMS[room] | EVERYBODYS | {room}
            if is_for_tests(path.relative_to(SOURCES)):
                allowed |= FOR_TESTS
            for other, name in included(path):
                with self.subTest(file=str(path.relative_to(SOURCES)), include=f"{other}/{name}"):
                    self.assertIn(other, allowed)

    def test_product_includes_nothing_that_is_for_tests(self):
        for path in source_files():
            if is_for_tests(path.relative_to(SOURCES)):
                continue
            for other, name in included(path):
                with self.subTest(file=str(path.relative_to(SOURCES)), include=f"{other}/{name}"):
                    self.assertFalse(other in FOR_TESTS or is_for_tests(name))

    def test_net_knows_windows_at_its_edges_only(self):
        """Everything else is portable, and Windows' macros change no name of it."""
        for path in sorted((SOURCES / "net").glob("**/*")):
            if path.suffix not in (".cpp", ".h") or re.search(r"_windows(_test)?\.cpp$", path.name):
                continue
            with self.subTest(file=str(path.relative_to(SOURCES))):
                self.assertNotRegex(
                    path.read_text(encoding="utf-8"), r"#\s*include <(windows|winsock2?|ws2\w+)\.h>"
                )

    def test_each_source_includes_its_own_header_first(self):
        """So that a header that needs another one before it does not compile."""
        for path in source_files():
            if path.suffix != ".cpp" or not path.with_suffix(".h").exists():
                continue
            with self.subTest(file=str(path.relative_to(SOURCES))):
                first = FIRST_INCLUDE.search(path.read_text(encoding="utf-8"))
                self.assertEqual(pathlib.PurePath(first[1]).name, path.with_suffix(".h").name)


if __name__ == "__main__":
    unittest.main()
