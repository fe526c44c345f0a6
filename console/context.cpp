#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "console/command.h"
#include "facade/process_state.h"

namespace mira::console {

Context::Context(Options options, std::istream& in, std::ostream& out)
    : options_(std::move(options)), in_(in), out_(out) {
  if (!options_.simulated) return;
  const sim::Profile* const profile = sim::FindProfile(options_.profile);
  if (profile == nullptr) {
    std::string known;
    for (const sim::Profile& p : sim::Profiles()) known += (known.empty() ? "" : ", ") + p.name;
    throw CommandError(kNotFound, "unknown-profile",
                       "There is no simulated machine called '" + options_.profile + "'.",
                       options_.profile, "The machines are: " + known + ".");
  }
  machine_ = std::make_unique<sim::Machine>(*profile);
  session_ = std::make_unique<sim::Session>(*machine_);
}

Context::~Context() {
  opened_.mira.reset();
  session_.reset();
  ResetProcessState();
}

Opened& Context::Open(bool load_attributes) {
  if (opened_.mira) return opened_;
  opened_.mira = std::make_unique<CMiraIntf>(diagnostics_);
  opened_.status = opened_.mira->Init(load_attributes, load_attributes, load_attributes);
  std::istringstream lines(diagnostics_.str());
  for (std::string line; std::getline(lines, line);) opened_.diagnostics.push_back(ToUtf8(line));
  return opened_;
}

CMiraIntf& Context::Ready(bool load_attributes) {
  Opened& opened = Open(load_attributes);
  if (opened.status != STATUS_SUCCESS) throw InitError(opened);
  return *opened.mira;
}

void Context::Print(const Json& document) {
  Json whole = {{"schemaVersion", 1}};
  if (options_.simulated) whole["simulated"] = true;
  whole.update(document);
  out_ << whole.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void Command::Run(CLI::App& app, Action action) {
  app.callback([this, action = std::move(action)] { chosen_ = action; });
}

StatusText Explain(Status status) {
  struct Row {
    Status status;
    StatusText text;
  };
  static constexpr Row kRows[] = {
      {STATUS_SUCCESS, {"success", "Everything is available.", "", kDone}},
      {STATUS_FAILURE,
       {"call-failed", "The call failed.", "The completion code tells why.", kRefused}},
      {STATUS_NOT_SUPPORTED,
       {"not-supported", "This machine or this library does not support the command.",
        "'mira info' lists the command classes that the firmware announces.", kNotSupported}},
      {STATUS_COM_INIT_FAILED,
       {"com-failed", "COM or the WMI connection could not be set up.",
        "Check that the Windows Management Instrumentation service runs.", kTransportFailed}},
      {STATUS_WMI_INSTANCE_NOT_FOUND,
       {"no-calling-interface", "This PC offers no calling interface through WMI.",
        "Only SMBIOS commands work here.", kNotSupported}},
      {STATUS_SMBIOS_READ_FAILED,
       {"smbios-failed", "The SMBIOS table could not be read.", "", kTransportFailed}},
      {STATUS_SECURITY_KEY_FAILED,
       {"password-wrong", "The password was not accepted.", "", kPassword}},
      {STATUS_NOT_ADMIN,
       {"not-administrator", "Administrator rights are needed.",
        "Start the program from an elevated prompt.", kNeedsAdministrator}},
      {STATUS_PLDM_INIT_FAILED,
       {"no-attributes", "The BIOS attributes could not be loaded.", "", kNotSupported}},
      {STATUS_ACPI_NOT_SUPPORTED,
       {"acpi-not-supported", "The firmware does not support calls through WMI.",
        "Only SMBIOS commands work here.", kNotSupported}},
  };
  for (const Row& row : kRows) {
    if (row.status == status) return row.text;
  }
  return {"unexpected", "The library gave an unexpected status.", "", kUnexpected};
}

CommandError InitError(const Opened& opened) {
  const StatusText text = Explain(opened.status);
  std::string message = text.meaning;
  for (const std::string& line : opened.diagnostics) message += " (" + line + ")";
  return CommandError(text.exit_status, text.name, message, "", text.hint);
}

std::uint32_t ParseNumber(const std::string& text, const std::string& what, std::uint32_t largest) {
  std::string_view digits = text;
  const bool is_hex = digits.starts_with("0x") || digits.starts_with("0X");
  if (is_hex) digits.remove_prefix(2);
  std::uint32_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, is_hex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size() || value > largest) {
    throw CommandError(kUsage, "bad-number",
                       "'" + text + "' is no " + what + ": a number from 0 to " +
                           std::to_string(largest) + " is wanted, in decimal or with 0x.",
                       text);
  }
  return value;
}

std::string Hex(std::uint64_t value, int digits) {
  std::array<char, 16> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, 16).ptr;
  const std::string text(buffer.data(), end);
  const std::size_t width = static_cast<std::size_t>(digits);
  return "0x" + std::string(text.size() < width ? width - text.size() : 0, '0') + text;
}

namespace {

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18 & 0x07));
    out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

bool IsUtf8(std::string_view text) {
  // The JSON library holds the one decoder that is needed anyway.
  try {
    (void)Json(std::string(text)).dump();
  } catch (const Json::exception&) {
    return false;
  }
  return true;
}

}  // namespace

std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string result;
  for (const char c : text) AppendUtf8(result, static_cast<unsigned char>(c));
  return result;
}

std::string ToUtf8(std::wstring_view text) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = static_cast<char32_t>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
    if (c >= 0xD800 && c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    } else if ((c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) {
      c = kReplacement;
    }
    AppendUtf8(result, c);
  }
  return result;
}

std::string CompletionText(std::int32_t code) {
  struct Row {
    std::int32_t code;
    const char* text;
  };
  static constexpr Row kRows[] = {
      {0, "The function completed successfully."},
      {-1, "The function ended in error (possibly function-specific)."},
      {-2, "The function is not supported by the system."},
      {-3, "The function did not execute."},
      {-5, "The output buffer used by the function was not properly formatted."},
      {-6, "The output buffer used by the function was not large enough."},
      {-7, "Invalid security key."},
  };
  for (const Row& row : kRows) {
    if (row.code == code) return row.text;
  }
  return code > 0 ? "A code of this function's own." : "A code without a text.";
}

}  // namespace mira::console
