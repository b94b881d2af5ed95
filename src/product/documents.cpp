#include "product/documents.h"

#include "base/error.h"
#include "base/text.h"
#include "data/registry.h"

namespace quenta::product {
namespace {

std::string ReadFolderSetting(session::Session& session) {
  data::Registry registry(session.ports());
  const auto key = session.SettingsKey();
  if (!key) return {};
  const base::Value folder = registry.ObterValorString(*key, "Templates");
  return folder.is_text() ? std::string(base::Trim(folder.text())) : std::string();
}

}  // namespace

std::optional<std::string> TemplatesFolder(session::Session& session, controls::Form& over) {
  if (ReadFolderSetting(session).empty()) {
    over.set_mouse_pointer(controls::MousePointer::kDefault);
    session.ports().desktop.Ask({.text = "Erro nas definições do Registry, não está definida a string de Templates.",
                                 .icon = ports::Icon::kInformation},
                                &over);
    return std::nullopt;
  }
  // Another program of the suite may take the setting away between the two readings.
  std::string folder = ReadFolderSetting(session);
  if (folder.empty()) folder = session.ports().settings.InstallationFolder() + "\\Templates";
  while (folder.ends_with('\\')) folder.pop_back();
  return folder;
}

std::optional<std::string> FindTemplate(session::Session& session, const std::string& folder, const std::string& name) {
  return session.ports().settings.ReadFile(folder + "\\" + name);
}

std::string ReadTemplate(session::Session& session, const std::string& folder, const std::string& name) {
  auto bytes = FindTemplate(session, folder, name);
  if (!bytes) throw base::Error(base::error_number::kFileNotFound, "File not found: " + folder + "\\" + name);
  return *std::move(bytes);
}

std::string DocumentPath(session::Session& session, const std::string& name) {
  return session.ports().settings.TempFolder() + "\\" + name;
}

bool WriteDocument(session::Session& session, const std::string& path, const std::string& bytes, controls::Form& over) {
  try {
    session.ports().settings.WriteFile(path, bytes);
    return true;
  } catch (const base::Error& error) {
    if (error.number() != base::error_number::kPermissionDenied) throw;
  }
  TellAboutDocuments(session, "Tem uma impressão aberta. Feche esse ficheiro antes de iniciar uma nova impressão.",
                     over);
  return false;
}

void OpenDocument(session::Session& session, const std::string& path, controls::Form& over) {
  const std::string folder = session.ports().settings.TempFolder() + "\\";
  if (session.ports().desktop.OpenDocument(path, folder, &over)) return;
  TellAboutDocuments(session, "Não foi possível abrir o documento " + path + ".", over);
}

void TellAboutDocuments(session::Session& session, const std::string& text, controls::Form& over) {
  session.ports().desktop.Ask(
      {.text = text, .title = "Impressões", .icon = ports::Icon::kInformation, .system_modal = true}, &over);
}

}  // namespace quenta::product
