"""The help text, the reference, the manual page and the completion tell the same options."""

import re
import subprocess

import pytest
from conftest import COMMANDS, ROOT, ZYN

OPTION = re.compile(r"--[a-z][a-z-]*")


def help_text(*arguments):
    return subprocess.run([ZYN, *arguments, "--help"], capture_output=True, encoding="utf-8", check=True).stdout


def options_of_help(*arguments):
    """Options stand at the beginning of their lines."""
    names = set()
    for line in help_text(*arguments).splitlines():
        if match := re.match(r"  (?:-\w,)?(--[a-z-]+)", line):
            names.add(match.group(1))
    return names


def all_options():
    return set().union(options_of_help(), *(options_of_help(command) for command in COMMANDS))


def section(text, heading):
    """The text from a heading to the next one of the same depth."""
    depth = heading.split()[0]
    start = text.index(heading + "\n") + len(heading)
    following = re.search(rf"^{re.escape(depth)} ", text[start:], re.M)
    return text[start : start + following.start()] if following else text[start:]


def options_of_table(text):
    return {name for line in text.splitlines() if line.startswith("| `-") for name in OPTION.findall(line.split("|")[1])}


REFERENCE = (ROOT / "docs/reference/zyn.md").read_text(encoding="utf-8")


def test_help_names_every_command():
    listed = re.findall(r"^  (\w+)  ", help_text().split("Commands:")[1], re.M)
    assert listed == COMMANDS


def test_reference_tells_the_global_options():
    assert options_of_table(section(REFERENCE, "## Global options")) == options_of_help()


@pytest.mark.parametrize("command", COMMANDS)
def test_reference_tells_the_options_of_a_command(command):
    told = options_of_table(section(REFERENCE, f"## zyn {command}"))
    assert told == options_of_help(command) - {"--help"}


def test_manual_page_tells_every_option():
    page = (ROOT / "packaging/zyn.1").read_text(encoding="utf-8").replace("\\-", "-")
    told = {name for line in page.splitlines() if line.startswith(".B") for name in OPTION.findall(line)}
    assert told == all_options()


def test_manual_page_is_well_formed():
    page = (ROOT / "packaging/zyn.1").read_text(encoding="utf-8")
    assert page.count("\n.SH ") >= 6
    assert all(line.isascii() for line in page.splitlines())


def completions(*words):
    """What bash offers for the last word."""
    script = """
        . "$1"; shift
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
        _zyn; printf '%s\\n' "${COMPREPLY[@]}"
    """
    path = ROOT / "packaging/zyn.bash-completion"
    done = subprocess.run(["bash", "-c", script, "bash", path, *words], capture_output=True, encoding="utf-8", check=True)
    assert done.stderr == ""
    return set(done.stdout.split())


def test_completion_offers_the_commands_and_global_options():
    assert completions("zyn", "") == set(COMMANDS)
    assert completions("zyn", "--") == options_of_help()
    assert completions("zyn", "--quiet", "s") == {name for name in COMMANDS if name.startswith("s")}


@pytest.mark.parametrize("command", COMMANDS)
def test_completion_offers_the_options_of_a_command(command):
    assert completions("zyn", command, "--") == options_of_help(command) | (options_of_help() - {"--version"})


def test_completion_offers_the_values():
    assert completions("zyn", "sql", "--format", "") == {"table", "csv", "json", "ndjson"}
    assert completions("zyn", "sql", "--format", "n") == {"ndjson"}
    assert completions("zyn", "show", "--format", "") == {"tree", "json"}
    assert completions("zyn", "explain", "--format", "") == {"text", "json"}
    assert completions("zyn", "items", "--kind", "data") == {"data-source", "data-processor"}
    assert completions("zyn", "sql", "--where-word", "") == {"where", "and"}


def test_help_fits_a_terminal():
    for arguments in ([], *([command] for command in COMMANDS)):
        assert all(len(line) <= 80 for line in help_text(*arguments).splitlines())


def test_version_is_one_line():
    done = subprocess.run([ZYN, "--version"], capture_output=True, encoding="utf-8", check=True)
    assert re.fullmatch(r"zyn \d+\.\d+\.\d+\n", done.stdout)
