#ifndef MIRA_CLIENT_INVENTORY_JSON_H_
#define MIRA_CLIENT_INVENTORY_JSON_H_

#include "client/inventory.h"
#include "client/json.h"

namespace mira::client {

// Absent fields are left out, empty lists are there; units stand in the names: "sizeMiB",
// "speedMTs". A text that is not ASCII is an object of the text and its bytes.
Json ToJson(const Inventory& inventory);

}  // namespace mira::client

#endif  // MIRA_CLIENT_INVENTORY_JSON_H_
