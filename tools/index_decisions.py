"""Writes docs/decisions/README.md: the list of decision records, by number.

usage: index_decisions.py [--check]

With --check nothing is written; the status is 1 when the list is not what it would be.
"""

import pathlib
import sys

FOLDER = pathlib.Path("docs/decisions")
HEAD = """# Decisions

What was chosen where several ways were open: context, choice, alternatives, consequence, half a page each, written
when the choice was made. A record that is overtaken says by which one. `python3 tools/index_decisions.py` writes this
list.

"""


def title_of(record):
    return record.read_text(encoding="utf-8").splitlines()[0].removeprefix("# ").split(maxsplit=1)[1]


def index():
    records = sorted(FOLDER.glob("[0-9]*.md"))
    return HEAD + "".join(f"- [{record.stem[:4]}]({record.name}) {title_of(record)}\n" for record in records)


def main(arguments):
    target = FOLDER / "README.md"
    if "--check" not in arguments:
        target.write_text(index(), encoding="utf-8")
        return 0
    if target.exists() and target.read_text(encoding="utf-8") == index():
        return 0
    print(f"{target}: not the list of the records; run python3 tools/index_decisions.py")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
