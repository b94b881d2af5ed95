#include "sandbox/odbc/sql_tokens.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "sandbox/odbc/code_page.h"
#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Letters beyond ASCII may stand in names ("preço"); every byte of theirs is above 0x7F.
bool StartsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' ||
         static_cast<unsigned char>(c) > 0x7F;
}

bool ContinuesWord(char c) {
  return StartsWord(c) || IsDigit(c) || c == '$' || c == '@';
}

class Tokenizer {
 public:
  explicit Tokenizer(std::string_view sql) : sql_(sql) {}

  std::vector<Token> Run() {
    std::vector<Token> tokens;
    for (SkipBlanks(); at_ < sql_.size(); SkipBlanks()) tokens.push_back(Next());
    tokens.emplace_back();
    return tokens;
  }

 private:
  char At(std::size_t index) const { return index < sql_.size() ? sql_[index] : '\0'; }

  void SkipBlanks() {
    while (at_ < sql_.size()) {
      const char c = sql_[at_];
      if (c == ' ' || (c >= '\t' && c <= '\r')) {
        ++at_;
      } else if (c == '-' && At(at_ + 1) == '-') {
        at_ = std::min(sql_.find('\n', at_), sql_.size());
      } else if (c == '/' && At(at_ + 1) == '*') {
        SkipComment();
      } else {
        return;
      }
    }
  }

  void SkipComment() {
    int depth = 0;
    do {
      if (at_ >= sql_.size()) throw ServerError(message::kSyntax, "Missing end comment mark '*/'.");
      if (sql_[at_] == '/' && At(at_ + 1) == '*') {
        ++depth;
        at_ += 2;
      } else if (sql_[at_] == '*' && At(at_ + 1) == '/') {
        --depth;
        at_ += 2;
      } else {
        ++at_;
      }
    } while (depth > 0);
  }

  // In a literal, a backslash before a line end continues the line, and both go: their length, or 0.
  std::size_t Continuation() const {
    const std::string_view rest = sql_.substr(at_);
    return rest.starts_with("\\\n") ? 2 : rest.starts_with("\\\r\n") ? 3 : 0;
  }

  // Text up to the closing sign; the sign doubled stands for itself.
  std::string Quoted(char close) {
    std::string text;
    for (++at_; at_ < sql_.size(); ++at_) {
      while (close == '\'' && Continuation() > 0) at_ += Continuation();
      if (at_ == sql_.size()) break;
      if (sql_[at_] == close) {
        if (At(at_ + 1) != close) {
          ++at_;
          return text;
        }
        ++at_;
      }
      text += sql_[at_];
    }
    throw ServerError(message::kUnclosedQuote, "Unclosed quotation mark after the character string '" + text + "'.");
  }

  std::string Span(std::size_t end) {
    std::string text(sql_.substr(at_, end - at_));
    at_ = end;
    return text;
  }

  Token Next() {
    const char c = sql_[at_];
    if (c == '\'') return {TokenKind::kText, Narrowed(Quoted('\''))};
    if ((c == 'N' || c == 'n') && At(at_ + 1) == '\'') {
      ++at_;
      return {TokenKind::kText, Quoted('\''), true};
    }
    if (c == '[') return {TokenKind::kQuotedName, Quoted(']')};
    if (c == '"') return {TokenKind::kQuotedName, Quoted('"')};
    if (IsDigit(c) || (c == '.' && IsDigit(At(at_ + 1)))) return Number();
    if (c == '@') {
      std::size_t end = at_;
      while (end < sql_.size() && ContinuesWord(sql_[end])) ++end;
      return {TokenKind::kVariable, Span(end)};
    }
    if (StartsWord(c)) {
      std::size_t end = at_;
      while (end < sql_.size() && ContinuesWord(sql_[end])) ++end;
      return {TokenKind::kWord, Span(end)};
    }
    const std::string_view two = sql_.substr(at_, 2);
    constexpr std::array<std::string_view, 6> kDoubleSigns{"<=", ">=", "<>", "!=", "!<", "!>"};
    const bool is_double = std::find(kDoubleSigns.begin(), kDoubleSigns.end(), two) != kDoubleSigns.end();
    return {TokenKind::kSign, Span(at_ + (is_double ? 2 : 1))};
  }

  Token Number() {
    std::size_t end = at_;
    while (IsDigit(At(end))) ++end;
    if (At(end) == '.') ++end;
    while (IsDigit(At(end))) ++end;
    if (At(end) == 'e' || At(end) == 'E') {
      std::size_t exponent = end + 1;
      if (At(exponent) == '+' || At(exponent) == '-') ++exponent;
      while (IsDigit(At(exponent))) ++exponent;
      if (IsDigit(At(exponent - 1))) end = exponent;
    }
    return {TokenKind::kNumber, Span(end)};
  }

  std::string_view sql_;
  std::size_t at_ = 0;
};

constexpr std::string_view kReserved =
    " ADD ALL ALTER AND ANY AS ASC AUTHORIZATION BACKUP BEGIN BETWEEN BREAK BROWSE BULK BY CASCADE CASE CHECK "
    "CHECKPOINT "
    "CLOSE CLUSTERED COALESCE COLLATE COLUMN COMMIT COMPUTE CONSTRAINT CONTAINS CONTAINSTABLE CONTINUE CONVERT CREATE "
    "CROSS CURRENT CURRENT_DATE CURRENT_TIME CURRENT_TIMESTAMP CURRENT_USER CURSOR DATABASE DBCC DEALLOCATE DECLARE "
    "DEFAULT DELETE DENY DESC DISK DISTINCT DISTRIBUTED DOUBLE DROP DUMP ELSE END ERRLVL ESCAPE EXCEPT EXEC EXECUTE "
    "EXISTS EXIT EXTERNAL FETCH FILE FILLFACTOR FOR FOREIGN FREETEXT FREETEXTTABLE FROM FULL FUNCTION GOTO GRANT GROUP "
    "HAVING HOLDLOCK IDENTITY IDENTITY_INSERT IDENTITYCOL IF IN INDEX INNER INSERT INTERSECT INTO IS JOIN KEY KILL "
    "LEFT "
    "LIKE LINENO LOAD MERGE NATIONAL NOCHECK NONCLUSTERED NOT NULL NULLIF OF OFF OFFSETS ON OPEN OPENDATASOURCE "
    "OPENQUERY "
    "OPENROWSET OPENXML OPTION OR ORDER OUTER OVER PERCENT PIVOT PLAN PRECISION PRIMARY PRINT PROC PROCEDURE PUBLIC "
    "RAISERROR READ READTEXT RECONFIGURE REFERENCES REPLICATION RESTORE RESTRICT RETURN REVERT REVOKE RIGHT ROLLBACK "
    "ROWCOUNT ROWGUIDCOL RULE SAVE SCHEMA SELECT SESSION_USER SET SETUSER SHUTDOWN SOME STATISTICS SYSTEM_USER TABLE "
    "TABLESAMPLE TEXTSIZE THEN TO TOP TRAN TRANSACTION TRIGGER TRUNCATE TSEQUAL UNION UNIQUE UNPIVOT UPDATE UPDATETEXT "
    "USE USER VALUES VARYING VIEW WAITFOR WHEN WHERE WHILE WITH WRITETEXT ";

}  // namespace

std::vector<Token> Tokenize(std::string_view sql) {
  return Tokenizer(sql).Run();
}

bool IsReserved(std::string_view word) {
  return kReserved.find(" " + base::ToUpper(word) + " ") != std::string_view::npos;
}

}  // namespace quenta::sandbox
