"""Puts a module back to its factory settings."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl
from ansible_collections.zr_nexa.router.plugins.plugin_utils.action import STATE_DIR, RouterAction


class ActionModule(RouterAction):
    ARGUMENTS = STATE_DIR

    def _work(self):
        if self._task.check_mode:
            return {"changed": True}
        answer = self._program.run(["restore", "--yes"], has_state=True)
        if answer.status == ctl.DONE:
            return {"changed": True}
        return dict(ctl.failure(answer), changed=answer.status == ctl.NOT_UNDONE)
