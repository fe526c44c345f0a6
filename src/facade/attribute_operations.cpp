// The attributes of CMiraIntf.

#include "facade/attribute_status.h"
#include "facade/guard.h"
#include "pldm/manager.h"

using mira::pldm::AttributeResult;
using mira::pldm::Manager;
using mira::transport::OperationScope;

template <typename Operation>
Status CMiraIntf::WithPLDM(const char* what, Operation operation) {
  const OperationScope scope(what);
  if (!IsPLDMSupported()) return mira::StatusOf({AttributeResult::kNotSupported});
  return Guard(what, STATUS_FAILURE, [&] { return mira::StatusOf(operation(*m_pPLDM)); });
}

bool CMiraIntf::IsPLDMSupported() { return m_pPLDM && m_pPLDM->IsSupported(); }

void CMiraIntf::GetAttributeHandlesAndTypes(
    std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>>& out) {
  WithPLDM("GetAttributeHandlesAndTypes", [&](const Manager& store) {
    store.GetAttributeHandlesAndTypes(out);
    return AttributeResult{};
  });
}

void CMiraIntf::GetAttributeNamesAndTypes(
    std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>>& out) {
  WithPLDM("GetAttributeNamesAndTypes", [&](const Manager& store) {
    store.GetAttributeNamesAndTypes(out);
    return AttributeResult{};
  });
}

Status CMiraIntf::GetAttributeName(std::uint16_t handle, std::string& name) {
  return WithPLDM("GetAttributeName",
                  [&](const Manager& store) { return store.GetAttributeName(handle, name); });
}

PLDM::ATTRIBUTE_TYPE CMiraIntf::GetAttributeType(std::uint16_t handle) {
  return m_pPLDM ? m_pPLDM->GetAttributeType(handle) : PLDM::BIOSUnknownType;
}

Status CMiraIntf::GetAttributeValue(PLDM::Attribute& attr) {
  return WithPLDM("GetAttributeValue",
                  [&](Manager& store) { return store.GetAttributeValue(attr); });
}

Status CMiraIntf::GetAttributeValueAtBoot(PLDM::Attribute& attr) {
  return WithPLDM("GetAttributeValueAtBoot",
                  [&](Manager& store) { return store.GetAttributeValueAtBoot(attr); });
}

Status CMiraIntf::GetAttributeValueAtBoot(std::uint16_t handle, std::string& value) {
  return WithPLDM("GetAttributeValueAtBoot", [&](const Manager& store) {
    return store.GetAttributeValueAtBoot(handle, value);
  });
}

Status CMiraIntf::SetAttributeValue(PLDM::Attribute& attr, const std::string& password,
                                    PwdInfo::PWDTYPE pwdType, unsigned int securityKey) {
  return WithPLDM("SetAttributeValue", [&](Manager& store) {
    return store.SetAttributeValue(attr, password, pwdType == PwdInfo::PWD_CLASS10, securityKey);
  });
}

Status CMiraIntf::GetAttributeDefault(std::uint16_t handle, std::string& value) {
  return WithPLDM("GetAttributeDefault",
                  [&](const Manager& store) { return store.GetAttributeDefault(handle, value); });
}

Status CMiraIntf::GetPossibleValues(std::uint16_t handle, std::list<std::string>& names) {
  return WithPLDM("GetPossibleValues",
                  [&](const Manager& store) { return store.GetPossibleValues(handle, names); });
}
