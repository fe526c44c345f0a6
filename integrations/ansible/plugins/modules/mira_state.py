# Runs on the controller, as an action plugin: the target needs the program mira alone.

DOCUMENTATION = r"""
module: mira_state
short_description: Bring a machine's firmware settings into a desired state
description:
  - Runs C(mira apply) on the target with the state on standard input.
  - Only what differs is written, and read back. In check mode nothing is.
  - C(changed) is true where a value that was read back differs from the one before.
options:
  state:
    description: The desired state, in the form that docs/state.md describes.
    type: dict
    required: true
  secrets:
    description:
      - The names of variables that hold the secrets, by the secrets' names; C(password) is the BIOS password.
      - The values travel on standard input, and stand in no argument, result or log.
    type: dict
  write_secrets:
    description: Write password attributes, too. Whether they changed cannot be read back.
    type: bool
    default: false
  partial:
    description: Write what is possible although something in the state is not.
    type: bool
    default: false
  log:
    description: A file on the target that gets a line before and after each write.
    type: str
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
- name: Library notebooks
  miraintf.machines.mira_state:
    state:
      attributes:
        WakeOnLan: "LAN"
        FanFloor: 20
      tags:
        asset: "{{ inventory_hostname }}"
    secrets:
      password: vault_bios_password
"""

RETURN = r"""
restart_pending:
  description: Whether something takes effect, or can be written, after a restart only.
  type: bool
  returned: always
changes:
  description: Every entry with what it was, what it is and what became of it.
  type: list
  elements: dict
  returned: always
skipped_entries:
  description: Entries that did not apply to this machine, and why.
  type: list
  elements: dict
  returned: always
"""
