#!/usr/bin/env python3
"""The commands of docs/many-builds.md, run as they stand there: many builds on two machines, which are two
names of this one, with a machine killed and the whole run ended on the way; some on one machine; and the tasks of a Slurm array
one after the other. Run by ctest, which tells where the program is."""
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import products

PROGRAM = pathlib.Path(os.environ["LUMAFOLD"]).resolve()
PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/many-builds.md"
BUILDS, WIDTH, HEIGHT = 48, 160, 120
TRANSITIONS = ["None", "Soft slide (vertical)", "Soft iris (diamond)", "Soft slide (horizontal)", "Silent movie"]


def commands():
    """The page's blocks: on one machine, over several, going on, and the script for Slurm."""
    return re.findall(r"```sh\n(.*?)```", PAGE.read_text(encoding="utf-8"), re.DOTALL)


def table(folder, count):
    """Writes pictures and table; returns the table's lines as lists of words."""
    for number, name in enumerate("a b c d e".split()):
        (folder / f"picture {name}.bmp").write_bytes(products.bitmap(WIDTH, HEIGHT, number))
    (folder / "out").mkdir()
    names = [f"picture {name}.bmp" for name in "abcde"]
    lines = [[f"out/{i:03}.gif", TRANSITIONS[i % 5], str(2 + i // 5), *(names[(i + i // 5 * at + at) % 5] for at in range(3))]
             for i in range(count)]
    (folder / "builds.tsv").write_text("".join("\t".join(line) + "\n" for line in lines))
    return lines


# Stands for ssh: a machine is this one, until a file says that it is dead. What it runs is a group of processes whose
# number is kept, so that they can end with it.
SSH = """#!/bin/sh
name=$1
shift
test "$1" = -- && shift
test -e "$HOME/$name.dead" && exit 255
setsid sh -c 'echo $$ >"$0"; exec sh -c "$1"' "$HOME/$name.$$" "$*"
status=$?
test $status -lt 128 && exit $status
exit 255
"""


class ManyBuilds(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="lumafold-many-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = {**os.environ, "PATH": f"{PROGRAM.parent}:{os.environ['PATH']}", "PARALLEL_HOME": str(self.folder / "home"),
                            "PARALLEL": ""}
        (self.folder / "home").mkdir()
        (self.folder / "home" / "will-cite").touch()

    def start(self, command):
        return subprocess.Popen(["sh", "-c", "exec " + command], cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True)

    def finish(self, running, status=0):
        _, errors = running.communicate(timeout=500)
        self.assertEqual(running.returncode, status, errors)

    def log(self):
        """{line of the table: [exit status of each try]}"""
        tries = {}
        with contextlib.suppress(FileNotFoundError):
            for line in (self.folder / "builds.log").read_text().splitlines()[1:]:
                words = line.split("\t")
                tries.setdefault(int(words[0]), []).append(int(words[6]))
        return tries

    def check_outputs(self, lines):
        """Each is what a build alone makes, and nothing else is there."""
        alone = self.folder / "alone.gif"
        for output, transition, delay, *pictures in lines:
            subprocess.run([PROGRAM, "build", "-q", "--transition", transition, "--delay", delay, *pictures, "-o", alone],
                           cwd=self.folder, check=True)
            self.assertEqual((self.folder / output).read_bytes(), alone.read_bytes(), output)
        self.assertEqual(sorted(str(path.relative_to(self.folder)) for path in (self.folder / "out").glob("[!~]*")),
                         [line[0] for line in lines])

    def test_one_machine(self):
        if not shutil.which("parallel"):
            self.skipTest("no GNU parallel")
        lines = table(self.folder, 10)
        self.finish(self.start(commands()[0]))
        self.check_outputs(lines)
        results = (self.folder / "results.jsonl").read_text().splitlines()
        self.assertEqual(len(results), 10)
        self.assertRegex(results[0], r'^\{"file":"out/\d+\.gif","frames":\d+,"width":160,"height":120,"size":\d+,"seconds":[\d.e-]+,"peakMemory":\d+\}$')

    def test_two_machines_of_which_one_dies(self):
        if not shutil.which("parallel"):
            self.skipTest("no GNU parallel")
        lines, home = table(self.folder, BUILDS), self.folder / "home"
        (home / "ssh").write_text(SSH)
        (home / "ssh").chmod(0o755)
        self.environment |= {"PARALLEL_SSH": str(home / "ssh"), "HOME": str(home)}
        (self.folder / "machines").write_text("2/one\n2/two\n")

        running = self.start(commands()[1])
        self.wait_for(running, BUILDS // 4)
        (home / "two.dead").touch()
        for group in home.glob("two.[0-9]*"):
            with contextlib.suppress(ProcessLookupError):
                os.killpg(int(group.read_text()), signal.SIGKILL)
        self.wait_for(running, BUILDS // 2)
        running.send_signal(signal.SIGTERM)  # begins nothing more
        running.communicate(timeout=100)
        succeeded = {lines[number - 1][0] for number, tries in self.log().items() if tries[-1] == 0}
        self.assertTrue(BUILDS // 2 <= len(succeeded) < BUILDS, f"{len(succeeded)} were built before it ended")
        before = {output: (self.folder / output).stat().st_ino for output in succeeded}

        (home / "two.dead").unlink()
        self.finish(self.start(commands()[2]))
        self.assertEqual({output: (self.folder / output).stat().st_ino for output in succeeded}, before, "built twice")
        tries = self.log()
        self.assertEqual(sorted(tries), list(range(1, BUILDS + 1)))
        self.assertTrue(all(ends.count(0) == 1 and ends[-1] == 0 for ends in tries.values()), tries)
        self.check_outputs(lines)

    def test_tasks_of_a_slurm_array(self):
        """Twice: all of them, then what was lost."""
        lines = table(self.folder, 8)
        for missing in (lines, lines[2:4]):
            for line in missing:
                (self.folder / line[0]).unlink(missing_ok=True)
            before = {line[0]: (self.folder / line[0]).stat().st_ino for line in lines if line not in missing}
            for task in range(1, 9):
                subprocess.run(["sh", "-c", commands()[3]], cwd=self.folder, check=True, stdout=subprocess.DEVNULL,
                               env={**self.environment, "SLURM_ARRAY_TASK_ID": str(task)})
            self.check_outputs(lines)
            self.assertEqual({output: (self.folder / output).stat().st_ino for output in before}, before, "built twice")

    def wait_for(self, running, built):
        deadline = time.monotonic() + 200
        while sum(tries[-1] == 0 for tries in self.log().values()) < built:
            self.assertIsNone(running.poll(), "it ended early")
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)


if __name__ == "__main__":
    unittest.main(verbosity=2)
