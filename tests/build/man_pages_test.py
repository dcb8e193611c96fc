#!/usr/bin/python3
"""man_pages_test.py SOURCE PAGES NAME=VALUE...: the manual pages of the build are clean, whole and of today.

The names and values are those that the build has handed to man/pages.py.
"""

import os
import re
import subprocess
import sys
import tempfile

SOURCE, PAGES, *FACTS = sys.argv[1:]
MANDOC = dict(fact.split("=", 1) for fact in FACTS)["mandoc"]
HAS_CTL = any(fact.startswith("ctl=") for fact in FACTS)
failures = 0


def fail(text):
    global failures
    failures += 1
    print(f"FAILED: {text}")


def read(*names):
    with open(os.path.join(*names), encoding="utf-8") as file:
        return file.read()


def sources(*folders):
    """Every source below the folders, in one text."""
    texts = []
    for folder in folders:
        for place, _, names in os.walk(os.path.join(SOURCE, folder)):
            texts += [read(place, name) for name in sorted(names) if name.endswith((".cpp", ".c", ".h"))]
    return "\n".join(texts)


def printed(name):
    """A page as a reader sees it: its lines without blanks around them, by section."""
    path = os.path.join(PAGES, "man" + name[-1], name)
    text = subprocess.run([MANDOC, "-T", "ascii", "-O", "width=500", path], check=True, capture_output=True,
                          text=True).stdout
    text = re.sub(r".\x08", "", text)
    sections, heading = {}, ""
    for line in text.split("\n"):
        if re.match(r"[A-Z]", line):
            heading = line
        sections.setdefault(heading, []).append(line.strip())
    return sections


def lines_of(name):
    return [line for lines in printed(name).values() for line in lines]


def all_pages():
    return sorted(os.path.relpath(os.path.join(place, name), PAGES) for place, _, names in os.walk(PAGES)
                  for name in names if "/man" in place.removeprefix(PAGES))


def check_form():
    pages = all_pages()
    wanted = ["man1/mobile_ap_ctl.1", "man1/zr_nexa.1", "man7/mobile_ap.7", "man7/zr_nexa-result-codes.7"]
    if HAS_CTL:
        wanted += ["man1/zr_nexactl.1", "man5/zr_nexactl.5"]
    headers = os.listdir(os.path.join(SOURCE, "client_api/include/zr_nexa"))
    wanted += [f"man3/zr_nexa_{name[:-2]}.3" for name in headers if name != "base.h"] + ["man3/zr_nexa_client_api.3"]
    if pages != sorted(wanted):
        fail(f"the pages are {pages}, not {sorted(wanted)}")
    for page in pages:
        lint = subprocess.run([MANDOC, "-T", "lint", os.path.join(PAGES, page)], capture_output=True, text=True)
        # Our version stands where a system's would, and other pages of ours are not installed yet: check_references().
        found = [each for each in (lint.stdout + lint.stderr).splitlines()
                 if "operating system explicitly specified" not in each and "referenced manual not found" not in each]
        if found:
            fail(f"mandoc finds in {page}:\n" + "\n".join(found))
        if "</html>" not in read(PAGES, "html", os.path.basename(page) + ".html"):
            fail(f"{page} is not there as HTML")


def check_references():
    for page in all_pages():
        text = read(PAGES, page)
        for name, section in re.findall(r"^\.(?:Pq )?Xr (\S+) (\d)", text, flags=re.M):
            if f"man{section}/{name}.{section}" not in all_pages() and (HAS_CTL or not name.startswith("zr_nexactl")):
                fail(f"{page} refers to {name}({section}), which there is not")
    # A page of docs/ that tells of an area's functions is that area's manual page.
    if "\n.Pq Xr zr_nexa_lan_services 3" not in read(PAGES, "man1/mobile_ap_ctl.1"):
        fail("mobile_ap_ctl.1 does not refer to zr_nexa_lan_services(3)")


def check_lines():
    """Lines that are easily lost or joined on the way."""
    wanted = {
        "zr_nexa_indications.3": [
            "typedef void(*zr_nexa_ind_cb_t)(uint32_t event_id, uint32_t length, const void *data,...);",
            "note(va_arg(values, uint32_t)); // ZR_NEXA_IND_V6_DISCONNECT_FAILED_VALUE",
        ],
        "mobile_ap_ctl.1": ["EXIT STATUS", "Devices on the LAN: leave the LAN."],
        "zr_nexa.1": ["the service refused. What it means: not done, or not all of it (what is not one change)."
                      " For example: zr_nexa LAN DHCP get 20."],
    }
    if HAS_CTL:
        wanted["zr_nexactl.1"] = ["--family 4|6|46", "Set counts back to zero: the LAN's packet counts."]
    for page, lines in wanted.items():
        seen = [" ".join(line.split()) for line in lines_of(page)]
        for line in lines:
            if not any(each.endswith(line) for each in seen):
                fail(f"{page} does not have the line: {line}")
    for page in all_pages():
        if re.search(r"^\.It Dv (ZR_NEXA_C_BEGIN|\w+_DEFINED)", read(PAGES, page), flags=re.M):
            fail(f"{page} tells of a macro that is nothing to callers")


def check_left_out():
    """What is for readers of docs/ alone."""
    parts = [("zr_nexa.1", "OTHER PAGES"), ("mobile_ap.7", "ADDING A METHOD")]
    for page, part in parts + ([("zr_nexactl.1", "EXIT STATUSES")] if HAS_CTL else []):
        if part in printed(page):
            fail(f"{page} has the part {part}")


def check_functions():
    functions = re.findall(r"\bzr_nexa_\w+(?=;)", read(SOURCE, "client_api/zr_nexa_client_api.map"))
    if len(functions) < 100:
        fail(f"only {len(functions)} functions are found")
    areas = {page: read(PAGES, page) for page in all_pages() if page.startswith("man3/")}
    for function in functions:
        told = [page for page, text in areas.items() if f"\n.Fn {function} " in text]
        if len(told) != 1:
            fail(f"{function} stands in the pages {told}, not in one")
        elif not re.search(rf"^\.Nm {function}( ,)?$.*^\.Ss {function}$.*^Returns:$", areas[told[0]], re.M | re.S):
            fail(f"{told[0]} does not name or tell of {function}")


def check_settings():
    table = read(SOURCE, "cli/command_table.cpp")
    categories = re.findall(r'count\(k(\w+)\), "(\w+)"', table)
    page = read(PAGES, "man1/zr_nexa.1")
    count = 0
    for rows, category in categories:
        for setting in re.findall(r'\{\d, "(\w+)"', re.search(rf"Setting k{rows}\[\] = (.*?)\}};", table, re.S)[1]):
            count += 1
            if f".It \\fB{category} {setting}\\fP\n" not in page:
                fail(f"zr_nexa.1 does not have {category} {setting}")
    if count < 28:
        fail(f"only {count} settings are found")
    # The usage texts, which another test holds against the command.
    settings = [line for heading, lines in printed("zr_nexa.1").items() if heading == "SETTINGS" for line in lines]
    for name, usage in re.findall(r"^### ([^\n]*)\n\n```\n(.*?)```", read(SOURCE, "docs/usage.md"), flags=re.M | re.S):
        lines = [line.strip() for line in usage.rstrip("\n").split("\n")]
        start = [at for at in range(len(settings)) if settings[at : at + len(lines)] == lines]
        if not start:
            fail(f"zr_nexa.1 does not have the usage text of {name}")


def check_document():
    keys = re.findall(r"^\| `([\w.\[\]]+)` \|(?:.*\|){4}$", read(SOURCE, "docs/configuration.md"), flags=re.M)
    if len(keys) < 100:
        fail(f"only {len(keys)} keys are found")
    lines = lines_of("zr_nexactl.5")
    for key in keys:
        if not any(line.split(" ")[0] == key for line in lines):
            fail(f"zr_nexactl.5 does not have {key}")


def check_statuses():
    documented = read(SOURCE, "docs/zr_nexactl.md").split("## Exit statuses")[1]
    statuses = re.findall(r"^\| (\d+) \| (.*) \|$", documented, flags=re.M)
    if len(statuses) < 7:
        fail(f"only {len(statuses)} exit statuses are found")
    lines = " ".join(" ".join(printed("zr_nexactl.1")["EXIT STATUS"]).split())
    if lines != "EXIT STATUS " + " ".join(f"{status} {about}" for status, about in statuses):
        fail(f"zr_nexactl.1 has other exit statuses than docs/zr_nexactl.md: {lines}")


def check_variables():
    # Which page tells of what is read in which folders.
    readers = [("mobile_ap.7", "ENVIRONMENT", ("platform", "cli", "client_api"))]
    readers += [("zr_nexactl.1", None, ("ctl",))] if HAS_CTL else []
    for page, section, folders in readers:
        names = set(re.findall(r'\b(?:getenv|variable)\("(\w+)"\)', sources(*folders)))
        if len(names) < 3:
            fail(f"only {names} are found in {folders}")
        text = "\n".join(printed(page)[section] if section else lines_of(page))
        for name in sorted(names):
            if not re.search(rf"\b{name}\b", text) and not (name == "HOME" and "~/" in text):
                fail(f"{page} does not have the environment variable {name}")


def check_verbs():
    verbs = {"mobile_ap_ctl.1": "call drop refuse slow service restart away roam traffic device join leave sip add"
                                " clear report play forget"}
    if HAS_CTL:
        verbs["zr_nexactl.1"] = ("show validate schema diff apply confirm pending rollback status metrics connect"
                                 " disconnect watch run explain restore reset lan-statistics wan-statistics")
    for page, wanted in verbs.items():
        if missing := set(wanted.split()) - set(" ".join(printed(page)["SYNOPSIS"]).split()):
            fail(f"{page} does not have {missing}")


def check_codes():
    rows = re.findall(r"^\|[^|]*\| ([0-9x][0-9a-zA-Z, ]*) \|", read(SOURCE, "docs/result_codes.md"), flags=re.M)
    if len(rows) < 30:
        fail(f"only {len(rows)} result codes are found")
    text = "\n".join(lines_of("zr_nexa-result-codes.7"))
    for code in rows:
        if not re.search(rf"(?:^| ){code}(?: |$)", text, flags=re.M):
            fail(f"zr_nexa-result-codes.7 does not have {code}")


def check_age():
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.executable, "-B", os.path.join(SOURCE, "man/pages.py"), folder, *FACTS], check=True)
        for page in all_pages():
            now, built = (re.sub(r"^\.Dd .*\n", "", read(place, page), flags=re.M) for place in (folder, PAGES))
            if now != built:
                fail(f"{page} is not what man/pages.py makes now")


check_form()
check_references()
check_lines()
check_left_out()
check_functions()
check_settings()
check_variables()
check_verbs()
check_codes()
check_age()
if HAS_CTL:
    check_document()
    check_statuses()
sys.exit(failures > 0)
