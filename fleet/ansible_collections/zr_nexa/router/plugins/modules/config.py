#!/usr/bin/python
from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
module: config
short_description: The configuration of a cellular data module's router service
version_added: "1.0.0"
description:
  - Brings a module's configuration to what a document says, and changes only what differs.
  - A change that is refused is undone. The failure says where it stands in the document, which function refused it and
    what its result code means.
  - In check mode nothing is changed, and what would change is told. In diff mode the difference is the one that
    C(zr_nexactl diff) prints.
author:
  - The zr_nexa developers (!UNKNOWN)
options:
  config:
    description:
      - The document, as a structure or as text. Its keys are those of C(zr_nexactl(5)).
      - Write MAC addresses in quotes, and texts such as C(no), C(on) and C(007). YAML as Ansible reads it takes
        them for other values, which C(zr_nexactl) cannot tell from those that were meant.
      - Digits in quotes are the number, so that a template may stand for one.
    type: raw
  src:
    description:
      - A file on the controller with the document, looked for in C(files) as others are. It is sent as it is, so that
        its values are what the file says.
      - Use the lookup C(template) with I(config) for a template.
    type: path
  state:
    description:
      - With C(merged), what the document does not name stays.
      - With C(replaced), a section that the document has is the whole truth, and entries that it does not name go.
      - With C(gathered), the configuration is only read.
      - With C(rendered), the document is only checked and returned in its normal form. The module is not asked.
    type: str
    choices: [merged, replaced, gathered, rendered]
    default: merged
  confirm_within:
    description:
      - Seconds within which the module must answer over a new connection after the change. It takes itself back when
        it does not.
      - Where an apply from before waits to be confirmed, it is confirmed with this one.
    type: int
  answers_at:
    description:
      - The address at which the module answers after the change, when the change moves it. Only with I(confirm_within)
        and the connection C(ssh).
    type: str
extends_documentation_fragment:
  - zr_nexa.router.program
  - zr_nexa.router.program.state
"""

EXAMPLES = r"""
- name: Set the office LAN up
  zr_nexa.router.config:
    config:
      version: 1
      lans:
        10:
          vlan: {interface: ethernet}
          address: 192.168.11.1/24
          dhcp: {first: 192.168.11.20, last: 192.168.11.60}

- name: Bring a module back to what was saved
  zr_nexa.router.config:
    src: "{{ inventory_hostname }}.yaml"
    state: replaced

- name: Move the module, and only for good when it answers there
  zr_nexa.router.config:
    config:
      version: 1
      lans:
        0:
          address: 192.168.20.1/24
          dhcp: {first: 192.168.20.20, last: 192.168.20.60}
    confirm_within: 60
    answers_at: 192.168.20.1

- name: Save what a module has
  zr_nexa.router.config:
    state: gathered
  register: router
"""

RETURN = r"""
before:
  description: The configuration before the task.
  returned: when I(state) is C(merged) or C(replaced)
  type: dict
after:
  description: The configuration after the task.
  returned: when I(state) is C(merged) or C(replaced), not in check mode; after a failure where it can be read
  type: dict
changes:
  description:
    - Where something was changed, or would be, in the order in which it is done.
    - After a failure, or where the connection was cut off, where I(before) and I(after) differ.
  returned: when I(state) is C(merged) or C(replaced)
  type: list
  elements: str
  sample: [lans.10.address, upnp.enabled]
notes:
  description: What the change interrupts, and what of it could not be undone.
  returned: when I(state) is C(merged) or C(replaced)
  type: list
  elements: str
  sample: ["LAN 0 is activated anew: its devices lose the connection for a moment"]
gathered:
  description: The configuration.
  returned: when I(state) is C(gathered)
  type: dict
pending:
  description: What is pending on the module, such as an apply that was cut off; empty when nothing is.
  returned: when I(state) is C(gathered)
  type: str
rendered:
  description: The document in its normal form.
  returned: when I(state) is C(rendered)
  type: dict
left:
  description: What is not as it should be after a failure.
  returned: on failure
  type: list
  elements: str
rc:
  description: The exit status of C(zr_nexactl).
  returned: on failure
  type: int
"""
