// Salted hashes of the sandbox's login passwords (PBKDF2 with HMAC-SHA-256).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quenta::sandbox {

using Sha256Digest = std::array<std::uint8_t, 32>;

Sha256Digest Sha256(std::string_view data);

// The derived key as 64 hexadecimal digits.
std::string HashPassword(std::string_view password, std::string_view salt, int iterations);

// 32 random hexadecimal digits.
std::string MakeSalt();

}  // namespace quenta::sandbox
