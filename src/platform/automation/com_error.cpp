#include "platform/automation/com_error.h"

#include <memory>

#include "base/error.h"
#include "platform/automation/bstr.h"

namespace quenta::platform {
namespace {

struct LocalFreeDeleter {
  void operator()(wchar_t* text) const noexcept { LocalFree(text); }
};

std::string Hexadecimal(std::uint32_t number) {
  std::string digits = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) digits += "0123456789ABCDEF"[number >> shift & 0xF];
  return digits;
}

}  // namespace

std::int32_t ErrorNumber(HRESULT result) noexcept {
  if (HRESULT_SEVERITY(result) == SEVERITY_ERROR && HRESULT_FACILITY(result) == FACILITY_CONTROL) {
    return HRESULT_CODE(result);
  }
  switch (result) {
    case DISP_E_OVERFLOW:
      return base::error_number::kOverflow;
    case E_OUTOFMEMORY:
      return base::error_number::kOutOfMemory;
    case DISP_E_TYPEMISMATCH:
      return base::error_number::kTypeMismatch;
    case E_ACCESSDENIED:
    case HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION):
      return base::error_number::kPermissionDenied;
    case HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND):
      return base::error_number::kFileNotFound;
    default:
      return static_cast<std::int32_t>(result);
  }
}

std::string SystemText(HRESULT result) {
  wchar_t* raw = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&raw), 0, nullptr);
  const std::unique_ptr<wchar_t, LocalFreeDeleter> owner(raw);
  std::string text = length == 0 ? std::string() : base::FromUtf16(Utf16View(raw, length));
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.pop_back();
  return text.empty() ? Hexadecimal(static_cast<std::uint32_t>(result)) : text;
}

void ThrowIfFailed(HRESULT result, const char* what) {
  if (FAILED(result)) throw base::Error(ErrorNumber(result), std::string(what) + ": " + SystemText(result));
}

}  // namespace quenta::platform
