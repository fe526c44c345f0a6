#ifndef MIRA_CLIENT_STATE_ATTRIBUTE_WISH_H_
#define MIRA_CLIENT_STATE_ATTRIBUTE_WISH_H_

// What a desired state wants of one attribute.

#include <string>

#include "client/attribute_plan.h"
#include "client/secrets.h"
#include "client/state/state_document.h"

namespace mira::client {

// Throws Error for a value of another type than the attribute's: where a text is wanted, what YAML
// may have made of one is refused. No error quotes a password.
void CheckStateValue(const AttributeEntry& entry, const Json& value);

// The step that brings the attribute to the item's value. What is read-only now is planned, too,
// and has its problem. Throws Error.
Step PlanStateAttribute(const AttributeWriterPtr& writer, std::uint16_t handle, const Json& body);

// The same for a password attribute, with the secret of that name.
Step PlanStateSecret(const AttributeWriterPtr& writer, std::uint16_t handle,
                     const std::string& slot, SecretProvider& secrets);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_ATTRIBUTE_WISH_H_
