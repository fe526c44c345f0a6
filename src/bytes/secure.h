#ifndef MIRA_BYTES_SECURE_H_
#define MIRA_BYTES_SECURE_H_

// Memory that held a secret is overwritten before it is released.
//
//   SecureString password(text);         // wiped when it ends
//   Wipe(buffer.data(), buffer.size());  // never optimised away

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace mira::bytes {

// Overwrites `size` bytes with zeros. The compiler may not leave it out, since it cannot know which
// function the pointer holds when it is read.
inline void Wipe(void* memory, std::size_t size) noexcept {
  static void* (*const volatile fill)(void*, int, std::size_t) = std::memset;
  if (size > 0) fill(memory, 0, size);
}

// Overwrites a whole string, its unused capacity included, and empties it.
inline void Wipe(std::string& text) noexcept {
  text.resize(text.capacity());
  Wipe(text.data(), text.size());
  text.clear();
}

// Assigns without giving the old text's memory back unwiped.
inline void Replace(std::string& text, const std::string& other) {
  if (&text == &other) return;
  Wipe(text);
  text = other;
}

// A string that wipes itself. Reserve or assign at once: text that grows by parts would leave
// copies behind.
class SecureString {
 public:
  SecureString() = default;
  explicit SecureString(std::string_view text) : text_(text) {}
  SecureString(const SecureString&) = default;
  SecureString(SecureString&& other) noexcept : text_(std::move(other.text_)) { other.Clear(); }
  ~SecureString() { Clear(); }
  SecureString& operator=(SecureString other) noexcept {
    text_.swap(other.text_);
    return *this;
  }

  const std::string& str() const { return text_; }
  std::string& str() { return text_; }
  operator std::string_view() const { return text_; }  // NOLINT(google-explicit-constructor)
  std::size_t size() const { return text_.size(); }
  bool empty() const { return text_.empty(); }
  void Clear() noexcept { Wipe(text_); }

 private:
  std::string text_;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_SECURE_H_
