# Runs on the controller, as an action plugin: the target needs the program mira alone.

DOCUMENTATION = r"""
module: mira_report
short_description: Write a page about a machine to a file on the controller
description:
  - Runs C(mira report) on the target and keeps the page, which loads nothing, on the controller.
options:
  dest:
    description: The file on the controller; its folder has to be there.
    type: path
    required: true
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
- miraintf.machines.mira_report:
    dest: "reports/{{ inventory_hostname }}.html"
"""

RETURN = r"""
dest:
  description: The file.
  type: str
  returned: success
"""
