// What the component reads from the machine and the user's profile: registry, folders, files of settings, locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/locale.h"

namespace quenta::ports {

// The registry's predefined keys by number, 0x80000000 to 0x80000006; 0 is no key.
using RootKey = std::uint32_t;

class Settings {
 public:
  virtual ~Settings() = default;

  // The string value at a key, cut at its first null character; nothing when the key or the value is missing, is no
  // string, or cannot be read. Looks in the process's own registry view first, then in the 32-bit one.
  virtual std::optional<std::string> ReadRegistryText(RootKey root, const std::string& subkey,
                                                      const std::string& value_name) = 0;
  // Names of the direct subkeys in the registry's order; empty when the key cannot be opened.
  virtual std::vector<std::string> EnumerateSubkeys(RootKey root, const std::string& subkey) = 0;

  // Path of a shell special folder by its number (35 is the all users' application data), without a trailing
  // backslash; empty when there is none.
  virtual std::string SpecialFolder(int number) = 0;
  virtual std::string TempFolder() = 0;
  // The folder that the component was installed in, without a trailing backslash.
  virtual std::string InstallationFolder() = 0;

  // The whole file as bytes; nothing when it does not exist or cannot be opened.
  virtual std::optional<std::string> ReadFile(const std::string& path) = 0;
  // Puts new content in place of an existing file by way of a work file beside it: the old file stays whole, with its
  // permissions, until the new one is. False when the file does not exist or cannot be replaced.
  virtual bool ReplaceContents(const std::string& path, const std::string& work_path, const std::string& bytes) = 0;

  // Writes a file whole, in place of any other. Error 70 when it is open elsewhere or must not be written, 76 when its
  // folder is missing, 61 when the disk is full, 57 for whatever else the system says.
  virtual void WriteFile(const std::string& path, const std::string& bytes) = 0;

  // Adds to the end of a file, and creates it when it is missing. False when that failed.
  virtual bool AppendFile(const std::string& path, const std::string& bytes) = 0;

  virtual base::Locale UserLocale() = 0;
};

}  // namespace quenta::ports
