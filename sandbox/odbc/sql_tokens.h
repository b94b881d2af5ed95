// Splits T-SQL text into words, names, literals and signs; comments and blanks are dropped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenta::sandbox {

enum class TokenKind { kWord, kQuotedName, kNumber, kText, kVariable, kSign, kEnd };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  // The word as written, the name without its brackets or quotes, the literal's content with quotes undoubled.
  std::string text{};
  bool national = false;  // of a text literal: N'…'
};

// The last token is kEnd. A text literal without N has lost what Windows-1252 cannot hold, as on the server.
// Throws ServerError for an unclosed quote or comment.
std::vector<Token> Tokenize(std::string_view sql);

// Whether an unquoted word cannot be the name of a table, column or alias.
bool IsReserved(std::string_view word);

}  // namespace quenta::sandbox
