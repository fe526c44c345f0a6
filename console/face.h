#ifndef MIRA_CONSOLE_FACE_H_
#define MIRA_CONSOLE_FACE_H_

// How the program shows the client layer's commands: what it prints of their documents, and the
// examples of their help.

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "client/command.h"
#include "console/output.h"

namespace mira::console {

struct Face {
  const char* command;   // as the client layer calls it
  const char* examples;  // lines like "  mira tag show"
  // Prints the document; missing for a plain change, which is shown like all others.
  void (*render)(const Json& document, std::ostream& out) = nullptr;
  // The words of the command that undoes what the document says was changed.
  std::string (*undo)(const Json& document) = nullptr;
  // Of a command whose document goes to a file: the list that counts in it. `render` is given
  // {"file", "exported", "whatIf"}.
  const char* saves = nullptr;
  // Such a document may say much about its owner: the file is for the user alone, and without its
  // name the document goes to standard output.
  bool is_private = false;
  // The field of bytes that the option --save writes to a file, and the option's help. The
  // command's argument "form" asks for the field.
  const char* save_field = nullptr;
  const char* save_help = "";
  // Another name for --save. A field of text, not of bytes, is written as it is; without a file,
  // and with "-", it stays in the document.
  const char* save_option = "--save";
  bool saves_text = false;
  // Whether the document answers a question although the command may change something: --value is
  // for such, too.
  bool answers = false;
  // Whether it keeps a log of its writes, in a file that the option --log names.
  bool logs = false;
};

// One list for each noun, in console/render/.
std::vector<Face> ApplyFaces();
std::vector<Face> AttrFaces();
std::vector<Face> BatteryFaces();
std::vector<Face> BootFaces();
std::vector<Face> CallFaces();
std::vector<Face> CompletionFaces();
std::vector<Face> IdFaces();
std::vector<Face> InfoFaces();
std::vector<Face> InventoryFaces();
std::vector<Face> ListFaces();
std::vector<Face> PasswordFaces();
std::vector<Face> ReportFaces();
std::vector<Face> SimControlFaces();
std::vector<Face> SimFaces();
std::vector<Face> SmbiosFaces();
std::vector<Face> SnapshotFaces();
std::vector<Face> TagFaces();
std::vector<Face> TokenFaces();

const Face* FindFace(std::string_view command);

// The changes of a document, a line each, and what became of them.
void RenderChanges(const Json& document, std::ostream& out);

// What a plan's document says of itself before anything is written.
void RenderNotes(const Json& document, std::ostream& out);

// Rows, or "(none)" where there are none.
void RenderList(std::ostream& out, const std::vector<std::string>& headings, const Rows& rows,
                const std::vector<std::size_t>& right = {});

}  // namespace mira::console

#endif  // MIRA_CONSOLE_FACE_H_
