"""A job array on a real Slurm of one node, which the test starts on loopback and ends again."""

import getpass
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "Cli"))
from zortex_testing import ZORTEX, RGB, make_png

SOURCE = os.environ["ZORT_SOURCE"]
SKIPPED = 77
PROGRAMS = ("munged", "slurmctld", "slurmd", "sbatch", "squeue", "scancel", "scontrol")
OPTIONS = ("--format", "etc2-rgb", "--quality", "1", "--mips")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Slurm:
    """munged, slurmctld and slurmd with a configuration of their own below one folder."""

    def __init__(self, folder):
        self.folder = folder
        self.processes = []
        self.host = socket.gethostname().split(".")[0]
        os.chmod(folder, 0o755)
        for name in ("munge", "state", "spool"):
            os.mkdir(self.path(name), 0o700)
        with open(self.path("munge/key"), "wb") as file:
            file.write(os.urandom(128))
        os.chmod(self.path("munge/key"), 0o600)
        with open(self.path("slurm.conf"), "w") as file:
            file.write(f"""ClusterName=test
SlurmctldHost={self.host}(127.0.0.1)
SlurmctldPort={free_port()}
SlurmdPort={free_port()}
SlurmUser={getpass.getuser()}
SlurmdUser={getpass.getuser()}
AuthType=auth/munge
AuthInfo=socket={self.path('munge/socket')}
CredType=cred/munge
StateSaveLocation={self.path('state')}
SlurmdSpoolDir={self.path('spool')}
SlurmctldPidFile={self.path('slurmctld.pid')}
SlurmdPidFile={self.path('slurmd.pid')}
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SchedulerType=sched/builtin
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
MpiDefault=none
ReturnToService=2
MinJobAge=600
JobRequeue=0
KillWait=2
SchedulerParameters=batch_sched_delay=0,sched_min_interval=0
NodeName={self.host} NodeAddr=127.0.0.1 CPUs={os.cpu_count()} State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP OverSubscribe=NO
""")
        self.environment = {**os.environ, "SLURM_CONF": self.path("slurm.conf"), "ZORTEX": ZORTEX}

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self):
        self.spawn("munged", "--foreground", "--force", "--key-file", self.path("munge/key"), "--socket", self.path("munge/socket"),
                   "--pid-file", self.path("munge/pid"), "--log-file", self.path("munge/log"), "--seed-file", self.path("munge/seed"))
        self.wait_for("munged", lambda: os.path.exists(self.path("munge/socket")))
        self.spawn("slurmctld", "-D", "-f", self.path("slurm.conf"))
        self.spawn("slurmd", "-D", "-f", self.path("slurm.conf"), "-N", self.host)
        self.wait_for("the node", lambda: "State=IDLE" in self.run("scontrol", "show", "node", check=False))

    def spawn(self, *command):
        log = open(self.path(command[0] + ".out"), "w")
        self.processes.append(subprocess.Popen(command, env=self.environment, stdout=log, stderr=log, stdin=subprocess.DEVNULL))
        log.close()

    def run(self, *command, check=True):
        result = subprocess.run(command, env=self.environment, cwd=self.folder, capture_output=True, text=True, timeout=60)
        if check and result.returncode != 0:
            raise RuntimeError(f"{command}: {result.stderr}")
        return result.stdout

    def wait_for(self, what, condition, seconds=90):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end or any(process.poll() is not None for process in self.processes):
                raise RuntimeError(f"{what} did not come: {self.logs()}")
            time.sleep(0.1)

    def logs(self):
        text = ""
        for name in ("munged.out", "slurmctld.out", "slurmd.out"):
            if os.path.exists(self.path(name)):
                with open(self.path(name)) as file:
                    text += f"{name}: {file.read()[-1500:]}\n"
        return text

    def submit(self, *arguments):
        return self.run("sbatch", "--parsable", *arguments).strip()

    def wait_for_jobs(self):
        self.wait_for("the end of the jobs", lambda: not self.run("squeue", "--noheader").strip(), 240)

    def stop(self):
        subprocess.run(["scancel", "--state=RUNNING"], env=self.environment, capture_output=True, timeout=30)
        for process in reversed(self.processes):
            process.terminate()
            try:
                process.wait(20)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


class JobArray(unittest.TestCase):
    def setUp(self):
        # munged refuses a socket below folders that others may write to, as /tmp is, unless forced; the folder is ours.
        self.folder = tempfile.mkdtemp(prefix="zortex-slurm-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.slurm = Slurm(self.folder)
        self.addCleanup(self.slurm.stop)
        self.slurm.start()
        os.mkdir(self.path("art"))
        self.names = []
        for i in range(12):
            name = f"art/{i:02}.png"
            with open(self.path(name), "wb") as file:
                file.write(make_png(256, 256, RGB, 8, [(x * 7 * (i + 1) + x // 768 * 5) & 255 for x in range(256 * 256 * 3)]))
            self.names.append(name)
        with open(self.path("list"), "w") as file:
            file.write("\n".join(self.names) + "\n")

    def path(self, name):
        return os.path.join(self.folder, name)

    def script(self, name):
        return os.path.join(SOURCE, "Cluster", "slurm", name)

    def collect(self):
        return subprocess.run([self.script("collect.sh"), "list", "out"], env=self.slurm.environment, cwd=self.folder,
                              capture_output=True, text=True, timeout=60)

    def outputs(self, folder):
        found = {}
        for name in os.listdir(self.path(folder + "/art")):
            with open(self.path(f"{folder}/art/{name}"), "rb") as file:
                found[name] = file.read()
        return found

    def test_array_with_a_killed_task(self):
        # The second task's program is stopped after its first file, until it is killed.
        stuck = self.path("stuck")
        with open(stuck, "w") as file:
            file.write(f"""#!/bin/bash
[[ "$*" == *"--shard 2/3"* ]] || exec "{ZORTEX}" "$@"
"{ZORTEX}" "$@" &
until compgen -G "out/.zortex/made/art/0[147].zor.json" >/dev/null || compgen -G "out/.zortex/made/art/10.zor.json" >/dev/null; do sleep 0.002; done
kill -STOP $!
echo $! > "{self.path("pid")}"
wait
""")
        os.chmod(stuck, 0o755)
        self.slurm.environment["ZORTEX"] = stuck
        array = ("--array=1-3", "--output=task-%a.log", self.script("convert.sbatch"), "list", "out", *OPTIONS)
        job = self.slurm.submit(*array)
        self.slurm.wait_for("the second task", lambda: os.path.exists(self.path("pid")))
        self.slurm.run("scancel", "--signal=KILL", "--full", f"{job}_2")
        self.slurm.wait_for_jobs()
        self.slurm.environment["ZORTEX"] = ZORTEX

        result = self.collect()
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr + self.slurm.logs())
        with open(self.path("out/.zortex/failed.txt")) as file:
            failed = file.read().split()
        # The first file of the share may be told of: Slurm lets a task end before it kills it.
        self.assertIn(self.names[10], failed)
        self.assertLessEqual(set(failed), set(self.names[1::3]))
        self.assertIn(len([name for name in self.outputs("out") if "zortex-tmp" not in name]), (9, 10, 11))

        self.slurm.submit("--array=1-2", "--output=again-%a.log", self.script("convert.sbatch"), "out/.zortex/failed.txt", "out", *OPTIONS)
        self.slurm.wait_for_jobs()
        result = self.collect()
        self.assertRegex(result.stdout, r"\A(12 converted|\d+ converted, [123] up to date) of 12\n\Z", result.stderr)
        self.assertEqual(result.returncode, 0)
        with open(self.path("out/.zortex/report.json")) as file:
            self.assertEqual([entry["input"] for entry in json.load(file)["files"]], self.names)

        subprocess.run([ZORTEX, "convert", "--list", "list", "--out-dir", "single", "--quiet", *OPTIONS], cwd=self.folder, check=True)
        self.assertEqual(self.outputs("out"), self.outputs("single"))


if __name__ == "__main__":
    missing = [name for name in PROGRAMS if shutil.which(name, path=os.environ["PATH"] + ":/usr/sbin:/sbin") is None]
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    if missing or os.geteuid() != 0:
        print("skipped: " + ("not root" if not missing else "not installed: " + ", ".join(missing)))
        sys.exit(SKIPPED)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    unittest.main(verbosity=1)
