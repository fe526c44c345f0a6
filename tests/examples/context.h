#ifndef MIRA_TESTS_EXAMPLES_CONTEXT_H_
#define MIRA_TESTS_EXAMPLES_CONTEXT_H_

// What the examples at the top of the headers take for granted: a host and its values. The examples
// are compiled and not run, so nothing here is defined.

#include <cstdint>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "facade/mira_intf.h"
#include "pldm/progress.h"
#include "sim/machine.h"

namespace host {

// Lets an example return whatever it likes.
struct Anything {
  Anything() = default;
  template <typename T>
  Anything(const T&) {}  // NOLINT(google-explicit-constructor)
};

template <typename... T>
void Use(const T&... values);
HRESULT WINAPI RefuseToStart(LPVOID reserved, DWORD flags);
void Execute(SMBiosCI& record);
void Send(const std::string& text);
void ShowProgress(unsigned table, unsigned tables, std::uint32_t received, std::uint32_t total);

mira::pldm::ProgressAnswer Ask(void* window, unsigned table, unsigned tables,
                               std::uint32_t received, std::uint32_t total);

extern int window;
extern CSimpleTokenData data;
extern std::uint16_t handle;
extern std::uint32_t location;
extern std::uint32_t length;
extern std::uint32_t buffer_size;
extern std::string text;
extern std::string password;
extern std::vector<std::uint8_t> bytes;
extern std::vector<std::uint8_t> file_bytes;
extern std::vector<std::uint8_t> record_bytes;
extern std::vector<std::uint8_t> buffer;
extern CUEFIBootList list;
extern CUEFIBootList::Item item;
extern SMBiosCI record;
extern CComPtr<IWbemLocator> locator;
extern CComPtr<IWbemServices> services;
extern CComBSTR path;
extern CComBSTR instance_key;
extern mira::sim::Machine machine;
extern mira::sim::JournalEntry entry;

// As a host would shorten its names.
using namespace mira::sim;         // NOLINT(google-build-using-namespace)
using namespace mira::devicepath;  // NOLINT(google-build-using-namespace)
using mira::bytes::HexNumber;
using mira::bytes::HexText;
using mira::bytes::ParseHexText;
using mira::bytes::ParseNumber;
using mira::bytes::Reader;
using mira::bytes::SecureString;
using mira::bytes::Wipe;
using mira::bytes::Writer;
using mira::transport::BfnMethod;

}  // namespace host

#endif  // MIRA_TESTS_EXAMPLES_CONTEXT_H_
