"""What the action plugins share: they run `mira` on the target, which needs nothing else there."""

import datetime
import json

from ansible.errors import AnsibleActionFail
from ansible.module_utils.common.parameters import remove_values
from ansible.module_utils.common.text.converters import to_bytes, to_text
from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase

# The largest integer that every reader of JSON keeps exact; mira takes larger ones as texts.
LARGEST_EXACT = 2**53 - 1

# Exit statuses of mira.
DONE, APPLIED_IN_PART = 0, 10


def plain(value, path):
    """The value as plain JSON types; refuses what YAML made of something else."""
    if isinstance(value, dict):
        return {key_text(key, path): plain(part, f"{path}/{key}") for key, part in value.items()}
    if isinstance(value, (list, tuple)):
        return [plain(part, f"{path}/{place}") for place, part in enumerate(value)]
    if isinstance(value, bool) or value is None:
        return value
    if hasattr(value, "__ENCRYPTED__"):
        raise AnsibleActionFail(f"{path}: a vaulted value is a secret, and stands in no state; "
                                "name it in 'secrets'.")
    if isinstance(value, str):
        return str(value)
    if isinstance(value, int):
        return value if abs(value) <= LARGEST_EXACT else str(value)
    if isinstance(value, float):
        raise AnsibleActionFail(f"{path}: quote it: YAML reads a number with a dot as a fraction, "
                                f"here {value}, and 1.10 becomes 1.1.")
    if isinstance(value, (datetime.date, datetime.datetime)):
        raise AnsibleActionFail(f"{path}: quote it: YAML reads it as a date, here {value}.")
    raise AnsibleActionFail(f"{path}: a state has no value of the type {type(value).__name__}.")


def key_text(key, path):
    if isinstance(key, (bool, float, datetime.date)) or key is None:
        raise AnsibleActionFail(f"{path}: quote the key that YAML reads as {key}.")
    return str(key)


class MiraAction(ActionBase):
    """One command of mira for one task."""

    TRANSFERS_FILES = False
    _supports_async = False
    COMMON_ARGUMENTS = frozenset(("executable", "simulated"))
    ARGUMENTS = frozenset()

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        self.task_vars = task_vars or {}
        self.host = to_text(self.task_vars.get("inventory_hostname", "the machine"))
        self.hidden = set()
        unknown = sorted(set(self._task.args) - self.COMMON_ARGUMENTS - self.ARGUMENTS)
        if unknown:
            raise AnsibleActionFail(f"{self._task.action} takes no '{unknown[0]}'.")
        result.update(self.work())
        return self.without_secrets(result)

    def work(self):
        """The task's own part of the result."""
        raise NotImplementedError

    def flag(self, name):
        value = self._task.args.get(name, False)
        try:
            return boolean(value)
        except TypeError as error:
            raise AnsibleActionFail(f"'{name}' is true or false.") from error

    def secrets(self):
        """The secrets by name. The task names variables: a value in it would be shown with it."""
        named = self._task.args.get("secrets", {})
        if not isinstance(named, dict):
            raise AnsibleActionFail("'secrets' has the names of variables, by the secrets' names.")
        values = {}
        for name, variable in named.items():
            if not isinstance(variable, str) or variable not in self.task_vars:
                raise AnsibleActionFail(f"secrets/{name}: this is not the name of a variable; the "
                                        "secret itself does not belong here.")
            value = self._templar.template(self.task_vars[variable])
            if not isinstance(value, str):
                raise AnsibleActionFail(f"secrets/{name}: quote it: the variable '{variable}' holds "
                                        f"no text but a value of type {type(value).__name__}.")
            values[to_text(name)] = to_text(value)
        self.hidden = set(values.values()) - {""}
        return values

    def without_secrets(self, value):
        return remove_values(value, self.hidden) if self.hidden else value

    def command_line(self, words):
        executable = self._task.args.get("executable", "mira")
        program = executable if isinstance(executable, list) else [executable]
        words = [to_text(word) for word in program] + words
        simulated = self._task.args.get("simulated")
        if simulated:
            words.append("--sim" if simulated is True else f"--sim={simulated}")
        shell = self._connection._shell
        if getattr(shell, "_IS_WINDOWS", False):
            return "& " + " ".join("'" + word.replace("'", "''") + "'" for word in words)
        line = " ".join(shell.quote(word) for word in words)
        return f"{self._compute_environment_string()} {line}".strip()

    def mira(self, words, given=None):
        """The exit status and the document. `given` goes to standard input, which no list of
        processes shows and no log keeps."""
        # Without input the ssh connection asks for a terminal, which would mix both outputs.
        data = to_bytes(json.dumps(given) if given is not None else "\n")
        answer = self._low_level_execute_command(self.command_line(words + ["--json"]), in_data=data)
        text = to_text(answer.get("stdout", ""))
        begin = text.find("{")
        try:
            document = json.JSONDecoder().raw_decode(text[begin:])[0] if begin >= 0 else None
        except ValueError:
            document = None
        if not isinstance(document, dict):
            said = (to_text(answer.get("stderr", "")) or text).strip()
            raise AnsibleActionFail(self.without_secrets(
                f"{self.host}: mira gave no document (status {answer.get('rc')}): {said[-300:]}"))
        return int(answer.get("rc", 0)), document

    def failure(self, document, status):
        error = document.get("error") or {}
        message = error.get("message") or f"mira ended with status {status}."
        return " ".join(part for part in (f"{self.host}: {message}", error.get("hint")) if part)
