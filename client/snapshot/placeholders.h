#ifndef MIRA_CLIENT_SNAPSHOT_PLACEHOLDERS_H_
#define MIRA_CLIENT_SNAPSHOT_PLACEHOLDERS_H_

// What stands for values that say whose a machine is: "serial-1" wherever the first of them was, so
// that equal values can still be told. They are numbered, and not hashed: a short tag could be
// guessed from its hash.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::client {

class Placeholders {
 public:
  // Of a text. Blanks at its end, the case of letters and the separators of a MAC address make no
  // other value of it; an empty text stays one.
  std::string Of(std::string_view text, std::string_view kind);
  // Of bytes of a fixed size, such as a UUID or a MAC address: as many, and those in the end the
  // number. Zeros alone, and ones alone, stand for no value and stay.
  std::vector<std::uint8_t> OfBytes(bytes::ByteSpan bytes, std::string_view kind);

 private:
  struct Place {
    std::string kind;
    std::size_t number = 0;
  };
  const Place& Find(const std::string& key, std::string_view kind);

  std::map<std::string, Place> places_;                     // by value
  std::map<std::string, std::size_t, std::less<>> counts_;  // by kind
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_PLACEHOLDERS_H_
