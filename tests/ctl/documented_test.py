#!/usr/bin/python3
"""documented_test.py SOURCE PROGRAM...: the sessions of docs/zr_nexactl.md, run as they stand, each page on one module.

A block that is marked yaml and begins with a comment of its name is that file. With --renew in front the page is written
anew with what is printed.
"""

import os
import re
import shlex
import subprocess
import sys
import tempfile

renews = sys.argv[1] == "--renew"
# The sessions run in a folder of their own.
SOURCE, *PROGRAM = [os.path.abspath(word) if os.path.exists(word) else word for word in sys.argv[1 + renews :]]
PAGES = ["docs/zr_nexactl.md", "README.md"]


def same(text):
    """Without what differs from run to run."""
    return re.sub(r"\b\d+ (s are left|bytes|packets)", r"N \1", text)


def run_page(page, folder):
    with open(os.path.join(SOURCE, page), encoding="utf-8") as file:
        lines = file.read().split("\n")
    environment = {**os.environ, "MOBILE_AP_STATE": folder + "/module", "ZR_NEXACTL_STATE": folder + "/held"}
    environment["PATH"] = folder + "/bin:" + environment["PATH"]
    for name in ("module", "held", "bin"):
        os.mkdir(os.path.join(folder, name))
    with open(folder + "/bin/zr_nexactl", "w") as file:
        file.write("#!/bin/sh\nexec " + shlex.join(PROGRAM) + ' "$@"\n')
    os.chmod(folder + "/bin/zr_nexactl", 0o755)

    page_now, commands, block, block_lines = [], 0, "", []
    for line in lines:
        if block and line == "```":
            if block == "```yaml" and block_lines and block_lines[0].startswith("# "):
                with open(os.path.join(folder, block_lines[0][2:]), "w", encoding="utf-8") as file:
                    file.write("\n".join(block_lines) + "\n")
            if block == "```sh-session":
                status = 0
                for command in [each for each in block_lines if each.startswith("$ ")]:
                    ran = subprocess.run(["bash", "-c", f"(exit {status}); {command[2:]}"], cwd=folder, env=environment,
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                         timeout=60)
                    status = ran.returncode
                    commands += 1
                    page_now.append(command)
                    # What differs from run to run stays as it was written.
                    seen = ran.stdout.decode().splitlines()
                    kept = [each for each in block_lines if same(each) in map(same, seen)]
                    for line_now in seen:
                        same_line = next((each for each in kept if same(each) == same(line_now)), None)
                        if same_line is not None:
                            kept.remove(same_line)
                        page_now.append(same_line or line_now)
            else:
                page_now += block_lines
            page_now.append(line)
            block = ""
        elif block:
            block_lines.append(line)
        else:
            if line.startswith("```"):
                block, block_lines = line, []
            page_now.append(line)
    if renews:
        with open(os.path.join(SOURCE, page), "w", encoding="utf-8") as file:
            file.write("\n".join(page_now))
    wrong = 0
    for number, (said, seen) in enumerate(zip(lines, page_now), 1):
        if same(said) != same(seen) and not renews:
            print(f"{page}:{number}: it says\n    {said}\nand there comes\n    {seen}")
            wrong = 1
            break
    else:
        if len(lines) != len(page_now) and not renews:
            print(f"{page}: {len(page_now)} lines, not {len(lines)}")
            wrong = 1
    return wrong, commands


def main():
    wrong = 0
    for page in PAGES:
        with tempfile.TemporaryDirectory() as folder:
            page_wrong, commands = run_page(page, folder)
        wrong |= page_wrong
        if commands == 0:
            print(f"{page}: has no session")
            wrong = 1
    return wrong


sys.exit(main())
