/*
 * miraclient from C: lists the BIOS attributes, changes one, is refused another change, and makes a
 * firmware call of its own. What it expects is the simulated machine "locked": put the simulator's
 * DLL beside it, and let it run with MIRA_SIM=locked.
 *
 *   cc tour.c -lmiraclient
 */

#include <stdio.h>
#include <string.h>

#include "mira_client.h"

static int mistakes = 0;

static void expect(const char* what, int32_t status, int32_t wanted) {
  printf("%s: %s\n", what, mira_status_name(status));
  if (status != wanted) {
    printf("  expected was: %s\n", mira_status_name(wanted));
    ++mistakes;
  }
}

/* Sends a request and looks for a word in its document. */
static void request(mira_handle machine, const char* what, const char* json, const char* password,
                    int32_t wanted, const char* word) {
  char* document = NULL;
  mira_secret secret;
  int32_t status;
  secret.slot = "password";
  secret.bytes = password;
  secret.size = password != NULL ? (uint32_t)strlen(password) : 0;
  status = mira_request(machine, json, (uint32_t)strlen(json), &secret, password != NULL ? 1 : 0,
                        NULL, NULL, &document, NULL);
  expect(what, status, wanted);
  if (document == NULL || strstr(document, word) == NULL) {
    printf("  the document lacks: %s\n", word);
    ++mistakes;
  }
  mira_free(document);
}

static int32_t MIRA_CALL cancel_at_once(void* user, uint32_t done, uint32_t total) {
  (void)user;
  (void)done;
  (void)total;
  return 1;
}

int main(void) {
  static const char list[] = "{\"command\": \"attr.list\"}";
  static const char set[] = "{\"command\": \"attr.set\", \"name\": \"FanFloor\", \"value\": 30}";
  static const char too_much[] =
      "{\"command\": \"attr.set\", \"name\": \"FanFloor\", \"value\": 3000}";
  mira_handle machine = 0;
  mira_record record;
  expect("open", mira_open(NULL, 0, &machine, NULL, NULL), MIRA_DONE);
  expect("cancel",
         mira_request(machine, list, sizeof list - 1, NULL, 0, cancel_at_once, NULL, NULL, NULL),
         MIRA_CANCELLED);
  request(machine, "list the attributes", list, NULL, MIRA_DONE, "\"FanFloor\"");
  request(machine, "change one without the password", set, NULL, MIRA_PASSWORD, "password-needed");
  request(machine, "change one", set, "setup1", MIRA_DONE, "\"changed\": true");
  request(machine, "change it beyond its limits", too_much, "setup1", MIRA_INVALID_VALUE,
          "above the upper bound");

  memset(&record, 0, sizeof record);
  record.struct_size = sizeof record;
  record.cls = 0; /* read a setting by its location */
  record.select = 0;
  record.arg[0] = 0x78;
  expect("read a setting", mira_call(machine, &record, NULL, 0, NULL, NULL, NULL), MIRA_DONE);
  if (record.completion != 0 || record.result[0] != 2) {
    printf("  its value is another\n");
    ++mistakes;
  }
  expect("close", mira_close(machine), MIRA_DONE);
  expect("close again", mira_close(machine), MIRA_USAGE);
  return mistakes == 0 ? 0 : 1;
}
