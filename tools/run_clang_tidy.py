"""Runs clang-tidy over the sources of what is delivered, on all cores.

usage: run_clang_tidy.py BUILD_DIR

Tests are left to the compiler's warnings: analysing the test framework's macros would take longer than all the rest.
What was clean is remembered by a digest of the source, of every header of the project and of the settings, so
that a second run looks only at what changed. The memory lives in BUILD_DIR.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys


def digest_of(paths):
    digest = hashlib.sha256()
    for path in sorted(paths):
        digest.update(str(path).encode() + b"\0" + path.read_bytes() + b"\0")
    return digest.hexdigest()


def included_headers(entry):
    """The project's headers that a source pulls in, as the compiler sees them."""
    words = [word for word in entry["command"].split() if word not in ("-c",) and "ccache" not in word]
    if "-o" in words:
        place = words.index("-o")
        del words[place : place + 2]
    listing = subprocess.run(words + ["-MM"], cwd=entry["directory"], capture_output=True, text=True, check=False)
    names = listing.stdout.replace("\\\n", " ").split()[1:]
    return [pathlib.Path(entry["directory"], name).resolve() for name in names]


def check(entry, build, settings, clean):
    source = pathlib.Path(entry["file"])
    digest = digest_of([source, settings, *included_headers(entry)])
    if clean.get(str(source)) == digest:
        return source, digest, ""
    run = subprocess.run(
        ["clang-tidy-14", "--quiet", "-p", str(build), str(source)], capture_output=True, text=True, check=False
    )
    return source, digest, "" if run.returncode == 0 else run.stdout + run.stderr


def main(build):
    root = pathlib.Path.cwd()
    listed = json.loads((build / "compile_commands.json").read_text())
    left_out = (root / "tests", root / "build")
    entries = [entry for entry in listed if not any(pathlib.Path(entry["file"]).is_relative_to(out) for out in left_out)]
    memory = build / "clang-tidy-clean.json"
    clean = json.loads(memory.read_text()) if memory.exists() else {}
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(check, entry, build, root / ".clang-tidy", clean) for entry in entries]
        for job in concurrent.futures.as_completed(jobs):
            source, digest, complaint = job.result()
            if complaint:
                failures += 1
                print(complaint, flush=True)
            else:
                clean[str(source)] = digest
    memory.write_text(json.dumps(clean))
    print(f"clang-tidy: {len(entries)} sources, {failures} with complaints")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
