"""Writes a machine's report to a file on the controller."""

import os
import tempfile

from ansible.errors import AnsibleActionFail
from ansible.module_utils.common.text.converters import to_bytes
from ansible_collections.miraintf.machines.plugins.plugin_utils.mira import DONE, MiraAction


class ActionModule(MiraAction):
    ARGUMENTS = frozenset(("dest", "redact"))
    _supports_check_mode = True

    def work(self):
        dest = self._task.args.get("dest")
        if not dest:
            raise AnsibleActionFail("'dest' is the file on the controller.")
        words = ["report", "--html", "-"] + (["--redact"] if self.flag("redact") else [])
        status, document = self.mira(words)
        if status != DONE or "html" not in document:
            return {"failed": True, "status": status, "msg": self.failure(document, status)}
        path = os.path.abspath(os.path.expanduser(str(dest)))
        page = to_bytes(document["html"])
        is_same = self.content(path) == page
        if not is_same and not self._task.check_mode:
            self.write(path, page)
        return {"changed": not is_same, "dest": path, "size": len(page)}

    @staticmethod
    def content(path):
        try:
            with open(path, "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None

    @staticmethod
    def write(path, page):
        """As a whole or not at all. A report says much about a machine: it is for its user alone."""
        try:
            handle, temporary = tempfile.mkstemp(dir=os.path.dirname(path))
            with os.fdopen(handle, "wb") as file:
                file.write(page)
            os.replace(temporary, path)
        except OSError as error:
            raise AnsibleActionFail(f"{path} could not be written: {error.strerror}.") from error
