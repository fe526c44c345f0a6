#ifndef MIRA_BUFFERS_BUFFER_H_
#define MIRA_BUFFERS_BUFFER_H_

// A command buffer encodes one request into a call record and decodes the answer. CBuffer is the
// base class and serves every command that needs four plain argument words. A test console uses a
// buffer directly:
//
//   std::unique_ptr<CBuffer> buffer(CreateBuffer(0, 0, mira.GetACPIBufSize()));
//   std::uint32_t size = 0;
//   SMBiosCI* record = buffer->PromptInputBuffer(0, size, true);
//   if (record) { Execute(*record); buffer->DisplayOutputBuffer(); }

#include <cstdint>

#include "buffers/bios_data.h"
#include "platform/api.h"
#include "transport/smbios_ci.h"

class MIRA_API CBuffer {
 public:
  // `bufSize` is the size in bytes of the firmware's transfer buffer.
  CBuffer(std::uint16_t cls, std::uint16_t select, std::uint32_t bufSize);
  CBuffer(const CBuffer&) = delete;
  CBuffer& operator=(const CBuffer&) = delete;

  // Builds the record from the request. `size` holds on entry the bytes of data area that the
  // caller wants room for. The buffer owns the record. Null when no record can be built from the
  // request. Throws std::bad_cast for a request of another type, and std::bad_alloc.
  virtual SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                    IBIOSData& data);
  // Builds the record from answers typed at the console; with `prompt` false, from zeros. Null at
  // the end of input.
  virtual SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt);
  // Moves the results of the record into the request. Throws std::bad_cast for a request of another
  // type.
  virtual void ParseOutputBuffer(IBIOSData& data);
  // Shows the results on standard output.
  virtual void DisplayOutputBuffer();
  virtual ~CBuffer();
  // Shows the text of the completion code on standard output; codes without a text show nothing.
  virtual void DisplayReturnCode();

  std::uint16_t Class() const { return m_wClass; }
  std::uint16_t Select() const { return m_wSelect; }
  // The record's bytes, whatever its length word says; empty before it is built.
  mira::bytes::MutableByteSpan Record() const { return mira::transport::RecordBytes(m_pCIBuffer); }

 protected:
  // Makes the zeroed record of `length` bytes (at least 44) with class, select and length stamped.
  // Null when it would exceed what any transfer buffer holds.
  SMBiosCI* NewRecord(std::uint64_t length);
  // NewRecord for the request: the four argument words, then the key over the word that KeyArgIndex
  // names.
  SMBiosCI* NewRecord(std::uint64_t length, const CSimpleTokenData& data,
                      std::uint32_t securityKey);
  // The bytes behind the record's fixed part.
  mira::bytes::MutableByteSpan DataArea() const;
  // The completion code of the record.
  std::int32_t CompletionCode() const;

  // Prepares an area that the firmware is to fill: its length less 4 as a 32-bit word, then the
  // word 0x49435344 ("DSCI") in every whole word that follows. Areas below 4 bytes stay as they
  // are.
  static void InitExtendedBuffer(mira::bytes::MutableByteSpan area);

  std::uint16_t m_wClass;
  std::uint16_t m_wSelect;
  mira::transport::RecordPtr m_pCIBuffer;
  std::uint32_t m_dwBufSize;
};

#endif  // MIRA_BUFFERS_BUFFER_H_
