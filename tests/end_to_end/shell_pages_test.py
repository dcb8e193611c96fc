#!/usr/bin/python3
"""shell_pages_test.py SOURCE NO_PAUSE ZR_NEXA ZR_NEXACTL: what docs/commands.md and docs/scripting.md say of the command as
a shell sees it, in dash and in BusyBox.
"""

import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

SOURCE, NO_PAUSE, *PROGRAMS = [os.path.abspath(word) for word in sys.argv[1:]]
EMULATOR = shlex.split(os.environ.get("ZR_NEXA_TEST_EMULATOR", ""))
wrong = 0


def expect(what, said, seen):
    global wrong
    if said != seen:
        print(f"{what}\n  it says     {said!r}\n  there comes {seen!r}")
        wrong += 1


def page(name):
    with open(os.path.join(SOURCE, name), encoding="utf-8") as file:
        return file.read()


def rows(text, heading):
    """The cells of the table whose first row begins so."""
    table = text[text.index(heading) :].split("\n\n")[0].rstrip().split("\n")[2:]
    return [[cell.strip() for cell in row.strip("|").split(" | ")] for row in table]


def code(cell):
    """What stands in a cell as code; nothing where there is none."""
    found = re.search(r"`(.*?)`", cell)
    return found.group(1) if found else None


class Module:
    """A fresh state, and a folder whose bin/ holds the programs and the shell to be called sh. Each run of the command is
    a line of the file runs."""

    def __init__(self, shell=("dash",)):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = self.temporary.name
        for name in ("state", "held", "bin"):
            os.mkdir(os.path.join(self.folder, name))
        for program in PROGRAMS:
            words, preload = EMULATOR + [program], ""
            if os.path.basename(program) == "zr_nexa":
                preload = f"echo >>{shlex.quote(self.folder)}/runs\n"
                if EMULATOR:
                    words = EMULATOR + ["-E", "LD_PRELOAD=" + NO_PAUSE, program]
                else:
                    preload += f"export LD_PRELOAD={NO_PAUSE}\n"
            self.script(os.path.basename(program), f'{preload}exec {shlex.join(words)} "$@"')
        self.script("sh", f'exec {shlex.join([shutil.which(shell[0])] + list(shell[1:]))} "$@"')
        self.environment = {
            **os.environ,
            "PATH": self.folder + "/bin:" + os.environ["PATH"],
            "MOBILE_AP_STATE": self.folder + "/state",
            "ZR_NEXACTL_STATE": self.folder + "/held",
            # The preloaded pause stands before the sanitizer's library, which would complain.
            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0",
        }
        for name in ("MOBILE_AP_LOG", "MOBILE_AP_LOG_LEVEL", "MOBILE_AP_FAULTS", "MOBILE_AP_JUDGE"):
            self.environment.pop(name, None)

    def script(self, name, text):
        path = os.path.join(self.folder, "bin", name)
        with open(path, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n" + text + "\n")
        os.chmod(path, 0o755)

    def runs(self):
        path = os.path.join(self.folder, "runs")
        return os.path.getsize(path) if os.path.exists(path) else 0

    def run(self, command):
        """Status and output of a line, in the shell."""
        ran = subprocess.run([self.folder + "/bin/sh", "-c", command], cwd=self.folder, env=self.environment, timeout=120,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return ran.returncode, ran.stdout.decode()


def printed_last(output):
    """As the table of docs/commands.md tells it."""
    if not output:
        return "nothing", None
    lines = output.split("\r\n")
    if lines.pop() != "":
        return "an open line", None
    empty = ", an empty line" if lines[-1] == "" else ""
    last = [line for line in lines if line][-1]
    return "a line" + empty, last


def check_what_is_printed_last():
    module = Module()
    table = rows(page("docs/commands.md"), "| printed last |")
    expect("cases of docs/commands.md", 15, len(table))
    for said, _, _, example in table:
        command = code(example)
        status, output = module.run(command)
        form, last = printed_last(output)
        if code(said) is None:
            expect(command, (said, 0), (form, status))
            continue
        expect(command, ("a line" + said.split("`")[2], 0), (form, status))
        if code(said).startswith("…"):
            expect(command, True, last.endswith(code(said)[1:]) and last != code(said)[1:])
        else:
            expect(command, code(said), last)

    # Where lines end otherwise, and the pattern that finds no verdict.
    _, output = module.run("zr_nexa WAN Info get 1")
    expect("WAN Info", "WAN Info: connected\r", output.split("\n")[0])
    expect("WAN Info", (13, 2), (len(re.findall(r"(?<!\r)\n", output)), output.count("\r\n")))
    expect("grep", (1, ""), module.run("zr_nexa General SFE get | grep '^CMD OK$'"))



def blocks(text):
    """The fenced blocks: what each is marked with, and its text."""
    return re.findall(r"^```([^\n]+)\n(.*?)^```$", text, re.M | re.S)


def check_scripting(shell):
    """All of docs/scripting.md in one shell: sessions on one module, tables on fresh ones."""
    text = page("docs/scripting.md")
    functions, script = [block for mark, block in blocks(text) if mark == "sh"]
    example = page("examples/provision.sh")
    expect("examples/provision.sh holds what the page shows", True, example.endswith("\n\n" + functions + "\n" + script))

    def fresh():
        module = Module(shell)
        for name, lines in (("nexa.sh", functions), ("provision.sh", example)):
            with open(os.path.join(module.folder, name), "w", encoding="utf-8") as file:
                file.write(lines)
        return module

    # The sessions as they stand, and how often the script calls the command.
    module, commands, runs = fresh(), 0, []
    for mark, block in blocks(text):
        if mark == "yaml":
            with open(os.path.join(module.folder, block.split("\n")[0][2:]), "w", encoding="utf-8") as file:
                file.write(block)
        for step in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M) if mark == "sh-session" else []:
            before = module.runs()
            expect(f"{shell[0]}: {step[0]}", step[1], module.run(step[0])[1])
            if step[0] == "sh provision.sh":
                runs.append(module.runs() - before)
            commands += 1
    expect("commands of the sessions", True, commands >= 9)
    expect("seconds of the script", re.findall(r"(\d+) seconds", text), [str(count) for count in runs])

    # The function is right in every case of the command's page.
    module = fresh()
    for said, _, means, example_cell in rows(page("docs/commands.md"), "| printed last |"):
        command = code(example_cell).replace("zr_nexa", "nexa", 1)
        if said == "nothing":  # of the command's own output, which nexa reads
            command = "zr_nexa() { command zr_nexa \"$@\" >/dev/full; }; nexa General SFE disable"
        if command.startswith("MOBILE_AP_FAULTS="):
            command = "export " + command.replace(" nexa", "; nexa", 1)
        verdict = code(said) and re.search(r"CMD Error#(.*)", code(said))
        wanted = "0x0" if means.startswith("done") else verdict.group(1) if verdict else "none"
        status, output = module.run(f". ./nexa.sh; {command} 2>errors; echo \"$? $nexa_code\"; test -s errors")
        expect(f"{shell[0]}: {command}", f"{int(wanted != '0x0')} {wanted}", output.split("\n")[-2])
        expect(f"{shell[0]}: {command}, a message", wanted != "0x0", status == 0)
        expect(f"{shell[0]}: {command}", (False, False), ("\r" in output, "CMD" in output))

    # What is said of commands that are called twice.
    module = fresh()
    setup = ["WAN WWANConfig add 0 2", "WAN WWANConfig add 0 4", "LAN VLAN add 10 1 1"]
    setup += ["LAN IPPTGWFilter add 0 1 80 80", "LAN IPPTGWFilter add 0 1 81 81"]
    for words in setup:
        expect(words, 0, module.run(f". ./nexa.sh; nexa {words}")[0])
    table = rows(text, "| command | first |")
    expect("commands of docs/scripting.md that are called twice", 12, len(table))
    for command, first, second, _ in table:
        for said in (first, second):
            output = module.run("zr_nexa " + code(command))[1]
            expect(f"{shell[0]}: {code(command)}", code(said) + "\r\n", output.split("\n")[-2] + "\n" if output else "")


# What may be called again with CMD OK: every other setting that an option word changes.
AGAIN = """General SFE disable
General SFE enable
LAN GWURL set a.example
LAN DHCP set 0 192.168.225.1 255.255.255.0 192.168.225.20 192.168.225.60 7200
LAN DefaultDHCPEnable set 0
LAN IPPTNAT set 2
LAN IPPTNATPDN set 10 0
LAN IPPT set 0 1 00:01:02:03:04:05
LAN IPPT adaptive 0 7
LAN IPPT set 0 0
WAN WWANConfig set 2 1 3
WAN WWANConfig setdefault 2
WAN APWWAN set 1 2
WAN ReConnect set 2 1
WAN AutoConnect set 2 1
NAT Type set 2 2
NAT IPV4DMZ enable 2 192.168.225.50
NAT IPV4DMZ disable 2
NAT RoutingBH set 1
General Restore no
General Restore yes""".split("\n")


def check_what_is_set_again():
    module = Module()
    for words in ["WAN WWANConfig add 0 2", "LAN VLAN add 10 1 1"]:
        module.run("zr_nexa " + words)
    for words in AGAIN:
        for time in ("first", "second"):
            expect(f"{words}, {time}", "CMD OK\r", module.run("zr_nexa " + words)[1].split("\n")[-2])

    # Nothing was left out: restarting is not available, and reading changes nothing.
    called = AGAIN + [code(row[0]) for row in rows(page("docs/scripting.md"), "| command | first |")]
    options = []
    for setting, usage in re.findall(r"^### (.*)\n((?:(?!##).*\n)*)", page("docs/usage.md"), re.M):
        options += [f"{setting} {option}" for option in re.findall(r"^(\w+) ?: +(?:d?zr_nexa|execute|do nothing)", usage, re.M)]
    changing = {words for words in options if words.split()[-1] not in ("get", "restart")}
    expect("commands that change something", changing, {" ".join(words.split()[:3]) for words in called})


check_what_is_printed_last()
check_what_is_set_again()
for each in (["dash"], ["busybox", "sh"]):
    if shutil.which(each[0]):
        check_scripting(each)
    else:
        print(f"{each[0]} is not there")
sys.exit(wrong != 0)
