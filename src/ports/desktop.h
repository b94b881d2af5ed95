// Questions to the user, documents to open, and waits during which the host goes on living.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace quenta::controls {
class Form;
}

namespace quenta::ports {

enum class Icon { kNone, kInformation, kQuestion, kCritical };
enum class Buttons { kOk, kYesNo, kYesNoCancel };
enum class Answer { kOk, kYes, kNo, kCancel };

// A message box. The title is the component's name where a text of the suite has none of its own.
struct Message {
  std::string text;
  std::string title = "Quenta_Produtos";
  Icon icon = Icon::kNone;
  Buttons buttons = Buttons::kOk;
  bool system_modal = false;
};

// A file to be written, as the user is asked for it.
struct FileToSave {
  std::string title;
  std::string name;       // proposed, without a folder
  std::string type_name;  // "Ficheiros CSV"
  std::string extension;  // "csv"; added where the user leaves it out
};

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Shows the message over the form (over the active window when null) and waits for the answer. Messages go on being
  // processed meanwhile, so the caller must survive being entered again. Closing the box counts as Cancel where there
  // is one, as No or OK elsewhere, and so does a form or host that goes meanwhile. Throws base::Error when the
  // box cannot be shown.
  virtual Answer Ask(const Message& message, controls::Form* over) = 0;

  // Opens the file with its program by the verb "open". False when that failed.
  virtual bool OpenDocument(const std::string& path, const std::string& working_folder, controls::Form* over) = 0;

  // Asks where to save; an existing file only after a warning. Nothing when the user gave up. Throws base::Error when
  // the question cannot be shown.
  virtual std::optional<std::string> AskFileToSave(const FileToSave& file, controls::Form* over) = 0;

  // Puts a text on the clipboard. False when another program holds it.
  virtual bool CopyText(const std::string& text) = 0;

  // Lets the host process a bounded number of messages, and sleeps a moment at most. False once the host is quitting: a
  // wait that polls must then end.
  virtual bool PumpMessages() = 0;

  // The clock that such waits are measured by; nobody sets it.
  virtual std::chrono::steady_clock::time_point Now() = 0;
};

}  // namespace quenta::ports
