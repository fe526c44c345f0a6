#include "smbios/bios_object.h"

#include <charconv>
#include <cstring>
#include <sstream>

#include "bytes/reader.h"
#include "smbios/structure_copy.h"

namespace {

// What a read may touch from `data` on: callers are inside the copy, whose zero tail covers every
// layout.
std::uint64_t ReadNumber(const unsigned char* data, unsigned int& offset, unsigned int width) {
  mira::bytes::Reader in({data + offset, width});
  offset += width;
  return in.Number(width);
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
  std::shared_ptr<CBIOSObject> next = std::move(m_pNextObj);
  while (next && next.use_count() == 1)
    next = std::shared_ptr<CBIOSObject>(std::move(next->m_pNextObj));
}

void CBIOSObject::Display(std::ostream& os) const { DisplayHeader(os); }

void CBIOSObject::GetAttributes(AttributeMap& attrs) {
  for (const CBIOSObject* object = this; object != nullptr; object = object->getNextObj()) {
    attrs[object->m_wHandle] = object->OwnAttributes();
  }
}

void CBIOSObject::Append(CBIOSObject* obj) {
  CBIOSObject* tail = this;
  while (tail->m_pNextObj) tail = tail->m_pNextObj.get();
  tail->m_pNextObj = std::shared_ptr<CBIOSObject>(obj, Deleter{});
}

AttributeMap::mapped_type CBIOSObject::OwnAttributes() const {
  AttributeMap::mapped_type list;
  AddAttributes(list);
  return list;
}

void CBIOSObject::AddAttributes(AttributeMap::mapped_type&) const {}

void CBIOSObject::DisplayOne(std::ostream& os) const { DisplayHeader(os); }

void CBIOSObject::DisplayChain(std::ostream& os) const {
  for (const CBIOSObject* object = this; object != nullptr; object = object->getNextObj()) {
    object->DisplayOne(os);
  }
}

void CBIOSObject::AppendHeader(std::string& text) const {
  const std::pair<const char*, unsigned> lines[] = {
      {"Type : ", m_byType}, {"Length : ", m_byLength}, {"Handle : ", m_wHandle}};
  for (const auto& [label, value] : lines) {
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value, 16).ptr;
    text.append(label).append(digits, end).append("\n");
  }
}

void CBIOSObject::DisplayHeader(std::ostream& os) const {
  std::string text;
  AppendHeader(text);
  os << text << std::dec;
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
