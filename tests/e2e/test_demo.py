"""The demo that newcomers run first."""

import os
import re
import subprocess

from conftest import ROOT, ZYN


def test_demo_shows_two_users_their_own_rows(tmp_path):
    done = subprocess.run(
        ["sh", "examples/escola/demo.sh", ZYN.parent.parent, tmp_path / "demo"],
        cwd=ROOT,
        env={"PATH": os.environ["PATH"], "HOME": str(tmp_path), "LC_ALL": "C.UTF-8"},
        capture_output=True,
        encoding="utf-8",
        timeout=120,
        check=False,
    )
    assert (done.returncode, done.stderr) == (0, "")
    assert int(re.search(r"zyn items lists (\d+):", done.stdout).group(1)) >= 20
    shown = re.findall(r'^   "(.*)" for (\w+)$\n((?:.+\n)+)', done.stdout, re.M)
    assert [(name, user) for name, user, _ in shown] == [
        (name, user) for name in ("Cursos da rede", "Vagas por turma", "Faturas em aberto") for user in ("joaquim", "iara")
    ]
    for joaquims, iaras in zip(shown[::2], shown[1::2]):
        assert joaquims[2] != iaras[2]
    units = {user: set() for user in ("joaquim", "iara")}
    for _, user, table in shown:
        units[user] |= set(re.findall(r"\[U(\d)\]", table))
    assert units == {"joaquim": {"3"}, "iara": {"6", "7"}}
    heading, line, *students = re.search(r"^4\. .*\n((?:.+\n)+)", done.stdout, re.M).group(1).splitlines()
    assert heading.split()[0] == "Aluno" and set(line) == {"─", " "}
    assert len(students) == 6 and all(re.match(r"\[[•✓±✗→]\] A", student) for student in students)
