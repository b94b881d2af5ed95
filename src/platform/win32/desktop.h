// The desktop port on Windows: message boxes, opening documents, and waits during which messages are processed.
#pragma once

#include <chrono>
#include <optional>
#include <string>

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
  bool PumpMessages() override;
  std::chrono::steady_clock::time_point Now() override { return std::chrono::steady_clock::now(); }

 private:
  FormHost& forms_;
  ActivationContext context_;
};

}  // namespace quenta::platform
