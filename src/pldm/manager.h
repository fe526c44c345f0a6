#ifndef MIRA_PLDM_MANAGER_H_
#define MIRA_PLDM_MANAGER_H_

namespace mira::pldm {

class Manager {};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_MANAGER_H_
