"""Brings a machine into a desired state."""

import json

from ansible.errors import AnsibleActionFail
from ansible_collections.miraintf.machines.plugins.plugin_utils.mira import (
    APPLIED_IN_PART, DONE, MiraAction, plain)

FAILED = ("failed", "refused")


class ActionModule(MiraAction):
    ARGUMENTS = frozenset(("state", "secrets", "write_secrets", "partial", "log"))
    _supports_check_mode = True

    def work(self):
        state = self._task.args.get("state")
        if isinstance(state, str) and "datetime.date" in state:
            # What a template gives is read from its text, which a date in it prevents.
            raise AnsibleActionFail("state: quote it: YAML reads a value in it as a date.")
        if not isinstance(state, dict):
            raise AnsibleActionFail("'state' is a dictionary, as docs/state.md describes it.")
        given = {"state": plain(state, "state")}
        secrets = self.secrets()
        if secrets:
            given["secrets"] = secrets
        status, document = self.mira(self.words(), given)
        changes = document.get("changes", [])
        is_dry = self._task.check_mode
        result = {
            "changed": any(c.get("outcome") == "planned" for c in changes) if is_dry
                       else bool(document.get("changed")),
            "restart_pending": bool(document.get("restartPending")),
            "changes": changes,
            "skipped_entries": document.get("skipped", []),
        }
        if self._task.diff:
            result["diff"] = self.diff(changes)
        if self.is_failed(status, changes):
            result["failed"] = True
            result["status"] = status
            result["msg"] = self.reasons(document, status)
        return result

    def words(self):
        words = ["apply", "-", "--what-if" if self._task.check_mode else "--yes"]
        words += ["--partial"] if self.flag("partial") else []
        words += ["--write-secrets"] if self.flag("write_secrets") else []
        log = self._task.args.get("log")
        return words + (["--log", str(log)] if log and not self._task.check_mode else [])

    @staticmethod
    def is_failed(status, changes):
        """What only waits for a restart is on its way, not failed."""
        if status != APPLIED_IN_PART:
            return status != DONE
        outcomes = {c.get("outcome") for c in changes}
        return "waiting" not in outcomes or bool(outcomes.intersection(FAILED))

    def reasons(self, document, status):
        """Each entry that is to blame, with the machine's name: a log of fifty is read by it."""
        entries = []
        for change in document.get("changes", []):
            if "error" in change:
                place = change.get("entry") or change.get("target")
                entries.append(f"{self.host}: {place}: {change['error'].get('message')}")
        return "\n".join(entries) or self.failure(document, status)

    def diff(self, changes):
        before, after = [], []
        for change in changes:
            if change.get("outcome") not in ("planned", "changed", "waiting"):
                continue
            target = change.get("target") or change.get("entry")
            wanted = change.get("after")
            if wanted is None or change["outcome"] == "waiting":
                wanted = change.get("wanted", wanted)
            before.append(f"{target}: {json.dumps(change.get('before'), ensure_ascii=False)}\n")
            after.append(f"{target}: {json.dumps(wanted, ensure_ascii=False)}\n")
        return {"before": "".join(before), "after": "".join(after),
                "before_header": f"{self.host} before", "after_header": f"{self.host} after"}
