#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the tests against small mistakes in the product sources.

tests/mutants.txt lists the mistakes, each with the test classes that must fail
with it. They are made one at a time in a copy of the tree, never in the tree
itself; the program that holds the classes is built, and the classes are run.
"""
import argparse
import collections
import json
import os
import pathlib
import queue
import re
import shutil
import subprocess
import sys
import threading
import time

KILLED, TIMED_OUT, SURVIVED, BROKEN = "killed", "killed, timeout", "SURVIVED", "BROKEN"

Mutant = collections.namedtuple("Mutant", "name file tests old new")
Result = collections.namedtuple("Result", "verdict note")


# ---- The list

def read_mutants(path):
    """The mutants of the list, in its order."""
    mutants = []
    for block in re.split(r"\n{2,}", path.read_text(encoding="utf-8")):
        lines = [line for line in block.splitlines() if not line.startswith("#")]
        if not lines:
            continue
        head = [part.strip() for part in lines[0].split(" | ")]
        texts = {"-": [], "+": []}
        for line in lines[1:]:
            if line[:1] not in texts or line[1:2] not in ("", " "):
                sys.exit(f"{path}: not a line of a mutant: {line}")
            texts[line[0]].append(line[2:])
        if len(head) != 3 or not texts["-"] or not texts["+"]:
            sys.exit(f"{path}: not a mutant: {lines[0]}")
        # A statement that is dropped leaves an empty one behind.
        new = "\n".join(texts["+"]) or ";"
        mutants.append(Mutant(head[0], head[1], head[2].split(), "\n".join(texts["-"]), new))
    names = [mutant.name for mutant in mutants]
    twice = {name for name in names if names.count(name) > 1}
    if twice:
        sys.exit(f"{path}: named twice: {', '.join(sorted(twice))}")
    return mutants


def chosen(mutants, words):
    """Those that a word names: part of the name, the source file or a test."""
    if not words:
        return mutants
    for word in words:
        if not any(names(word, mutant) for mutant in mutants):
            sys.exit(f"no mutant is named {word}")
    return [mutant for mutant in mutants if any(names(word, mutant) for word in words)]


def names(word, mutant):
    return word in mutant.name or word == mutant.file or word in mutant.tests


def product_sources(tree):
    texts = {}
    for folder in ("src", "hostsim"):
        for path in sorted((tree / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                texts[path.relative_to(tree)] = path.read_text(encoding="utf-8")
    return texts


def place_of(mutant, sources):
    """The one source that holds the old text, or None and what is wrong."""
    counts = {path: text.count(mutant.old) for path, text in sources.items()}
    found = [path for path, count in counts.items() if count > 0]
    if not found:
        return None, "its text is not in the sources"
    if sum(counts.values()) > 1:
        return None, "its text stands more than once: " + ", ".join(map(str, found))
    return found[0], "" if found[0].name == mutant.file else f"now in {found[0]}"


# ---- The copy

def tree_files(tree):
    """The files of the tree without what was built, relative to it."""
    if (tree / ".git").exists() and shutil.which("git"):
        command = ["git", "-C", str(tree), "ls-files", "-z", "-co", "--exclude-standard"]
        listed = subprocess.run(command, stdout=subprocess.PIPE, check=True)
        every = [pathlib.Path(os.fsdecode(name)) for name in listed.stdout.split(b"\0") if name]
    else:
        every = [path.relative_to(tree) for path in tree.rglob("*")]
        every = [path for path in every if not path.parts[0].startswith((".git", "build"))]
    return [path for path in every if (tree / path).is_file()]


def copy_tree(source, target):
    """Makes target the same as source; what is the same already keeps its time."""
    wanted = set(tree_files(source))
    for path in [path for path in target.rglob("*") if path.is_file()]:
        if path.relative_to(target) not in wanted:
            path.unlink()
    for path in wanted:
        here, there = source / path, target / path
        there.parent.mkdir(parents=True, exist_ok=True)
        if not there.exists() or there.read_bytes() != here.read_bytes():
            shutil.copyfile(here, there)
        shutil.copymode(here, there)


# ---- Building and testing

class Place:
    """A copy of the tree and its build."""

    def __init__(self, folder, source, processors):
        self.tree = folder / "tree"
        self.build = folder / "build"
        self.processors = processors
        copy_tree(source, self.tree)
        command = ["cmake", "--preset", "default", "-B", str(self.build), "-DZERL_BENCH=OFF"]
        if shutil.which("ccache"):
            command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        self.run(command, "the copy cannot be configured")
        self.programs = self.programs_of_tests()

    def run(self, command, complaint):
        done = subprocess.run(command, cwd=self.tree, text=True, errors="replace", check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode != 0:
            sys.exit(f"{done.stdout}\n{complaint}")
        return done.stdout

    def programs_of_tests(self):
        """The program of each test: what its command names among the built tests."""
        told = json.loads(self.run(["ctest", "--test-dir", str(self.build), "--show-only=json-v1"],
                                   "the tests cannot be listed"))
        programs = {}
        for test in told["tests"]:
            for word in test.get("command", []):
                if pathlib.Path(word).parent == self.build / "tests":
                    programs[test["name"]] = pathlib.Path(word).name
                    break
        return programs

    def compile(self, tests):
        """Builds the tests' programs: true, or false and what was said."""
        targets = sorted({self.programs[test] for test in tests})
        command = ["cmake", "--build", str(self.build), "--parallel", str(self.processors),
                   "--target", *targets]
        done = subprocess.run(command, cwd=self.tree, text=True, errors="replace", check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode == 0, done.stdout

    def test(self, tests, parallel):
        """What CTest says of each of the tests, and all that was printed."""
        pattern = "^(" + "|".join(map(re.escape, sorted(tests))) + ")$"
        command = ["ctest", "--test-dir", str(self.build), "-R", pattern, "--no-tests=error",
                   "--parallel", str(parallel), "--output-on-failure"]
        done = subprocess.run(command, cwd=self.tree, text=True, errors="replace", check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        # "***Failed", "***Timeout", "Subprocess aborted***Exception"
        lines = re.findall(r"Test +#\d+: (\S+) [. ]*(Passed|[A-Za-z ]*\*\*\*[A-Za-z ]*)",
                           done.stdout)
        return {name: said.replace("*", " ").strip() for name, said in lines}, done.stdout

    def judge(self, mutant, path):
        """Makes the edit, builds, tests, and puts the source back."""
        source = self.tree / path
        original = source.read_text(encoding="utf-8")
        source.write_text(original.replace(mutant.old, mutant.new), encoding="utf-8")
        try:
            compiled, said = self.compile(mutant.tests)
            if not compiled:
                errors = re.findall(r"error: .*", said)
                return Result(BROKEN, "does not compile: " + (errors or ["no reason given"])[0])
            states, printed = self.test(mutant.tests, 1)
        finally:
            # Written now, so newer than what was built from the mutant.
            source.write_text(original, encoding="utf-8")
        return verdict(mutant, states, printed)


def verdict(mutant, states, printed):
    not_run = [test for test in mutant.tests if states.get(test, "Not Run") == "Not Run"]
    if not_run:
        return Result(BROKEN, "could not be run: " + " ".join(not_run))
    passed = [test for test in mutant.tests if states[test] == "Passed"]
    if passed:
        return Result(SURVIVED, "not seen by " + " ".join(passed))
    timeout = all(states[test] == "Timeout" for test in mutant.tests)
    first = re.search(r"^FAIL! *: (\w+::\w+\([^)\n]*\))", printed, re.MULTILINE)
    note = first.group(1) if first else states[mutant.tests[0]]
    return Result(TIMED_OUT if timeout else KILLED, note)


# ---- The run

class Run:
    def __init__(self, mutants, source, folder, jobs):
        self.mutants = mutants
        self.source = source
        self.folder = folder
        self.jobs = jobs
        self.processors = max(1, (os.cpu_count() or 1) // jobs)
        self.results = {}
        self.paths = {}
        self.groups = queue.SimpleQueue()
        self.speech = threading.Lock()

    def note(self, mutant, result, seconds=0.0):
        self.results[mutant.name] = result
        with self.speech:
            say(f"{len(self.results)}/{len(self.mutants)} {result.verdict}: {mutant.name} "
                f"({result.note}; {seconds:.0f} s)")

    def find_all(self, programs):
        """Leaves out what cannot be made or run."""
        sources = product_sources(self.source)
        for mutant in self.mutants:
            path, wrong = place_of(mutant, sources)
            unknown = [test for test in mutant.tests if test not in programs]
            if path is None or unknown:
                self.note(mutant, Result(BROKEN, wrong if path is None else
                                         "no such test: " + " ".join(unknown)))
            else:
                self.paths[mutant.name] = path

    def baseline(self, place):
        """Without a mutant every named test passes, or nothing counts."""
        tests = {test for mutant in self.mutants if mutant.name in self.paths
                 for test in mutant.tests}
        if not tests:
            return
        say(f"building the tests, {len(tests)} classes")
        compiled, said = place.compile(tests)
        if not compiled:
            sys.exit(f"{said}\nthe build fails without a mutant")
        say("running them without a mutant")
        states, printed = place.test(tests, self.jobs)
        failed = sorted(test for test in tests if states.get(test) != "Passed")
        if failed:
            sys.exit(f"{printed}\nthese fail without a mutant: {' '.join(failed)}")

    def work(self, place):
        while True:
            try:
                group = self.groups.get_nowait()
            except queue.Empty:
                return
            for mutant in group:
                began = time.monotonic()
                result = place.judge(mutant, self.paths[mutant.name])
                self.note(mutant, result, time.monotonic() - began)

    def go(self):
        """Judges every mutant; mutants of one program are judged in one place."""
        place = Place(self.folder / "1", self.source, os.cpu_count() or 1)
        self.find_all(place.programs)
        self.baseline(place)
        place.processors = self.processors
        groups = collections.defaultdict(list)
        for mutant in self.mutants:
            if mutant.name in self.paths:
                groups[place.programs[mutant.tests[0]]].append(mutant)
        for group in sorted(groups.values(), key=len, reverse=True):
            self.groups.put(group)
        places = [place] + [Place(self.folder / str(i + 1), self.source, self.processors)
                            for i in range(1, min(self.jobs, len(groups)))]
        threads = [threading.Thread(target=self.work, args=(one,)) for one in places]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()


def say(text):
    print(text, file=sys.stderr, flush=True)


def print_results(mutants, results):
    """One line a mutant, and the score; true when all were killed."""
    lost = Result(BROKEN, "was not judged")
    for mutant in mutants:
        result = results.get(mutant.name, lost)
        print(f"{result.verdict:16} {mutant.name} [{' '.join(mutant.tests)}] {result.note}")
    verdicts = {mutant.name: results.get(mutant.name, lost).verdict for mutant in mutants}
    killed = [name for name in verdicts if verdicts[name] in (KILLED, TIMED_OUT)]
    print(f"{len(killed)} of {len(mutants)} mutants killed")
    for kind, title in ((SURVIVED, "survivors"), (BROKEN, "broken")):
        if kind in verdicts.values():
            print(f"{title}: " + "; ".join(name for name in verdicts if verdicts[name] == kind))
    return len(killed) == len(mutants)


def print_list(mutants, source):
    """The mutants and where they stand; true when each stands in one place."""
    sources = product_sources(source)
    whole = True
    for mutant in mutants:
        path, wrong = place_of(mutant, sources)
        whole = whole and path is not None
        where = wrong if path is None else str(path)
        print(f"{mutant.name} | {'BROKEN: ' if path is None else ''}{where} | "
              f"{' '.join(mutant.tests)}")
    return whole


def main():
    here = pathlib.Path(__file__).resolve().parent
    parser = argparse.ArgumentParser(description="Holds the tests against small mistakes in the "
                                                 "product sources, made in a copy of the tree.")
    parser.add_argument("--list", action="store_true", help="tell the mutants and where they are")
    parser.add_argument("--only", nargs="+", metavar="NAME", default=[],
                        help="mutants with this in their name, of this source file or test class")
    parser.add_argument("--build", type=pathlib.Path, metavar="FOLDER",
                        help="where copies and builds go (build/mutants)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1, metavar="N",
                        help="mutants at a time, each in a copy of its own")
    parser.add_argument("--source", type=pathlib.Path, default=here.parent, metavar="TREE",
                        help="the tree whose copy is used (this one)")
    given = parser.parse_args()
    source = given.source.resolve()
    mutants = chosen(read_mutants(here / "mutants.txt"), given.only)
    if given.list:
        sys.exit(0 if print_list(mutants, source) else 1)
    folder = (given.build or source / "build" / "mutants").resolve()
    if source == folder or folder in source.parents:
        sys.exit(f"{folder}: copies do not go over the sources")
    run = Run(mutants, source, folder, max(1, given.jobs))
    run.go()
    sys.exit(0 if print_results(mutants, run.results) else 1)


if __name__ == "__main__":
    main()
