"""What a module is and does, as facts."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl
from ansible_collections.zr_nexa.router.plugins.plugin_utils.action import STATE_DIR, RouterAction


class ActionModule(RouterAction):
    ARGUMENTS = dict(STATE_DIR, gather={
        "type": "list", "elements": "str", "choices": ["status", "config"], "default": ["status", "config"]})

    def _work(self):
        facts = {}
        warnings = []
        for what, verb, key in (("status", "status", "profiles"), ("config", "show", "version")):
            if what not in self._args["gather"]:
                continue
            answer = self._program.run([verb, "--json"])
            document = answer.document(key)
            if document is None:
                return ctl.failure(answer)
            facts[what] = document
            warnings += answer.messages
        facts["pending"] = self._program.pending()
        return {"changed": False, "warnings": warnings, "ansible_facts": {"zr_nexa": facts}}
