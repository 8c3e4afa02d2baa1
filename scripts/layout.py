#!/usr/bin/env python3
"""Prints how the code is laid out, and with --check fails where it breaks its own rules.

    scripts/layout.py            a line a folder, its arrows, function lengths, longest files
    scripts/layout.py --check    exit status 1 on an upward arrow or a cycle between files

Folders, their order and what each may include are read from the CMakeLists.txt files below
src/; an include of a folder whose library isn't linked is an upward arrow. A header and its
source file count as one unit; two units of a folder that include each other, straight or over
others of the folder, are a cycle.

Functions are found by their braces: what stands at namespace or class level with a parameter
list before its brace. A function's length goes from the first line of its signature to its
closing brace; a lambda counts to the function that it stands in.
"""
import argparse
import bisect
import re
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SUFFIXES = {".cpp", ".h", ".c"}

# Cycles that stand for now, each as the units of one folder, sorted.
KNOWN_CYCLES = {
    # The store installs the functions of T-SQL on its handles, and those look into the catalogue.
    tuple(f"src/data/local/{name}" for name in (
        "functions", "query_cache", "server_store", "server_store_entry", "sorting", "sqlite_files")),
}


# ---- Reading a source file ----------------------------------------------------------------

LEXEMES = re.compile(
    r'(?P<comment>//(?:\\\n|[^\n])*|/\*.*?\*/)'
    r'|(?P<raw>\bR|(?:u8|[uUL])R)"(?P<fence>[^()\s\\]*)\(.*?\)(?P=fence)"'
    r'|(?P<text>"(?:\\.|[^"\\\n])*")'
    r"|(?P<sign>(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+')",
    re.S)
DIRECTIVE = re.compile(r'^[ \t]*#(?:\\\n|[^\n])*', re.M)


def blanked(found):
    """What a comment or literal leaves behind: as many line breaks, no text that could mislead."""
    breaks = "\n" * found.group(0).count("\n")
    return breaks if found.group("comment") else '""' + breaks


def skeleton(text):
    """The code alone: comments, literals and directives are gone, the lines stay where they are."""
    text = LEXEMES.sub(blanked, text)
    return DIRECTIVE.sub(lambda found: "\n" * found.group(0).count("\n"), text)


def code_lines(text):
    """How many lines hold more than blanks and comments."""
    bare = LEXEMES.sub(lambda found: "\n" * found.group(0).count("\n") if found.group("comment")
                       else found.group(0), text)
    return sum(1 for line in bare.splitlines() if line.strip())


TOKEN = re.compile(r'[A-Za-z_]\w*|::|->|""|\S')
CONTAINER = re.compile(r'\b(namespace|extern|class|struct|union)\b')


def matching(tokens, start, opening, closing):
    """The place behind the token that closes what `start` opens."""
    depth = 0
    for place in range(start, len(tokens)):
        depth += (tokens[place][0] == opening) - (tokens[place][0] == closing)
        if depth == 0:
            return place + 1
    return len(tokens)


def parameters_end(words):
    """The place behind the parameter list; None without one. std::function<void()> has none."""
    at = parameters_at(words)
    return None if at is None else matching([(word,) for word in words], at, "(", ")")


def parameters_at(words):
    place = 0
    while "(" in words[place:]:
        at = words.index("(", place)
        place = matching([(word,) for word in words], at, "(", ")")
        if words[place:place + 1] != [">"]:
            return at
    return None


def opens(head):
    """What a brace behind these tokens opens: 'scope', 'body', 'member' or 'value'.

    A 'member' is the braced value of one member in a constructor's list; the body still comes.
    """
    words = list(head)
    while words and words[0] in ("public", "private", "protected", "signals", "slots", ":"):
        words.pop(0)
    if words[:1] == ["template"]:
        depth = 0
        for place, word in enumerate(words[1:], 1):
            depth += (word == "<") - (word == ">")
            if depth == 0:
                words = words[place + 1:]
                break
    if words[:1] and words[0] in ("namespace", "extern", "class", "struct", "union"):
        if "(" not in words or "alignas" in words:
            return "scope"
    if words[:2] == ["inline", "namespace"]:
        return "scope"
    if "enum" in words[:2] or "(" not in words:
        return "value"
    depth = 0
    for place, word in enumerate(words):
        if word in "([":
            depth += 1
        elif word in ")]":
            depth -= 1
        elif word == "=" and depth == 0 and (place == 0 or words[place - 1] != "operator"):
            before = words[:place]
            if "operator" in before[-4:] or "(" in before:
                continue  # operator== and its kin
            return "body" if words[place + 1:place + 2] == ["["] and words[-1] in (")", "]") else "value"
    end = parameters_end(words)
    if end is None:
        return "value"  # std::function<void()> member{...}
    rest = words[end:]
    if ":" in rest and re.match(r"\w", words[-1]) and words[-1] != "try":
        return "member"
    return "body"


def name_of(head):
    """The name before the parameter list, TEST(Suite, Name) as Suite.Name."""
    place = parameters_at(head)
    place = len(head) if place is None else place
    if head[place - 1:place] and head[place - 1].startswith("TEST"):
        return ".".join(word for word in head[place + 1:place + 4] if word != ",")
    start = place - 1
    while start >= 1 and (head[start - 1] in ("::", "~", "operator") or head[start] in ("::", "~")):
        start -= 1
    if "operator" in head[:place + 1]:
        start = head.index("operator")
        while start >= 2 and head[start - 1] == "::":
            start -= 2
    return "".join(head[start:place]) or "lambda"


def functions(text):
    """(name, first line, length) of each function of a file."""
    bare = skeleton(text)
    breaks = [place for place, sign in enumerate(bare) if sign == "\n"]
    tokens = [(found.group(0), bisect.bisect_left(breaks, found.start()) + 1)
              for found in TOKEN.finditer(bare)]
    found, place, head, first, paren = [], 0, [], 0, 0
    while place < len(tokens):
        word, line = tokens[place]
        if word == "{":
            kind = opens(head) if paren == 0 else "value"
            if kind == "scope":
                head = []
            else:
                end = matching(tokens, place, "{", "}")
                if kind == "body":
                    found.append((name_of(head), first, tokens[end - 1][1] - first + 1))
                    head = []
                else:
                    head.append("}")
                place = end
                continue
        elif word == "}" or (word == ";" and paren == 0):
            head, paren = [], 0
        else:
            if not head:
                first = line
            paren += (word == "(") - (word == ")")
            head.append(word)
        place += 1
    return found


INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


class Source:
    def __init__(self, path):
        self.path = path.relative_to(ROOT).as_posix()
        self.text = path.read_text(encoding="utf-8")
        self.lines = self.text.count("\n")
        self.code = code_lines(self.text)
        self.functions = functions(self.text)

    def included(self, top):
        """Paths below `src` or `tests` of the files that it includes."""
        here = Path(self.path).parent
        for name in INCLUDE.findall(self.text):
            for base in (Path("src"), here, Path("tests")):
                if (ROOT / base / name).is_file():
                    path = (base / name).as_posix()
                    if path.startswith(top + "/"):
                        yield path
                    break


def sources(top):
    return [Source(path) for path in sorted((ROOT / top).rglob("*")) if path.suffix in SUFFIXES]


# ---- What the build files promise ----------------------------------------------------------

class Library:
    def __init__(self, name, folder):
        self.name, self.folder, self.links = name, folder, set()


CALL = re.compile(r'\b(zov_library|add_library|add_executable|target_link_libraries|add_subdirectory)'
                  r'\s*\(([^)]*)\)')


def read_libraries(folder="src", known=None):
    """The libraries and programs below src/ in the order in which the build files name them."""
    known = {} if known is None else known
    text = re.sub(r"#[^\n]*", "", (ROOT / folder / "CMakeLists.txt").read_text(encoding="utf-8"))
    for command, arguments in CALL.findall(text):
        words = arguments.split()
        if command == "add_subdirectory":
            read_libraries(f"{folder}/{words[0]}", known)
        elif command == "target_link_libraries":
            known[words[0]].links.update(words[1:])
        elif command == "zov_library":
            known[words[0]] = Library(words[0], f"{folder}/{words[1]}")
            known[words[0]].links.update(words[2:])
        else:
            known[words[0]] = Library(words[0], program_folder(folder, words))
    return known


def program_folder(folder, words):
    """Where a program's sources lie: ${cli_sources} in cli, desktop/main.cpp in desktop."""
    for word in words[1:]:
        named = re.match(r"\$\{(\w+)_sources\}", word)
        part = named.group(1) if named else word.rpartition("/")[0]
        if part and (ROOT / folder / part).is_dir():
            return f"{folder}/{part}"
    return folder


def reachable(libraries, name):
    seen, open_ = set(), [name]
    while open_:
        library = libraries.get(open_.pop())
        if library and library.name not in seen:
            seen.add(library.name)
            open_.extend(library.links)
    return seen


def upward_arrows(libraries, files):
    """Include lines that point to a folder whose library the including one doesn't link."""
    by_depth = sorted(libraries.values(), key=lambda one: -len(one.folder))

    def home(path):
        return next((one for one in by_depth if path.startswith(one.folder + "/")), None)

    seen = {name: reachable(libraries, name) for name in libraries}
    upward = []
    for file in files:
        own = home(file.path)
        for path in file.included("src"):
            other = home(path)
            if own is None or other is None or other.name not in seen[own.name]:
                upward.append(f"{file.path} includes {path}")
    return upward


# ---- Cycles --------------------------------------------------------------------------------

def unit(path):
    return path.rpartition(".")[0]


def cycles(files, top):
    """Sets of units of one folder that include each other, each as a sorted tuple."""
    edges = defaultdict(set)
    for file in files:
        for path in file.included(top):
            one, other = unit(file.path), unit(path)
            if one != other and Path(one).parent == Path(other).parent:
                edges[one].add(other)
    return sorted(strong_components(edges))


def strong_components(edges):
    """Tarjan's components of more than one unit."""
    index, low, stack, found = {}, {}, [], []

    def visit(one):
        index[one] = low[one] = len(index)
        stack.append(one)
        for other in sorted(edges.get(one, ())):
            if other not in index:
                visit(other)
                low[one] = min(low[one], low[other])
            elif other in stack:
                low[one] = min(low[one], index[other])
        if low[one] == index[one]:
            place = stack.index(one)
            if len(stack) - place > 1:
                found.append(tuple(sorted(stack[place:])))
            del stack[place:]

    sys.setrecursionlimit(10000)
    for one in sorted(edges):
        if one not in index:
            visit(one)
    return found


# ---- Printing ------------------------------------------------------------------------------

def share_below(lengths, share):
    return sorted(lengths)[min(len(lengths) - 1, int(len(lengths) * share))] if lengths else 0


def by_folder(files):
    folders = defaultdict(list)
    for file in files:
        folders[file.path.rpartition("/")[0]].append(file)
    return folders


def print_folders(files, tests):
    """A line a folder of src/, its tests beside it, then the folders of tests that serve no one folder."""
    def row(name, group, beside):
        lengths = [length for file in group for _, _, length in file.functions]
        code, tested = sum(file.code for file in group), sum(file.code for file in beside)
        share = f"{100 * tested / (code + tested):5.0f} %" if code + tested else "      -"
        print(f"{name:24}{len(group):6}{code:8}{len(lengths):7}{share_below(lengths, .5):5}"
              f"{share_below(lengths, .9):5}{max(lengths, default=0):6}{tested:8}{share}")

    print(f"{'folder':24}{'files':>6}{'code':>8}{'funcs':>7}{'p50':>5}{'p90':>5}{'max':>6}"
          f"{'tests':>8}{'share':>7}")
    test_folders, used = by_folder(tests), set()
    for folder, group in sorted(by_folder(files).items()):
        name = folder.removeprefix("src/")
        beside = [file for path, files_ in test_folders.items() for file in files_
                  if path == f"tests/{name.replace('/', '_')}"]
        used.add(f"tests/{name.replace('/', '_')}")
        row(name, group, beside)
    row("src", files, tests)
    print("\ntests of more than one folder, and what tests share:")
    for folder, group in sorted(test_folders.items()):
        if folder not in used:
            print(f"  {folder:30}{sum(file.code for file in group):8}")


def print_arrows(files):
    arrows = defaultdict(lambda: defaultdict(int))
    for file in files:
        folder = file.path.rpartition("/")[0]
        for path in file.included("src"):
            other = path.rpartition("/")[0]
            if other != folder:
                arrows[folder][other] += 1
    print("\narrows (include lines):")
    for folder, others in sorted(arrows.items()):
        told = ", ".join(f"{name.removeprefix('src/')} {count}" for name, count in sorted(others.items()))
        print(f"  {folder.removeprefix('src/')} -> {told}")


def print_longest(files, count):
    print("\nlongest functions of src:")
    named = [(length, f"{file.path}:{line}", name) for file in files for name, line, length in file.functions]
    for length, place, name in sorted(named, reverse=True)[:count]:
        print(f"  {length:5}  {name}  {place}")
    print("\nlongest files of src:")
    for file in sorted(files, key=lambda one: -one.lines)[:count]:
        print(f"  {file.lines:5}  {file.path}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--check", action="store_true", help="only tell what breaks the rules; status 1 then")
    parser.add_argument("--longest", type=int, default=12, help="how many functions and files to name")
    options = parser.parse_args()

    files, tests = sources("src"), sources("tests")
    upward = upward_arrows(read_libraries(), files)
    found = cycles(files, "src") + cycles(tests, "tests")
    if not options.check:
        print_folders(files, tests)
        print_arrows(files)
        print_longest(files, options.longest)
    print(f"\nupward arrows: {len(upward)}" if not options.check else "", end="\n" if not options.check else "")
    for line in upward:
        print(f"  upward: {line}")
    if not options.check:
        print(f"cycles between files: {len(found)}")
    fresh = [cycle for cycle in found if cycle not in KNOWN_CYCLES]
    for cycle in found if not options.check else fresh:
        print(f"  {'cycle' if cycle in fresh else 'known cycle'}: {', '.join(cycle)}")
    gone = [cycle for cycle in KNOWN_CYCLES if cycle not in found]
    for cycle in gone:
        print(f"  no cycle any more, take it out of KNOWN_CYCLES: {', '.join(cycle)}")
    return 1 if options.check and (upward or fresh or gone) else 0


if __name__ == "__main__":
    sys.exit(main())
