// Whole files at once, as the settings and the windows' memory need them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenta::platform {

// The whole file; nothing when it does not exist or cannot be opened. Others may go on reading and writing it.
std::optional<std::string> ReadWholeFile(const std::wstring& path);

// Creates or overwrites the file, through to the disk. False when it cannot be written; it may then be incomplete.
bool WriteWholeFile(const std::wstring& path, std::string_view bytes) noexcept;

// Adds to the end of the file, and creates it when it is missing; others may read it meanwhile. False when it cannot be
// written.
bool AppendToFile(const std::wstring& path, std::string_view bytes) noexcept;

}  // namespace quenta::platform
