"""Compiles one mutant, links it into a test program in place of the original, and runs that."""

import json
import math
import os
import pathlib
import re
import resource
import shlex
import shutil
import subprocess
from dataclasses import dataclass

# A mutant may run wild: it gets neither all memory nor the whole disk nor much time.
MOST_MEMORY = 1 << 30
LONGEST_FILE = 5 << 30  # some tests make sparse ones of more than 4 GiB
LONGEST_WAIT = 60
GTEST = ["--gtest_fail_fast", "--gtest_brief=1"]


@dataclass(frozen=True)
class Variant:
    """With or without the sanitizers: they cost time, and notice more."""

    name: str
    flags: tuple


PLAIN = Variant("plain", ())
SANITIZED = Variant("sanitized", ("-fsanitize=address,undefined", "-fno-sanitize-recover=undefined"))


class BuildFolder:
    """What a configured Ninja build knows: how a source is compiled, and how a program is linked."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        commands = json.loads((self.folder / "compile_commands.json").read_text(encoding="utf-8"))
        # Of several targets that compile a source the first counts: the library that its tests link.
        self.commands = {entry["file"]: entry for entry in reversed(commands)}

    def build(self, programs):
        subprocess.run(["ninja", "-C", self.folder, *programs], check=True, stdout=subprocess.DEVNULL)

    def compile_command(self, source):
        """Without the source and the object, and with warnings off: a mutant earns some."""
        command = shlex.split(self.commands[str(source)]["command"])
        output = command.index("-o")
        del command[output : output + 2]
        left_out = {"-c", str(source), "-Werror"}
        return [c for c in command if c not in left_out] + ["-w", "-fmax-errors=1"]

    def link_command(self, program):
        ninja = ["ninja", "-C", self.folder, "-t", "commands", "-s", program]
        return subprocess.run(ninja, check=True, capture_output=True, text=True).stdout.strip()


class TestPrograms:
    """One folder to work in, for one source and its programs at a time: each thread has its own."""

    def __init__(self, build, source, programs, scratch):
        self.build = build
        self.source = pathlib.Path(source)
        self.scratch = pathlib.Path(scratch)
        shutil.rmtree(self.scratch, ignore_errors=True)
        self.scratch.mkdir(parents=True)
        self.compile_command = build.compile_command(source)
        self.links = [build.link_command(program) for program in programs]
        self.seconds = {}  # of processor time that a program may take, by variant

    def try_original(self, variant):
        """Must pass, or nothing could be said of mutants. Measures how long that takes."""
        text = self.source.read_text(encoding="utf-8")
        header = self.scratch / f"{variant.name}.h"
        header.write_text("\n".join(re.findall(r"^#include .*", text, re.MULTILINE)) + "\n", encoding="utf-8")
        self.compile(["-x", "c++-header", header, "-o", f"{header}.gch"], variant, check=True)
        self.seconds[variant] = LONGEST_WAIT
        start = resource.getrusage(resource.RUSAGE_CHILDREN)
        if not self.passes(text, variant):
            raise RuntimeError(f"{self.source} does not pass its own tests, unchanged ({variant.name})")
        end = resource.getrusage(resource.RUSAGE_CHILDREN)
        taken = end.ru_utime + end.ru_stime - start.ru_utime - start.ru_stime
        self.seconds[variant] = 1 + math.ceil(2 * taken)

    def passes(self, text, variant=PLAIN):
        """Whether all programs pass with this text as the source; None when it does not compile."""
        if variant not in self.seconds:
            self.try_original(variant)
        mutant, object_file = self.scratch / self.source.name, self.scratch / "mutant.o"
        mutant.write_text(text, encoding="utf-8")
        included = ["-include", self.scratch / f"{variant.name}.h"]
        if self.compile([*included, "-c", mutant, "-o", object_file], variant).returncode != 0:
            return None
        for link in self.links:
            if not self.link(link, object_file, variant):
                return None
            if not self.run(variant):
                return False
        return True

    def compile(self, arguments, variant, check=False):
        command = [*self.compile_command, *variant.flags, *map(str, arguments)]
        quiet = None if check else subprocess.DEVNULL
        # What is compiled only once is not kept.
        environment = {**os.environ, "CCACHE_DISABLE": "1"}
        return subprocess.run(command, cwd=self.build.folder, stderr=quiet, env=environment, check=check)

    def link(self, command, object_file, variant):
        """What the mutant defines is not taken from a library behind it. False when it cannot be linked."""
        mutant = " ".join([*variant.flags, shlex.quote(str(object_file))])
        output = shlex.quote(str(self.scratch / "program"))
        changed, count = re.subn(r" -o \S+", lambda _: f" {mutant} -o {output}", command, count=1)
        assert count == 1, command
        linked = subprocess.run(changed, shell=True, cwd=self.build.folder, stderr=subprocess.DEVNULL)
        return linked.returncode == 0

    def run(self, variant):
        """A program that hangs has noticed it."""
        place = self.scratch / "place"
        shutil.rmtree(place, ignore_errors=True)
        place.mkdir()
        environment = {
            **os.environ,
            "TMPDIR": str(place),
            "ASAN_OPTIONS": "hard_rss_limit_mb=2048",
            "LSAN_OPTIONS": f"suppressions={pathlib.Path(__file__).parents[1] / 'lsan.supp'}",
        }
        limits = ["--core=0", f"--cpu={self.seconds[variant]}", f"--fsize={LONGEST_FILE}"]
        if variant is PLAIN:  # AddressSanitizer reserves far more than it uses
            limits.append(f"--as={MOST_MEMORY}")
        try:
            finished = subprocess.run(
                ["prlimit", *limits, self.scratch / "program", *GTEST],
                cwd=place,
                env=environment,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL,
                timeout=LONGEST_WAIT,
            )
        except subprocess.TimeoutExpired:
            return False
        return finished.returncode == 0
