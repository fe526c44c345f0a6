#ifndef MIRA_BYTES_CURSOR_H_
#define MIRA_BYTES_CURSOR_H_

// The position that a reader or writer moves through its bytes, and whether all went well. What
// does not fit moves nothing, and everything behind it fails too.
//
// Who uses one asks: Ok() behind the last read or write; or Left() before the first, where nothing
// fails then. See bytes/duty.h.

#include <cstddef>

#include "bytes/duty.h"

namespace mira::bytes {

class Cursor : private Duty {
 public:
  constexpr bool Ok() const {
    Settle();
    return ok_;
  }
  constexpr std::size_t Offset() const { return offset_; }
  constexpr std::size_t Left() const {
    Count();
    return Room();
  }

  // Moves to an offset counted from the start of the bytes.
  constexpr void Seek(std::size_t offset) {
    if (offset <= size_) {
      offset_ = offset;
    } else {
      Fail();
    }
  }

 protected:
  constexpr Cursor(std::size_t size, std::size_t offset, Place made)
      : Duty(made), size_(size), offset_(offset <= size ? offset : 0), ok_(offset <= size) {}

  // Left(), but no question.
  constexpr std::size_t Room() const { return ok_ ? size_ - offset_ : 0; }
  // Passes over `count` bytes; false when there are fewer.
  constexpr bool Pass(std::size_t count) {
    if (!ok_ || count > Room()) {
      Fail();
      return false;
    }
    offset_ += count;
    Note(true);
    return true;
  }
  constexpr void Fail() {
    ok_ = false;
    Note(false);
  }
  // Nobody has to ask.
  using Duty::Waive;

 private:
  std::size_t size_;
  std::size_t offset_;
  bool ok_;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_CURSOR_H_
