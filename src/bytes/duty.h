#ifndef MIRA_BYTES_DUTY_H_
#define MIRA_BYTES_DUTY_H_

// The duty to ask a cursor whether all went well. In checked builds (MIRA_CHECKED) a cursor that
// ends with its duty undone ends the program; elsewhere a duty is nothing and costs nothing.

#ifdef MIRA_CHECKED
#include <exception>
#include <version>
#ifdef __cpp_lib_source_location
#include <source_location>
#endif
#endif

#include "platform/api.h"

namespace mira::bytes {

// Where a cursor was made.
#if defined(MIRA_CHECKED) && defined(__cpp_lib_source_location)
using Place = std::source_location;
#else
struct Place {
  static constexpr Place current() { return {}; }
  constexpr const char* file_name() const { return "a place unknown"; }
  constexpr unsigned line() const { return 0; }
};
#endif

#ifdef MIRA_CHECKED

// Told of each cursor that nobody asked; the handler in force at first prints where it was made,
// and aborts.
using NeglectHandler = void (*)(const Place& made);
MIRA_API NeglectHandler SetNeglectHandler(NeglectHandler handler);  // returns the one before
MIRA_API void ReportNeglect(const Place& made);

class Duty {
 public:
  explicit constexpr Duty(Place made) : made_(made) {}
  // A copy takes the duty over.
  constexpr Duty(const Duty& other) noexcept
      : made_(other.made_),
        is_due_(other.is_due_),
        is_counted_(other.is_counted_),
        is_waived_(other.is_waived_) {
    other.is_due_ = false;
  }
  constexpr Duty& operator=(const Duty& other) noexcept {
    if (this == &other) return *this;
    if (!is_due_) made_ = other.made_;
    is_due_ = is_due_ || other.is_due_;
    is_counted_ = other.is_counted_;
    is_waived_ = other.is_waived_;
    other.is_due_ = false;
    return *this;
  }
  constexpr ~Duty() {
    // An exception on its way tells by itself that something went wrong.
    if (is_due_ && std::uncaught_exceptions() == 0) ReportNeglect(made_);
  }

  constexpr void Note(bool fitted) {
    if (!is_waived_ && !(fitted && is_counted_)) is_due_ = true;
  }
  constexpr void Settle() const { is_due_ = false; }
  constexpr void Count() const { is_counted_ = true; }
  constexpr void Waive() { is_waived_ = true; }

 private:
  Place made_;
  mutable bool is_due_ = false;
  mutable bool is_counted_ = false;  // somebody knows how many bytes there are
  bool is_waived_ = false;
};

#else

class Duty {
 public:
  explicit constexpr Duty(Place) {}
  constexpr void Note(bool) {}
  constexpr void Settle() const {}
  constexpr void Count() const {}
  constexpr void Waive() {}
};

#endif

}  // namespace mira::bytes

#endif  // MIRA_BYTES_DUTY_H_
