"""Gathers all that can be read of a machine as facts."""

from ansible.errors import AnsibleActionFail
from ansible_collections.miraintf.machines.plugins.plugin_utils.mira import DONE, MiraAction


class ActionModule(MiraAction):
    ARGUMENTS = frozenset(("redact", "subjects"))
    _supports_check_mode = True

    def work(self):
        words = ["snapshot"] + (["--redact"] if self.flag("redact") else [])
        status, document = self.mira(words)
        if status != DONE:
            return {"failed": True, "status": status, "msg": self.failure(document, status)}
        return {"changed": False, "ansible_facts": {"mira": self.facts(document)}}

    def facts(self, snapshot):
        subjects = snapshot.get("subjects", {})
        wanted = self._task.args.get("subjects") or list(subjects)
        unknown = [name for name in wanted if name not in subjects]
        if unknown:
            raise AnsibleActionFail(f"A snapshot has no subject '{unknown[0]}'; it has "
                                    + ", ".join(subjects) + ".")
        facts = {
            "taken_at": snapshot.get("takenAt"),
            "simulated": snapshot.get("simulated", False),
            "machine": snapshot.get("machine", {}),
            "subjects": {n: subjects[n]["value"] for n in wanted if "value" in subjects[n]},
            "unread": {n: subjects[n]["error"].get("message") for n in wanted
                       if "error" in subjects[n]},
        }
        # What a playbook asks most often: a setting's value by its name.
        attributes = facts["subjects"].get("attributes", {}).get("attributes", [])
        facts["attributes"] = {a.get("name"): a.get("value") for a in attributes
                               if isinstance(a.get("name"), str) and a.get("type") != "password"}
        return facts
