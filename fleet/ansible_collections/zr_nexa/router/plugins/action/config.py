"""Brings a module's configuration to what a document says, reads it, or checks a document."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json
import time

from ansible.errors import AnsibleActionFail, AnsibleConnectionFailure
from ansible.module_utils.common.text.converters import to_text
from ansible.plugins.action import ActionBase
from ansible.plugins.connection import ConnectionBase

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl

# Seconds for which a module that has taken itself back is waited for, once its time is over.
PATIENCE = 20


class ActionModule(ActionBase):
    TRANSFERS_FILES = False
    _supports_check_mode = True
    _supports_async = False

    def run(self, tmp=None, task_vars=None):
        result = super(ActionModule, self).run(tmp, task_vars or {})
        del tmp
        _unused, args = self.validate_argument_spec(
            argument_spec={
                "config": {"type": "raw"},
                "src": {"type": "path"},
                "state": {"choices": ["merged", "replaced", "gathered", "rendered"], "default": "merged"},
                "confirm_within": {"type": "int"},
                "answers_at": {"type": "str"},
                "executable": {"type": "str", "default": "zr_nexactl"},
                "state_dir": {"type": "str"},
            },
            mutually_exclusive=[["config", "src"]],
            required_if=[[
                "state", state, ["config", "src"], True] for state in ("merged", "replaced", "rendered")],
            required_by={"answers_at": ["confirm_within"]},
        )
        self._program = ctl.Program(self, args)
        self._args = args
        if args["state"] == "gathered":
            result.update(self._gathered())
        elif args["state"] == "rendered":
            result.update(self._rendered())
        else:
            result.update(self._brought(["--exact"] if args["state"] == "replaced" else []))
        return result

    # ---- the document ----

    def _document(self):
        """As text: an inline one as JSON, which keeps the kinds of its values."""
        config = self._args["config"]
        if config is None:
            path = self._find_needle("files", self._args["src"])
            shown = self._loader.get_real_file(path)
            with open(shown, "rb") as file:
                return to_text(file.read())
        if isinstance(config, str):
            return config
        try:
            return json.dumps(config)
        except TypeError as error:
            raise AnsibleActionFail("config is no document: %s" % to_text(error))

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

    def _pending(self):
        """What zr_nexactl says is pending; nothing when nothing is."""
        answer = self._program.run(["pending"], has_state=True)
        return answer.out.strip() if answer.status == ctl.DIFFERS else ""

    def _gathered(self):
        result = {"changed": False}
        document, failed = self._shown(result)
        if failed:
            return failed
        result["gathered"] = document
        result["pending"] = self._pending()
        return result

    def _rendered(self):
        answer = self._program.run(["validate", "--print", "--json", "-"], self._document())
        if answer.status != ctl.DONE:
            return ctl.failure(answer)
        return {"changed": False, "rendered": answer.document(), "warnings": answer.messages}

    # ---- changing ----

    def _brought(self, exact):
        document = self._document()
        result = {"changed": False, "changes": []}
        before, failed = self._shown(result)
        if failed:
            return failed
        result["before"] = before
        if self._task.check_mode:
            answer = self._program.run(["diff", "--json"] + exact + ["-"], document)
            if answer.status not in (ctl.DONE, ctl.DIFFERS):
                return dict(result, **ctl.failure(answer))
            self._note_changes(answer, result)
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
            answer = None
            result.setdefault("warnings", []).append(
                "the connection ended while the change was made: %s" % to_text(error).strip())
        if answer is not None:
            if answer.status != ctl.DONE:
                result.update(ctl.failure(answer))
                result["changed"] = answer.status == ctl.NOT_UNDONE
                result["changes"] = ctl.unique(ctl.path_of(line) for line in answer.plan())
                return result
            self._note_changes(answer, result)
            begun = time.monotonic()
        if confirms is not None and (answer is None or result["changed"]):
            failed = self._confirm(begun + confirms)
            if failed:
                return self._not_confirmed(dict(result, **failed))
            result["changed"] = True
        if not result["changed"]:
            result["after"] = before
            return result
        result["after"], failed = self._shown(result)
        if failed:
            return dict(result, **failed)
        return result

    def _not_confirmed(self, result):
        """What is there says whether the module has taken itself back."""
        result["after"], failed = self._shown(result)
        if failed:
            return dict(result, **failed)
        result["changed"] = result["after"] != result["before"]
        result["msg"] += "; the module is %s before" % ("not as it was" if result["changed"] else "as it was")
        return result

    def _note_changes(self, answer, result):
        lines = answer.plan()
        result["changed"] = bool(lines)
        result["changes"] = ctl.unique(ctl.path_of(line) for line in lines)
        if self._task.diff:
            result["diff"] = {"prepared": "".join(line + "\n" for line in lines)}

    def _confirm(self, until):
        """Confirms over a connection of its own: one that stands already would prove nothing."""
        last = "no connection came about"
        if self._args["answers_at"]:
            self._answer_at(self._args["answers_at"])
        while time.monotonic() < until + PATIENCE:
            self._renew()
            try:
                answer = self._program.run(["confirm"], has_state=True)
            except AnsibleConnectionFailure as error:
                last = to_text(error).strip()
                # A module that took itself back answers where it was.
                if self._args["answers_at"] and time.monotonic() > until:
                    self._answer_at(self._address)
            else:
                if answer.status == ctl.DONE:
                    return None
                last = "; ".join(answer.messages)
                if answer.status != ctl.LOCKED:
                    return {"failed": True, "rc": answer.status, "msg": "the change was not confirmed: " + last}
            time.sleep(0.5)
        raise AnsibleConnectionFailure(
            "the module did not answer within %d s after the change, and takes itself back: %s"
            % (self._args["confirm_within"], last))

    _address = None

    def _answer_at(self, address):
        if self._address is None:
            self._address = self._connection.get_option("host")
        self._connection.set_option("host", address)

    def _renew(self):
        """Ends a connection that stays open between commands; the local one, say, has none."""
        if type(self._connection).reset is ConnectionBase.reset:
            return
        try:
            self._connection.reset()
        except AnsibleConnectionFailure:
            pass  # it had ended already
