// The sample component with a templates folder, for the tests of reports and labels.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "support/rich_text_reader.h"
#include "support/sample_component.h"

namespace quenta::tests {

class DocumentTest : public SampleComponentTest {
 protected:
  static constexpr const char* kTemplatesSetting = R"(SOFTWARE\Ambrell\Contabilidade:Templates)";

  void SetUp() override {
    settings.registry[kTemplatesSetting] = R"(C:\Modelos)";
    LogIn("ana");
  }
  void SetTemplate(const std::string& name, const std::string& bytes) {
    settings.files["C:\\Modelos\\" + name] = bytes;
  }
  // One of those that are shipped with the sample catalogue.
  void UseShipped(const std::string& name) {
    std::ifstream file(QUENTA_TEMPLATES "/" + name, std::ios::binary);
    SetTemplate(name, {std::istreambuf_iterator<char>(file), {}});
  }
  // What was written into the temporary folder; "(none)" when nothing was.
  std::string Written(const std::string& name) {
    const auto found = settings.files.find("C:\\Temp\\" + name);
    return found == settings.files.end() ? "(none)" : found->second;
  }
  const ports::Message& LastMessage() {
    static const ports::Message none{.text = "(none)"};
    return desktop.messages.empty() ? none : desktop.messages.back();
  }
};

}  // namespace quenta::tests
