// UTF-8 text: conversion at the edges, trimming, replacing, and comparison without regard to case by the suite's rules.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quenta::base {

// UTF-16 to UTF-8 and back. Lone surrogates survive both ways (as three bytes, WTF-8); malformed UTF-8 becomes U+FFFD.
std::string FromUtf16(std::u16string_view text);
std::u16string ToUtf16(std::string_view text);

// Length in UTF-16 units, which is what windows, columns and BSTRs count.
std::size_t Utf16Length(std::string_view text);

// Without leading and trailing blanks (U+0020 only).
std::string_view Trim(std::string_view text);

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

// Upper and lower case of the letters A to Z and of the accented Latin letters (U+00C0 to U+017F); never Turkish,
// whatever the user's locale.
std::string ToUpper(std::string_view text);
std::string ToLower(std::string_view text);
bool EqualIgnoreCase(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);

// Texts whose keys compare byte by byte stand in the order of a Portuguese word list: without regard to case, letters
// with an accent beside those without.
std::string SortKey(std::string_view text);

// Decimal text of an integer: no locale, no separators.
std::string DecimalText(long long number);

}  // namespace quenta::base
