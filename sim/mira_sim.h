#ifndef MIRA_SIM_H_
#define MIRA_SIM_H_

/*
 * The simulated machine below a host, controlled by the program that tests the host. One function,
 * which only the simulator's builds of miraintf.dll and miraclient.dll have; the product's hold
 * none of this.
 *
 *   const char* document = NULL;
 *   const char request[] = "{\"command\": \"fault.add\", \"operation\": \"11/1\", \"completion\":
 * -1}"; if (mira_sim_control(request, sizeof request - 1, &document, NULL) != MIRA_SIM_DONE) {
 *     puts(document);
 *   }
 *
 * A program that tests an unmodified host looks the function up in the DLL (GetProcAddress, dlsym)
 * under the name "mira_sim_control"; mira_sim_gtest.h does so for GoogleTest.
 *
 * Which machine: the environment variable MIRA_SIM, read when the host starts the library, names
 * one that comes along ("laptop"), or a file ("kiosk.json"); "real" is this PC. With MIRA_SIM_STATE
 * the machine is kept in that folder, which programs share; without, it lives with the process. The
 * request "machine.choose" takes precedence over both.
 *
 * docs/simulator-builds.md lists the requests; docs/json/control.schema.json describes the answers.
 */

#include <stdint.h>

#if defined(_WIN32)
#define MIRA_SIM_CALL __cdecl
#else
#define MIRA_SIM_CALL
#endif

/* MIRA_SIM_BUILDING: this is the module that has the function. */
#if defined(_WIN32) && defined(MIRA_SIM_BUILDING)
#define MIRA_SIM_API __declspec(dllexport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define MIRA_SIM_API __attribute__((visibility("default")))
#else
#define MIRA_SIM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What the function answers: the same numbers as mira_client.h's. */
enum {
  MIRA_SIM_DONE = 0,
  MIRA_SIM_UNEXPECTED = 1,
  MIRA_SIM_USAGE = 2,         /* no such request, or a wrong argument */
  MIRA_SIM_NOT_FOUND = 3,     /* no machine was chosen; no such machine; no such fault */
  MIRA_SIM_INVALID_VALUE = 6, /* a description, or a fault, that cannot be */
  MIRA_SIM_BUSY = 14          /* the host is at work with the machine */
};

/*
 * Does what the request of `size` bytes asks for, a JSON object in UTF-8 with the member "command".
 * The document, JSON in UTF-8 that ends with a zero byte which `document_size` does not count, is
 * the library's: it is valid until the same thread asks again. Each of the two pointers may be
 * null. With a failure the document has the member "error"; without memory it is null.
 *
 * May be called from any thread. While the host is in the middle of a call the answer is
 * MIRA_SIM_BUSY, but within a progress callback of miraclient's it is not; miraintf is asked on the
 * thread that uses it.
 */
MIRA_SIM_API int32_t MIRA_SIM_CALL mira_sim_control(const char* request, uint32_t size,
                                                    const char** document, uint32_t* document_size);

typedef int32_t(MIRA_SIM_CALL* mira_sim_control_function)(const char* request, uint32_t size,
                                                          const char** document,
                                                          uint32_t* document_size);

#ifdef __cplusplus
}
#endif

#endif /* MIRA_SIM_H_ */
