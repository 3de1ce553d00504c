"""Tests of scripts/mutate: which mutants it makes of a source, and what it says of those that survive."""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import mutate
from equivalents import Equivalents
from mutants import mutants_of
from rooms import ROOMS


def mutations(source):
    """What becomes of a source of one line."""
    return sorted(mutant.after for mutant in mutants_of(source))


class Operators(unittest.TestCase):
    def expect(self, source, *expected):
        self.assertEqual(mutations(source), sorted(expected))

    def test_comparisons_are_flipped_and_their_boundaries_moved(self):
        self.expect("bool b = x < y;", "bool b = x <= y;", "bool b = x >= y;")
        self.expect("bool b = x >= y;", "bool b = x > y;", "bool b = x < y;")
        self.expect("bool b = x == y;", "bool b = x != y;")

    def test_logic_is_changed(self):
        self.expect("bool b = x && !y;", "bool b = x || !y;", "bool b = x && y;")

    def test_sums_steps_and_integers_are_off_by_one(self):
        self.expect("int i = x + y;", "int i = x - y;")
        self.expect("int i = 0x10u;", "int i = 17u;")
        self.expect("int i = 010;", "int i = 9;")
        self.assertIn("{ --i; }", mutations("{ ++i; }"))

    def test_conditions_without_an_operator_are_negated(self):
        self.expect("if (f(1)) {}", "if (!(f(1))) {}", "if (f(2)) {}")

    def test_choices_are_swapped(self):
        self.expect("auto a = b ? c(d, e) : f;", "auto a = b ? f : c(d, e);")
        self.expect("g(b ? c : d, e)", "g(b ? d : c, e)")

    def test_returned_values_are_replaced(self):
        self.expect("return x;", "return {};", "return true;")
        self.expect("return true;", "return false;")
        self.expect("return nullptr;", "return true;")
        self.expect("return f();", "return {};", "return true;", "return;")
        self.expect("return;", ";")

    def test_loops_go_on_or_end(self):
        self.expect("while (x) { break; }", "while (!(x)) { break; }", "while (x) { continue; }")
        self.expect("for (;;) { continue; }", "for (;;) { break; }")
        self.expect("switch (x) { case kA: break; }", "switch (x) { case kA: ; }")

    def test_statements_are_removed(self):
        self.expect("void f() { g(); }", "void f() { ; }")
        self.expect("void f() { a.b->c = d; }", "void f() { ; }")
        self.expect("void f() { const Guard guard(x); }", "void f() { ; }")
        self.expect("void f() { else g(); }", "void f() { else ; }")
        self.expect("switch (x) { case kA: g(); }", "switch (x) { case kA: ; }")

    def test_a_statement_ends_behind_the_braces_in_it(self):
        mutant = mutations("void f() { sort(a, [](int x) { return x; }); }")
        self.assertIn("void f() { ; }", mutant)

    def test_a_mutant_tells_the_lines_that_it_changes(self):
        mutant = mutants_of("void f() {\n  g(a,\n    b);\n}\n")[0]
        self.assertEqual((mutant.line, mutant.before, mutant.after), (2, "g(a, b);", ";"))

    def test_literals_are_emptied_as_a_whole(self):
        self.expect('auto a = "x == 1"\n  "y";', 'auto a = "";')
        self.expect('auto a = "";')
        self.expect('auto a = R"(x "== 1)";', 'auto a = "";')


class LeftAlone(unittest.TestCase):
    def test_comments(self):
        self.assertEqual(mutations("// return x == 1;\n/* if (!a) b(); */"), [])

    def test_inside_of_literals(self):
        for literal in ("'<'", "'\\''", "'!'"):
            self.assertEqual(mutations(f"auto a = {literal};"), [])

    def test_directives(self):
        self.assertEqual(mutations('#include "x.h"\n#if X == 1\n#define Y(a) \\\n  (a + 1)\n#endif\n'), [])

    def test_assertions(self):
        self.assertEqual(mutations("static_assert(sizeof(int) == 4); assert(x == 1);"), [])

    def test_types(self):
        for source in (
            "template <typename T, int n = 1> T f(T&& x);",
            "std::vector<std::vector<int>> f(X&& x);",
            "std::map<int, std::string> m;",
            "bool operator==(const X&) const = default;",
            '[[nodiscard("1")]] int f();',
            "using A = B<1>;",
            'extern "C" int f();',
        ):
            self.assertEqual(mutations(source), [], source)

    def test_definitions(self):
        for source in ("namespace a {\nclass B {\n public:\n  int m = x;\n};\n}", "enum class A { kB, kC };"):
            self.assertEqual(mutations(source), [], source)


SOURCE = """bool IsSmall(int x) {
  return x < 10;
}
int Unused() {
  return 7;
}
"""
WEAK_TEST = "bool IsSmall(int x); int main() { return IsSmall(1) && !IsSmall(99) ? 0 : 1; }"
TEST = "bool IsSmall(int x); int main() { return IsSmall(9) && !IsSmall(10) ? 0 : 1; }"
UNUSED = "room/small.cpp\nreturn 7;\nreturn 8;\nbecause nobody calls it\n"
# As CMake writes it: the object of the test comes first, then the library with what it tests.
NINJA = """
rule cxx
  command = c++ -c $in -o $out
rule library
  command = ar rcs $out $in
rule link
  command = : && c++ $in -o $out libsmall.a && :
build small.o: cxx {top}/src/room/small.cpp
build small_test.o: cxx {top}/src/room/small_test.cpp
build libsmall.a: library small.o
build src/room/small_test: link small_test.o | libsmall.a
"""


class WholeRun(unittest.TestCase):
    """On a small program, built as the real ones are."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = pathlib.Path(folder.name)
        build = self.top / "build"
        for patch in (
            mock.patch.multiple(mutate, TOP=self.top, BUILD=build, SURVIVORS=build / "survivors.json"),
            mock.patch.dict(ROOMS, {"room": {"small_test": ["small.cpp"]}}, clear=True),
        ):
            patch.start()
            self.addCleanup(patch.stop)

    def write(self, name, text):
        path = self.top / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def mutate(self, source, test, equivalents="", options=()):
        """The exit code, and what it prints."""
        self.write("src/room/small.cpp", source)
        self.write("src/room/small_test.cpp", test)
        self.write("tests/mutation/equivalent.txt", equivalents)
        self.write("build/build.ninja", NINJA.format(top=self.top))
        commands = subprocess.check_output(
            ["ninja", "-C", self.top / "build", "-t", "compdb", "cxx"], text=True
        )
        self.write("build/compile_commands.json", commands)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            code = mutate.main(list(options))
        self.assertEqual((self.top / "src/room/small.cpp").read_text(encoding="utf-8"), source)
        return code, printed.getvalue()

    def test_survivors_are_reported_and_too_many_are_an_error(self):
        code, printed = self.mutate(SOURCE, WEAK_TEST)
        self.assertEqual(code, 1)
        self.assertIn("room/small.cpp:2: return x < 10;\n  -> return x <= 10;\n", printed)
        self.assertIn("room/small.cpp:2: return x < 10;\n  -> return x < 11;\n", printed)
        self.assertNotIn("return x >= 10", printed)
        self.assertEqual(row(printed, "all of room"), ["6", "3", "3", "0", "50.0"])

    def test_equivalents_do_not_count(self):
        code, printed = self.mutate(SOURCE, TEST, UNUSED)
        self.assertEqual((code, row(printed, "room/small.cpp")), (0, ["6", "5", "0", "1", "100.0"]))

    def test_stale_equivalents_are_an_error(self):
        for entry, complaint in (
            (UNUSED.replace("7", "5"), "listed as equivalent, but there is no such mutant: return 5;"),
            (UNUSED, "listed as equivalent, but there is no such mutant: return 7;"),  # twice
            (
                UNUSED.replace("small.cpp", "other.cpp"),
                "listed as equivalent, but not mutated: room/other.cpp",
            ),
        ):
            code, printed = self.mutate(SOURCE, TEST, f"# why\n\n{UNUSED}\n{entry}")
            self.assertEqual((code, complaint in printed), (1, True), printed)

    def test_an_equivalent_needs_a_reason(self):
        with self.assertRaisesRegex(ValueError, "because"):
            Equivalents("room/small.cpp\nreturn 7;\nreturn 8;\n")

    def test_equivalents_that_are_noticed_are_an_error(self):
        entry = "room/small.cpp\nreturn x < 10;\nreturn x <= 10;\nbecause nobody asks for ten\n"
        code, printed = self.mutate(SOURCE, TEST, f"{UNUSED}\n{entry}")
        self.assertEqual(code, 1)
        self.assertIn("listed as equivalent, but it was noticed: return x < 10; -> return x <= 10;", printed)

    def test_what_does_not_compile_is_not_counted(self):
        source = 'const char* Name() {\n  return "x";\n}\n'
        test = "const char* Name(); int main() { return Name()[0] - 'x'; }"
        code, printed = self.mutate(source, test)
        self.assertEqual((code, row(printed, "all of room")), (0, ["2", "2", "0", "0", "100.0"]))

    def test_a_hang_is_noticed(self):
        source = "int Same(int i) {\n  for (;;) {\n    break;\n  }\n  return i;\n}\n"
        code, printed = self.mutate(source, "int Same(int i); int main() { return Same(4) - 4; }")
        self.assertEqual((code, row(printed, "all of room")), (0, ["3", "3", "0", "0", "100.0"]))

    def test_the_sanitizers_notice_what_the_test_does_not(self):
        source = "void Clear(char* text, int size) {\n  for (int i = 0; i < size; ++i) text[i] = 0;\n}\n"
        test = "void Clear(char* text, int size); int main() { char* t = new char[2]{1, 2}; Clear(t, 2); "
        test += "const int left = t[0] + t[1]; delete[] t; return left; }"
        code, printed = self.mutate(source, test)
        self.assertEqual((code, row(printed, "all of room")), (0, ["6", "6", "0", "0", "100.0"]), printed)

    def test_a_program_that_fails_unchanged_is_no_measure(self):
        with self.assertRaisesRegex(RuntimeError, "does not pass its own tests, unchanged"):
            self.mutate(SOURCE, "bool IsSmall(int x); int main() { return 1; }")

    def test_survivors_can_be_tried_again(self):
        self.mutate(SOURCE, WEAK_TEST)
        _, printed = self.mutate(SOURCE, TEST, options=["--again"])
        self.assertEqual(row(printed, "all of room"), ["3", "2", "1", "0", "66.7"])

    def test_a_sample_is_the_same_for_the_same_seed(self):
        self.write("src/room/small.cpp", SOURCE)
        samples = []
        for seed in ("1", "1", "2", "3", "4"):
            printed = io.StringIO()
            with contextlib.redirect_stdout(printed):
                self.assertEqual(mutate.main(["--list", "--sample", "2", "--seed", seed]), 0)
            samples.append(printed.getvalue())
            self.assertEqual(printed.getvalue().count("->"), 2)
        self.assertEqual(samples[0], samples[1])
        self.assertGreater(len(set(samples)), 1)


def row(printed, name):
    """The last line of the table with this name, without it."""
    return [line for line in printed.splitlines() if line.startswith(name + " ")][-1][len(name) :].split()


if __name__ == "__main__":
    unittest.main()
