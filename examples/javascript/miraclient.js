// miraclient for Node.js: the functions of mira_client.h through the package koffi, and a class that
// owns a machine.

'use strict';

const koffi = require('koffi');

const status = {
  DONE: 0, UNEXPECTED: 1, USAGE: 2, NOT_FOUND: 3, NOT_SUPPORTED: 4, PASSWORD: 5, INVALID_VALUE: 6,
  ADMINISTRATOR_NEEDED: 7, TRANSPORT_FAILED: 9, APPLIED_IN_PART: 10, REFUSED: 11, DIFFERS: 12,
  CANCELLED: 13, BUSY: 14,
};

koffi.struct('mira_secret', {slot: 'const char *', bytes: 'const void *', size: 'uint32_t'});
koffi.struct('mira_record', {
  struct_size: 'uint32_t', cls: 'uint16_t', select: 'uint16_t',
  arg: koffi.array('uint32_t', 4, 'Array'), arg_flags: 'uint32_t', key_arg: 'uint32_t',
  completion: 'int32_t', result: koffi.array('uint32_t', 3, 'Array'),
});
const progressType = koffi.proto('int32_t __cdecl mira_progress(void *user, uint32_t done, uint32_t total)');

// A status that is not DONE, with its document.
class MiraError extends Error {
  constructor(code, document) {
    super(document.error ? document.error.message : `status ${code}`);
    this.status = code;
    this.document = document;
  }
}

class Machine {
  // `library` is the path of miraclient.dll, or of libmiraclient.so. Without options it is this PC.
  constructor(library, options = {}) {
    const lib = koffi.load(library);
    const document = '_Out_ void **doc, _Out_ uint32_t *doc_size';
    this.functions = {
      open: lib.func(`int32_t __cdecl mira_open(const char *options, uint32_t size, _Out_ uint32_t *machine, ${document})`),
      close: lib.func('int32_t __cdecl mira_close(uint32_t machine)'),
      request: lib.func('int32_t __cdecl mira_request(uint32_t machine, const char *json, uint32_t size, ' +
                        `const mira_secret *secrets, uint32_t count, mira_progress *progress, void *user, ${document})`),
      call: lib.func('int32_t __cdecl mira_call(uint32_t machine, _Inout_ mira_record *record, ' +
                     `_Inout_ uint8_t *data, uint32_t size, const mira_secret *key, ${document})`),
      cancel: lib.func('int32_t __cdecl mira_cancel(uint32_t machine)'),
      free: lib.func('void __cdecl mira_free(void *document)'),
    };
    const text = JSON.stringify(options);
    const handle = [0];
    this.take((...doc) => this.functions.open(text, Buffer.byteLength(text), handle, ...doc));
    this.handle = handle[0];
  }

  close() {
    if (this.handle) this.functions.close(this.handle);
    this.handle = 0;
  }

  // The document of a command. `secrets` are Buffers by slot, which the caller overwrites;
  // `progress(done, total)` gives false to cancel.
  request(command, args = {}, {secrets = {}, progress = null} = {}) {
    const text = JSON.stringify({command, arguments: args});
    const given = Object.entries(secrets).map(
        ([slot, bytes]) => ({slot, bytes, size: bytes.length}));
    const callback = progress === null ? null : (user, done, total) => progress(done, total) ? 0 : 1;
    return this.take((...doc) => this.functions.request(
        this.handle, text, Buffer.byteLength(text), given, given.length, callback, null, ...doc));
  }

  // Makes a firmware call as it stands: {cls, select, arg, …}. The record gets its results, `data`,
  // a Buffer, the answer's bytes.
  call(record, data = null) {
    const words = [...(record.arg || []), 0, 0, 0, 0].slice(0, 4);
    const whole = {arg_flags: 0, key_arg: 0, completion: 0, result: [0, 0, 0], ...record, arg: words,
                   struct_size: koffi.sizeof('mira_record')};
    try {
      return this.take((...doc) => this.functions.call(
          this.handle, whole, data, data === null ? 0 : data.length, null, ...doc));
    } finally {
      Object.assign(record, whole);
    }
  }

  cancel() {
    this.functions.cancel(this.handle);
  }

  take(call) {
    const document = [null];
    const size = [0];
    const code = call(document, size);
    const text = document[0] === null ? '{}' : koffi.decode(document[0], 'char', size[0]);
    this.functions.free(document[0]);
    const value = JSON.parse(text);
    if (code !== status.DONE) throw new MiraError(code, value);
    return value;
  }
}

module.exports = {Machine, MiraError, status, progressType};
