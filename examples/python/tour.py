"""miraclient from Python: lists the BIOS attributes, changes one, is refused another change, and makes a
firmware call of its own. What it expects is the simulated machine "locked": give it the simulator's
library, and let it run with MIRA_SIM=locked.

usage: tour.py LIBRARY
"""

import sys

import miraclient

mistakes = 0


def expect(what, is_so):
    global mistakes
    print(f"{what}: {'as expected' if is_so else 'NOT as expected'}")
    mistakes += not is_so


def status_of(work):
    try:
        work()
        return miraclient.DONE
    except miraclient.MiraError as error:
        return error.status


def main():
    password = {"password": bytearray(b"setup1")}
    with miraclient.Machine(sys.argv[1]) as machine:

        def change(value, secrets=None):
            return machine.request("attr.set", name="FanFloor", value=value, secrets=secrets)

        names = [attribute["name"] for attribute in machine.request("attr.list")["attributes"]]
        expect("the list of attributes", "FanFloor" in names)
        expect(
            "a request that is cancelled",
            status_of(lambda: machine.request("attr.list", progress=lambda *_: False)) == miraclient.CANCELLED,
        )
        expect("a change without the password", status_of(lambda: change(30)) == miraclient.PASSWORD)
        expect("a change with it", change(30, password)["changed"])
        expect("a change beyond the limits", status_of(lambda: change(3000, password)) == miraclient.INVALID_VALUE)
        record = miraclient.Record(cls=0, select=0, arg=(0x78,))  # read a setting by its location
        machine.call(record)
        expect("a firmware call", record.completion == 0 and record.result[0] == 2)
    for value in password.values():
        value[:] = bytes(len(value))
    return mistakes


sys.exit(main())
