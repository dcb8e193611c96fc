"""The measurements of bench/fleet."""

import json
import os
import resource
import subprocess
import sys
import threading
import time

from fleet import DOCUMENT, Fleet, PROGRAM

COMMAND = PROGRAM.parent / "zr_nexa"

# As much of DOCUMENT as the fixed command has words for: a line is a second of pause.
LINES = [
    "General SFE disable",
    "LAN VLAN add 10 1 1",
    "LAN DHCP set 10 192.168.11.1 255.255.255.0 192.168.11.20 192.168.11.60 43200",
    "LAN DHCP set 0 192.168.10.1 255.255.255.0 192.168.10.20 192.168.10.60 43200",
    "WAN WWANConfig add 0 3",
    "NAT Type set 2 2",
    "WAN MPDNMapping add 2 10",
]


def measured(work):
    """Seconds, processor seconds of all that it starts, and its greatest resident memory with all that runs at once."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    peak = [0]
    stop = threading.Event()
    watcher = threading.Thread(target=watch, args=(peak, stop))
    watcher.start()
    begun = time.monotonic()
    work()
    seconds = time.monotonic() - begun
    stop.set()
    watcher.join()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return seconds, used, peak[0]


def watch(peak, stop):
    while not stop.wait(0.05):
        peak[0] = max(peak[0], memory_below(os.getpid()))


def memory_below(parent):
    """KiB that are of processes below one, each page counted once."""
    children = {}
    for name in os.listdir("/proc"):
        if not name.isdigit():
            continue
        try:
            with open("/proc/%s/stat" % name, encoding="utf-8") as file:
                children.setdefault(int(file.read().rsplit(")", 1)[1].split()[1]), []).append(name)
        except OSError:
            pass
    total = 0
    waiting = list(children.get(parent, []))
    while waiting:
        process = waiting.pop()
        waiting += children.get(int(process), [])
        try:
            with open("/proc/%s/smaps_rollup" % process, encoding="utf-8") as file:
                total += next(int(line.split()[1]) for line in file if line.startswith("Pss:"))
        except (OSError, StopIteration):
            pass
    return total


def tell(what, figures):
    seconds, used, peak = figures
    print("  %-46s %7.1f s  %7.1f s of processor  %6.0f MiB" % (what, seconds, used, peak / 1024), flush=True)


def played(fleet, forks, **environment):
    run = fleet.play(forks=forks, baseline_confirm_within=None, more_environment=environment)
    if run.status != 0:
        sys.exit(run.text)


def own(fleet, document, at_once):
    """What the collection runs on each module, by a loop in the shell."""
    words = ["validate %s" % document, "show --json >before 2>&1", "apply --json --state ctl %s >done 2>&1" % document,
             "show --json >after 2>&1"]
    script = 'cd "$1" && export MOBILE_AP_STATE=$1'
    looped(fleet, script + "".join(" && %s %s" % (PROGRAM, each) for each in words), at_once)


def by_command(fleet, at_once):
    script = "export MOBILE_AP_STATE=$1; " + "; ".join("%s %s >/dev/null" % (COMMAND, line) for line in LINES)
    looped(fleet, script, at_once)


def looped(fleet, script, at_once):
    folders = "".join("%s\0" % module.folder for module in fleet.modules)
    subprocess.run(["xargs", "-0", "-n", "1", "-P", str(at_once), "sh", "-c", script, "sh"], input=folders, text=True,
                   check=True)


def new_fleet(count):
    fleet = Fleet(count)
    for module in fleet.modules:
        del module.environment["MOBILE_AP_LOG"], module.environment["MOBILE_AP_LOG_LEVEL"]
    return fleet


def measure(count, forks):
    print("%d modules, %d at once" % (count, forks))
    fleet = new_fleet(count)
    whole = measured(lambda: played(fleet, forks))
    tell("ansible-playbook, all to be changed", whole)
    tell("ansible-playbook, nothing to be changed", measured(lambda: played(fleet, forks)))
    tell("the same, with pipelining", measured(lambda: played(fleet, forks, ANSIBLE_PIPELINING="1")))
    fleet.close()
    fleet = new_fleet(count)
    document = fleet.control / "document.json"
    document.write_text(json.dumps(DOCUMENT))
    ours = measured(lambda: own(fleet, document, forks))
    tell("zr_nexactl alone, all to be changed", ours)
    print("    of the first line's processor time that is %.0f %%; the rest is Ansible's" % (100 * ours[1] / whole[1]))
    fleet.close()
    fleet = new_fleet(count)
    tell("the fixed command, %d lines a module" % len(LINES), measured(lambda: by_command(fleet, forks)))
    fleet.close()


if __name__ == "__main__":
    for modules in [int(word) for word in sys.argv[1:]] or [10, 100, 300]:
        for at_once in (10, 50):
            measure(modules, at_once)
