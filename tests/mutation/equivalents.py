"""The list of mutants that no test can notice, because the program does the same. Each has a reason.

An entry has four lines: the source, the lines before and after the mutation, and why nothing differs; an
empty line ends it. The same entry twice stands for two places with the same text. Lines that begin with #
are comments.
"""

from collections import Counter


class Equivalents:
    def __init__(self, text=""):
        self.counts = Counter()
        lines = [line.strip() for line in text.splitlines() if not line.startswith("#")]
        for block in "\n".join(lines).split("\n\n"):
            if not block.strip():
                continue
            entry = block.strip().split("\n")
            if len(entry) != 4 or not entry[3].startswith("because "):
                raise ValueError(f"an entry is file, before, after, because ...:\n{block}")
            self.counts[tuple(entry[:3])] += 1

    def files(self):
        return sorted({key[0] for key in self.counts})

    def beyond(self, file, mutants):
        """The entries of a file that are not among these mutants."""
        there = Counter((file, m.before, m.after) for m in mutants)
        return sorted(key for key, count in self.counts.items() if key[0] == file and count > there[key])

    def split(self, file, survivors):
        """Which of the survivors are known as equivalent, and which are not."""
        left, known, unknown = Counter(self.counts), [], []
        for mutant in survivors:
            key = (file, mutant.before, mutant.after)
            (known if left[key] > 0 else unknown).append(mutant)
            left[key] -= 1
        return known, unknown
