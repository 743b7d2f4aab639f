"""The tutorials: their commands are run as a reader would run them, and print what the text shows.

A fenced block `sh` is run; a block `text` right behind it is what it prints, where a line "..." stands for any lines.
Any other block is a file, named in backquotes on the last line before it.
"""

import os
import pathlib
import re
import subprocess

import pytest
from conftest import ROOT, ZYN

TUTORIALS = sorted((ROOT / "docs/tutorial").glob("*.md"))

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.M | re.S)
FILE_NAME = re.compile(r"`([^`]+)`[^`]*\Z")


class Block:
    def __init__(self, text, found):
        self.kind = found.group(1)
        self.content = found.group(2)
        self.line = text.count("\n", 0, found.start()) + 1
        self.introduction = text[: found.start()].rstrip().splitlines()[-1] if found.start() else ""

    @property
    def file_name(self):
        return FILE_NAME.search(self.introduction).group(1)


def blocks_of(path):
    text = path.read_text(encoding="utf-8")
    return [Block(text, found) for found in BLOCK.finditer(text)]


def script_of(blocks, folder):
    """One shell for all, so that it stays where a command leads it; the output of each block goes to a file."""
    lines = ["set -eu"]
    for number, block in enumerate(blocks):
        if block.kind == "sh":
            lines.append(f"{{\n{block.content}}} >'{folder}/out.{number}' 2>&1")
        elif block.kind != "text":
            (folder / f"file.{number}").write_text(block.content, encoding="utf-8")
            lines.append(f'mkdir -p "$(dirname "{block.file_name}")"')
            lines.append(f"cp '{folder}/file.{number}' '{block.file_name}'")
    return "\n".join(lines) + "\n"


def run_tutorial(path, folder):
    """Runs the blocks in a folder like a checkout that was built; gives what each `sh` block printed."""
    checkout, notes = folder / "checkout", folder / "notes"
    (checkout / "build/release").mkdir(parents=True)
    for built in ("bin", "lib"):
        (checkout / "build/release" / built).symlink_to(ZYN.parent.parent / built)
    (checkout / "examples").symlink_to(ROOT / "examples")
    notes.mkdir()
    blocks = blocks_of(path)
    done = subprocess.run(
        ["sh"],
        input=script_of(blocks, notes),
        cwd=checkout,
        env={"PATH": os.environ["PATH"], "HOME": str(folder), "LC_ALL": "C.UTF-8"},
        capture_output=True,
        encoding="utf-8",
        timeout=300,
        check=False,
    )
    printed = {
        number: (notes / f"out.{number}").read_text(encoding="utf-8")
        for number, block in enumerate(blocks)
        if block.kind == "sh" and (notes / f"out.{number}").exists()
    }
    return done, blocks, printed


def pattern_of(shown):
    """Shown lines with "..." for any number of lines; blanks at the ends of lines do not count."""
    lines = [r"(?:.*\n)*?" if line == "..." else re.escape(line) + r" *\n" for line in shown.splitlines()]
    return re.compile("".join(lines))


@pytest.mark.parametrize("path", TUTORIALS, ids=lambda path: pathlib.Path(path).stem)
def test_tutorial_does_what_it_says(path, tmp_path):
    done, blocks, printed = run_tutorial(path, tmp_path)
    assert done.returncode == 0, (done, list(printed.values())[-1:])
    for number, block in enumerate(blocks):
        if block.kind == "text":
            assert pattern_of(block.content).fullmatch(printed[number - 1]), (
                f"{path.name}:{block.line}: shown\n{block.content}\nprinted\n{printed[number - 1]}"
            )


@pytest.mark.parametrize("path", TUTORIALS, ids=lambda path: pathlib.Path(path).stem)
def test_shown_output_stands_behind_its_command(path):
    blocks = blocks_of(path)
    assert any(block.kind == "text" for block in blocks)
    for before, block in zip(blocks, blocks[1:]):
        assert block.kind != "text" or before.kind == "sh", f"{path.name}:{block.line}"
