#include "data/warehouse.h"

#include <charconv>
#include <string>
#include <system_error>

#include "base/text.h"
#include "data/registry.h"

namespace quenta::data {

std::optional<std::int32_t> CurrentWarehouse(session::Session& session) {
  Registry registry(session.ports());
  const auto key = session.SettingsKey();
  if (!key) return std::nullopt;
  const base::Value setting = registry.ObterValorString(*key, "Armazem");
  if (!setting.is_text()) return std::nullopt;
  const std::string text(base::Trim(setting.text()));
  const char* const end = text.data() + text.size();
  std::int32_t number = 0;
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

}  // namespace quenta::data
