#include <algorithm>
#include <cctype>

#include "bytes/text.h"
#include "client/report/view.h"

namespace mira::client {
namespace {

struct Topic {
  const char* title;
  std::vector<const char*> words;  // how words of a name begin
};

// The firmware gives attributes no groups: these are how people look for them. The first word of a
// name that is known decides.
const std::vector<Topic>& Topics() {
  static const std::vector<Topic> topics = {
      {"Start-up and boot",
       {"boot", "uefi", "legacy", "fast", "quiet", "start", "setup", "stop", "warn", "error", "pxe",
        "post", "splash", "numlock", "recovery", "csm"}},
      {"Security",
       {"secure",     "security", "password", "tpm",      "trusted",  "lockout",  "intrusion",
        "chassis",    "theft",    "wipe",     "owner",    "master",   "strong",   "smm",
        "execute",    "third",    "factory",  "admin",    "firmware", "capsule",  "user",
        "encryption", "dma",      "key",      "sanitize", "erase",    "blocksid", "microcode"}},
      {"Processor and memory",
       {"processor", "hyper", "virtual", "turbo", "cpu", "core", "memory", "active", "device",
        "speed", "cstate", "multi", "thread", "numa", "ecc", "dimm"}},
      {"Power and cooling",
       {"power", "battery", "charge", "peak", "thermal", "fan", "automatic", "auto", "lid", "wake",
        "sleep", "deep", "block", "ac", "adapter"}},
      {"Storage",
       {"storage", "sata", "nvme", "drive", "disk", "spin", "m2", "raid", "ahci", "hdd", "ssd",
        "optical", "smart"}},
      {"Network",
       {"network", "lan", "wlan", "wireless", "bluetooth", "mac", "mobile", "https", "http", "vlan",
        "global", "nic", "ip", "wifi", "wwan", "gps", "ethernet"}},
      {"USB and docking",
       {"usb", "thunderbolt", "dock", "pcie", "type", "port", "serial", "parallel", "slot", "pci"}},
      {"Display and graphics",
       {"panel", "display", "graphics", "primary", "switchable", "privacy", "brightness", "video",
        "screen", "vga", "hdmi"}},
      {"Keyboard, camera and other devices",
       {"keyboard", "integrated", "fingerprint", "smartcard", "pointing", "fn", "num", "touch",
        "camera", "microphone", "speaker", "audio", "status", "led", "sd", "card", "mouse"}},
      {"Identity and information",
       {"system", "service", "asset", "ownership", "department", "site", "first", "manufacturer",
        "product", "bios", "serial", "date", "version", "model", "tag"}},
  };
  return topics;
}

// "UsbPortLeft" is usb, port, left; "SMMProtection" is smm, protection.
std::vector<std::string> WordsOf(const std::string& name) {
  const auto is_upper = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto is_word = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
  std::vector<std::string> words(1);
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool begins = i > 0 && is_upper(name[i]) &&
                        (!is_upper(name[i - 1]) ||
                         (i + 1 < name.size() && is_word(name[i + 1]) && !is_upper(name[i + 1])));
    if ((begins || !is_word(name[i])) && !words.back().empty()) words.emplace_back();
    if (is_word(name[i])) words.back() += bytes::Lower(name[i]);
  }
  return words;
}

}  // namespace

std::string TopicOf(const std::string& name) {
  for (const std::string& word : WordsOf(name)) {
    for (const Topic& topic : Topics()) {
      const bool is_known = std::any_of(topic.words.begin(), topic.words.end(),
                                        [&](const char* known) { return word.starts_with(known); });
      if (is_known) return topic.title;
    }
  }
  return "Other";
}

std::size_t PlaceOfTopic(const std::string& title) {
  const auto& topics = Topics();
  const auto found = std::find_if(topics.begin(), topics.end(),
                                  [&](const Topic& topic) { return title == topic.title; });
  return static_cast<std::size_t>(found - topics.begin());
}

}  // namespace mira::client
