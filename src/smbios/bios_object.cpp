#include "smbios/bios_object.h"

#include <cstring>
#include <new>
#include <sstream>

#include "bytes/reader.h"
#include "smbios/guarded_show.h"
#include "smbios/structure_copy.h"
#include "smbios/text_out.h"

namespace {

// What a read may touch from `data` on: callers are inside the copy, whose zero tail covers every
// layout.
std::uint64_t ReadNumber(const unsigned char* data, unsigned int& offset, unsigned int width) {
  const mira::bytes::ByteSpan field(data + offset, width);
  offset += width;
  return mira::bytes::LittleEndian(field);
}

}  // namespace

CBIOSObject::CBIOSObject(unsigned char* raw)
    : m_pRawData(raw),
      m_byType(raw[0]),
      m_byLength(raw[1]),
      m_wHandle(static_cast<unsigned short>(raw[2] + raw[3] * 256)) {}

CBIOSObject::CBIOSObject(const CBIOSObject& other) = default;
CBIOSObject& CBIOSObject::operator=(const CBIOSObject& other) = default;

// A chain may hold tens of thousands of objects: it is taken apart link by link, never by
// recursion. A link that a copy still shares ends the walk; its last owner goes on from there.
CBIOSObject::~CBIOSObject() {
  CBIOSObject* next = m_pNextObj.Detach();
  while (next != nullptr) {
    CBIOSObject* const behind = next->m_pNextObj.Detach();
    delete next;
    next = behind;
  }
}

void CBIOSObject::Display(std::ostream& os) const {
  mira::smbios::GuardedShow(os, [&] { DisplayHeader(os); });
}

void CBIOSObject::DisplayOwn(std::ostream& os) const {
  mira::smbios::GuardedShow(os, [&] { DisplayOne(os); });
}

void CBIOSObject::GetAttributes(AttributeMap& attrs) {
  for (const CBIOSObject* object = this; object != nullptr; object = object->getNextObj()) {
    try {
      attrs[object->m_wHandle] = object->OwnAttributes();
    } catch (const std::bad_alloc&) {
      for (; object != nullptr; object = object->getNextObj()) attrs.erase(object->m_wHandle);
      return;
    }
  }
}

void CBIOSObject::Append(CBIOSObject* obj) {
  CBIOSObject* tail = this;
  while (CBIOSObject* const next = tail->getNextObj()) tail = next;
  tail->m_pNextObj = mira::smbios::ChainLink(obj);
}

AttributeMap::mapped_type CBIOSObject::OwnAttributes() const {
  AttributeMap::mapped_type list;
  AddAttributes(list);
  return list;
}

std::vector<bool> CBIOSObject::AttributesBeyond() const {
  std::vector<bool> beyond;
  MarkBeyond(beyond);
  beyond.resize(OwnAttributes().size());
  return beyond;
}

void CBIOSObject::AddAttributes(AttributeMap::mapped_type&) const {}

void CBIOSObject::MarkBeyond(std::vector<bool>&) const {}

void CBIOSObject::DisplayOne(std::ostream& os) const { DisplayHeader(os); }

void CBIOSObject::DisplayChain(std::ostream& os) const {
  mira::smbios::GuardedShow(os, [&] {
    for (const CBIOSObject* object = this; object != nullptr; object = object->getNextObj()) {
      object->DisplayOne(os);
    }
  });
}

void CBIOSObject::WriteHeader(mira::smbios::TextOut& out) const {
  using mira::smbios::Hex;
  out << "Type : " << Hex(m_byType) << "\nLength : " << Hex(m_byLength)
      << "\nHandle : " << Hex(m_wHandle) << '\n';
}

void CBIOSObject::DisplayHeader(std::ostream& os) const {
  mira::smbios::TextOut out(os);
  WriteHeader(out);
  out.Flush();
  os << std::dec;
}

unsigned short CBIOSObject::BuildWord(unsigned char* data, unsigned int& offset) {
  return static_cast<unsigned short>(ReadNumber(data, offset, 2));
}

unsigned int CBIOSObject::BuildDWord() {
  return static_cast<unsigned int>(ReadNumber(raw(), m_nOffset, 4));
}

std::uint64_t CBIOSObject::BuildQWord() { return ReadNumber(raw(), m_nOffset, 8); }

std::string CBIOSObject::BuildString(unsigned char* strings, unsigned int number) {
  std::string result;
  const char* next = reinterpret_cast<const char*>(strings);
  for (; number > 0; --number) {
    const std::size_t length = std::strlen(next);
    if (number == 1) result.assign(next, length);
    next += length + 1;
  }
  return result;
}

std::string CBIOSObject::GetStrFromInt(std::uint64_t value) { return std::to_string(value); }

std::string CBIOSObject::GetStrFromDouble(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}
