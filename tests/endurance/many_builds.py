#!/usr/bin/env python3
"""The commands of docs/many-builds.md, run as they stand there: 200 builds on two machines, which are two ssh servers on
this one, with a machine killed and the whole run ended on the way; some on one machine; and a Slurm array where root can
set up a node. Run by ctest, which tells where the program is."""
import contextlib
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(os.environ["LUMAFOLD"]).resolve()
PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/many-builds.md"
BUILDS, SLURM_BUILDS, WIDTH, HEIGHT = 200, 8, 320, 240
TRANSITIONS = ["None", "Soft slide (vertical)", "Soft iris (diamond)", "Soft slide (horizontal)", "Silent movie"]


def commands():
    """The page's blocks: on one machine, over several, going on, and the script for Slurm."""
    return re.findall(r"```sh\n(.*?)```", PAGE.read_text(encoding="utf-8"), re.DOTALL)


def picture(seed):
    """A bitmap of soft colours, as a file's bytes."""
    rows = bytes(value >> shift & 255 for y in range(HEIGHT) for x in range(WIDTH)
                 for value in [(x * (seed + 1) + y * 3) * 0x10305 // 7] for shift in (0, 8, 16))
    head = [54 + len(rows), 0, 54, 40, WIDTH, HEIGHT, 24 << 16 | 1, 0, len(rows), 0, 0, 0, 0]
    return b"BM" + b"".join(number.to_bytes(4, "little") for number in head) + rows


def table(folder, count):
    """Writes pictures and table; returns the table's lines as lists of words."""
    for number, name in enumerate("a b c d e".split()):
        (folder / f"picture {name}.bmp").write_bytes(picture(number))
    (folder / "out").mkdir()
    names = [f"picture {name}.bmp" for name in "abcde"]
    lines = [[f"out/{i:03}.gif", TRANSITIONS[i % 5], str(2 + i // 5), *(names[(i + i // 5 * at + at) % 5] for at in range(3))]
             for i in range(count)]
    (folder / "builds.tsv").write_text("".join("\t".join(line) + "\n" for line in lines))
    return lines


def family(process):
    """The ids of a process and of all that it started, as far as they live."""
    parents = {}
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            parents[int(entry.name)] = int((entry / "stat").read_text().rpartition(")")[2].split()[1])
    members = [process]
    for member in members:
        members += [child for child, parent in parents.items() if parent == member]
    return members


class Machine:
    """An ssh server of our own on a port of this machine."""

    def __init__(self, folder, name):
        self.folder, self.name = folder, name
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", folder / f"host-{name}"], check=True)
        (folder / f"sshd-{name}").write_text(
            f"Port {self.port}\nListenAddress 127.0.0.1\nHostKey {folder}/host-{name}\nPidFile none\nStrictModes no\n"
            f"AuthorizedKeysFile {folder}/key.pub\nUsePAM no\nPermitRootLogin yes\nMaxStartups 100\nMaxSessions 100\n"
            # A home of our own: what the user's shell does at its start is slow, and does not like to be killed.
            f"SetEnv HOME={folder} PATH={PROGRAM.parent}:{os.environ['PATH']}\n")

    def start(self):
        self.server = subprocess.Popen([shutil.which("sshd") or "/usr/sbin/sshd", "-D", "-e", "-f", self.folder / f"sshd-{self.name}"],
                                       stderr=subprocess.DEVNULL)
        for _ in range(200):
            with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", self.port), 1):
                return
            time.sleep(0.05)
        raise RuntimeError("the ssh server does not start")

    def kill(self):
        """With everything that runs under it; what it starts meanwhile is found the next time round."""
        while len(members := [self.server.pid, *family(self.server.pid)]) > 2 or self.server.poll() is None:
            for member in members:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(member, signal.SIGSTOP)
            for member in [*family(self.server.pid)][::-1]:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(member, signal.SIGKILL)
            self.server.wait()


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
        self.assertRegex(results[0], r'^\{"file":"out/\d+\.gif","frames":\d+,"width":320,"height":240,"size":\d+,"seconds":[\d.e-]+,"peakMemory":\d+\}$')

    def test_two_machines_of_which_one_dies(self):
        if not shutil.which("parallel") or not (shutil.which("sshd") or os.path.exists("/usr/sbin/sshd")):
            self.skipTest("no GNU parallel, or no ssh server")
        if os.geteuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)
        lines = table(self.folder, BUILDS)
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / "key"], check=True)
        machines = [Machine(self.folder, name) for name in ("one", "two")]
        (self.folder / "ssh").write_text("".join(
            f"Host {machine.name}\nHostName 127.0.0.1\nPort {machine.port}\n" for machine in machines) +
            f"Host *\nIdentityFile {self.folder}/key\nStrictHostKeyChecking no\nUserKnownHostsFile /dev/null\nLogLevel ERROR\n")
        self.environment["PARALLEL_SSH"] = f"ssh -F {self.folder}/ssh"
        (self.folder / "machines").write_text("2/one\n2/two\n")
        for machine in machines:
            machine.start()
            self.addCleanup(machine.kill)

        running = self.start(commands()[1])
        self.wait_for(running, BUILDS // 4)
        machines[1].kill()
        self.wait_for(running, BUILDS // 2)
        running.send_signal(signal.SIGTERM)  # begins nothing more
        running.communicate(timeout=100)
        succeeded = {lines[number - 1][0] for number, tries in self.log().items() if tries[-1] == 0}
        self.assertTrue(BUILDS // 2 <= len(succeeded) < BUILDS, f"{len(succeeded)} were built before it ended")
        before = {output: (self.folder / output).stat().st_ino for output in succeeded}

        machines[1].start()
        self.finish(self.start(commands()[2]))
        self.assertEqual({output: (self.folder / output).stat().st_ino for output in succeeded}, before, "built twice")
        tries = self.log()
        self.assertEqual(sorted(tries), list(range(1, BUILDS + 1)))
        self.assertTrue(all(ends.count(0) == 1 and ends[-1] == 0 for ends in tries.values()), tries)
        self.check_outputs(lines)

    def test_slurm_array(self):
        if os.geteuid() != 0 or not all(map(shutil.which, ("slurmctld", "slurmd", "sbatch"))):
            self.skipTest("no Slurm, or nobody who may set up a node")
        self.start_slurm()
        lines = table(self.folder, SLURM_BUILDS)
        (self.folder / "builds.sbatch").write_text(commands()[3])
        for missing in (lines, lines[2:4]):  # all of them, then what was lost
            for line in missing:
                (self.folder / line[0]).unlink(missing_ok=True)
            before = {line[0]: (self.folder / line[0]).stat().st_ino for line in lines if line not in missing}
            subprocess.run(["sbatch", "--wait", f"--array=1-{SLURM_BUILDS}", "builds.sbatch"], cwd=self.folder, env=self.environment,
                           check=True, timeout=400, stdout=subprocess.DEVNULL)
            self.check_outputs(lines)
            self.assertEqual({output: (self.folder / output).stat().st_ino for output in before}, before, "built twice")

    def start_slurm(self):
        """One node with two processors, which is this machine, with all that belongs to it in our folder."""
        with socket.socket() as one, socket.socket() as other:
            ports = [probe.bind(("127.0.0.1", 0)) or probe.getsockname()[1] for probe in (one, other)]
        configuration = self.folder / "slurm.conf"
        configuration.write_text(f"""ClusterName=lumafold
SlurmctldHost={socket.gethostname().split('.')[0]}(127.0.0.1)
SlurmUser=root
AuthType=auth/none
CredType=cred/none
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
ReturnToService=2
StateSaveLocation={self.folder}/state
SlurmdSpoolDir={self.folder}/spool
SlurmctldPidFile={self.folder}/slurmctld.pid
SlurmdPidFile={self.folder}/slurmd.pid
NodeName=here NodeHostname={socket.gethostname().split('.')[0]} NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=all Nodes=here Default=YES State=UP
SchedulerParameters=batch_sched_delay=0,sched_interval=1
""")
        (self.folder / "state").mkdir()
        self.environment["SLURM_CONF"] = str(configuration)
        for command in (["slurmctld", "-D"], ["slurmd", "-D", "-N", "here"]):
            daemon = subprocess.Popen([*command, "-f", configuration], env=self.environment, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL)
            self.addCleanup(daemon.wait)
            self.addCleanup(daemon.terminate)
        deadline = time.monotonic() + 60
        while b"idle" not in subprocess.run(["sinfo", "-h", "-o", "%T"], env=self.environment, capture_output=True).stdout:
            self.assertLess(time.monotonic(), deadline, "the node does not come up")
            time.sleep(0.2)

    def wait_for(self, running, built):
        deadline = time.monotonic() + 200
        while sum(tries[-1] == 0 for tries in self.log().values()) < built:
            self.assertIsNone(running.poll(), "it ended early")
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)


if __name__ == "__main__":
    unittest.main(verbosity=2)
