// The reversible scrambling that the suite uses for the passwords it passes on and stores. It hides a text from a
// glance; it is no encryption. docs/scrambling.md describes it for authors of hosts.
#pragma once

#include <string>
#include <string_view>

namespace quenta::session {

// Upper-case hexadecimal text; empty stays empty.
std::string Scramble(std::string_view text);

// The text that was scrambled; empty when the argument is no scrambled text.
std::string Unscramble(std::string_view scrambled);

}  // namespace quenta::session
