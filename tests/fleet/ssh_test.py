"""Five modules over a real ssh server on a loopback port, where no Python is to be found."""

import importlib.util
import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess
import time
import unittest

from fleet import CHANGES, COLLECTIONS, Fleet, PROGRAM, Run, end, wait_for

plan = importlib.util.spec_from_file_location(
    "zr_nexactl", COLLECTIONS / "ansible_collections/zr_nexa/router/plugins/plugin_utils/zr_nexactl.py")
zr_nexactl = importlib.util.module_from_spec(plan)
plan.loader.exec_module(zr_nexactl)

COUNT = 5
NAMES = {"module-%03d" % i for i in range(COUNT)}
BROUGHT = "Bring the module to the baseline"
# So that the connection is cut while the change is made, and not behind it.
CUT_HERE = "SetLANConfig#2=delay:4000"
SSHD = shutil.which("sshd", path="/usr/sbin:/usr/local/sbin:" + os.environ["PATH"])
BUSYBOX = shutil.which("busybox")


def free_port():
    with socket.socket() as it:
        it.bind(("127.0.0.1", 0))
        return it.getsockname()[1]


class Server:
    """An ssh server with keys of its own. Its sessions find busybox's words and nothing else."""

    def __init__(self, folder):
        self.folder = folder
        folder.mkdir()
        folder.chmod(0o700)
        self.port = free_port()
        for name in ("host", "user"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", folder / name], check=True)
        shutil.copy(folder / "user.pub", folder / "authorized")
        self.bin = folder / "bin"
        self.bin.mkdir()
        for word in ("sh", "cat", "sleep", "echo", "printf", "mkdir", "rm"):
            (self.bin / word).symlink_to(BUSYBOX)
        (self.bin / "zr_nexactl").symlink_to(PROGRAM)
        (folder / "config").write_text("""
Port %d
ListenAddress 127.0.0.1
ListenAddress 127.0.0.2
HostKey %s/host
AuthorizedKeysFile %s/authorized
PidFile none
UsePAM no
StrictModes no
PasswordAuthentication no
PermitTTY no
MaxStartups 100
SetEnv PATH=%s
""" % (self.port, folder, folder, self.bin))
        if os.geteuid() == 0:
            os.makedirs("/run/sshd", mode=0o755, exist_ok=True)  # as the package's own start does
        self.process = None
        self.start()

    def start(self):
        with open(self.folder / "log", "a", encoding="utf-8") as log:
            self.process = subprocess.Popen([SSHD, "-D", "-e", "-f", self.folder / "config"], stderr=log)
        wait_for(self.answers)

    def answers(self):
        if self.process.poll() is not None:
            raise AssertionError((self.folder / "log").read_text())
        with socket.socket() as it:
            return it.connect_ex(("127.0.0.1", self.port)) == 0

    def sessions(self):
        """The processes of sessions: what the server has started, and what that has started and is a server too."""
        found = []
        known = {self.process.pid}
        entries = sorted(int(each) for each in os.listdir("/proc") if each.isdigit())
        for process in entries + entries:
            try:
                stat = pathlib.Path("/proc/%d/stat" % process).read_text()
            except OSError:
                continue
            name, rest = stat[stat.index("(") + 1:].rsplit(")", 1)
            if int(rest.split()[1]) in known and name.startswith("sshd") and process not in known:
                known.add(process)
                found.append(process)
        return found

    def cut(self):
        """Ends the server and its sessions: from here on nobody gets in."""
        sessions = self.sessions()
        end(self.process.pid, signal.SIGKILL)
        self.process.wait()
        for session in sessions:
            end(session)

    def connection(self):
        return {
            "ansible_connection": "ssh",
            "ansible_host": "127.0.0.1",
            "ansible_port": self.port,
            "ansible_user": pwd.getpwuid(os.geteuid()).pw_name,
            "ansible_ssh_private_key_file": str(self.folder / "user"),
            "ansible_shell_executable": str(self.bin / "sh"),
            # Nothing of the caller's own is read or written.
            "ansible_ssh_args": "-F none -o IdentitiesOnly=yes -o IdentityAgent=none -o GlobalKnownHostsFile=none"
                                " -o UserKnownHostsFile=%s/known -o ControlMaster=auto -o ControlPersist=5s"
                                " -o ConnectTimeout=60 -o LogLevel=ERROR" % self.folder,
        }


@unittest.skipUnless(SSHD and BUSYBOX, "needs an ssh server and busybox")
class OverSsh(unittest.TestCase):
    def setUp(self):
        self.fleet = Fleet(COUNT)
        self.addCleanup(self.fleet.close)
        self.server = Server(self.fleet.folder / "server")
        self.addCleanup(lambda: self.server.cut())
        self.fleet.connection = self.server.connection()

    def test_no_python_is_needed(self):
        book = self.fleet.book("""
- name: Look for it
  hosts: modules
  gather_facts: false
  vars: {ansible_ssh_use_tty: false}
  tasks:
    - name: Look for it
      ansible.builtin.raw: python3 --version
      failed_when: false
""")
        looked = self.fleet.play(playbook=book)
        self.assertEqual({result.get("rc") for result in looked.results("Look for it").values()}, {127}, looked.text)

        first = self.fleet.play(baseline_executable="zr_nexactl")
        self.assertEqual(first.status, 0, first.text)
        self.assertEqual(first.hosts("changed"), NAMES)
        for result in first.results(BROUGHT).values():
            self.assertEqual(set(result["changes"]), CHANGES)
        for module in self.fleet.modules:
            self.assertEqual(module.run("pending", "--state", module.state_dir()).stdout, "nothing is pending\n")
            module.forget_log()
        second = self.fleet.play(baseline_executable="zr_nexactl")
        self.assertEqual(second.hosts("changed"), set())
        self.assertEqual([module.changing_calls() for module in self.fleet.modules], [[]] * COUNT)

    def test_the_document_stands_in_no_list_of_processes(self):
        module = self.fleet.module(0)
        module.environment["MOBILE_AP_FAULTS"] = "SetLANConfig=delay:1500"
        run = self.fleet.start("--limit", module.name)
        wait_for(module.processes)
        lines = b""
        for entry in pathlib.Path("/proc").iterdir():
            if entry.name.isdigit() and int(entry.name) != run.pid:
                try:
                    if b"ansible-playbook" not in (entry / "cmdline").read_bytes():  # the test's own words
                        lines += (entry / "cmdline").read_bytes()
                except OSError:
                    pass
        run.communicate()
        self.assertEqual(run.returncode, 0)
        self.assertIn(b"zr_nexactl", lines)
        self.assertNotIn(b"internet.example", lines)

    def test_a_change_that_cuts_the_connection_takes_itself_back(self):
        module = self.fleet.module(0)
        module.environment["MOBILE_AP_FAULTS"] = CUT_HERE
        before = module.shown()
        seconds = 6
        run = self.fleet.start("--limit", module.name, baseline_confirm_within=seconds)
        wait_for(lambda: "SetLANConfig" in module.changing_calls())
        self.server.cut()
        time.sleep(seconds + 1)
        wait_for(lambda: module.shown() == before)
        self.server.start()
        out, err = run.communicate()
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("the change was not confirmed", out + err)
        self.assertIn("the module is as it was before", out + err)
        self.assertEqual(module.shown(), before)

    def test_a_connection_that_comes_back_in_time_confirms(self):
        module = self.fleet.module(0)
        module.environment["MOBILE_AP_FAULTS"] = CUT_HERE
        run = self.fleet.start("--limit", module.name, baseline_confirm_within=60)
        wait_for(lambda: "SetLANConfig" in module.changing_calls())
        self.server.cut()
        self.server.start()
        out, err = run.communicate()
        self.assertEqual(run.returncode, 0, out + err)
        self.assertEqual(module.run("pending", "--state", module.state_dir()).stdout, "nothing is pending\n")
        # The answer of the apply got lost; the configurations before and after tell what has changed.
        result = Run(run.returncode, out, err).results(BROUGHT)[module.name]
        self.assertTrue({"lans.10", "lans.0.address", "upnp.notify_seconds"} <= set(result["changes"]), result)
        self.assertEqual(self.fleet.play("--limit", module.name).hosts("changed"), set())

    def test_a_module_that_moves_confirms_at_its_new_address(self):
        self.fleet.modules = self.fleet.modules[:1]
        book = self.fleet.book("""
- name: Move
  hosts: modules
  gather_facts: false
  environment: "{{ module_environment }}"
  tasks:
    - name: Move
      zr_nexa.router.config:
        config: {version: 1, upnp: {notify_seconds: 700}}
        confirm_within: 60
        answers_at: 127.0.0.2
        executable: zr_nexactl
        state_dir: "{{ baseline_state_dir }}"
""")
        run = self.fleet.play("-vvv", playbook=book)
        self.assertEqual(run.hosts("changed"), {"module-000"}, run.text)
        self.assertIn("<127.0.0.2> SSH: EXEC ssh", run.text)

    def test_an_unreachable_module_is_told_as_that(self):
        self.server.cut()
        run = self.fleet.play("--limit", "module-000")
        self.assertEqual(run.hosts("unreachable"), {"module-000"})
        self.assertEqual(run.hosts("failures"), set())
        self.server.start()

    def test_a_document_that_is_cut_off_is_not_begun(self):
        # The first half of a document may be one that is as good.
        for text, status in (("version: 1\n", 125), ("version: 1\n%s\n" % zr_nexactl.LAST, 0)):
            done = subprocess.run([self.server.bin / "sh", "-c", zr_nexactl.script("zr_nexactl validate -")],
                                  input=text, text=True, check=False, env={"PATH": str(self.server.bin)})
            self.assertEqual(done.returncode, status)

    def test_a_document_stands_in_no_environment(self):
        (self.server.bin / "env").symlink_to(BUSYBOX)
        done = subprocess.run([self.server.bin / "sh", "-c", zr_nexactl.script("env")], input=zr_nexactl.LAST + "\n",
                              text=True, check=True, capture_output=True,
                              env={"PATH": str(self.server.bin), "document": "exported"})
        self.assertIn("PATH=", done.stdout)
        self.assertNotIn(zr_nexactl.LAST, done.stdout)


if __name__ == "__main__":
    unittest.main()
