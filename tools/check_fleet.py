#!/usr/bin/env python3
"""Runs the Ansible collection against many simulated machines, over local and ssh connections.

usage: tools/check_fleet.py MIRA FOLDER [--windows MIRA.EXE] [--machines N] [--forks N]

Check mode writes nothing; the first run brings what can be into the state; after a restart and a
second run a third changes nothing; failures name the machine and the entry; no secret is in any
output. With --measure it prints instead what a run costs the controller: all machines are reached by
ssh, and answer at once, with the document of a machine that is in its state.
"""

import argparse
import getpass
import json
import os
import pathlib
import resource
import shutil
import socket
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
TESTS = ROOT / "integrations/ansible/tests"
SECRETS = {"bios_password": "setup1", "owner_secret": "Owner-7531", "wrong_password": "Wrong-2468"}
LARGEST = 2**64 - 1

# Its second attribute can be written after a restart alone, when the first one is in force.
LATE = {
    "name": "late", "base": "laptop",
    "attributes": [
        {"kind": "enumeration", "name": "WakeOnLan", "choices": ["Disabled", "LAN"],
         "value": "Disabled", "default": "Disabled", "lower": 1, "upper": 1},
        {"kind": "integer", "name": "FanFloor", "value": "0", "default": "0", "lower": 0, "upper": 60,
         "increment": 10},
        {"kind": "enumeration", "name": "Vlan", "choices": ["Off", "On"], "value": "Off",
         "default": "Off", "lower": 1, "upper": 1},
        {"kind": "integer", "name": "VlanNumber", "value": "0", "default": "0", "lower": 0, "upper": 4094,
         "increment": 1,
         "readOnlyUnless": {"attribute": "Vlan", "value": "On", "afterRestart": True}},
        {"kind": "string", "name": "Plan", "value": "A", "lower": 0, "upper": 20},
        {"kind": "integer", "name": "Largest", "value": "0", "default": "0", "lower": 0, "upper": str(LARGEST),
         "increment": 1},
        {"kind": "password", "name": "OwnerPassword", "lower": 4, "upper": 32},
    ],
}

COMMON_STATE = {
    "attributes": {"WakeOnLan": "LAN", "FanFloor": "20",
                   "KeyboardBacklight": {"value": "Enabled", "optional": True}},
    "tags": {"asset": "{{ inventory_hostname }}"},
}

# Kinds of machines in turn: the profile, what its variables add, and the failure that is expected.
PLAIN = ["laptop", "desktop", "workstation", "pending-attributes", "unannounced-fix"]
SPECIAL = {
    2: {"machine": "locked", "named_secrets": {"password": "bios_password"}},
    5: {"machine": "locked", "named_secrets": {"password": "wrong_password"},
        "fails": "The password was not accepted."},
    7: {"machine": "late", "late": True},
    11: {"machine": "no-attributes", "fails": "/attributes/FanFloor"},
    13: {"machine": "no-calling-interface", "fails": "/tags/asset"},
    17: {"machine": "laptop", "own_state": {"attributes": {"FanFloor": 70}},
         "fails": "/attributes/FanFloor"},
    19: {"machine": "laptop", "own_state": {"attributes": {"OwnerPassword": {"secret": "owner"}}},
         "named_secrets": {"owner": "owner_secret"}},
    22: {"machine": "locked", "named_secrets": {"password": "bios_password"}},
    23: {"machine": "laptop", "fault": True, "fails": "/tags/asset"},
}
EVERY_SSH, EVERY_WINDOWS = 6, 12
LATE_STATE = {"attributes": {"Vlan": "On", "VlanNumber": 12, "Largest": LARGEST, "Plan": "22:30"}}


class Server:
    """An ssh server of its own on the loopback interface, with keys that nobody keeps."""

    def __init__(self, folder):
        self.folder = folder
        for name in ("host", "user"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", folder / name],
                           check=True)
        with socket.socket() as place:
            place.bind(("127.0.0.1", 0))
            self.port = place.getsockname()[1]
        key = (folder / "host.pub").read_text()
        (folder / "known").write_text(f"[127.0.0.1]:{self.port} {key}")
        (folder / "authorized").write_text((folder / "user.pub").read_text())
        (folder / "sshd_config").write_text(
            f"Port {self.port}\nListenAddress 127.0.0.1\nHostKey {folder}/host\nPidFile none\n"
            f"AuthorizedKeysFile {folder}/authorized\nPasswordAuthentication no\nUsePAM no\n"
            "StrictModes no\nPermitRootLogin prohibit-password\nMaxStartups 200\nLogLevel ERROR\n")
        if os.geteuid() == 0:
            pathlib.Path("/run/sshd").mkdir(mode=0o755, exist_ok=True)
        self.process = subprocess.Popen([shutil.which("sshd", path="/usr/sbin:/usr/bin"), "-D",
                                         "-e", "-f", folder / "sshd_config"])

    def variables(self):
        return {"ansible_connection": "ssh", "ansible_host": "127.0.0.1",
                "ansible_port": self.port, "ansible_user": getpass.getuser(),
                "ansible_ssh_private_key_file": str(self.folder / "user"),
                "ansible_ssh_common_args":
                    f"-o UserKnownHostsFile={self.folder}/known -o StrictHostKeyChecking=yes"}

    def stop(self):
        self.process.terminate()
        self.process.wait()


class Fleet:
    def __init__(self, options, folder):
        self.options, self.folder = options, folder
        self.failures = 0
        self.output = ""
        (folder / "late.json").write_text(json.dumps(LATE))
        self.server = Server(folder)
        collections = folder / "ansible_collections/miraintf"
        collections.mkdir(parents=True)
        (collections / "machines").symlink_to(ROOT / "integrations/ansible")
        self.hosts = {f"pc{i:03}": self.host(i) for i in range(1, options.machines + 1)}
        self.write_inventory()

    def host(self, number):
        name = f"pc{number:03}"
        kind = dict(SPECIAL.get(number % 50, {"machine": PLAIN[number % len(PLAIN)]}))
        state = self.folder / "state" / name
        state.mkdir(parents=True)
        host = {"ansible_connection": "local", "mira_program": [str(self.options.mira)],
                "state_folder": str(state), **kind}
        if kind.get("late"):
            host.update(machine=str(self.folder / "late.json"), own_state=LATE_STATE)
        elif number % EVERY_SSH == 0:
            host.update(self.server.variables())
        elif number % EVERY_WINDOWS == 1 and number > 1 and self.options.windows and "fault" not in kind:
            host.update(mira_program=[str(ROOT / "tools/wine.sh"), str(self.options.windows)],
                        state_folder=f"Z:{state}")
        if kind.get("fault"):
            self.mira(host, "sim", "fault", "add", "11/1", "--nth", "0", "--completion=-1",
                      "--yes")
        return host

    def mira(self, host, *words):
        environment = {**os.environ, "MIRA_SIM_STATE": host["state_folder"]}
        subprocess.run([*host["mira_program"], f"--sim={host['machine']}", *words], check=True,
                       env=environment, stdout=subprocess.DEVNULL)

    def write_inventory(self):
        inventory = {"machines": {"hosts": self.hosts, "vars": {
            **SECRETS, "common_state": COMMON_STATE, "report_folder": str(self.folder)}}}
        (self.folder / "inventory.json").write_text(json.dumps(inventory))

    def play(self, book, *words, limit=None):
        """The results by host; the seconds that it took."""
        results = self.folder / "results"
        results.unlink(missing_ok=True)
        environment = {
            **os.environ, "HOME": str(self.folder), "FLEET_RESULTS": str(results),
            "ANSIBLE_COLLECTIONS_PATH": str(self.folder), "ANSIBLE_NOCOWS": "1",
            "ANSIBLE_CALLBACK_PLUGINS": str(TESTS / "plugins"), "ANSIBLE_NOCOLOR": "1",
            "ANSIBLE_CALLBACKS_ENABLED": "fleet_results", "ANSIBLE_RETRY_FILES_ENABLED": "0",
            "ANSIBLE_FORKS": str(self.options.forks), "ANSIBLE_SSH_RETRIES": "2",
            "ANSIBLE_LOCAL_TEMP": str(self.folder / "tmp"), "LC_ALL": "C.UTF-8"}
        command = ["ansible-playbook", "-i", self.folder / "inventory.json", TESTS / book, *words]
        start = time.monotonic()
        ran = subprocess.run(command + (["--limit", limit] if limit else []), env=environment,
                             capture_output=True, text=True, stdin=subprocess.DEVNULL)
        seconds = time.monotonic() - start
        lines = results.read_text().splitlines() if results.exists() else []
        self.output += ran.stdout + ran.stderr + "\n".join(lines)
        if not lines:
            print(ran.stdout[-2000:], ran.stderr[-2000:], file=sys.stderr)
        return [json.loads(line) for line in lines], seconds

    def check(self, is_right, text):
        if not is_right:
            self.failures += 1
            print(f"fleet: {text}", file=sys.stderr)

    def states(self, *words):
        lines, seconds = self.play("site.yml", *words)
        return {line["host"]: line for line in lines}, seconds


def befores(line):
    return [(c.get("entry"), c.get("before")) for c in line["result"].get("changes", [])]


def check_run(fleet, what, run, changes):
    """Every machine answers; those that are expected to fail do, and say at which entry."""
    for name, host in fleet.hosts.items():
        line = run.get(name)
        if line is None:
            fleet.check(False, f"{what}: {name} did not answer")
            continue
        message = line["result"].get("msg", "")
        # A fault of a write does not show where nothing is written.
        expected = None if host.get("fault") and what == "check mode" else host.get("fails")
        if expected:
            is_told = line["outcome"] == "failed" and name in message and expected in message
            fleet.check(is_told, f"{what}: {name} ({host['machine']}) should fail at {expected}: {message}")
            continue
        fleet.check(line["outcome"] == "ok", f"{what}: {name} ({host['machine']}): {message}")
        wanted = changes(host)
        if wanted is not None:
            fleet.check(line["result"].get("changed") == wanted,
                        f"{what}: {name} ({host['machine']}): changed is {line['result'].get('changed')}")


def check_states(fleet):
    planned, _ = fleet.states("--check", "--diff")
    check_run(fleet, "check mode", planned, lambda host: True)
    first, _ = fleet.states("-vvv")
    check_run(fleet, "first run", first, lambda host: True)
    for name, line in first.items():
        fleet.check(befores(line) == befores(planned[name]) or "fault" in fleet.hosts[name],
                    f"{name} was changed in check mode")
    diff = planned["pc001"]["result"].get("diff", {})
    fleet.check("FanFloor: 20" in diff.get("after", ""), f"no difference is shown: {diff}")
    fleet.check(first["pc007"]["result"].get("restart_pending"), "no restart is asked for")
    fleet.play("restart.yml")
    second, _ = fleet.states()
    check_run(fleet, "second run", second, lambda host: bool(host.get("late")))
    largest = [c.get("after") for c in second["pc007"]["result"]["changes"] if c.get("target") == "Largest"]
    fleet.check(largest in ([LARGEST], [str(LARGEST)]), f"2^64-1 became {largest}")
    third, _ = fleet.states()
    check_run(fleet, "third run", third, lambda host: False)


def check_facts(fleet):
    lines, _ = fleet.play("facts.yml", limit="pc001,pc002,pc006,pc012")
    for line in lines:
        fleet.check(line["outcome"] == "ok", f"{line['task']}: {line['host']}: {line['result'].get('msg')}")
    fleet.check((fleet.folder / "pc006.html").read_text().startswith("<!DOCTYPE html>"), "no report")
    again, _ = fleet.play("facts.yml", limit="pc001")
    fleet.check(again and not any(line["result"].get("changed") for line in again), "the same report is another")


def check_mistyped(fleet):
    lines, _ = fleet.play("mistyped.yml", limit="pc007")
    items = [item for line in lines for item in line["result"].get("results", [])]
    fleet.check(len(items) == 7, f"{len(items)} mistyped values were tried")
    for item in items:
        is_told = item.get("failed") and "quote" in item.get("msg", "").lower()
        fleet.check(is_told, f"{item['item']['key']} is not refused: {item.get('msg')}")
    fleet.check(bool(lines) and lines[-1]["outcome"] == "ok", "texts for numbers are refused")


def measure(fleet):
    """Processor time, which does not depend on what else the controller does, beside the clock's."""
    host = {"mira_program": [str(fleet.options.mira)], "machine": "laptop", "state_folder": ""}
    state = {"state": {"attributes": {"WakeOnLan": "Disabled", "FanFloor": 0}}}
    answer = subprocess.run([*host["mira_program"], "--sim=laptop", "apply", "-", "--yes", "--json"],
                            input=json.dumps(state), env={**os.environ, "MIRA_SIM_STATE": ""},
                            capture_output=True, text=True, check=True).stdout
    (fleet.folder / "answer.json").write_text(answer)
    stub = fleet.folder / "answer"
    stub.write_text(f"#!/bin/sh\ncat >/dev/null\ncat {fleet.folder}/answer.json\n")
    stub.chmod(0o755)
    for variables in fleet.hosts.values():
        variables.update(fleet.server.variables(), mira_program=[str(stub)])
        variables.pop("named_secrets", None)
    fleet.write_inventory()
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    lines, seconds = fleet.states()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    good = sum(line["outcome"] == "ok" for line in lines.values())
    spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    print(f"fleet: {good} of {fleet.options.machines} machines, {fleet.options.forks} at a time: "
          f"{seconds:.1f} s, of which {spent:.1f} s of processor time on the controller; "
          f"{after.ru_maxrss / 1024:.0f} MiB in the largest process")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("mira", type=lambda p: pathlib.Path(p).resolve())
    parser.add_argument("folder", type=lambda p: pathlib.Path(p).resolve())
    parser.add_argument("--windows", type=lambda p: pathlib.Path(p).resolve())
    parser.add_argument("--machines", type=int, default=50)
    parser.add_argument("--forks", type=int, default=8)
    parser.add_argument("--measure", action="store_true")
    options = parser.parse_args()
    shutil.rmtree(options.folder, ignore_errors=True)
    options.folder.mkdir(parents=True)
    fleet = Fleet(options, options.folder)
    try:
        if options.measure:
            measure(fleet)
        else:
            check_states(fleet)
            check_facts(fleet)
            check_mistyped(fleet)
            for name, secret in SECRETS.items():
                fleet.check(secret not in fleet.output, f"the secret {name} is in the output")
    finally:
        fleet.server.stop()
    if fleet.failures:
        sys.exit(1)
    if not options.measure:
        print(f"fleet: {options.machines} machines are in their states, and a third run changes none")


if __name__ == "__main__":
    main()
