"""What a module is and does, as facts."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.plugins.action import ActionBase

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl


class ActionModule(ActionBase):
    TRANSFERS_FILES = False
    _supports_check_mode = True
    _supports_async = False

    def run(self, tmp=None, task_vars=None):
        result = super(ActionModule, self).run(tmp, task_vars or {})
        del tmp
        _unused, args = self.validate_argument_spec(argument_spec={
            "gather": {"type": "list", "elements": "str", "choices": ["status", "config"],
                       "default": ["status", "config"]},
            "executable": {"type": "str", "default": "zr_nexactl"},
            "state_dir": {"type": "str"},
        })
        program = ctl.Program(self, args)
        facts = {}
        warnings = []
        for what, verb, key in (("status", "status", "profiles"), ("config", "show", "version")):
            if what not in args["gather"]:
                continue
            answer = program.run([verb, "--json"])
            document = answer.document(key)
            if document is None:
                return dict(result, **ctl.failure(answer))
            facts[what] = document
            warnings += answer.messages
        facts["pending"] = program.pending()
        result.update(changed=False, warnings=warnings, ansible_facts={"zr_nexa": facts})
        return result
