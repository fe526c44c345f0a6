#ifndef MIRA_CLIENT_H_
#define MIRA_CLIENT_H_

/*
 * miraclient: this PC's firmware for hosts in any language. A request and its answer are JSON
 * documents in UTF-8; the functions are plain C (C99, __cdecl).
 *
 *   mira_handle machine;
 *   char* document = NULL;
 *   if (mira_open(NULL, 0, &machine, NULL, NULL) == MIRA_DONE) {
 *     const char request[] = "{\"command\": \"tag.show\"}";
 *     int32_t status = mira_request(machine, request, sizeof request - 1, NULL, 0, NULL, NULL,
 *                                   &document, NULL);
 *     puts(document != NULL ? document : mira_status_name(status));
 *     mira_free(document);
 *     mira_close(machine);
 *   }
 *
 * Documents. Where a function has the parameters `doc` and `doc_size`, the caller gets a document
 * of its own: UTF-8, ended by a zero byte that `doc_size` does not count; mira_free() releases it.
 * Each of the two may be null. A document comes with a failure, too: it has the member "error".
 * When memory runs out, the status is MIRA_UNEXPECTED and the document null.
 *
 * Threads. Any thread may call at any time, whatever it did or did not do about COM: a thread of
 * the library makes all firmware calls. Requests are served one after the other; a caller waits,
 * without handling window messages, so a program with windows calls from another thread. From
 * within a progress callback only mira_cancel(), mira_free(), mira_abi(), mira_version() and
 * mira_status_name() may be called; the others give MIRA_BUSY. No function may be called from
 * DllMain.
 *
 * Errors. No exception leaves a function, and none of the standard streams is touched. Memory that
 * a caller lends (options, requests, secrets, data) is read during the call alone. Null pointers,
 * malformed texts, wrong sizes and handles that are not open give MIRA_USAGE.
 */

#include <stdint.h>

#if defined(_WIN32)
#define MIRA_CALL __cdecl
#else
#define MIRA_CALL
#endif

/* MIRA_CLIENT_STATIC: the functions are in the host's own program, not in a DLL. */
#if defined(_WIN32) && !defined(MIRA_CLIENT_STATIC)
#define MIRA_CLIENT_API __declspec(dllimport)
#elif defined(__GNUC__)
#define MIRA_CLIENT_API __attribute__((visibility("default")))
#else
#define MIRA_CLIENT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this header's functions and records. */
#define MIRA_ABI 1u

/* What a function answers. */
enum {
  MIRA_DONE = 0,                 /* done, or already so */
  MIRA_UNEXPECTED = 1,           /* a failure that has no number of its own; no memory */
  MIRA_USAGE = 2,                /* a mistake of the caller's */
  MIRA_NOT_FOUND = 3,            /* what the request names is not there */
  MIRA_NOT_SUPPORTED = 4,        /* by this machine or this library */
  MIRA_PASSWORD = 5,             /* a password is needed or wrong */
  MIRA_INVALID_VALUE = 6,        /* a value that the machine cannot take */
  MIRA_ADMINISTRATOR_NEEDED = 7, /* the host does not run with administrator rights */
  MIRA_TRANSPORT_FAILED = 9,     /* the call did not reach the firmware, or brought no answer */
  MIRA_APPLIED_IN_PART = 10,     /* some of several changes were made */
  MIRA_REFUSED = 11,             /* by the firmware */
  MIRA_DIFFERS = 12,             /* a check that was asked for found a difference */
  MIRA_CANCELLED = 13,           /* by the host */
  MIRA_BUSY = 14                 /* a callback is under way, or another machine is open */
};

/* An open machine; 0: none. A number is given once in a process and never again. */
typedef uint32_t mira_handle;

/*
 * A password that a request needs. It is copied, used for that request alone and overwritten. Its
 * slot says what it is for:
 *   "password"  the one that allows the operation: a BIOS password, or a drive's own
 *   "setup"     the setup password beside a drive's
 *   "new"       the one to be set
 *   "value"     the new value of an attribute that is a password
 *   "secrets"   of "apply", several: a JSON object of names and texts
 * and, for mira_call() alone, "class10": as "password", the one of command class 10.
 */
typedef struct {
  const char* slot;  /* ended by a zero byte */
  const void* bytes; /* `size` of them, none of them zero; may be null where there are none */
  uint32_t size;     /* at most 1024; of "secrets" 65536 */
} mira_secret;

/* One call of the firmware's calling interface as it stands. */
typedef struct {
  uint32_t struct_size; /* sizeof(mira_record), set by the caller */
  uint16_t cls;         /* command class */
  uint16_t select;      /* command within the class */
  uint32_t arg[4];      /* argument words */
  uint32_t arg_flags;   /* byte n is 1 when arg[n] is an offset into the record; else 0 */
  uint32_t key_arg;     /* 1 to 4: the argument word that receives the security key; 0: none */
  int32_t completion;   /* out: the firmware's completion code, 0 for success; -3: no answer */
  uint32_t result[3];   /* out: the result words behind it */
} mira_record;

/*
 * Called between firmware calls, on the thread that made the request: `done` of `total` parts are
 * finished (0 of 0 where that is not known). 0 goes on; anything else cancels the request. It must
 * return: no exception, no longjmp.
 */
typedef int32_t(MIRA_CALL* mira_progress)(void* user, uint32_t done, uint32_t total);

/* The version of the library's functions: MIRA_ABI of the header that it was built with. */
MIRA_CLIENT_API uint32_t MIRA_CALL mira_abi(void);

/* The library's release, "1.2.3". Static text. */
MIRA_CLIENT_API const char* MIRA_CALL mira_version(void);

/* "done", "usage", "not-found", …; "unknown" for a number that is no status. Static text. */
MIRA_CLIENT_API const char* MIRA_CALL mira_status_name(int32_t status);

/*
 * Opens a machine. `options` is a JSON object of `size` bytes; null with size 0, or {}, stands for
 * this PC. No firmware call is made yet. The library's state is the process's, so a process has one
 * machine at a time: whoever opens it again, with equal options, gets another handle of the same
 * one; another machine gives MIRA_BUSY. A simulated machine, {"simulated": "laptop"}, is opened by
 * the simulator's build of the library alone; the product's gives MIRA_NOT_SUPPORTED.
 * `machine` is 0 after a failure.
 */
MIRA_CLIENT_API int32_t MIRA_CALL mira_open(const char* options, uint32_t size,
                                            mira_handle* machine, char** doc, uint32_t* doc_size);

/*
 * Closes a handle: cancels its requests and waits until they have ended. With the last one the
 * machine is closed, the library's thread ends, and what the process knew of the machine is
 * forgotten. Close every handle before the process ends or the library is unloaded.
 */
MIRA_CLIENT_API int32_t MIRA_CALL mira_close(mira_handle machine);

/*
 * Runs a command: {"command": "boot.order", "list": 1, "order": "0001,0000"}. Its arguments stand
 * beside its name; "whatIf": true makes all checks and writes nothing. A request is the consent to
 * what it changes: nobody is asked. Secrets are never part of the text, which is refused then.
 * `secrets` are `count` passwords; `progress` may be null, `user` is handed on to it.
 */
MIRA_CLIENT_API int32_t MIRA_CALL mira_request(mira_handle machine, const char* json, uint32_t size,
                                               const mira_secret* secrets, uint32_t count,
                                               mira_progress progress, void* user, char** doc,
                                               uint32_t* doc_size);

/*
 * Makes one firmware call, for what has no command of its own; nothing of it is checked. `data` are
 * the `size` bytes that lie behind the record's fixed part, from offset 44 on: sent, and replaced
 * by the answer's. `key` is the password that is exchanged for the security key of `key_arg`; null:
 * none. MIRA_REFUSED when the completion code is not 0; the results and the data are the firmware's
 * then, too. A `struct_size` below this header's is a mistake of the caller's; one above it, of a
 * newer header, is not supported.
 */
MIRA_CLIENT_API int32_t MIRA_CALL mira_call(mira_handle machine, mira_record* record, uint8_t* data,
                                            uint32_t size, const mira_secret* key, char** doc,
                                            uint32_t* doc_size);

/*
 * Cancels the handle's requests that are waiting or under way; they end with MIRA_CANCELLED before
 * their next firmware call, or between two writes. Does not wait, and has no effect on later ones.
 */
MIRA_CLIENT_API int32_t MIRA_CALL mira_cancel(mira_handle machine);

/* Releases a document. Null is allowed. */
MIRA_CLIENT_API void MIRA_CALL mira_free(void* document);

#ifdef __cplusplus
}
#endif

#endif /* MIRA_CLIENT_H_ */
