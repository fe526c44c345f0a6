// A DLL with the C++ runtime inside finds its exception handlers itself, by a list that it
// registers when it is loaded. 32-bit mingw's start-up code registers it elsewhere, with
// libgcc_s_dw2-1.dll, where a host has that loaded: the first exception would end the process. So
// the list is registered here as well, with the runtime that throws.

#if defined(__MINGW32__) && defined(__i386__)

#include <windows.h>

#include <cstdint>
#include <cstring>

// Of the runtime; see libgcc's unwind-dw2-fde.h.
extern "C" void __register_frame_info(const void* begin, void* object);
extern "C" void* __deregister_frame_info(const void* begin);
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace mira::platform {
namespace {

// Whether a section begins with a "common information entry" of version 1, as .eh_frame does; its
// name is not in the headers, since it is too long for them.
bool HoldsFrames(const std::uint8_t* section, std::size_t size) {
  constexpr std::size_t kLength = 0;
  constexpr std::size_t kId = 4;
  constexpr std::size_t kVersion = 8;
  constexpr std::size_t kAugmentation = 9;
  constexpr std::uint32_t kLongest = 0x100;
  if (size <= kAugmentation) return false;
  std::uint32_t length = 0;
  std::uint32_t id = 0;
  std::memcpy(&length, section + kLength, sizeof(length));
  std::memcpy(&id, section + kId, sizeof(id));
  return length != 0 && length < kLongest && id == 0 && section[kVersion] == 1 &&
         section[kAugmentation] == 'z';
}

const void* FindFrames() {
  const auto* const base = reinterpret_cast<const std::uint8_t*>(&__ImageBase);
  const auto* const headers =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(base + __ImageBase.e_lfanew);
  const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
  for (unsigned i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
    const std::uint8_t* const begin = base + section->VirtualAddress;
    if (HoldsFrames(begin, section->Misc.VirtualSize)) return begin;
  }
  return nullptr;
}

class OwnFrames {
 public:
  OwnFrames() {
    if (GetModuleHandleA("libgcc_s_dw2-1.dll") == nullptr) return;
    begin_ = FindFrames();
    if (begin_ != nullptr) __register_frame_info(begin_, object_);
  }
  ~OwnFrames() {
    if (begin_ != nullptr) __deregister_frame_info(begin_);
  }
  OwnFrames(const OwnFrames&) = delete;
  OwnFrames& operator=(const OwnFrames&) = delete;

 private:
  const void* begin_ = nullptr;
  void* object_[16] = {};  // room for what the runtime notes of the list
};

[[maybe_unused]] OwnFrames own_frames;

}  // namespace
}  // namespace mira::platform

#endif
