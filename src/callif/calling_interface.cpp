#include "callif/calling_interface.h"

#include <limits>
#include <stdexcept>
#include <string>

#include "bytes/reader.h"
#include "smbios/guarded_show.h"

namespace {

constexpr std::uint16_t kTokenTerminator = 0xFFFF;

// The dump shows every object of a chain again behind each object before it, so its length doubles
// with every object. Real chains have seven objects; from this many on each object is shown once.
constexpr int kMaxRepeatingChain = 8;

constexpr char kBanner[] =
    "------------------------------------ Calling Interface : Type 0xDA "
    "------------------------------------";

}  // namespace

CDAToken::CDAToken(std::uint16_t id, std::uint16_t location, std::uint16_t value)
    : m_wToken(id), m_wLocation(location), m_wValue(value) {}

void CDAToken::TokenInfo(std::uint16_t& id, std::uint16_t& location, std::uint16_t& value) const {
  id = m_wToken;
  location = m_wLocation;
  value = m_wValue;
}

void CDAToken::Display(std::ostream& out) const {
  out << "DA Token Information  - " << std::hex << "Token : " << m_wToken
      << "\tValue : " << m_wValue << "\tLocation : " << m_wLocation << std::dec << '\n';
}

CCallingInterface::CCallingInterface(unsigned char* raw, CComPtr<IWbemServices>& services)
    : CBIOSObject(raw) {
  m_wCmdIOAddress = BuildWord(this->raw(), m_nOffset);
  m_byCmdIOCode = this->raw()[m_nOffset++];
  m_dwSupportedCmds = BuildDWord();
  ConstructDATokens(this->raw() + m_nOffset);
  m_Method = mira::transport::BfnMethod(services);
}

CCallingInterface::CCallingInterface(const CCallingInterface& other) = default;

CCallingInterface& CCallingInterface::operator=(const CCallingInterface& other) {
  // The source may hang on the chain that the base lets go of.
  const mira::smbios::ChainLink chain = m_pNextObj;
  CBIOSObject::operator=(other);
  m_wCmdIOAddress = other.m_wCmdIOAddress;
  m_byCmdIOCode = other.m_byCmdIOCode;
  m_dwSupportedCmds = other.m_dwSupportedCmds;
  m_mapDATokens = other.m_mapDATokens;
  m_Method = other.m_Method;
  return *this;
}

CCallingInterface::~CCallingInterface() = default;

CCallingInterface::Status CCallingInterface::ConstructDATokens(unsigned char* p) {
  // Without a terminator the table ends with the formatted area.
  const unsigned char* const end = raw() + m_byLength;
  const std::size_t size = p < end ? static_cast<std::size_t>(end - p) : 0;
  mira::bytes::Reader in({p, size});
  for (;;) {
    const std::uint16_t id = in.U16();
    if (!in.Ok() || id == kTokenTerminator) return STATUS_SUCCESS;
    const std::uint16_t location = in.U16();
    const std::uint16_t value = in.U16();
    if (!in.Ok()) return STATUS_SUCCESS;
    if (!m_mapDATokens.emplace(id, CDAToken(id, location, value)).second) {
      return STATUS_DUPLICATE_TOKEN;
    }
  }
}

CCallingInterface* CCallingInterface::NextInterface() const {
  return dynamic_cast<CCallingInterface*>(getNextObj());
}

void CCallingInterface::GetAllDATokens(std::map<std::uint16_t, CDAToken>& out) {
  for (const CCallingInterface* object = this; object != nullptr;
       object = object->NextInterface()) {
    out.insert(object->m_mapDATokens.begin(), object->m_mapDATokens.end());
  }
}

const CDAToken* CCallingInterface::GetDAToken(std::uint16_t id) {
  for (const CCallingInterface* object = this; object != nullptr;
       object = object->NextInterface()) {
    const auto found = object->m_mapDATokens.find(id);
    if (found != object->m_mapDATokens.end()) return &found->second;
  }
  return nullptr;
}

bool CCallingInterface::IsCommandSupported(std::uint16_t cls) {
  // The bitmap is the published attribute of this handle: of chained objects with one handle the
  // last one's counts.
  const CCallingInterface* published = this;
  for (const CCallingInterface* next = NextInterface(); next != nullptr;
       next = next->NextInterface()) {
    if (next->getHandle() == getHandle()) published = next;
  }
  // The attribute is a signed decimal number, so class 31 cannot be announced.
  if (published->m_dwSupportedCmds > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
    throw std::out_of_range("stoi argument out of range");
  }
  return (published->m_dwSupportedCmds >> (cls % 32) & 1) != 0;
}

CCallingInterface::Status CCallingInterface::Execute(SMBiosCI& ci, unsigned int bufSize,
                                                     const CComBSTR& instanceKey) {
  return m_Method.Call(ci, bufSize, instanceKey) && ci.cbRES1 == 0 ? STATUS_SUCCESS
                                                                   : STATUS_FAILURE;
}

void CCallingInterface::ForgetLastCall(unsigned int bufSize) noexcept {
  m_Method.ForgetRecord(bufSize);
}

void CCallingInterface::AddAttributes(AttributeMap::mapped_type& list) const {
  list.emplace_back("CommandIOAddress", GetStrFromInt(m_wCmdIOAddress));
  list.emplace_back("CommandIOCode", GetStrFromInt(m_byCmdIOCode));
  list.emplace_back("SupportedCommands", GetStrFromInt(m_dwSupportedCmds));
}

void CCallingInterface::MarkBeyond(std::vector<bool>& beyond) const {
  constexpr unsigned kEnds[] = {6, 7, 11};
  for (const unsigned end : kEnds) beyond.push_back(m_byLength < end);
}

void CCallingInterface::DisplayFields(std::ostream& out) const {
  out << kBanner << '\n';
  DisplayHeader(out);
  // The stream stays hexadecimal from here until the first token's line ends.
  out << "Command I/O Address : " << m_wCmdIOAddress << '\n'
      << "Command I/O Code : " << static_cast<unsigned>(m_byCmdIOCode) << '\n'
      << "Supported Commands : " << std::hex << m_dwSupportedCmds << '\n';
}

void CCallingInterface::DisplayOwnTokens(std::ostream& out) const {
  for (const auto& [id, token] : m_mapDATokens) token.Display(out);
}

void CCallingInterface::DisplayDATokens(std::ostream& out) const {
  for (const CCallingInterface* object = this; object != nullptr;
       object = object->NextInterface()) {
    object->DisplayOwnTokens(out);
    if (const CBIOSObject* const next = object->getNextObj()) next->Display(out);
  }
}

void CCallingInterface::Display(std::ostream& out) const {
  int chain = 0;
  for (const CBIOSObject* object = this; object != nullptr && chain <= kMaxRepeatingChain;
       object = object->getNextObj()) {
    ++chain;
  }
  if (chain > kMaxRepeatingChain) {
    DisplayChain(out);
    return;
  }
  mira::smbios::GuardedShow(out, [&] {
    DisplayFields(out);
    DisplayDATokens(out);
    out << std::string(103, '-') << '\n';
  });
}

void CCallingInterface::DisplayOne(std::ostream& out) const {
  DisplayFields(out);
  DisplayOwnTokens(out);
  out << std::string(103, '-') << '\n';
}
