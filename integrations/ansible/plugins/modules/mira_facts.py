# Runs on the controller, as an action plugin: the target needs the program mira alone.

DOCUMENTATION = r"""
module: mira_facts
short_description: Gather all that can be read of a machine's firmware as facts
description:
  - Runs C(mira snapshot) on the target, by reads without effect, and sets the fact C(mira).
  - What could not be read is in C(mira.unread), with the reason.
options:
  subjects:
    description: The subjects that are wanted; all without it.
    type: list
    elements: str
  redact:
    description: Keep only what is known to be harmless.
    type: bool
    default: false
  executable:
    description: The program, or a list of the program and its first arguments.
    type: raw
    default: mira
  simulated:
    description: Work on a simulated machine, by the name of its profile, instead of the target itself.
    type: raw
author:
  - The MiraIntf developers
"""

EXAMPLES = r"""
- miraintf.machines.mira_facts:
    subjects: [inventory, attributes]
- ansible.builtin.debug:
    msg: "{{ mira.subjects.inventory.system.productName }}: {{ mira.attributes.WakeOnLan }}"
"""

RETURN = r"""
ansible_facts:
  description: C(mira) with C(machine), C(subjects), C(attributes) (values by name), C(unread), C(taken_at).
  type: dict
  returned: success
"""
