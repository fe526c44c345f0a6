#ifndef MIRA_TESTS_SUPPORT_FREED_MEMORY_H_
#define MIRA_TESTS_SUPPORT_FREED_MEMORY_H_

// Looks for a secret in every block of memory that is given back while the watch lasts.
//
//   const std::string secret = "Vault-Passphrase";
//   FreedMemoryWatch watch(secret);
//   mira.ValidatePwd(secret, PwdInfo::PWD_CLASS9);
//   EXPECT_EQ(watch.Finds(), 0);

#include <cstddef>
#include <string>

namespace mira::test {

// One at a time, on one thread. What the test itself gives back counts, too.
class FreedMemoryWatch {
 public:
  // With a size, only blocks of that size are looked at: those of one type.
  explicit FreedMemoryWatch(const std::string& secret, std::size_t size = 0);
  ~FreedMemoryWatch();
  FreedMemoryWatch(const FreedMemoryWatch&) = delete;
  FreedMemoryWatch& operator=(const FreedMemoryWatch&) = delete;

  // Only the address sanitizer's allocator tells what is given back.
  static bool IsAvailable();

  // Blocks that held the secret.
  int Finds() const;
  // All blocks.
  int Blocks() const;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_FREED_MEMORY_H_
