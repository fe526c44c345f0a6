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
  SMBiosCI* PromptPassword(std::uint32_t securityKey, std::uint32_t& size);
  SMBiosCI* PromptPasswordChange(std::uint32_t securityKey, std::uint32_t& size);
  SMBiosCI* PromptConfiguration();
  SMBiosCI* PromptAddUser();
  SMBiosCI* PromptDeleteUser();
  SMBiosCI* BuildAuthenticatedUser();
  SMBiosCI* PromptCredential();
  SMBiosCI* PromptExistence();
  SMBiosCI* PromptLookUp();
  // A record with the key as argument 1 and the items at offset 44, named by `argument`.
  SMBiosCI* NewItemRecord(std::uint32_t configuration_key, unsigned argument,
                          mira::bytes::ByteSpan items, std::uint32_t behind = 0);
  void DisplayUser() const;
  void DisplayCredential() const;
};

#endif  // MIRA_BUFFERS_PBA_BUFFER_H_
