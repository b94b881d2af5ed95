#include "data/support_log.h"

#include "base/text.h"

namespace quenta::data {
namespace {

constexpr ports::RootKey kLocalMachine = 0x80000002U;

}  // namespace

std::string StatementLogPath(ports::Settings& settings) {
  const auto read = [&](const std::string& key, const char* name) {
    const std::string text = settings.ReadRegistryText(kLocalMachine, key, name).value_or("");
    return std::string(base::Trim(text));
  };
  const std::string application = read(R"(SOFTWARE\Ambrell\Shared\OUT)", "DataServer");
  return application.empty() ? std::string() : read(R"(SOFTWARE\Ambrell\)" + application, "StatementLog");
}

}  // namespace quenta::data
