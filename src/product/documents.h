// Documents that are made from templates and opened with their program: where templates lie, where documents go, and
// what the user is told when that fails.
#pragma once

#include <optional>
#include <string>

#include "component/session/guarded.h"
#include "component/session/session.h"
#include "controls/form.h"

namespace quenta::product {

// Under which labels making a document is reported.
inline constexpr session::Labels kDocumentLabels{"Quentis Gestão Comercial", "Clientes_Kinto", "frmMain",
                                                 session::DescriptionStyle::kAlone};

// The templates folder of the settings, without a trailing backslash. Nothing when it is not set: the user has then
// been told, and the form's mouse pointer is the default one.
std::optional<std::string> TemplatesFolder(session::Session& session, controls::Form& over);

// The template's bytes, whole; nothing when it cannot be read.
std::optional<std::string> FindTemplate(session::Session& session, const std::string& folder, const std::string& name);

// The same; error 53 when it cannot be read.
std::string ReadTemplate(session::Session& session, const std::string& folder, const std::string& name);

// Where a document of this name goes: each one overwrites the one before.
std::string DocumentPath(session::Session& session, const std::string& name);

// False when the earlier document is still open in another program: the user has then been told, and nothing was
// written. Throws whatever else goes wrong.
bool WriteDocument(session::Session& session, const std::string& path, const std::string& bytes, controls::Form& over);

// Opens the document with its program; tells the user when there is none.
void OpenDocument(session::Session& session, const std::string& path, controls::Form& over);

// What the user is told about documents, over the form.
void TellAboutDocuments(session::Session& session, const std::string& text, controls::Form& over);

// While one lives, the form shows the hourglass.
class Hourglass {
 public:
  explicit Hourglass(controls::Form& form) : form_(form) {
    form_.set_mouse_pointer(controls::MousePointer::kHourglass);
  }
  ~Hourglass() { form_.set_mouse_pointer(controls::MousePointer::kDefault); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  controls::Form& form_;
};

}  // namespace quenta::product
