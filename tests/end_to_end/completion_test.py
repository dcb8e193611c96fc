#!/usr/bin/python3
"""completion_test.py SOURCE COMPLETIONS BIN NO_PAUSE: bash and zsh complete what the programs in BIN take.

NO_PAUSE is what spares zr_nexa its second.
"""

import os
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

SOURCE, COMPLETIONS, BIN, NO_PAUSE = (os.path.abspath(word) for word in sys.argv[1:])
HAS_CTL = os.path.exists(os.path.join(COMPLETIONS, "bash/zr_nexactl"))
work = tempfile.TemporaryDirectory()
ENVIRONMENT = {**os.environ, "PATH": BIN + ":/usr/bin:/bin", "MOBILE_AP_STATE": os.path.join(work.name, "state"),
               "LC_ALL": "C", "INPUTRC": "/dev/null", "TERM": "dumb"}
failures = 0

# The way in which each shell calls what it completes by; the last word is the one that is completed.
BASH = """
source "$1"; function=_${1##*/}; shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
"$function"; printf '%s\\n' "${COMPREPLY[@]}"
"""
ZSH = """
compadd() { shift; print -l -- ${(M)@:#${words[CURRENT]}*} }
_files() { print -l -- files $@ }
file=$1; shift; words=("$@") CURRENT=$#
source $file
"""


def fail(text):
    global failures
    failures += 1
    print(f"FAILED: {text}")


def ran(*command, **environment):
    return subprocess.run(command, env={**ENVIRONMENT, **environment}, cwd=work.name, capture_output=True, text=True,
                          timeout=60)


def completed(shell, *words):
    if shell == "bash":
        done = ran("bash", "--norc", "--noprofile", "-c", BASH, "bash", f"{COMPLETIONS}/bash/{words[0]}", *words)
    else:
        done = ran("zsh", "-f", "-c", ZSH, "zsh", f"{COMPLETIONS}/zsh/_{words[0]}", *words)
    if done.stderr:
        fail(f"{shell} on {words}: {done.stderr}")
    return done.stdout.split()


def expect(words, wanted, shells=("bash", "zsh")):
    for shell in shells:
        if shutil.which(shell) and (seen := completed(shell, *words)) != wanted:
            fail(f"{shell} completes {words} to {seen}, not {wanted}")


def check_command():
    """Every name of the table, and what the command says of it."""
    table = open(os.path.join(SOURCE, "cli/command_table.cpp"), encoding="utf-8").read()
    handlers = "".join(open(os.path.join(SOURCE, "cli", name), encoding="utf-8").read()
                       for name in os.listdir(os.path.join(SOURCE, "cli")) if name.endswith(".cpp"))
    categories = completed("bash", "zr_nexa", "")
    known = 0
    for rows, category in re.findall(r'count\(k(\w+)\), "(\w+)"', table):
        settings = completed("bash", "zr_nexa", category, "")
        for setting, handler in re.findall(r'\{\d, "(\w*)", (\w+),',
                                           re.search(rf"Setting k{rows}\[\] = (.*?)\}};", table, re.S)[1]):
            answer = ran("zr_nexa", category, setting, LD_PRELOAD=NO_PAUSE).stdout
            is_known = answer.endswith("CMD OK\n")
            known += is_known
            if not is_known and answer not in ("Setting Not Support now\n", "Input Parameter Invalid\n"):
                fail(f"zr_nexa {category} {setting} answers {answer}")
            if is_known != (setting in settings) or (is_known and category not in categories):
                fail(f"{category} {setting} is {'not ' * is_known}completed, and the command answers {answer}")
            if is_known:
                body = re.search(rf"^int {handler}\(.*?^\}}", handlers, flags=re.M | re.S)[0]
                options = set(re.findall(r'same\(argv\[3\], "(\w+)"\)', body))
                seen = completed("bash", "zr_nexa", category, setting, "")
                if not options or set(seen) != options:
                    fail(f"{category} {setting} takes {sorted(options)}, and is completed to {seen}")
    if known < 23:
        fail(f"only {known} settings are found")

    expect(["zr_nexa", ""], ["General", "LAN", "WAN", "NAT"])
    expect(["zr_nexa", "L"], ["LAN"])
    expect(["zr_nexa", "LAN", "D"], ["DHCP", "DefaultDHCPEnable"])  # the second stands in no menu
    expect(["zr_nexa", "LAN", "DHCP", ""], ["get", "set"])
    expect(["zr_nexa", "LAN", "DHCP", "get", ""], [])
    expect(["zr_nexa", "WLAN", ""], [])


def check_helped(program, verbs):
    """At least these verbs, and each one that the program tells of, with its options."""
    found = set()

    def visit(*verb):
        helped = set(re.findall(r"^ +(?:-h,)?(--[\w-]+)", ran(program, *verb, "--help").stdout, flags=re.M))
        seen = set(completed("bash", program, *verb, "-"))
        if helped != seen:
            fail(f"{program} {verb} has the options {helped}, and is completed to {seen}")
        for each in re.findall(r"^  ([\w-]+) ", ran(program, *verb, "--help").stdout.partition("Subcommands:\n")[2]
                               .partition("\n\n")[0], flags=re.M):
            found.add(each)
            if each not in completed("bash", program, *verb, each[:2]):
                fail(f"{program} {verb} {each} is not completed")
            visit(*verb, each)

    visit()
    if missing := set(verbs.split()) - found:
        fail(f"{program} does not tell of {missing}")


def check_ctl():
    check_helped("zr_nexactl", "show validate schema diff apply confirm pending rollback status metrics connect"
                 " disconnect watch run explain restore reset lan-statistics wan-statistics")
    page = open(os.path.join(SOURCE, "docs/configuration.md"), encoding="utf-8").read()
    sections = re.findall(r"^## (\w+)$", page, flags=re.M)
    expect(["zr_nexactl", "show", ""], sections)
    expect(["zr_nexactl", "show", "--json", "upnp", "r"], ["reservations", "roles"])
    expect(["zr_nexactl", "apply", "of"], ["office.yaml"], ["bash"])
    expect(["zr_nexactl", "apply", ""], ["files"], ["zsh"])
    expect(["zr_nexactl", "apply", "--state", "st"], ["state"], ["bash"])
    expect(["zr_nexactl", "apply", "--state", ""], ["files", "-/"], ["zsh"])
    expect(["zr_nexactl", "apply", "--confirm-within", "60", "--state", "state", "of"], ["office.yaml"], ["bash"])
    expect(["zr_nexactl", "apply", "--d"], ["--dry-run"])
    expect(["zr_nexactl", "connect", ""], ["profile-1"])
    expect(["zr_nexactl", "connect", "--family", ""], ["4", "6", "46"])
    expect(["zr_nexactl", "reset", "wan-statistics", ""], ["profile-1"])
    expect(["zr_nexactl", "watch", "--until", "v4-connected"], ["v4-connected"])
    expect(["zr_nexactl", "explain", "0x2003", "zr_nexa_nat_type"],
           ["zr_nexa_nat_type_get_v1", "zr_nexa_nat_type_set_v1"])
    expect(["zr_nexactl", "run", "LAN", "D"], ["DHCP", "DefaultDHCPEnable"])
    expect(["zr_nexactl", "run", "NAT", "IPV4DMZ", ""], ["enable", "disable", "get"])


def check_host():
    check_helped("mobile_ap_ctl", "call drop refuse slow service restart away roam traffic device join leave sip add"
                 " clear report play forget")
    expect(["mobile_ap_ctl", "call", ""], ["drop", "refuse", "slow"])
    expect(["mobile_ap_ctl", "call", "refuse", "1", ""], ["connect", "disconnect"])
    expect(["mobile_ap_ctl", "call", "drop", "--family", ""], ["4", "6"])
    expect(["mobile_ap_ctl", "roam", ""], ["on", "off"])
    expect(["mobile_ap_ctl", "play", "of"], ["office.yaml"], ["bash"])


def check_at_the_terminal():
    """The key itself, in an interactive bash."""
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(work.name)
        os.execve("/bin/bash", ["bash", "--norc", "--noprofile", "-i"], ENVIRONMENT)
    os.write(terminal, f"source {COMPLETIONS}/bash/zr_nexa\necho ready; : zr_nexa\n".encode())
    seen, typed, end = "", False, time.monotonic() + 30
    while "zr_nexa LAN DHCP set " not in seen and time.monotonic() < end:
        if select.select([terminal], [], [], 0.1)[0]:
            seen += os.read(terminal, 4096).decode(errors="replace")
        if not typed and "\nready" in seen:
            os.write(terminal, b"zr_nexa LAN DH\ts\t")
            typed = True
    if "zr_nexa LAN DHCP set " not in seen:
        fail(f"bash completes at the terminal to {seen!r}")
    os.close(terminal)
    os.waitpid(process, 0)


os.mkdir(os.path.join(work.name, "state"))
open(os.path.join(work.name, "office.yaml"), "w").close()
check_command()
check_host()
if HAS_CTL:
    check_ctl()
check_at_the_terminal()
sys.exit(failures > 0)
