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

// Moves the file at work into the place of the one at path, which keeps its name backup meanwhile: 0, or the system's
// error, after which each of them may stand under any of the names.
using ReplaceCall = unsigned long (*)(const std::wstring& path, const std::wstring& work, const std::wstring& backup);
unsigned long ReplaceByTheSystem(const std::wstring& path, const std::wstring& work,
                                 const std::wstring& backup) noexcept;

// Puts new content in place of an existing file, which keeps its permissions and attributes, by way of a work file
// beside it. Whatever fails half-way, the old or the new file stands at the path afterwards; where the system refuses
// even that, neither is deleted. False when the old one stays, or there is none.
bool ReplaceWholeFile(const std::wstring& path, const std::wstring& work, std::string_view bytes,
                      ReplaceCall replace = &ReplaceByTheSystem);

// Adds to the end of the file, and creates it when it is missing; others may read it meanwhile. False when it cannot be
// written.
bool AppendToFile(const std::wstring& path, std::string_view bytes) noexcept;

}  // namespace quenta::platform
