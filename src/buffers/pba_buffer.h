#ifndef MIRA_BUFFERS_PBA_BUFFER_H_
#define MIRA_BUFFERS_PBA_BUFFER_H_

// Passwords (classes 9, 10 and 12, selects 4 and 5) and the pre-boot authentication users of
// class 10. Selects 4 and 5 are built from a request (buffers/password_data.h) or from console
// input; the others from console input alone.

#include <cstdint>

#include "buffers/buffer.h"

class CPBABuffer : public CBuffer {
 public:
  using CBuffer::CBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void DisplayOutputBuffer() override;
  void DisplayReturnCode() override;

 private:
  // What one select does at the console.
  struct Select;
  static const Select kSelects[];
  const Select* FindSelect() const;

  // Each asks for what its select needs and builds the record; null when the input ended or no
  // record holds the answers.
  SMBiosCI* PromptPassword(std::uint32_t securityKey);
  SMBiosCI* PromptPasswordChange(std::uint32_t securityKey);
  SMBiosCI* PromptConfiguration(std::uint32_t securityKey);
  SMBiosCI* PromptAddUser(std::uint32_t securityKey);
  SMBiosCI* PromptDeleteUser(std::uint32_t securityKey);
  SMBiosCI* BuildAuthenticatedUser(std::uint32_t securityKey);
  SMBiosCI* PromptCredential(std::uint32_t securityKey);
  SMBiosCI* PromptExistence(std::uint32_t securityKey);
  SMBiosCI* PromptLookUp(std::uint32_t securityKey);
  // A record with the configuration key as argument 1 and the items at offset 44, named by
  // `argument`; `behind` more bytes follow them.
  SMBiosCI* NewItemRecord(std::uint32_t configuration_key, unsigned argument,
                          mira::bytes::ByteSpan items, std::uint32_t behind = 0);
  void DisplayUser() const;
  void DisplayCredential() const;
};

#endif  // MIRA_BUFFERS_PBA_BUFFER_H_
