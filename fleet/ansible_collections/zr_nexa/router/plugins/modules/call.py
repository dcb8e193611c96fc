#!/usr/bin/python
from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
module: call
short_description: The calls of a cellular data module's profiles
version_added: "1.0.0"
description:
  - Connects or disconnects a profile and waits until it is so. What is so already is left alone.
author:
  - The zr_nexa developers (!UNKNOWN)
options:
  profile:
    description: The profile's handle, or C(profile-<handle>).
    type: str
    required: true
  state:
    description: What is wanted.
    type: str
    choices: [connected, disconnected]
    default: connected
  family:
    description: IPv4, IPv6 or both; left out, what the profile dials.
    type: str
    choices: ["4", "6", "46"]
  wait:
    description: How many seconds to wait until it is so.
    type: int
    default: 60
extends_documentation_fragment:
  - zr_nexa.router.program
"""

EXAMPLES = r"""
- name: Connect the office
  zr_nexa.router.call:
    profile: profile-2
    wait: 30
"""

RETURN = r"""
calls:
  description: The state of each family that was asked for, after the task.
  returned: always
  type: dict
  sample: {ipv4: connected, ipv6: connected}
rc:
  description: The exit status of C(zr_nexactl).
  returned: on failure
  type: int
"""
