"""Puts a module back to its factory settings."""
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
            "executable": {"type": "str", "default": "zr_nexactl"},
            "state_dir": {"type": "str"},
        })
        result["changed"] = True
        if self._task.check_mode:
            return result
        answer = ctl.Program(self, args).run(["restore", "--yes"], has_state=True)
        if answer.status != ctl.DONE:
            result.update(ctl.failure(answer))
            result["changed"] = answer.status == ctl.NOT_UNDONE
        return result
