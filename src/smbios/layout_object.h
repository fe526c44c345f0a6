#ifndef MIRA_SMBIOS_LAYOUT_OBJECT_H_
#define MIRA_SMBIOS_LAYOUT_OBJECT_H_

// What the classes of structure types have in common: each is a layout, the list of the type's
// fields (smbios/layout.h, inside the library), from which everything else follows. Hosts use the
// classes through CBIOSObject:
//
//   CBIOSObject* object = mira.GetBIOSObject(17);
//   if (object != nullptr) object->Display(std::cout);

#include <ostream>
#include <vector>

#include "platform/api.h"
#include "smbios/bios_object.h"

namespace mira::smbios {

class Layout;
class StructureView;

// An object whose class is a layout.
class MIRA_API CLayoutObject : public CBIOSObject {
 public:
  CLayoutObject(const CLayoutObject&) = default;
  // The source may hang on the chain that the base lets go of.
  CLayoutObject& operator=(const CLayoutObject& other);

  void Display(std::ostream& os) const override;

 protected:
  CLayoutObject(unsigned char* raw, const Layout& layout);
  ~CLayoutObject() override;
  void AddAttributes(AttributeMap::mapped_type& list) const override;
  void DisplayOne(std::ostream& os) const override;
  void MarkBeyond(std::vector<bool>& beyond) const override;
  StructureView View() const;

 private:
  const Layout* m_pLayout;
};

// The class itself: its name, and its layout as a static member.
template <typename Class>
class CStructure : public CLayoutObject {
 public:
  explicit CStructure(unsigned char* raw) : CLayoutObject(raw, Class::kLayout) {}
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_LAYOUT_OBJECT_H_
