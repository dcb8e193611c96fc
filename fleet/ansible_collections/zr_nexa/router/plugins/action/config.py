"""Brings a module's configuration to what a document says, reads it, or checks a document."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json
import re
import time

from ansible.errors import AnsibleActionFail, AnsibleConnectionFailure, AnsibleError
from ansible.module_utils.common.json import AnsibleJSONEncoder
from ansible.module_utils.common.text.converters import to_text
from ansible.plugins.connection import ConnectionBase

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl
from ansible_collections.zr_nexa.router.plugins.plugin_utils.action import STATE_DIR, RouterAction

# Seconds for which a module that has taken itself back is waited for, once its time is over.
PATIENCE = 60

# Values that YAML as Ansible reads it has made of other ones: a MAC address as a number to the base of 60, no as false.
TAKEN_OTHERWISE = re.compile(r", not (\d+|true|false)$", re.MULTILINE)


class ActionModule(RouterAction):
    ARGUMENTS = dict(
        STATE_DIR,
        config={"type": "raw"},
        src={"type": "path"},
        state={"choices": ["merged", "replaced", "gathered", "rendered"], "default": "merged"},
        confirm_within={"type": "int"},
        answers_at={"type": "str"},
    )
    TOGETHER = {
        "mutually_exclusive": [["config", "src"]],
        "required_if": [["state", state, ["config", "src"], True] for state in ("merged", "replaced", "rendered")],
        "required_by": {"answers_at": ["confirm_within"]},
    }

    def _work(self):
        if self._args["state"] == "gathered":
            return self._gathered()
        if self._args["state"] == "rendered":
            return self._rendered()
        return self._brought(["--exact"] if self._args["state"] == "replaced" else [])

    # ---- the document ----

    def _document(self):
        text = self._text()
        if "\0" in text:  # a shell would leave it out
            raise AnsibleActionFail("the document is wrong: control characters are not allowed")
        return text

    def _text(self):
        """An inline one is JSON, which keeps the kinds of its values."""
        config = self._args["config"]
        if config is None:
            # As the lookup "file" has it: what ansible-vault has encrypted is decrypted, and into no file.
            return to_text(self._loader._get_file_contents(self._find_needle("files", self._args["src"]))[0])
        if isinstance(config, str):
            return config
        try:
            # No escapes: those of JSON for signs beyond \uffff are none of YAML's.
            return json.dumps(ctl.as_written(config), cls=AnsibleJSONEncoder, vault_to_text=True, ensure_ascii=False)
        except TypeError as error:
            raise AnsibleActionFail("config is no document: %s" % to_text(error))

    def _failure(self, answer):
        """The same as of the other modules, with what is known of the document."""
        result = ctl.failure(answer)
        config = self._args["config"]
        if config is None or isinstance(config, str):
            name = self._args["src"] or "config"
            result["msg"] = ctl.IN_DOCUMENT.sub(lambda line: "%s:%s " % (name, line[1] or ""), result["msg"])
            return result
        result["msg"] = ctl.IN_DOCUMENT.sub("", result["msg"])
        if answer.status == ctl.WRONG and any(TAKEN_OTHERWISE.search(line) for line in answer.problems()):
            result["msg"] += ("; Ansible's YAML reads some MAC addresses, words and numbers otherwise: put them in "
                              "quotes, or give the document as src")
        return result

    # ---- reading, checking ----

    def _shown(self, result):
        """The module's configuration. What it refuses to tell is left out, with a warning."""
        answer = self._program.run(["show", "--json"])
        document = answer.document()
        if document is None or answer.status not in (ctl.DONE, ctl.NO_SERVICE):
            return None, ctl.failure(answer)
        if answer.status == ctl.NO_SERVICE:
            known = result.setdefault("warnings", [])
            known.extend(line for line in answer.messages if line not in known)
        return document, None

    def _gathered(self):
        result = {"changed": False}
        document, failed = self._shown(result)
        if failed:
            return failed
        return dict(result, gathered=document, pending=self._program.pending())

    def _rendered(self):
        answer = self._program.run(["validate", "--print", "--json", "-"], self._document())
        if answer.status != ctl.DONE:
            return self._failure(answer)
        return {"changed": False, "rendered": answer.document(), "warnings": answer.messages}

    # ---- changing ----

    def _brought(self, exact):
        document = self._document()
        if self._args["answers_at"]:
            self._address = self._host()
        result = {"changed": False, "changes": []}
        before, failed = self._shown(result)
        if failed:
            return failed
        result["before"] = before
        if self._task.check_mode:
            answer = self._program.run(["diff", "--json"] + exact + ["-"], document)
            if answer.status not in (ctl.DONE, ctl.DIFFERS):
                return dict(result, **self._failure(answer))
            self._note_changes(answer.plan(), result)
            result["notes"] = answer.notes()
            return result

        confirms = self._args["confirm_within"]
        words = ["apply", "--json"] + exact
        if confirms is not None:
            words += ["--confirm-within", str(confirms)]
        begun = time.monotonic()
        try:
            answer = self._program.run(words + ["-"], document, has_state=True)
        except AnsibleConnectionFailure as error:
            if confirms is None:
                raise
            result.setdefault("warnings", []).append(
                "the connection ended while the change was made: %s" % to_text(error).strip())
            return self._compared(result, self._confirm(begun + confirms))
        if answer.status != ctl.DONE:
            failed = self._failure(answer)
            if answer.status > 128 and confirms is not None:
                failed["msg"] += "; what is pending takes itself back when its %d s are over" % confirms
            is_begun = answer.status not in (ctl.WRONG, ctl.LOCKED)
            return self._compared(result, failed) if is_begun else dict(result, **failed)
        self._note_changes(answer.plan(), result)
        result["notes"] = answer.notes()
        if answer.holds():
            # One that was cut off before, of a change that is done by now, or one that nobody has confirmed yet.
            if confirms is None:
                failed = self._kept()
                result.setdefault("warnings", []).append("an apply was cut off before; things are kept as they are now")
            else:
                failed = self._confirm(time.monotonic() + confirms)
                if not failed and not result["changed"]:
                    result.setdefault("warnings", []).append("an apply from before waited to be confirmed; it is kept")
            if failed:
                return self._compared(result, failed)
        if not result["changed"]:
            result["after"] = before
            return result
        result["after"], failed = self._shown(result)
        return dict(result, **(failed or {}))

    def _compared(self, result, failed):
        """Where nobody has said what was changed, what is there tells it."""
        after, unread = self._shown(result)
        if unread:
            return dict(result, **(failed or unread))
        result["after"] = after
        self._note_changes(ctl.differences(result["before"], after), result)
        if failed:
            result.update(failed)
            result["changed"] = result["changed"] or failed["rc"] == ctl.NOT_UNDONE
            if failed["rc"] not in (ctl.REFUSED, ctl.NOT_UNDONE):
                result["msg"] += "; the module is %s before" % ("not as it was" if result["changed"] else "as it was")
        return result

    def _note_changes(self, lines, result):
        result["changed"] = bool(lines)
        result["changes"] = ctl.unique(ctl.path_of(line) for line in lines)
        if self._task.diff:
            result["diff"] = {"prepared": "".join(line + "\n" for line in lines)}

    def _kept(self):
        answer = self._program.run(["confirm"], has_state=True)
        return None if answer.status == ctl.DONE else ctl.failure(answer)

    def _confirm(self, until):
        """Confirms over a connection of its own: one that stands already would prove nothing. Nothing, or a failure."""
        told = ""
        unreachable = "no connection came about"
        if self._args["answers_at"]:
            self._answer_at(self._args["answers_at"])
        while time.monotonic() < until + PATIENCE:
            self._renew()
            try:
                # A confirmation that comes late would keep what going back has left otherwise.
                if time.monotonic() < until or "waits to be confirmed" in self._program.pending():
                    answer = self._program.run(["confirm"], has_state=True)
                    if answer.status == ctl.DONE:
                        return None
                    told = "; ".join(answer.messages)
                    is_over = answer.status != ctl.LOCKED and not self._program.pending()
                else:
                    told = self._program.pending()
                    is_over = not told
                if is_over:
                    break
            except AnsibleConnectionFailure as error:
                unreachable = to_text(error).strip()
                # A module that took itself back answers where it was.
                if self._args["answers_at"] and time.monotonic() > until:
                    self._answer_at(self._address)
            time.sleep(0.5)
        else:
            if not told:
                raise AnsibleConnectionFailure(
                    "the module did not answer within %d s after the change, and takes itself back: %s"
                    % (self._args["confirm_within"], unreachable))
        return {"failed": True, "rc": ctl.DIFFERS, "left": [],
                "msg": "the change was not confirmed: %s" % (told.replace("\n", "; ") or "the time was over")}

    def _host(self):
        try:
            return self._connection.get_option("host")
        except (AnsibleError, KeyError):
            raise AnsibleActionFail(
                "answers_at: the connection %s goes to no other address" % self._connection.transport)

    def _answer_at(self, address):
        self._connection.set_option("host", address)

    def _renew(self):
        """Ends a connection that stays open between commands; the local one, say, has none."""
        if type(self._connection).reset is ConnectionBase.reset:
            return
        try:
            self._connection.reset()
        except AnsibleConnectionFailure:
            pass  # it had ended already
