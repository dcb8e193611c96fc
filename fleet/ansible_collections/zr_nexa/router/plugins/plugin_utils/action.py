"""What the collection's modules have in common: their words, and zr_nexactl on the module."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.errors import AnsibleActionFail
from ansible.module_utils.common.text.converters import to_text
from ansible.plugins.action import ActionBase

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl

EXECUTABLE = {"executable": {"type": "str", "default": "zr_nexactl"}}
STATE_DIR = {"state_dir": {"type": "str"}}


class RouterAction(ActionBase):
    """A module: what it takes, and its work, which returns what the result is told beside what all have."""

    TRANSFERS_FILES = False
    _supports_check_mode = True
    _supports_async = False

    ARGUMENTS = {}  # beside the program's own
    TOGETHER = {}  # what of them belongs together

    def run(self, tmp=None, task_vars=None):
        result = super(RouterAction, self).run(tmp, task_vars or {})
        del tmp
        try:
            _unused, self._args = self.validate_argument_spec(
                argument_spec=dict(EXECUTABLE, **self.ARGUMENTS), **self.TOGETHER)
            self._program = ctl.Program(self, self._args)
            result.update(self._work())
        except AnsibleActionFail as error:
            # Handed on, it would be told as an exception of nothing's, too.
            result.update(failed=True, msg=to_text(error))
        return result

    def _work(self):
        raise NotImplementedError
