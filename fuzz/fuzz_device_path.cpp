// Any bytes as a device path, a path's text, a load option, and the answers of the boot commands.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <sstream>

#include "buffers/buffer_factory.h"
#include "buffers/legacy_bbs_data.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/reader.h"
#include "bytes/utf16.h"
#include "bytes/writer.h"
#include "devicepath/load_option.h"
#include "devicepath/text.h"

namespace {

using mira::bytes::ByteSpan;

constexpr std::uint32_t kTransferSize = 64 * 1024;

// What goes to a screen must be UTF-8, and must not upset the reader of texts.
void Use(const std::string& text) {
  if (!mira::bytes::Utf16(text)) std::abort();
  mira::devicepath::DevicePathFromText(text);
}

// The answer of one command of class 3 to a request.
void Answer(std::uint16_t select, ByteSpan answer, IBIOSData& request) {
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(3, select, kTransferSize));
  auto size = static_cast<std::uint32_t>(answer.size());
  if (buffer->FillInputBuffer(0, size, request) == nullptr) return;
  const auto record = buffer->Record();
  mira::bytes::Writer area(record, 44);
  area.Bytes(mira::bytes::Slice(answer, 0, record.size() - 44));
  if (!area.Ok()) std::abort();
  buffer->ParseOutputBuffer(request);
  std::ostringstream shown;
  std::streambuf* const before = std::cout.rdbuf(shown.rdbuf());
  buffer->DisplayOutputBuffer();
  std::cout.rdbuf(before);
}

void Lists(ByteSpan bytes) {
  CUEFIBootList lists;
  Answer(9, bytes, lists);
}

void Options(ByteSpan bytes) {
  for (const bool is_uefi : {true, false}) {
    CUEFILOList options;
    options.IsUEFI = is_uefi;
    Answer(11, bytes, options);
    for (const CUEFILOList::LoadOption& option : options.Options) {
      Use(mira::devicepath::DevicePathToText(option.FilePath));
    }
  }
}

void Priorities(ByteSpan bytes) {
  auto in = mira::bytes::Reader::Lenient(bytes);
  CLegacyBBSIPLPriority data;
  data.MaxDevices = in.U8();
  data.EntryLength = in.U8();
  data.Count = std::numeric_limits<std::uint32_t>::max();
  Answer(3, in.Rest(), data);
}

// No byte of a list of paths is lost.
void Path(ByteSpan bytes) {
  std::size_t size = 0;
  for (const auto& path : mira::devicepath::DecodePaths(bytes)) {
    Use(path.text);
    size += path.bytes.size();
  }
  if (size != bytes.size()) std::abort();
}

void Text(ByteSpan bytes) {
  const auto path = mira::devicepath::DevicePathFromText(mira::bytes::AsText(bytes));
  if (!path) return;
  // What the reader of texts makes is one path without a fault.
  const auto paths = mira::devicepath::DecodePaths(*path);
  if (paths.size() != 1 || paths.front().problem) std::abort();
  Use(paths.front().text);
}

void Option(ByteSpan bytes) {
  const auto option = mira::devicepath::DecodeLoadOption(bytes);
  if (!option) return;
  for (const auto& path : option->paths) Use(path.text);
  const auto back = mira::devicepath::EncodeLoadOption(*option);
  const ByteSpan behind = bytes.subspan(option->variable_attributes ? 4 : 0);
  if (!back || !std::equal(back->begin(), back->end(), behind.begin(), behind.end())) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr void (*kTargets[])(ByteSpan) = {Lists, Options, Priorities, Path, Text, Option};
  if (size > 0) kTargets[data[0] % std::size(kTargets)]({data + 1, size - 1});
  return 0;
}
