"""Checks what the module shows to the dynamic linker, and what it asks of it.

usage: check_module_symbols.py LIBRARY

It may define its entry points and the two data symbols, and nothing else. It may leave open only what the
framework is to bring by symbol: the two date classes. It may be bound to the C and C++ runtime only.
"""

import re
import subprocess
import sys

DEFINED = {
    "moxPlugIn_EntryPoint",
    "moxPlugIn_RegisterClasses",
    "moxPlugIn_DoValidityCheck",
    "moxPlugIn_ModuleVersion",
    "moxApp",
    "moxSession",
}
RUNTIME = re.compile(r"^(libstdc\+\+|libm|libgcc_s|libc|ld-linux[\w-]*)\.so")
OWN_CLASS = re.compile(r"\b(mox\w*|Mox\w*|VELMOR\w*|date_t|datetime_t)\b")
DATES = re.compile(r"^(date_t|datetime_t)::")


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def symbols(library, *options):
    lines = output_of("nm", "-D", "-C", *options, library).splitlines()
    return {line.split(maxsplit=2 if "--defined-only" in options else 1)[-1] for line in lines}


def needed_libraries(library):
    return re.findall(r"\(NEEDED\).*\[(.+)\]", output_of("readelf", "-d", library))


def main(library):
    problems = []
    defined = symbols(library, "--defined-only")
    problems += [f"defines {name}, which nobody outside may see" for name in sorted(defined - DEFINED)]
    problems += [f"does not define {name}" for name in sorted(DEFINED - defined)]
    for name in sorted(symbols(library, "--undefined-only")):
        if OWN_CLASS.search(name) and not DATES.match(name):
            problems.append(f"needs {name}: only the date classes may be asked for by symbol")
    problems += [
        f"is linked to {name}; only the runtime may be" for name in needed_libraries(library) if not RUNTIME.match(name)
    ]
    for problem in problems:
        print(f"{library} {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
