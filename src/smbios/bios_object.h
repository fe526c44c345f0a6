#ifndef MIRA_SMBIOS_BIOS_OBJECT_H_
#define MIRA_SMBIOS_BIOS_OBJECT_H_

// One structure of the SMBIOS table (DSP0134), and the base of the class that each structure type
// has. An object offers its fields as named text attributes and as a formatted dump, and links to
// the next structure of its type.
//
//   AttributeMap attributes;                       // handle -> (key, value) pairs in order
//   if (CBIOSObject* bios = mira.GetBIOSObject(0)) {
//     bios->GetAttributes(attributes);
//     bios->Display(std::cout);
//   }

#include <atomic>
#include <cstdint>
#include <list>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "platform/api.h"
#include "smbios/shared_ownership.h"

namespace mira::smbios {
class StructureBlocks;
class TextOut;
}  // namespace mira::smbios

// Per structure handle the structure's attributes, as (key, value) pairs in the order in which the
// class gives them.
using AttributeMap = std::map<unsigned short, std::list<std::pair<std::string, std::string>>>;

class MIRA_API CBIOSObject {
 public:
  // Takes ownership of `raw`, which must come from mira::smbios::CopyStructure().
  explicit CBIOSObject(unsigned char* raw);
  // Copies share the structure's bytes and the objects that follow in the chain. An object may be
  // assigned from one of its own chain.
  CBIOSObject(const CBIOSObject& other);
  CBIOSObject& operator=(const CBIOSObject& other);

  // Writes the dump of this object and, for types with a class of their own, of the objects chained
  // behind it, piece by piece. Throws nothing: when memory runs out, or the stream fails, the
  // stream's badbit tells.
  virtual void Display(std::ostream& os) const;
  // Stores this object's attributes under its handle, replacing what stands there, and likewise
  // those of the objects chained behind it. Throws nothing: when memory runs out, the map holds no
  // entry of the structure at which it did, nor of those behind it.
  virtual void GetAttributes(AttributeMap& attrs);
  // Links `obj` behind the last object of the chain, which then owns it.
  virtual void Append(CBIOSObject* obj);

  unsigned char getType() const { return m_byType; }
  unsigned short getHandle() const { return m_wHandle; }
  // The next structure of the same type in table order, or null. Owned by this object.
  CBIOSObject* getNextObj() const { return m_pNextObj.get(); }

  // The same for this structure alone, whatever is chained behind it.
  void DisplayOwn(std::ostream& os) const;
  AttributeMap::mapped_type OwnAttributes() const;

  // For each of OwnAttributes(), in their order: whether its field lies, wholly or in part, beyond
  // the structure's length, so that the firmware has not given this value.
  std::vector<bool> AttributesBeyond() const;

  // Deletes an object, and with it the chain behind it. For owners: objects have no public
  // destructor.
  struct Deleter {
    void operator()(CBIOSObject* object) const noexcept { delete object; }
  };

 protected:
  virtual ~CBIOSObject();

  // Little-endian readers. The last two, and single bytes read as m_pRawData[m_nOffset++], move the
  // parse cursor.
  static unsigned short BuildWord(unsigned char* data, unsigned int& offset);
  unsigned int BuildDWord();
  std::uint64_t BuildQWord();
  // String `number` (from 1) of the string set at `strings`; empty for 0 and for numbers beyond the
  // set.
  static std::string BuildString(unsigned char* strings, unsigned int number);
  // The value in decimal.
  static std::string GetStrFromInt(std::uint64_t value);
  // The value with six significant digits, in the shorter of fixed and scientific notation.
  static std::string GetStrFromDouble(double value);

  // The three lines "Type", "Length" and "Handle" that every dump holds. The stream is decimal
  // afterwards.
  void DisplayHeader(std::ostream& os) const;
  void WriteHeader(mira::smbios::TextOut& out) const;
  // What this structure alone adds to an attribute list, and what it alone shows. The frames above
  // walk the chain.
  virtual void AddAttributes(AttributeMap::mapped_type& list) const;
  virtual void DisplayOne(std::ostream& os) const;
  // Shows this object and every object chained behind it.
  void DisplayChain(std::ostream& os) const;
  // Gives the flags of AttributesBeyond(), as far as they are not all false.
  virtual void MarkBeyond(std::vector<bool>& beyond) const;

  unsigned char* raw() const { return m_pRawData.get(); }
  unsigned char* strings() const { return m_pRawData.get() + m_byLength; }

  unsigned int m_nOffset = 4;            // parse cursor: index of the next unread byte
  mira::smbios::SharedBytes m_pRawData;  // formatted area and string set, shared by copies
  unsigned char m_byType = 0;
  unsigned char m_byLength = 0;  // of the formatted area, in bytes
  unsigned short m_wHandle = 0;
  mira::smbios::ChainLink m_pNextObj;  // shared by copies; null at the chain's end

 private:
  friend class mira::smbios::ChainLink;
  friend class mira::smbios::StructureBlocks;

  // How many links lead to this very object: copied with none of its values.
  struct Links {
    Links() = default;
    Links(const Links&) {}
    Links& operator=(const Links&) { return *this; }
    std::atomic<unsigned> count = 0;
  };
  Links m_nLinks;
};

#endif  // MIRA_SMBIOS_BIOS_OBJECT_H_
