"""miraclient for Python: the functions of mira_client.h through ctypes, and a class that owns a machine."""

import ctypes
import json

DONE, UNEXPECTED, USAGE, NOT_FOUND, NOT_SUPPORTED, PASSWORD, INVALID_VALUE, ADMINISTRATOR_NEEDED = range(8)
TRANSPORT_FAILED, APPLIED_IN_PART, REFUSED, DIFFERS, CANCELLED, BUSY = range(9, 15)


class Secret(ctypes.Structure):
    _fields_ = [("slot", ctypes.c_char_p), ("bytes", ctypes.c_void_p), ("size", ctypes.c_uint32)]


class Record(ctypes.Structure):
    """One firmware call: Record(cls=0, select=0, arg=(0x78,))."""

    _fields_ = [
        ("struct_size", ctypes.c_uint32),
        ("cls", ctypes.c_uint16),
        ("select", ctypes.c_uint16),
        ("arg", ctypes.c_uint32 * 4),
        ("arg_flags", ctypes.c_uint32),
        ("key_arg", ctypes.c_uint32),
        ("completion", ctypes.c_int32),
        ("result", ctypes.c_uint32 * 3),
    ]

    def __init__(self, cls, select, arg=(), arg_flags=0, key_arg=0):
        super().__init__(ctypes.sizeof(Record), cls, select, (ctypes.c_uint32 * 4)(*arg), arg_flags, key_arg)


PROGRESS = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint32)


class MiraError(Exception):
    """A status that is not DONE, with its document."""

    def __init__(self, status, document):
        self.status, self.document = status, document
        super().__init__(document.get("error", {}).get("message", f"status {status}"))


class Machine:
    """An open machine, for a with statement. Without options it is this PC.

    `library` is the path of miraclient.dll, or of libmiraclient.so.
    """

    def __init__(self, library, options=None):
        self._functions = ctypes.CDLL(library)
        self._functions.mira_free.argtypes = [ctypes.c_void_p]
        self._functions.mira_free.restype = None
        self._functions.mira_status_name.restype = ctypes.c_char_p
        self._handle = ctypes.c_uint32()
        text = json.dumps(options or {}).encode()
        self._take(self._functions.mira_open, text, len(text), ctypes.byref(self._handle))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        if self._handle.value:
            self._functions.mira_close(self._handle)
        self._handle.value = 0

    def cancel(self):
        """Ends the requests that are under way; from any thread."""
        self._functions.mira_cancel(self._handle)

    def request(self, command, secrets=None, progress=None, **arguments):
        """The document of a command. `secrets` are bytearrays by slot, which the caller overwrites.

        `progress(done, total)` gives False to cancel.
        """
        text = json.dumps({"command": command, "arguments": arguments}).encode()
        kept = {slot: (ctypes.c_char * len(value)).from_buffer(value) for slot, value in (secrets or {}).items()}
        given = (Secret * len(kept))()
        for place, (slot, value) in zip(given, kept.items()):
            place.slot, place.bytes, place.size = slot.encode(), ctypes.addressof(value), len(value)
        callback = PROGRESS()
        if progress:
            callback = PROGRESS(lambda _, done, total: 0 if progress(done, total) else 1)
        return self._take(
            self._functions.mira_request, self._handle, text, len(text), given, len(kept), callback, None
        )

    def call(self, record, data=None):
        """Makes a firmware call as it stands; `data`, a bytearray, is replaced by the answer's."""
        data = data if data is not None else bytearray()
        area = (ctypes.c_uint8 * len(data)).from_buffer(data)
        return self._take(
            self._functions.mira_call, self._handle, ctypes.byref(record), area, len(data), None
        )

    def _take(self, function, *arguments):
        document, size = ctypes.c_void_p(), ctypes.c_uint32()
        status = function(*arguments, ctypes.byref(document), ctypes.byref(size))
        text = ctypes.string_at(document, size.value) if document else b"{}"
        self._functions.mira_free(document)
        if status != DONE:
            raise MiraError(status, json.loads(text))
        return json.loads(text)
