#include "buffers/pba_texts.h"

#include "buffers/code_text.h"

namespace mira::buffers {
namespace {

constexpr CodeText kTexts[] = {
    {1, 7, "Incorrect PBA Config Key!"},
    {1, 8, "Incorrect PBA Config Key!"},
    {1, 9, "Incorrect PBA Config Key!"},
    {1, 10, "Incorrect PBA Config Key!"},
    {1, 17, "Incorrect PBA Config Key!"},
    {1, 18, "Incorrect PBA Config Key!"},
    {1, 15, "No user is Authenticated via PBA!"},
    {2, 4, "Password is not Correct!"},
    {2, 5, " The (OLD?) Password is incorrect!"},
    {2, 7, "Incorrect Password Supplied!"},
    {2, 8, "No room to add another PBA user!"},
    {2, 9, "No such PBA user!"},
    {2, 15, "Incorrect User ID!"},
    {2, 16, "Invalid bitmap\xEF\xBF\xBDno user authenticated with the given method!"},
    {2, 17, "Invalid info format byte (in byte 0 of the cbARG3 buffer)!"},
    {2, 18, "ID and key not in PBA database!"},
    {3, 5, "Password not changed - new password does not meet the criteria!"},
    {3, 7, "System user password not set!"},
    {3, 8, "System user password not set!"},
    {3, 16,
     "Invalid call\xEF\xBF\xBDthe function was already called successfully once before with the "
     "given bitmap!"},
    {3, 17, "Invalid Info Type (in cbARG2)!"},
    {4, 7, "Invalid Function (in cbArg1)!"},
    {4, 8, "Unsupported User ID Format!"},
    {4, 9, "Unsupported User ID Format!"},
    {4, 18, "Unsupported User ID Format!"},
    {4, 17, "The ID/key does not exist in the database!"},
    {5, 8, "Unsupported Key Format!"},
    {5, 9, "Unsupported Key Format!"},
    {5, 18, "Unsupported Key Format!"},
    {6, 8, "User Key already in the database!"},
    {7, 8, "User ID already in the database!"},
    {8, 8, "Permitted bitmap has no valid bit set!"},
    {9, 8, "Required bitmap is not a subset of the permitted bitmap!"},
};
constexpr std::int32_t kLastCode = 9;

}  // namespace

bool PrintPbaText(std::int32_t code, std::uint16_t select) {
  if (code < 1 || code > kLastCode) return false;
  PrintCodeText(kTexts, code, select);
  return true;
}

}  // namespace mira::buffers
