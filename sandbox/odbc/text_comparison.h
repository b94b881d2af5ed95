// Comparison of text as the server's default collation does it (Latin1_General_CI_AS): case and trailing blanks do not
// count, accents do.
#pragma once

#include <optional>
#include <string_view>

namespace quenta::sandbox {

// Less than, equal to or greater than 0. Letters sort by their base letter first ("ç" between "c" and "d"), then by
// accent; signs before digits before letters. Covers U+0000 to U+017F; beyond that, code points as they are.
// Hyphens and apostrophes weigh like other signs, where the server all but skips them.
int CompareText(std::string_view a, std::string_view b);

// The server's LIKE: "%", "_", "[a-f]", "[^a-f]", with an escape character if there is one. Trailing blanks of the text
// do not count, those of the pattern do.
bool MatchesPattern(std::string_view text, std::string_view pattern, std::optional<char32_t> escape);

}  // namespace quenta::sandbox
