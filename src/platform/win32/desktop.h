// The desktop port on Windows: message boxes, opening documents, and waits during which messages are processed.
#pragma once

#include "platform/win32/activation_context.h"
#include "platform/win32/form_host.h"
#include "ports/desktop.h"

namespace quenta::platform {

class Desktop final : public ports::Desktop {
 public:
  explicit Desktop(FormHost& forms) : forms_(forms) {}

  ports::Answer Ask(const ports::Message& message, controls::Form* over) override;
  bool OpenDocument(const std::string& path, const std::string& working_folder, controls::Form* over) override;
  std::optional<std::string> AskFileToSave(const ports::FileToSave& file, controls::Form* over) override;
  bool CopyText(const std::string& text) override;
  bool Breathe() override;

 private:
  FormHost& forms_;
  ActivationContext context_;
};

}  // namespace quenta::platform
