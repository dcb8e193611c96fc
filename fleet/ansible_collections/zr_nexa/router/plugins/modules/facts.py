#!/usr/bin/python
from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
module: facts
short_description: What a cellular data module is set to, and what it does
version_added: "1.0.0"
description:
  - Reads the configuration and what runs, and keeps both as the fact C(zr_nexa).
author:
  - The zr_nexa developers (!UNKNOWN)
options:
  gather:
    description: What to read.
    type: list
    elements: str
    choices: [status, config]
    default: [status, config]
extends_documentation_fragment:
  - zr_nexa.router.program
  - zr_nexa.router.program.state
"""

EXAMPLES = r"""
- name: See what runs
  zr_nexa.router.facts:
    gather: [status]

- name: Stop where no profile is connected
  ansible.builtin.assert:
    that: "'connected' in (zr_nexa.status.profiles | map(attribute='ipv4.state'))"
"""

RETURN = r"""
ansible_facts:
  description: The facts, in C(zr_nexa).
  returned: always
  type: dict
  contains:
    zr_nexa:
      description: C(status) as C(zr_nexactl status --json) has it, C(config) as C(zr_nexactl show --json) has it, and
        C(pending), which says what is pending on the module.
      returned: always
      type: dict
"""
