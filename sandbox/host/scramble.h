// How a host hides a password before it hands it to the component (docs/scrambling.md describes the scheme).
#pragma once

#include <string>
#include <string_view>

namespace quenta::sandbox::host {

// Hides text (UTF-8; lone surrogates as three bytes each) from a glance, as upper-case hexadecimal pairs. This is no
// encryption: whoever knows the scheme reads it. Empty text stays empty.
std::string Scramble(std::string_view text);

// The text that was scrambled; hexadecimal digits of either case. Throws std::invalid_argument on anything else.
std::string Unscramble(std::string_view scrambled);

}  // namespace quenta::sandbox::host
