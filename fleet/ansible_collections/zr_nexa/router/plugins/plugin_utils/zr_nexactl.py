"""Runs zr_nexactl on a module, by the connection's own commands: a shell and the program are all that is needed."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json
import re
import shlex

from ansible.errors import AnsibleActionFail, AnsibleConnectionFailure
from ansible.module_utils.common.text.converters import to_bytes, to_text

# The exit statuses of zr_nexactl.
DONE, DIFFERS, WRONG, NO_SERVICE, REFUSED, NOT_UNDONE, LOCKED = range(7)

# Stands in the last line of what is sent. Where the connection ends while a document is sent, what has come may be a
# shorter document that is as good: the shell begins only when this line has come.
LAST = "# the document ends here"

CUT_OFF = 125

# As zr_nexactl has them; "007" is a text.
NUMBER = re.compile(r"(0|[1-9][0-9]{0,9})\Z")


def script(command):
    """The shell's words that run a command with what is sent, once all of it has come. It is in no environment."""
    return (
        "unset document; document=$(cat); "
        "case $document in *%s) ;; *) exit %d ;; esac; printf '%%s\n' \"$document\" | %s"
        % (shlex.quote(LAST), CUT_OFF, command)
    )


class Answer(object):
    """What a run of zr_nexactl said."""

    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.messages = [line[len("zr_nexactl: "):] if line.startswith("zr_nexactl: ") else line
                         for line in err.splitlines() if line.strip()]
        self.objects = []
        for line in out.splitlines():
            if line.startswith("{"):
                try:
                    self.objects.append(json.loads(line))
                except ValueError:
                    pass

    def document(self, key="version"):
        """The one object that show, status and validate print, which has this key; nothing when they could not."""
        try:
            document = json.loads(self.out)
        except ValueError:
            return None
        return document if key in document else None

    def plan(self):
        """The lines of what differs, in their order."""
        return [line for each in self.objects for line in each.get("plan", [])]

    def notes(self):
        """What is to be known beforehand: what is interrupted, and what could not be undone."""
        found = []
        for each in self.objects:
            path = path_of(each["plan"][0]) if each.get("plan") else ""
            found += [start + each[key] for key, start in (
                ("warning", ""), ("interrupts", ""), ("not_undone", path + ": not undone: "), ("note", path + ": "),
            ) if key in each]
        return unique(found)

    def holds(self):
        """Whether a state to go back to is still held after an apply: it waits to be confirmed, or one was cut off."""
        return any('"zr_nexactl confirm"' in line for line in self.messages)

    def refused(self):
        """The steps that were refused, on the way there and on the way back."""
        return [each for each in self.objects if each.get("outcome") == "refused"]

    def problems(self):
        for each in reversed(self.objects):
            if "problems" in each:
                return each["problems"]
        return []

    def left(self):
        """What is not as it should be."""
        for each in reversed(self.objects):
            if "left" in each:
                return each["left"]
        return []


class Program(object):
    """zr_nexactl on the module of a task."""

    def __init__(self, action, args):
        self._action = action
        self._executable = args.get("executable") or "zr_nexactl"
        self._state_dir = args.get("state_dir")

    def run(self, words, document=None, has_state=False):
        """Runs it with these words; a document goes to its standard input."""
        line = [self._executable] + list(words)
        if has_state and self._state_dir:
            line += ["--state", self._state_dir]
        command = " ".join(shlex.quote(word) for word in line)
        environment = self._action._compute_environment_string()
        if environment:
            command = environment + " " + command
        # Something is always sent: without it ssh takes a terminal, and mixes messages with results.
        sent = LAST if document is None else document.rstrip("\n") + "\n" + LAST
        answer = self._action._low_level_execute_command(script(command), in_data=to_bytes(sent + "\n"))
        status = answer["rc"]
        err = to_text(answer["stderr"])
        if status == CUT_OFF:
            raise AnsibleConnectionFailure("the connection was cut off before all was sent; nothing was begun")
        if status in (126, 127):
            raise AnsibleActionFail(
                "%s cannot be run on this module: %s. It comes with the package zr-nexa-ctl; "
                "\"executable\" says where it is." % (self._executable, err.strip() or "not found"))
        return Answer(status, to_text(answer["stdout"]), err)

    def pending(self):
        """What zr_nexactl says is pending; nothing when nothing is."""
        answer = self.run(["pending"], has_state=True)
        if answer.status not in (DONE, DIFFERS):
            raise AnsibleActionFail(failure(answer)["msg"])
        return answer.out.strip() if answer.status == DIFFERS else ""


def path_of(line):
    """Where a line of a plan stands: "lans.10.address" of "lans.10.address: 192.168.11.1/24 -> 192.168.12.1/24"."""
    return line.split(": ", 1)[0]


def differences(before, after, path=""):
    """Where two configurations differ, a line each. An entry that came or went is one line."""
    if before == after:
        return []
    if not (isinstance(before, dict) and isinstance(after, dict)):
        return ["%s: %s -> %s" % (path, *("none" if each is None else json.dumps(each, ensure_ascii=False)
                                          for each in (before, after)))]
    lines = []
    for key in sorted(set(before) | set(after)):
        lines += differences(before.get(key), after.get(key), path + "." + key if path else key)
    return lines


def as_written(value):
    """A structure as it goes to zr_nexactl. What a template makes of a number is a text: it is written as a number,
    which zr_nexactl takes for a text where one belongs."""
    if isinstance(value, dict):
        return {key: as_written(each) for key, each in value.items()}
    if isinstance(value, list):
        return [as_written(each) for each in value]
    return int(value) if isinstance(value, str) and NUMBER.match(value) else value


def unique(texts):
    seen = []
    for text in texts:
        if text not in seen:
            seen.append(text)
    return seen


def why(answer):
    """Why a run failed, in one text: path, function, code in words, and what became of it."""
    parts = []
    for step in answer.refused():
        lines = step.get("step") or step.get("undo") or ["?"]
        before = "undo: " if "undo" in step else ""
        words = step.get("words", "")
        function = step.get("function", "")
        parts.append("%s%s: %s" % (before, lines[0], words if function in words else "%s: %s" % (function, words)))
    if not parts:
        # What is no zr_nexactl, as a shell that lets nobody in, may tell by its output alone.
        parts = list(answer.problems()) or list(answer.messages) or answer.out.split("\n")[:1]
    parts += ["is not as it should be: " + line for line in answer.left()]
    return "; ".join(unique(parts))


STATUS_WORDS = {
    DIFFERS: "it did not come about in time",
    WRONG: "the words or the state folder are wrong",
    NO_SERVICE: "the module's service does not answer, or refused to be read",
    REFUSED: "a change was refused, and all is as before",
    NOT_UNDONE: "refused and not wholly undone, or read back otherwise",
    LOCKED: "another apply holds the lock, or waits to be confirmed",
}


# A line about the document, which came by standard input.
IN_DOCUMENT = re.compile(r"(?:^|(?<=[;:] ))-:(\d+:\d+:)? ")


def failure(answer):
    """The result of a task whose run of zr_nexactl failed."""
    words = STATUS_WORDS.get(answer.status, "zr_nexactl ended with %d" % answer.status)
    if answer.status > 128:
        words = "zr_nexactl was ended by signal %d; a run again completes what was begun" % (answer.status - 128)
    reason = why(answer)
    if answer.status == WRONG and IN_DOCUMENT.search(reason):
        words = "the document is wrong"
        if any(is_about_version(line) for line in answer.problems() + answer.messages):
            words = "this module's zr_nexactl does not take this version of the document"
    return {
        "failed": True,
        "msg": "%s: %s" % (words, reason) if reason else words,
        "rc": answer.status,
        "left": answer.left(),
    }


def is_about_version(line):
    return ": version: " in line or line.startswith("version: ")
