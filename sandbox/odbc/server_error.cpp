#include "sandbox/odbc/server_error.h"

#include <charconv>

#include "base/error.h"
#include "base/text.h"

namespace quenta::sandbox {

std::int32_t AutomationNumber(int message_number) {
  constexpr std::int32_t kErrorsInCommand = static_cast<std::int32_t>(0x80040E14);
  constexpr std::int32_t kCannotConvert = static_cast<std::int32_t>(0x80040E07);
  constexpr std::int32_t kIntegrity = static_cast<std::int32_t>(0x80040E2F);
  constexpr std::int32_t kTimeLimit = static_cast<std::int32_t>(0x80040E31);
  constexpr std::int32_t kNoTable = static_cast<std::int32_t>(0x80040E37);
  constexpr std::int32_t kAuthentication = static_cast<std::int32_t>(0x80040E4D);
  constexpr std::int32_t kDataOverflow = static_cast<std::int32_t>(0x80040E57);
  switch (message_number) {
    case message::kSandboxLimit:
    case message::kCannotOpenCatalogue:
    case message::kDeadlock:
      return base::error_number::kDataAccess;
    case message::kInvalidObject:
    case message::kCannotDrop:
      return kNoTable;
    case message::kNullNotAllowed:
    case message::kConstraintConflict:
    case message::kDuplicateIndexKey:
    case message::kDuplicateKey:
      return kIntegrity;
    case message::kTruncated:
    case message::kTruncatedBefore2019:
    case message::kSmallOverflow:
    case message::kOverflow:
    case message::kTextOverflow:
      return kDataOverflow;
    case message::kMoneySyntax:
    case message::kDateSyntax:
    case message::kDateRange:
    case message::kConversionFailed:
    case message::kConvertingError:
      return kCannotConvert;
    case message::kLockTimeout:
      return kTimeLimit;
    case message::kLoginFailed:
      return kAuthentication;
    default:
      return kErrorsInCommand;
  }
}

bool AbortsTransaction(int message_number) {
  switch (message_number) {
    case message::kDateSyntax:
    case message::kDateRange:
    case message::kConversionFailed:
    case message::kConvertingError:
    case message::kDeadlock:
      return true;
    default:
      return false;
  }
}

std::string EncodeServerError(const ServerError& error) {
  return "#" + base::DecimalText(error.number()) + "#" + error.what();
}

std::optional<ServerError> DecodeServerError(std::string_view text) {
  if (text.empty() || text[0] != '#') return std::nullopt;
  const std::size_t end = text.find('#', 1);
  if (end == std::string_view::npos) return std::nullopt;
  int number = 0;
  const auto [stop, error] = std::from_chars(text.data() + 1, text.data() + end, number);
  if (error != std::errc() || stop != text.data() + end) return std::nullopt;
  return ServerError(number, std::string(text.substr(end + 1)));
}

}  // namespace quenta::sandbox
