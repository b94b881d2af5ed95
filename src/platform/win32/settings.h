// The settings port on Windows: registry, shell folders, files and the user's regional conventions.
#pragma once

#include "ports/settings.h"

namespace quenta::platform {

class Settings final : public ports::Settings {
 public:
  // Longer values are cut to 3500 characters, which is the most that programs of the suite read.
  std::optional<std::string> ReadRegistryText(ports::RootKey root, const std::string& subkey,
                                              const std::string& value_name) override;
  std::vector<std::string> EnumerateSubkeys(ports::RootKey root, const std::string& subkey) override;
  std::string SpecialFolder(int number) override;
  std::string TempFolder() override;
  std::string InstallationFolder() override;
  std::optional<std::string> ReadFile(const std::string& path) override;
  bool ReplaceContents(const std::string& path, const std::string& work_path, const std::string& bytes) override;
  bool AppendFile(const std::string& path, const std::string& bytes) override;
  void WriteFile(const std::string& path, const std::string& bytes) override;
  base::Locale UserLocale() override;
};

}  // namespace quenta::platform
