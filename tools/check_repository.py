"""The repository's checks of itself: what no compiler sees and every reader relies on.

Prints one line a problem, "file:line: what is wrong", and ends with status 1 when there is any.
"""

import pathlib
import re
import subprocess
import sys

MAX_FILE_LINES = 500
CODE = {".h", ".cpp", ".py", ".sh", ".ts", ".tsx", ".js", ".mjs"}

# Words of a work in progress, and references to papers that a reader of this repository does not have. The
# patterns are written so that they do not find themselves.
FORBIDDEN = [
    (re.compile(r"\b(?:TO" r"DO|FIX" r"ME|XX" r"X)\b"), "unfinished work; finish it or open an issue"),
    (re.compile(r"\b(?:the|a)\s+spec\b|\bspec\.m" r"d\b|\bas\s+specified\b", re.I), "refers to a paper nobody has"),
    (re.compile(r"\bparts?\s+\d{1,2}\.\d{1,2}\b", re.I), "refers to a paper nobody has"),
    (re.compile(r"(?<![\w.])/(?:home|root|work|Users)/\w"), "a path of one machine"),
]

# Who may include whom: folder -> folders whose headers it may use, as they are written in an include.
ALLOWED_INCLUDES = {
    "include/mox/core/": ("mox/core/",),
    "include/mox/zyn/": ("mox/core/", "mox/zyn/"),
    "src/core/run/": ("mox/core/", "mox/zyn/", "core/"),  # runs definitions through the module's public face
    "src/core/": ("mox/core/", "core/"),
    "src/zyn/": ("mox/core/", "mox/zyn/", "zyn/"),
    "src/cli/": ("mox/core/", "mox/zyn/", "core/", "cli/"),
}
# Inside the module, who may use another subsystem's implementation: the engines share the column store.
MODULE_IMPLEMENTATIONS = {
    "frame": None,
    "matrix": {"matrix", "sql"},
    "sql": {"sql", "matrix", "frame"},
    "items": {"items", "frame"},
    "format": {"format", "frame", "matrix"},
    "filters": {"filters", "frame", "items"},
    "expressions": {"expressions", "frame"},
    "operations": {"operations", "matrix", "expressions", "format", "frame", "items"},
    "datasources": {"datasources", "frame", "items", "matrix", "operations"},
    "search": {"search", "datasources", "format", "frame", "items"},
}

INCLUDE = re.compile(r'^\s*#include\s+"([^"]+)"', re.M)
LINK = re.compile(r"\[[^\]]*\]\(([^)#\s]+)(?:#[^)]*)?\)")


def tracked_files():
    listing = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard"], capture_output=True, text=True, check=True
    )
    return [path for path in map(pathlib.Path, listing.stdout.splitlines()) if path.is_file()]


def text_of(path):
    try:
        return path.read_text(encoding="utf-8")
    except UnicodeDecodeError:
        return None


def line_of(text, offset):
    return text.count("\n", 0, offset) + 1


def check_words(path, text):
    for pattern, why in FORBIDDEN:
        for found in pattern.finditer(text):
            yield f"{path}:{line_of(text, found.start())}: '{found.group(0)}': {why}"


def check_length(path, text):
    lines = text.count("\n")
    if path.suffix in CODE and lines > MAX_FILE_LINES:
        yield f"{path}:{lines}: {lines} lines; look for the idea that splits the file"


def subsystem(name):
    return name.split("/")[1] if name.count("/") >= 2 else ""


def may_include(path, header):
    for folder, allowed in ALLOWED_INCLUDES.items():
        if str(path).startswith(folder):
            if not header.startswith(allowed):
                return False
            if folder == "src/zyn/" and header.startswith("zyn/"):
                friends = MODULE_IMPLEMENTATIONS.get(subsystem(str(path.relative_to("src"))), set())
                return friends is None or subsystem(header) in friends
            return True  # the first folder that fits counts
    return True


def check_includes(path, text):
    if path.suffix not in (".h", ".cpp"):
        return
    for found in INCLUDE.finditer(text):
        if not may_include(path, found.group(1)):
            yield f"{path}:{line_of(text, found.start())}: may not include {found.group(1)}: arrows run one way"
    if path.suffix == ".h" and "#pragma once" not in text:
        yield f"{path}:1: lacks #pragma once"


def check_third_party(path, text):
    """Public headers hold the standard library and each other, nothing else."""
    if not str(path).startswith("include/"):
        return
    for found in re.finditer(r"^\s*#include\s+<([^>]+)>", text, re.M):
        if "/" in found.group(1) or found.group(1).endswith((".hpp", ".h")):
            yield f"{path}:{line_of(text, found.start())}: a public header includes <{found.group(1)}>"


def check_links(path, text):
    if path.suffix != ".md":
        return
    for found in LINK.finditer(text):
        target = found.group(1)
        if "://" not in target and not target.startswith("mailto:") and not (path.parent / target).exists():
            yield f"{path}:{line_of(text, found.start())}: the link to {target} leads nowhere"


def dead_headers(texts):
    included = {name for text in texts.values() for name in INCLUDE.findall(text)}
    for path in texts:
        if path.suffix != ".h":
            continue
        name = re.sub(r"^(include|src|tests|bench|examples)/", "", str(path))
        # A public header is for other modules; it is alive by being published.
        if name not in included and path.name not in included and not str(path).startswith("include/"):
            yield f"{path}:1: nobody includes this header"


def dead_scripts(texts):
    for path in texts:
        if path.suffix not in (".sh", ".py") or path.name.startswith(("test_", "conftest", "__init__")):
            continue
        others = (text for other, text in texts.items() if other != path)
        if not any(path.name in text or re.search(rf"\bimport {path.stem}\b|\bfrom {path.stem}\b", text) for text in others):
            yield f"{path}:1: nobody calls this script"


def missing_readmes(texts):
    folders = {path.parent for path in texts if str(path).startswith("src/") and path.suffix in (".h", ".cpp")}
    for folder in sorted(folders):
        if not any((parent / "README.md").is_file() for parent in (folder, folder.parent) if parent != pathlib.Path("src")):
            yield f"{folder}/README.md:1: every folder of src/ explains itself"


def tests_outside_their_room(texts):
    """Unit tests mirror src/: tests/unit/<sub>/ for the module, tests/unit/core/<sub>/ for the framework."""
    for path in texts:
        if path.suffix == ".cpp" and str(path).startswith("tests/unit/") and not path.name.endswith("_test.cpp"):
            yield f"{path}:1: a unit test's file ends in _test.cpp"


def main():
    texts = {path: text for path in tracked_files() if (text := text_of(path)) is not None}
    problems = []
    for path, text in texts.items():
        if path.name == "package-lock.json":
            continue
        for check in (check_words, check_length, check_includes, check_third_party, check_links):
            problems += check(path, text)
    for check in (dead_headers, dead_scripts, missing_readmes, tests_outside_their_room):
        problems += check(texts)
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
