"""Writes each task's result as a line of JSON to the file that FLEET_RESULTS names."""

import json
import os

from ansible.parsing.ajson import AnsibleJSONEncoder
from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
name: fleet_results
type: notification
short_description: Results as lines of JSON
description: For the tests of this collection.
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "notification"
    CALLBACK_NAME = "fleet_results"

    def keep(self, outcome, result):
        line = {"host": result._host.get_name(), "task": result._task.get_name(),
                "outcome": outcome, "result": result._result}
        with open(os.environ["FLEET_RESULTS"], "a", encoding="utf-8") as file:
            file.write(json.dumps(line, cls=AnsibleJSONEncoder) + "\n")

    def v2_runner_on_ok(self, result):
        self.keep("ok", result)

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self.keep("failed", result)

    def v2_runner_on_unreachable(self, result):
        self.keep("unreachable", result)
