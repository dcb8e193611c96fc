#!/usr/bin/python
from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
module: restore
short_description: The factory settings of a cellular data module's router service
version_added: "1.0.0"
description:
  - Puts a module back to its factory settings. The module may answer at another address then.
author:
  - The zr_nexa developers (!UNKNOWN)
extends_documentation_fragment:
  - zr_nexa.router.program
  - zr_nexa.router.program.state
"""

EXAMPLES = r"""
- name: Begin anew
  zr_nexa.router.restore:
"""

RETURN = r"""
rc:
  description: The exit status of C(zr_nexactl).
  returned: on failure
  type: int
"""
