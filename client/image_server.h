#ifndef MIRA_CLIENT_IMAGE_SERVER_H_
#define MIRA_CLIENT_IMAGE_SERVER_H_

// The name of the server that images are loaded from.

#include <string>

#include "client/session.h"

namespace mira::client {

inline constexpr char kImageServer[] = "image server";

std::string ReadImageServer(Session& session);
void WriteImageServer(Session& session, const std::string& text);

}  // namespace mira::client

#endif  // MIRA_CLIENT_IMAGE_SERVER_H_
