#ifndef MIRA_PLDM_MANAGER_H_
#define MIRA_PLDM_MANAGER_H_

// The attribute store of a facade: the tables read at start-up, and the reads and writes of single
// attributes. What each operation does and answers stands at the facade's operation of that name.
//
//   Manager manager(calling, buffer_size, instance_key, false, false);
//   manager.Load();
//   if (manager.IsSupported()) manager.GetAttributeValue(attribute);

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "callif/dispatch.h"
#include "callif/password.h"
#include "pldm/attribute.h"

namespace mira::pldm {

class Manager {
 public:
  bool IsSupported() const { return false; }
};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_MANAGER_H_
