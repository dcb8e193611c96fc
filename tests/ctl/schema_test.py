#!/usr/bin/python3
"""schema_test.py ZR_NEXACTL: its JSON Schema, and what it says of the documents in the tables beside this file."""

import concurrent.futures
import json
import os
import re
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is missing (scripts/setup ctl): Skipped")
    sys.exit(77)

PROGRAM = sys.argv[1:]
FOLDER = os.path.dirname(os.path.abspath(__file__))


def ask(words, text=""):
    return subprocess.run(PROGRAM + words, input=text.encode(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)


def written_out(line):
    """A line of a table with what it shortens."""
    line = re.sub(r"<(\d+) (.)>", lambda found: int(found[1]) * found[2], line)
    return re.sub(
        r"(?<=[\[{])(\d+) x (.+?) x(?=[\]}])",
        lambda found: ", ".join(found[2].replace("#", str(i + 1)) for i in range(int(found[1]))),
        line,
    )


def documents(name):
    """Documents with what is said of each, and the line that it stands on."""
    found = []
    with open(os.path.join(FOLDER, name), encoding="utf-8") as table:
        for number, line in enumerate(table, 1):
            line = line.rstrip("\n")
            if not line or line.startswith("#"):
                continue
            if line.startswith("    "):
                found[-1][2].append(written_out(line[4:]))
            else:
                document = written_out(line)
                if document.startswith("{") and '"version' not in document:
                    document = '{"version": 1, ' + document[1:]
                found.append((number, document, []))
    return found


def verdict(document):
    """What zr_nexactl says, a line each without its place, and its status."""
    seen = ask(["validate", "-"], document)
    said = re.sub(r"^-:\d+:\d+: ", "", seen.stderr.decode(), flags=re.MULTILINE).splitlines()
    return said or ["good"], seen.returncode


def main():
    schema = json.loads(ask(["schema"]).stdout)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    wrong = []

    def expect(is_so, where, what):
        if not is_so:
            wrong.append(f"{where}: {what}")

    def each_key(part, path):
        for key, value in part.get("properties", {}).items():
            if value is not False:
                expect(value.get("description"), path + "/" + key, "has no description")
                each_key(value, path + "/" + key)
        for value in [*part.get("patternProperties", {}).values(), *part.get("definitions", {}).values()]:
            each_key(value, path + "/*")
        if isinstance(part.get("items"), dict):
            each_key(part["items"], path + "[]")
        if part.get("type") == "object":
            expect(part.get("additionalProperties") is False, path, "takes unknown keys")

    each_key(schema, "")

    counts = {}
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for name, only_checks in (("schema_documents.txt", False), ("checks_documents.txt", True)):
            table = documents(name)
            counts[name] = len(table)
            expect(len({document for _, document, _ in table}) == len(table), name, "a document stands twice")
            for (line, document, said), (seen, status) in zip(table, pool.map(verdict, [each[1] for each in table])):
                where = f"{name}:{line}"
                expect(seen == said, where, "\n    ".join(["zr_nexactl says"] + seen))
                expect(status == (0 if said == ["good"] else 2), where, f"status {status}")
                problems = [error.message for error in validator.iter_errors(json.loads(document))]
                is_taken = only_checks or said == ["good"]
                expect(is_taken != bool(problems), where, f"the validator says {problems or 'good'}")
                expect(not only_checks or said != ["good"], where, "has no fault")
    expect(counts["schema_documents.txt"] >= 200, "schema_documents.txt", "fewer than 200 documents")
    expect(counts["checks_documents.txt"] >= 100, "checks_documents.txt", "fewer than 100 documents")
    print("\n".join(wrong) or f"all alike: {counts}")
    return 1 if wrong else 0


sys.exit(main())
