"""Modules of the host platform, each with a state folder of its own, and ansible-playbook over them."""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(os.environ.get("ZR_NEXACTL", ROOT / "build/host/bin/zr_nexactl"))
COLLECTIONS = ROOT / "fleet"
SITE = COLLECTIONS / "example/site.yml"

DOCUMENT = {
    "version": 1,
    "general": {"packet_statistics": True},
    "lans": {
        "0": {"address": "192.168.10.1/24", "dhcp": {"first": "192.168.10.20", "last": "192.168.10.60"}},
        "10": {"vlan": {"interface": "ethernet"}, "address": "192.168.11.1/24",
               "dhcp": {"first": "192.168.11.20", "last": "192.168.11.60"}},
    },
    "profiles": {
        "main": {"dial": {"apn_index": 1}},
        "office": {"dial": {"apn_index": 3, "apn_name": "internet.example"}, "vlans": [10],
                   "nat": {"type": "full-cone"}},
    },
    "upnp": {"notify_seconds": 600},
}
# Where DOCUMENT differs from a fresh module.
CHANGES = {
    "general.packet_statistics", "lans.10", "lans.10.address", "lans.10.dhcp.first", "lans.10.dhcp.last",
    "lans.0.address", "lans.0.dhcp.first", "lans.0.dhcp.last", "profiles.office", "profiles.office.nat.type",
    "profiles.office.vlans", "upnp.notify_seconds",
}

CALL = re.compile(r"\[MOBILE_AP\](\w+)\(\): (?:true|false), error")
LOOKING = re.compile(r"Get|ZR_Get|Select|IsReady|EnableMobileAP|DisableMobileAP|RegisterForIndications"
                     r"|SetWWANProfileHandlePreference")


class Module:
    def __init__(self, folder, name):
        self.name = name
        self.folder = folder / name
        self.folder.mkdir(parents=True)
        self.log = self.folder / "log"
        self.environment = {
            "MOBILE_AP_STATE": str(self.folder),
            "MOBILE_AP_LOG": "file:%s" % self.log,
            "MOBILE_AP_LOG_LEVEL": "debug",
            "ZR_NEXACTL_STATE": self.state_dir(),
        }

    def run(self, *words):
        """zr_nexactl on this module, beside Ansible and without its faults."""
        environment = dict(os.environ, **self.environment)
        environment.pop("MOBILE_AP_FAULTS", None)
        environment.pop("MOBILE_AP_LOG", None)
        return subprocess.run([PROGRAM, *words], env=environment, capture_output=True, text=True, check=False)

    def shown(self):
        return self.run("show").stdout

    def state_dir(self):
        return str(self.folder / "ctl")

    def changing_calls(self):
        """The platform's methods that were called and do more than look, in their order."""
        if not self.log.exists():
            return []
        return [name for name in CALL.findall(self.log.read_text()) if not LOOKING.match(name)]

    def forget_log(self):
        self.log.unlink(missing_ok=True)

    def processes(self):
        """The runs of zr_nexactl on this module that Ansible has started."""
        mark = ("MOBILE_AP_STATE=%s\0" % self.folder).encode()
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            try:
                is_ours = entry.name.isdigit() and os.readlink(entry / "exe") == str(PROGRAM.resolve())
                if (is_ours and mark in (entry / "environ").read_bytes()
                        and b"watchdog" not in (entry / "cmdline").read_bytes()):
                    found.append(int(entry.name))
            except OSError:
                pass  # it has ended meanwhile
        return found


class Run:
    """What a run of ansible-playbook said."""

    def __init__(self, status, out, err):
        self.status = status
        self.text = out + err
        self.stats = {}
        self.said = []
        for line in out.splitlines():
            if line.startswith("{"):
                each = json.loads(line)
                self.stats.update(each.get("stats", {}))
                if "task" in each:
                    self.said.append(each)

    def hosts(self, what):
        """The modules of which the summary counts something: changed, failures, unreachable, ok."""
        return {host for host, counts in self.stats.items() if counts[what] > 0}

    def results(self, task):
        """The results of a task by module."""
        return {each["host"]: each["result"] for each in self.said if each["task"].endswith(task)}


class Fleet:
    def __init__(self, count, connection=None):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="zr-fleet-"))
        self.connection = connection or {"ansible_connection": "local"}
        self.modules = [Module(self.folder / "modules", "module-%03d" % i) for i in range(count)]
        self.variables = {}  # by module, beside what all have
        self.control = self.folder / "control"
        (self.control / "tmp").mkdir(parents=True)

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)

    def module(self, number):
        return self.modules[number]

    def inventory(self):
        hosts = {}
        for module in self.modules:
            own = dict(self.connection, **self.variables.get(module.name, {}))
            environment = dict(module.environment, **own.pop("more_environment", {}))
            hosts[module.name] = dict(own, module_environment=environment, baseline_state_dir=module.state_dir(),
                                      baseline_executable=str(PROGRAM))
        path = self.control / "inventory.json"
        path.write_text(json.dumps({"modules": {"hosts": hosts}}))
        return path

    def environment(self, forks):
        return dict(
            os.environ,
            ANSIBLE_COLLECTIONS_PATH=str(COLLECTIONS),
            ANSIBLE_HOME=str(self.control),
            ANSIBLE_LOCAL_TEMP=str(self.control / "tmp"),
            ANSIBLE_FORKS=str(forks),
            ANSIBLE_STDOUT_CALLBACK="results",
            ANSIBLE_CALLBACK_PLUGINS=str(pathlib.Path(__file__).parent / "callback_plugins"),
            ANSIBLE_NOCOLOR="1",
            ANSIBLE_HOST_KEY_CHECKING="0",
            ANSIBLE_RETRY_FILES_ENABLED="0",
            ANSIBLE_DEPRECATION_WARNINGS="0",
            ANSIBLE_SSH_CONTROL_PATH_DIR=str(self.control / "cp"),
            LC_ALL="C.UTF-8",
        )

    def command(self, playbook, words, variables):
        given = dict({"baseline_document": DOCUMENT, "batches": ["100%"], "baseline_confirm_within": 120}, **variables)
        return ["ansible-playbook", "-i", str(self.inventory()), "-e", json.dumps(given), *words, str(playbook)]

    def play(self, *words, playbook=SITE, forks=10, more_environment=None, **variables):
        done = subprocess.run(self.command(playbook, words, variables),
                              env=dict(self.environment(forks), **(more_environment or {})),
                              capture_output=True, text=True, check=False)
        return Run(done.returncode, done.stdout, done.stderr)

    def start(self, *words, playbook=SITE, forks=10, **variables):
        """The same, not waited for; a session of its own, so that a signal to its group reaches nobody else. Where the
        tests run in the background of a script SIGINT is ignored, and would be by ansible-playbook."""
        command = ["env", "--default-signal=INT", *self.command(playbook, words, variables)]
        return subprocess.Popen(command, env=self.environment(forks),
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, start_new_session=True)

    def book(self, text):
        """A playbook of a test's own."""
        path = self.control / "book.yml"
        path.write_text(text)
        return path


def wait_for(condition, seconds=120):
    """Waits until something is so, and returns it; the bound is for what will never come."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    raise AssertionError("it did not come about within %d s" % seconds)


def end(process, number=signal.SIGKILL):
    try:
        os.kill(process, number)
    except ProcessLookupError:
        pass
