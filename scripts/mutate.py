#!/usr/bin/env python3
"""Puts small faults into a folder's code, one at a time, and tells which of them its tests notice.

    scripts/mutate.py datacompare --count 20 --seed 1
    scripts/mutate.py data/base --test data_tests --test data_local_tests
    scripts/mutate.py scripting --list                 the faults, without building anything

A fault is a negated condition, a swapped operator, a number that is off by one, a changed truth
value or a dropped statement. The sample is the same for the same seed and code, and holds as many
of each kind as there are. A fault is caught when a test program fails, crashes or takes three times
its time; one that doesn't compile is replaced by another. Files are put back as they were, also
after Ctrl-C; don't edit them meanwhile.

Faults that change nothing that anybody could see are listed in scripts/equivalent_mutants.txt, a
line each as the survivors are printed ("path: line => changed line"), and not counted.

The exit status is 0 whatever the score is, 2 when the tests fail without any fault.
"""
import argparse
import random
import re
import signal
import subprocess
import sys
import time
from collections import defaultdict, namedtuple
from pathlib import Path

import layout

ROOT = layout.ROOT
EQUIVALENT = ROOT / "scripts" / "equivalent_mutants.txt"

Mutant = namedtuple("Mutant", "path line kind before after")

SWAPS = {" == ": " != ", " != ": " == ", " < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ",
         " && ": " || ", " || ": " && ", " + 1": " - 1", " - 1": " + 1", "++": "--", "--": "++",
         "+=": "-=", "-=": "+="}
SWAP = re.compile("|".join(re.escape(sign) for sign in sorted(SWAPS, key=len, reverse=True)))
NUMBER = re.compile(r"(?<![\w.'])\d+(?![\w.'])")
TRUTH = re.compile(r"\b(true|false)\b")
CONDITION = re.compile(r"\bif \(")
# One statement in one line that declares nothing and leaves nothing.
STATEMENT = re.compile(r"^\s+(?!return\b|throw\b|break\b|continue\b|case\b|using\b|delete\b|else\b|"
                       r"if\b|for\b|while\b|switch\b|do\b)[\w.:*\[\]>()-]+(\(.*\)| [-+|&]?= .*|\+\+|--);$")


def condition_end(code, start):
    """The place of the parenthesis that closes the one at `start`; -1 when that is in another line."""
    depth = 0
    for place in range(start, len(code)):
        depth += (code[place] == "(") - (code[place] == ")")
        if depth == 0:
            return place
    return -1


def line_mutants(line, code):
    """(kind, changed line) of one line; `code` has blanks where comments and literals stand."""
    for found in CONDITION.finditer(code):
        start = found.end() - 1
        end = condition_end(code, start)
        inner = code[start + 1:end]
        if end > 0 and ";" not in inner and not re.search(r"(?<![=!<>])=(?!=)", inner):
            yield "negated", f"{line[:start]}(!({line[start + 1:end]})){line[end + 1:]}"
    for found in SWAP.finditer(code):
        yield "swapped", line[:found.start()] + SWAPS[found.group(0)] + line[found.end():]
    for found in NUMBER.finditer(code):
        yield "off by one", line[:found.start()] + str(int(found.group(0)) + 1) + line[found.end():]
    for found in TRUTH.finditer(code):
        other = "false" if found.group(0) == "true" else "true"
        yield "truth", line[:found.start()] + other + line[found.end():]
    if STATEMENT.match(code.rstrip()) and code.count("(") == code.count(")"):
        yield "dropped", re.match(r"\s*", line).group(0) + ";"


def blank_literals(text):
    """The text with blanks for comments, literals and directives: places stay where they are."""
    blanks = lambda found: re.sub(r"[^\n]", " ", found.group(0))
    return layout.DIRECTIVE.sub(blanks, layout.LEXEMES.sub(blanks, text))


def mutants_of(path):
    text = path.read_text(encoding="utf-8")
    lines, code = text.split("\n"), blank_literals(text).split("\n")
    name = path.relative_to(ROOT).as_posix()
    for _, first, length in layout.functions(text):
        for at in range(first, first + length):
            # A statement that goes on is no whole one: its line before must have ended something.
            ended = re.search(r"[;{}:]\s*$", code[at - 2]) or not code[at - 2].strip()
            for kind, after in line_mutants(lines[at - 1], code[at - 1]):
                if kind != "dropped" or ended:
                    yield Mutant(name, at, kind, lines[at - 1], after)


def sampled(folder, seed):
    """All mutants of a folder in the order in which they are tried: the kinds take turns."""
    kinds = defaultdict(list)
    for path in sorted((ROOT / "src" / folder).iterdir()):
        if path.suffix in layout.SUFFIXES:
            for mutant in mutants_of(path):
                kinds[mutant.kind].append(mutant)
    chance = random.Random(seed)
    for group in kinds.values():
        chance.shuffle(group)
    while any(kinds.values()):
        for kind in sorted(kinds):
            if kinds[kind]:
                yield kinds[kind].pop()


def shown(mutant):
    return f"{mutant.path}: {mutant.before.strip()} => {mutant.after.strip()}"


def own_tests(folder):
    """The test program of a folder, as tests/CMakeLists.txt names it."""
    text = (ROOT / "tests" / "CMakeLists.txt").read_text(encoding="utf-8")
    wanted = folder.replace("/", "_")
    return re.findall(rf"zov_tests\((\w+) {re.escape(wanted)} ", text)


class Runner:
    def __init__(self, build, tests):
        self.build, self.tests, self.seconds = build, tests, {}

    def built(self):
        done = subprocess.run(["cmake", "--build", str(self.build), "--target", *self.tests],
                              capture_output=True, check=False)
        return done.returncode == 0

    def passes(self, test):
        """Whether a test program ends well, in three times what it took without a fault."""
        started = time.monotonic()
        limit = self.seconds[test] * 3 + 10 if test in self.seconds else None
        try:
            done = subprocess.run([self.build / "tests" / test, "--gtest_brief=1", "--gtest_fail_fast"],
                                  capture_output=True, timeout=limit, check=False, cwd=ROOT,
                                  stdin=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return False
        self.seconds.setdefault(test, time.monotonic() - started)
        return done.returncode == 0

    def verdict(self, mutant):
        """'caught', 'survived' or 'no code': it doesn't compile."""
        path = ROOT / mutant.path
        original = path.read_bytes()
        lines = original.decode().split("\n")
        lines[mutant.line - 1] = mutant.after
        try:
            path.write_text("\n".join(lines), encoding="utf-8")
            if not self.built():
                return "no code"
            return "survived" if all(self.passes(test) for test in self.tests) else "caught"
        finally:
            path.write_bytes(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("folder", help="below src, as data/local")
    parser.add_argument("--count", type=int, default=20, help="how many faults")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--test", action="append", help="a test program; else the folder's own")
    parser.add_argument("--build", default="build/dev", help="the build folder")
    parser.add_argument("--list", action="store_true", help="only print the faults")
    options = parser.parse_args()

    if not (ROOT / "src" / options.folder).is_dir():
        parser.error(f"there is no folder src/{options.folder}")
    known = set(EQUIVALENT.read_text(encoding="utf-8").splitlines()) if EQUIVALENT.exists() else set()
    faults = (mutant for mutant in sampled(options.folder, options.seed) if shown(mutant) not in known)
    if options.list:
        for mutant in faults:
            print(f"{mutant.kind:11}{shown(mutant)}")
        return 0

    tests = options.test or own_tests(options.folder)
    if not tests:
        parser.error(f"src/{options.folder} has no tests of its own: name a program with --test")
    # Asked to end, files are put back first.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(130))
    runner = Runner(ROOT / options.build, tests)
    if not runner.built() or not all(runner.passes(test) for test in tests):
        print("The tests don't build or don't pass as they are.", file=sys.stderr)
        return 2

    count = defaultdict(lambda: defaultdict(int))
    survivors = []
    try:
        for mutant in faults:
            if sum(sum(kind.values()) for kind in count.values()) >= options.count:
                break
            verdict = runner.verdict(mutant)
            print(f"{verdict:9} {mutant.kind:11}{shown(mutant)}", flush=True)
            if verdict != "no code":
                count[mutant.kind][verdict] += 1
            if verdict == "survived":
                survivors.append(mutant)
    finally:
        runner.built()  # what lies in the build folder is the code as it stands
        tried = sum(sum(kind.values()) for kind in count.values())
        caught = sum(kind["caught"] for kind in count.values())
        if tried:
            print(f"\n{options.folder}: {caught} of {tried} caught, {100 * caught / tried:.0f} %")
        for kind, verdicts in sorted(count.items()):
            print(f"  {kind:11}{verdicts['caught']} of {sum(verdicts.values())}")
        for mutant in survivors:
            print(f"survivor: {shown(mutant)}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
