"""Seeds faults in the library and judges whether a test catches them; scripts/mutants starts it."""

import concurrent.futures
import hashlib
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import subprocess
import sys

import clang.cindex
from clang.cindex import CursorKind, TypeKind

OTHER_OPERATOR = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "^": "&",
    "<<": ">>", ">>": "<<", "&&": "||", "||": "&&",
    "+=": "-=", "-=": "+=", "*=": "+=", "/=": "*=", "%=": "+=", "&=": "|=", "|=": "&=",
    "^=": "&=", "<<=": ">>=", ">>=": "<<=",
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
# Their tests wait for time to pass; for any other source these are left out.
EVENT_SOURCES = ("CQActive", "CQScheduler", "CQTimer", "CTimeOutTimer", "CQInstance")
MEMORY_LIMIT = 6 << 30
TEST_TIMEOUT = "30"


class Mutant:
    def __init__(self, file, kind, begin, end, old, new, line):
        self.file, self.kind, self.begin, self.end = file, kind, begin, end
        self.old, self.new, self.line = old, new, line

    def describe(self):
        def flat(text):
            return " ".join(text.split())
        return f"{self.file}:{self.line}: {self.kind}: {flat(self.old)} -> {flat(self.new)}"


class Finder:
    """Collects the places of one source, its private headers included, where a fault fits."""

    def __init__(self, root):
        self.root = root
        self.texts = {}
        self.found = {}

    def text(self, file):
        if file not in self.texts:
            self.texts[file] = (self.root / file).read_bytes()
        return self.texts[file]

    def add(self, file, kind, begin, end, new, line):
        old = self.text(file)[begin:end].decode()
        if old != new:
            self.found[(file, begin, new)] = Mutant(file, kind, begin, end, old, new, line)

    def place(self, cursor):
        """The file, first and last byte of a cursor that is not made by a macro."""
        start, end = cursor.extent.start, cursor.extent.end
        if start.file is None or end.file is None or start.file.name != end.file.name:
            return None
        try:
            file = str(pathlib.Path(start.file.name).resolve().relative_to(self.root))
        except ValueError:
            return None
        if not file.startswith(("src/", "Orvo/")) or start.offset >= end.offset:
            return None
        return file, start.offset, end.offset

    def visit(self, cursor):
        for child in cursor.get_children():
            if child.kind == CursorKind.STATIC_ASSERT:
                continue
            where = self.place(child)
            if where or child.kind in (CursorKind.NAMESPACE, CursorKind.LINKAGE_SPEC):
                if where:
                    self.seed(child, cursor, *where)
                self.visit(child)

    def seed(self, cursor, parent, file, begin, end):
        line = cursor.extent.start.line
        kind = cursor.kind
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.seed_operator(cursor, file, line)
        elif kind == CursorKind.UNARY_OPERATOR:
            text = self.text(file)[begin:end].decode()
            if text.startswith("!"):
                self.add(file, "operator", begin, begin + 1, "", line)
            for old, new in (("++", "--"), ("--", "++")):
                if text.startswith(old):
                    self.add(file, "operator", begin, begin + 2, new, line)
                elif text.endswith(old):
                    self.add(file, "operator", end - 2, end, new, line)
        elif kind == CursorKind.INTEGER_LITERAL:
            self.seed_constant(file, begin, end, line)
        elif kind == CursorKind.RETURN_STMT:
            self.seed_return(cursor, file, line)
        elif kind == CursorKind.CALL_EXPR:
            if parent.kind == CursorKind.COMPOUND_STMT:
                self.add(file, "removed call", begin, end, "static_cast<void>(0)", line)
            self.seed_swap(cursor, file, line)

    def seed_operator(self, cursor, file, line):
        sides = [self.place(side) for side in cursor.get_children()]
        if len(sides) != 2 or None in sides or sides[0][0] != file or sides[1][0] != file:
            return
        between = self.text(file)[sides[0][2]:sides[1][1]].decode()
        operator = between.strip().strip("()").strip()
        if operator in OTHER_OPERATOR:
            begin = sides[0][2] + between.index(operator)
            kind = "comparison" if operator in COMPARISONS else "operator"
            self.add(file, kind, begin, begin + len(operator), OTHER_OPERATOR[operator], line)

    def seed_constant(self, file, begin, end, line):
        text = self.text(file)[begin:end].decode().replace("'", "")
        digits = text.rstrip("uUlL")
        try:
            value = int(digits, 16 if digits[:2].lower() == "0x" else 10)
        except ValueError:
            return
        new = str(value + 1) if digits[:2].lower() != "0x" else hex(value + 1)
        self.add(file, "constant", begin, end, new + text[len(digits):], line)

    def seed_return(self, cursor, file, line):
        values = list(cursor.get_children())
        where = self.place(values[0]) if values else None
        if where is None or where[0] != file:
            return
        text = self.text(file)[where[1]:where[2]].decode()
        kind = values[0].type.get_canonical().kind
        if kind == TypeKind.BOOL:
            new = {"true": "false", "false": "true"}.get(text, f"!({text})")
        elif kind == TypeKind.POINTER:
            new = "nullptr"
        elif TypeKind.UCHAR.value <= kind.value <= TypeKind.LONGLONG.value:
            new = f"({text}) + 1"
        else:
            return
        self.add(file, "return value", where[1], where[2], new, line)

    def seed_swap(self, cursor, file, line):
        arguments = list(cursor.get_arguments())
        for left, right in zip(arguments, arguments[1:]):
            places = self.place(left), self.place(right)
            if None in places or places[0][0] != file or places[1][0] != file:
                continue
            if left.type.get_canonical().spelling != right.type.get_canonical().spelling:
                continue
            (_, begin, middle), (_, middle_end, end) = places
            text = self.text(file)
            first, second = text[begin:middle].decode(), text[middle_end:end].decode()
            between = text[middle:middle_end].decode()
            if first != second and begin < middle <= middle_end < end:
                self.add(file, "swapped arguments", begin, end, second + between + first, line)


def all_mutants(root, build):
    commands = clang.cindex.CompilationDatabase.fromDirectory(str(build))
    index = clang.cindex.Index.create()
    finder = Finder(root)
    builtin = subprocess.run(["clang", "-print-resource-dir"], capture_output=True, text=True)
    extra = ["-isystem", builtin.stdout.strip() + "/include"] if builtin.stdout else []
    for source in sorted([*root.glob("src/*.cpp"), *root.glob("Orvo/*.cpp")]):
        command = commands.getCompileCommands(str(source))
        if not command:
            continue
        arguments = [a for a in list(command[0].arguments)[1:] if a not in ("--", str(source))]
        arguments = [a for i, a in enumerate(arguments)
                     if a not in ("-c", "-o") and (i == 0 or arguments[i - 1] != "-o")]
        unit = index.parse(str(source), args=arguments + extra)
        finder.visit(unit.cursor)
    return [finder.found[key] for key in sorted(finder.found)]


class Tree:
    """A copy of the project to seed faults in, built once in whole and then library by library."""

    def __init__(self, root, place):
        self.place, self.build = place, place / "build" / "mutants"
        self.catchers = {}
        self.log = place.parent / (place.name + ".log")
        subprocess.run(["rsync", "-a", "--checksum", "--delete", "--exclude=/build",
                        "--exclude=/.git", f"{root}/", f"{place}/"], check=True)
        self.run("cmake", "--preset", "mutants", cwd=place)
        self.run("ninja", "-C", str(self.build))
        # Lists the test cases once, beside the programs, where the sandbox cannot write.
        self.run("ctest", "--test-dir", str(self.build), "--show-only")

    def run(self, *command, cwd=None, check=True):
        with open(self.log, "ab") as log:
            return subprocess.run(command, cwd=cwd, check=check, stdout=log, stderr=log,
                                  stdin=subprocess.DEVNULL).returncode

    def test(self, *options):
        """True when all tests pass. Nothing but Testing/ and a /tmp of their own is writable."""
        logs = self.build / "Testing"
        logs.mkdir(exist_ok=True)
        sandbox = ["bwrap", "--ro-bind", "/", "/", "--dev", "/dev", "--proc", "/proc",
                   "--tmpfs", "/tmp", "--ro-bind", str(self.place), str(self.place),
                   "--bind", str(logs), str(logs), "--unshare-pid", "--die-with-parent",
                   "--setenv", "XDG_RUNTIME_DIR", "/tmp/runtime", "--setenv", "HOME", "/tmp"]
        ctest = ["ctest", "--test-dir", str(self.build), "-j", "2", "--stop-on-failure",
                 "--timeout", TEST_TIMEOUT, *options]
        command = " ".join(map(shlex.quote, ctest))
        with open(self.log, "ab") as log:
            return subprocess.run(
                [*sandbox, "sh", "-c", f"mkdir -m 700 /tmp/runtime && exec {command}"],
                stdout=log, stderr=log, stdin=subprocess.DEVNULL,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, [MEMORY_LIMIT] * 2),
            ).returncode == 0

    def judge(self, mutant):
        target = self.place / mutant.file
        original = target.read_bytes()
        target.write_bytes(original[:mutant.begin] + mutant.new.encode() + original[mutant.end:])
        try:
            if self.run("ninja", "-C", str(self.build), "orvobase", check=False) != 0:
                return "does not compile"
            return "survived" if self.passes(mutant.file) else "caught"
        finally:
            target.write_bytes(original)

    def passes(self, file):
        """Runs what caught a fault in this file before, which is quick, and then all the rest."""
        catchers = self.catchers.setdefault(file, [])
        if catchers and not self.test("-R", "^(" + "|".join(map(re.escape, catchers)) + ")$"):
            return False
        options = [] if pathlib.Path(file).name.startswith(EVENT_SOURCES) else ["-LE", "^events$"]
        if self.test(*options):
            return True
        failed = self.build / "Testing" / "Temporary" / "LastTestsFailed.log"
        names = [line.split(":", 1)[1] for line in failed.read_text().splitlines()]
        catchers += [name for name in names if name not in catchers]
        return False


class Verdicts:
    """What was judged before, keyed by the fault and by the tests and sources it was judged with."""

    def __init__(self, root, path):
        self.path, self.known = path, {}
        digest = hashlib.sha256()
        for folder in ("src", "Orvo", "tests"):
            for file in sorted((root / folder).rglob("*")):
                if file.is_file():
                    digest.update(file.read_bytes())
        self.state = digest.hexdigest()[:12]
        if path.exists():
            for line in path.read_text().splitlines():
                state, verdict, mutant = line.split("\t", 2)
                if state == self.state:
                    self.known[mutant] = verdict

    def add(self, mutant, verdict):
        self.known[mutant.describe()] = verdict
        with open(self.path, "a") as file:
            file.write(f"{self.state}\t{verdict}\t{mutant.describe()}\n")


def listed_survivors(root):
    """Reasons by fault; the line number is left out, so that code above may move."""
    reasons = {}
    for line in (root / "scripts/mutants-survivors.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            mutant, reason = line.split(" | ")
            reasons[mutant] = reason
    return reasons


def without_line(description):
    file, _, rest = description.split(":", 2)
    return f"{file}:{rest}"


def judge_all(trees, mutants, count, verdicts):
    """Judges until COUNT faults that compile were judged; returns them with their verdicts."""
    idle = queue.Queue()
    for tree in trees:
        idle.put(tree)

    def judge(mutant):
        if mutant.describe() in verdicts.known:
            return mutant, verdicts.known[mutant.describe()], False
        tree = idle.get()
        try:
            return mutant, tree.judge(mutant), True
        finally:
            idle.put(tree)

    judged = []
    with concurrent.futures.ThreadPoolExecutor(len(trees)) as pool:
        waiting = iter(mutants)
        while len(judged) < count:
            batch = [m for _, m in zip(range(min(len(trees), count - len(judged))), waiting)]
            if not batch:
                break
            for mutant, verdict, fresh in pool.map(judge, batch):
                if fresh:
                    verdicts.add(mutant, verdict)
                if verdict != "does not compile":
                    judged.append((mutant, verdict))
                    print(f"{len(judged):4} {verdict:8} {mutant.describe()[:150]}", flush=True)
    return judged


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    count, seed, jobs = map(int, sys.argv[2:5])
    only = sys.argv[5]
    home = root / "build" / "mutants"
    home.mkdir(parents=True, exist_ok=True)
    print("scripts/mutants: building the trees (some minutes the first time)", flush=True)
    trees = [Tree(root, home / f"tree{n}") for n in range(jobs)]
    if not trees[0].test():
        sys.exit(f"scripts/mutants: tests fail without any fault; see {trees[0].log}")
    # The sources are read in the tree, where they were configured.
    mutants = all_mutants(trees[0].place, trees[0].build)
    random.Random(seed).shuffle(mutants)
    if only:
        mutants = [m for m in mutants if m.file == only]
    print(f"scripts/mutants: {len(mutants)} places for a fault", flush=True)

    reasons = listed_survivors(root)
    judged = judge_all(trees, mutants, count, Verdicts(root, home / "verdicts.tsv"))
    survivors = [m.describe() for m, verdict in judged if verdict == "survived"]
    answers = {m: reasons.get(without_line(m), "") for m in survivors}
    equivalent = [m for m in survivors if answers[m].startswith("equivalent")]
    print("\nSurvivors:")
    for mutant in survivors:
        print(f"  {mutant} | {answers[mutant] or 'not answered'}")
    caught, counted = len(judged) - len(survivors), len(judged) - len(equivalent)
    share = 100.0 * caught / max(1, counted)
    print(f"\n{caught} of {counted} faults caught, {share:.1f}% "
          f"({len(equivalent)} equivalent ones left out, seed {seed})")
    sys.exit(0 if share >= 90.0 else 1)


main()
