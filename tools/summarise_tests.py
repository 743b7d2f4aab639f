"""Adds up the reports of the test programs: names what failed, and closes with "N passed, N failed".

usage: summarise_tests.py RESULTS_DIR PROGRAM...

A program without a readable report did not end as it should, and counts as one failure.
"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def failed_cases(root):
    for case in root.iter("testcase"):
        if case.find("failure") is not None or case.find("error") is not None:
            yield f"{case.get('classname')}.{case.get('name')}"


def count_cases(root):
    """How many cases ran; skipped ones are not counted, for they proved nothing."""
    ran = 0
    for case in root.iter("testcase"):
        skipped = case.find("skipped") is not None or case.get("result") in ("skipped", "suppressed")
        ran += 0 if skipped else 1
    return ran


def exit_status(results, program):
    """The program's own, or 0 where none was noted."""
    noted = results / f"{program}.status"
    return int(noted.read_text()) if noted.exists() else 0


def main(results, programs):
    passed = failed = 0
    for program in programs:
        try:
            root = ElementTree.parse(results / f"{program}.xml").getroot()
        except (OSError, ElementTree.ParseError) as problem:
            print(f"FAILED {program}: it left no report ({problem})")
            failed += 1
            continue
        bad = list(failed_cases(root))
        for name in bad:
            print(f"FAILED {program}: {name}")
        status = exit_status(results, program)
        if status != 0 and not bad:
            print(f"FAILED {program}: it ended with status {status}, though no test failed")
            failed += 1
        ran = count_cases(root)
        if ran == 0:
            print(f"FAILED {program}: it ran no test")
            failed += 1
        print(f"{program}: {ran} tests, {len(bad)} failed")
        passed += ran - len(bad)
        failed += len(bad)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2:]))
