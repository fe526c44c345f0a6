#include "client/snapshot/vocabulary.h"

#include <algorithm>
#include <string>

#include "bytes/text.h"

namespace mira::client {
namespace {

// In lower case, with a blank before and after each.
constexpr std::string_view kCommonWords =
    " aa ac access acpi action active adapter adaptive address admin administrator advanced"
    " after aggressive ahci alert alerts all allow always and any application arm array aslr"
    " asset assist at ata attempt attempts attribute audio authentication auto automatic aux"
    " auxiliary average back backlight backup balanced bank based basic battery bay behavior"
    " behaviour below bios bit blade block blocks bluetooth board boot bootia booting"
    " bootloader bootmgfw bootmgr boots bootx both bottom bright brightness broadcast buffer"
    " built burst bus button buttons by bypass cable cache calling camera capacity caps"
    " capsule card cast cd cdrom cell center centre chain change channel charge charging"
    " chassis check chip chipset class clear clock coin cold collection color colour com"
    " compatibility complete config configuration confirm connector console control"
    " controller cooling core cores count cover cpu critical current custom cycle dash data"
    " date day days deep default defaults delay delete deny depth descriptor desk desktop"
    " detect detection device devices diagnostic diagnostics dim dimm dimms direct disable"
    " disabled disc disk display dmi dock docking domain down download dram drive drives drop"
    " dual dvd dvi dynamic early ec edge edp efi eight embedded emmc emulation enable enabled"
    " encrypted encryption end energy enhanced enter entry enumeration error errors esata"
    " ethernet event events every execution exit expansion export express ext extended"
    " extension external fail failed failover failure fall fan fans fast fastboot fat"
    " features fifteen fifth filter fingerprint first five fixed flash floor floppy flow fn"
    " focus force forced four fourth frequency friday from front full function functions fw"
    " gate general generic gib gigabit global gpio gpt gpu graphics group grub guard guest"
    " hard hardware hash hdd hdmi header headphone headset health heat hibernate high higher"
    " highest history home hot hour hours hpd http https hub hybrid ia icon id ide idle if"
    " image imaging in include indicator info infrared init initialization input install"
    " installed instance integrated interface internal interrupt intrusion iommu ion ip ipl"
    " ipv irq is isolation jack jumper kernel key keyboard keypad keys kiosk label lan"
    " language laptop last latency layout led left legacy length level levels lid life light"
    " limit limits line link linux list lithium load loader local lock locked lockout log"
    " logical logo logon long loop lost low lower lowest lpt lun lunch mac machine mains"
    " maintenance management manager manual manufacturing map mass master max maximum"
    " measured media medium memory menu message messages mib micro microcode microphone mid"
    " middle mini minimal minimum minus mirror mirroring mobile mode model module monday"
    " monitor monitoring month mouse mps ms multi multimedia multiple mute name native ndis"
    " network never new next nic night no node nodes noise none normal not notebook notify"
    " ntfs num number numlock nvme nvram off offline ohci old on onboard once one only open"
    " operating optical optimised optimized option optional options order original os other"
    " out output override owner ownership pack package pair parallel parity park partial"
    " partition pass passive password patch pause pc pci pcie pcmcia peak pending percent"
    " performance period permit persistent phone physical pin platform play plug plus pnp"
    " point policy polymer port ports position post power powered pre preboot prefer"
    " preferred presence present prevent primary priority private pro processor processors"
    " profile program prompt property protected protection protocol provision ps pxe quick"
    " quiet quota rack raid ram range rate raw read reader ready rear reboot rebooting"
    " recovery reduced refresh region release remote removable remove report request required"
    " reserved reset resolution resource restart restore restricted resume return right riscv"
    " riser rollback rom root rotation rtc run runtime sata saturday save saver saving scan"
    " schedule screen script scsi sd search second secondary seconds secure security select"
    " selection self sensor sensors serial server service session set setting settings setup"
    " seven shared shell shift shim short shut shutdown side silent simple single six size"
    " slave sleep slot slots small smart smbios smi smm smt soc socket sol solid sound source"
    " sources speaker speakers speed spread ssd stable standard standby start starting"
    " startup state static station status step stop storage storm strict string strong sub"
    " subsystem sunday super supervisor support supported suspend swap switch sync system"
    " table tablet tag target task tcg temperature test text the thermal thin third thread"
    " threading threads three threshold through thursday time timeout timer to toggle token"
    " tools top total touch touchpad touchscreen tower tpm trace tracking trusted tuesday"
    " turbo two type uart uefi ultra unattended under unified unit unknown unlock unlocked"
    " until up update updates upper usage usb use user users utility value vbios vbs vendor"
    " verify version very vga video view virtual virtualisation virtualization vlan vmd"
    " voltage volume wake wakeup warm warn warning warnings watchdog watt watts way webcam"
    " wednesday week weekday weekend wi wide width wifi windows wipe wireless with without"
    " wol work workstation write wwan xhci year yes zero zone ";

bool IsCommonWord(const std::string& word) {
  return kCommonWords.find(' ' + word + ' ') != std::string_view::npos;
}

// What a text consists of, and whether nothing else is in it.
struct TextParts {
  std::size_t digits = 0;
  std::size_t letters = 0;  // single ones that are no word
  bool is_common = true;
};

void AddWord(std::string_view text, TextParts& parts) {
  std::string word;
  for (const char c : text) word += bytes::Lower(c);
  if (word.size() == 1) {
    ++parts.letters;
  } else {
    parts.is_common = parts.is_common && IsCommonWord(word);
  }
}

bool IsLetter(char c) { return bytes::Lower(c) >= 'a' && bytes::Lower(c) <= 'z'; }
bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The end of the word that begins at `start`: before a capital behind a small letter ("WakeOn"),
// and before the last capital of several that a small letter follows ("USBBoot").
std::size_t WordEnd(std::string_view text, std::size_t start) {
  std::size_t end = start + 1;
  for (; end < text.size() && IsLetter(text[end]); ++end) {
    if (!IsUpper(text[end])) continue;
    const bool follows_small = !IsUpper(text[end - 1]);
    const bool leads_small =
        end + 1 < text.size() && IsLetter(text[end + 1]) && !IsUpper(text[end + 1]);
    if (follows_small || leads_small) break;
  }
  return end;
}

// A run of letters, as it stands or taken apart at its capitals.
void AddLetters(std::string_view run, TextParts& parts) {
  std::string whole;
  for (const char c : run) whole += bytes::Lower(c);
  if (run.size() > 1 && IsCommonWord(whole)) return;
  for (std::size_t at = 0; at < run.size();) {
    const std::size_t end = WordEnd(run, at);
    AddWord(run.substr(at, end - at), parts);
    at = end;
  }
}

}  // namespace

bool IsCommonText(std::string_view text) {
  constexpr std::string_view kBetween = " -_./()[]:#+,&";
  constexpr std::size_t kMostDigits = 3;
  TextParts parts;
  for (std::size_t at = 0; at < text.size();) {
    if (IsLetter(text[at])) {
      std::size_t end = at;
      while (end < text.size() && IsLetter(text[end])) ++end;
      AddLetters(text.substr(at, end - at), parts);
      at = end;
      continue;
    }
    if (IsDigit(text[at])) {
      ++parts.digits;
    } else if (kBetween.find(text[at]) == std::string_view::npos) {
      return false;
    }
    ++at;
  }
  return parts.is_common && parts.digits <= kMostDigits && parts.letters <= 1;
}

bool IsVersionText(std::string_view text) {
  constexpr std::size_t kLongest = 11;
  constexpr std::size_t kMostTogether = 3;
  if (text.size() > kLongest) return false;
  std::size_t together = 0;
  for (const char c : text) {
    together = IsDigit(c) ? together + 1 : 0;
    if (together > kMostTogether || (!IsDigit(c) && c != '.')) return false;
  }
  return true;
}

bool IsDateText(std::string_view text) {
  constexpr std::string_view kForm = "00/00/0000";
  return std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                    [](char c, char form) { return form == '0' ? IsDigit(c) : c == form; });
}

}  // namespace mira::client
