// The server's own errors: message numbers and texts, and the automation numbers they arrive under.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quenta::sandbox {

// The server's message numbers that the sandbox raises.
namespace message {
inline constexpr int kSandboxLimit = 0;  // something the real server would do and the sandbox cannot
inline constexpr int kSyntax = 102;
inline constexpr int kUnclosedQuote = 105;
inline constexpr int kTooFewValues = 109;
inline constexpr int kTooManyValues = 110;
inline constexpr int kColumnNotUnique = 264;
inline constexpr int kWrongColumnCount = 213;
inline constexpr int kTypeClash = 206;
inline constexpr int kUnequalUnion = 205;
inline constexpr int kInvalidColumn = 207;
inline constexpr int kInvalidObject = 208;
inline constexpr int kAmbiguousColumn = 209;
inline constexpr int kUnboundColumn = 4104;
inline constexpr int kUnknownFunction = 195;
inline constexpr int kSmallOverflow = 220;
inline constexpr int kMoneySyntax = 235;
inline constexpr int kDateSyntax = 241;
inline constexpr int kDateRange = 242;
inline constexpr int kTextOverflow = 248;
inline constexpr int kConversionFailed = 245;
inline constexpr int kImplicitConversion = 257;
inline constexpr int kLargeText = 306;
inline constexpr int kIncompatibleTypes = 402;
inline constexpr int kNullNotAllowed = 515;
inline constexpr int kConstraintConflict = 547;
inline constexpr int kOrderInView = 1033;
inline constexpr int kDeadlock = 1205;
inline constexpr int kLockTimeout = 1222;
inline constexpr int kDuplicateIndexKey = 2601;
inline constexpr int kDuplicateKey = 2627;
inline constexpr int kTruncated = 2628;
inline constexpr int kObjectExists = 2714;
inline constexpr int kNoProcedure = 2812;
inline constexpr int kCannotDrop = 3701;
inline constexpr int kCannotOpenCatalogue = 4060;
inline constexpr int kNotGrouped = 8120;
inline constexpr int kConvertingError = 8114;
inline constexpr int kOverflow = 8115;
inline constexpr int kInvalidOperand = 8117;
inline constexpr int kDivideByZero = 8134;
inline constexpr int kTruncatedBefore2019 = 8152;
inline constexpr int kLoginFailed = 18456;
}  // namespace message

// What a client says when nobody answers where the server should be.
inline constexpr const char* kNoServer =
    "[DBNETLIB][ConnectionOpen (Connect()).]SQL Server does not exist or access denied.";

// And when a command has taken longer than CommandTimeout allows.
inline constexpr const char* kCommandTooLong = "Query timeout expired";

// A message of the server. what() is its text.
class ServerError : public std::runtime_error {
 public:
  ServerError(int number, const std::string& text) : std::runtime_error(text), number_(number) {}
  int number() const noexcept { return number_; }

 private:
  int number_;
};

// The HRESULT, as a signed number, under which SQLOLEDB hands a message on; kDataAccess for those without a special
// one.
std::int32_t AutomationNumber(int message_number);

// Whether the server, after this message, ends the batch and rolls back the whole transaction instead of only the
// statement. Failed conversions do so: afterwards @@TRANCOUNT is 0 though the client never ended its transaction.
bool AbortsTransaction(int message_number);

// A message on its way through SQLite, which carries only text: "#245#Conversion failed ...".
std::string EncodeServerError(const ServerError& error);
std::optional<ServerError> DecodeServerError(std::string_view text);

}  // namespace quenta::sandbox
