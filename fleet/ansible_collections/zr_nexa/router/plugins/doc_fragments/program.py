from __future__ import absolute_import, division, print_function

__metaclass__ = type


class ModuleDocFragment(object):
    DOCUMENTATION = r"""
options:
  executable:
    description:
      - Where C(zr_nexactl) is on the module, or its name when the shell finds it. One word; C(~) is not expanded.
    type: str
    default: zr_nexactl
notes:
  - Nothing is needed on the module but a shell and C(zr_nexactl); there need be no Python.
  - The task's I(environment) holds for C(zr_nexactl).
"""

    STATE = r"""
options:
  state_dir:
    description:
      - The folder on the module with the lock and the state to go back to, C(--state) of C(zr_nexactl).
      - One folder is one module. Left out, it is the one that C(zr_nexactl) chooses itself. C(~) is not expanded.
    type: str
"""
