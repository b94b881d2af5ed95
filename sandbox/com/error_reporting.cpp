#include "sandbox/com/error_reporting.h"

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

#include "platform/automation/bstr.h"

namespace quenta::sandbox::com {
namespace {

struct HandleCloser {
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

std::wstring FileName() {
  std::wstring name(MAX_PATH, L'\0');
  DWORD length = GetEnvironmentVariableW(L"QUENTA_SANDBOX_REPORTS", name.data(), static_cast<DWORD>(name.size()));
  if (length > name.size()) {
    name.resize(length);
    length = GetEnvironmentVariableW(L"QUENTA_SANDBOX_REPORTS", name.data(), length);
  }
  if (length > 0) {
    name.resize(length);
    return name;
  }
  name.assign(MAX_PATH + 1, L'\0');
  name.resize(GetTempPathW(static_cast<DWORD>(name.size()), name.data()));
  return name + L"quenta_reports.log";
}

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '\t':
        escaped += "\\t";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\\':
        escaped += "\\\\";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Described(const Arguments& arguments, std::size_t index) {
  if (arguments.Object(index)) return "(object)";
  if (!arguments.Has(index) || arguments.At(index).vt == VT_DISPATCH) return "(nothing)";
  return Escaped(TextOf(arguments.At(index)));
}

Variant AppendCall(const char* method, const Arguments& arguments) {
  std::string line(method);
  for (std::size_t i = 0; i < arguments.count(); ++i) line += '\t' + Described(arguments, i);
  line += '\n';
  // Opened for appending only: lines of several processes do not overwrite each other.
  const HANDLE raw = CreateFileW(FileName().c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                 OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (raw == INVALID_HANDLE_VALUE) return {};
  const std::unique_ptr<std::remove_pointer_t<HANDLE>, HandleCloser> file(raw);
  DWORD written = 0;
  WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  return {};
}

}  // namespace

std::span<const Member<ErrorReportingObject>> ErrorReportingObject::Members() {
  using Self = ErrorReportingObject;
  static constexpr Member<Self> kMembers[] = {
      {L"Report", 1, kMethod, {5, 5}, &Self::Report},
      {L"SQLReconnectShow", 2, kMethod, {1, 1}, &Self::SQLReconnectShow},
      {L"SQLReconnectShutdown", 3, kMethod, {1, 1}, &Self::SQLReconnectShutdown},
      {L"SQLReconnectShowBad", 4, kMethod, {1, 1}, &Self::SQLReconnectShowBad},
      {L"SQLReconnectShowOK", 5, kMethod, {1, 1}, &Self::SQLReconnectShowOK},
  };
  return kMembers;
}

Variant ErrorReportingObject::Report(const Arguments& arguments) {
  return AppendCall("Report", arguments);
}
Variant ErrorReportingObject::SQLReconnectShow(const Arguments& arguments) {
  return AppendCall("SQLReconnectShow", arguments);
}
Variant ErrorReportingObject::SQLReconnectShutdown(const Arguments& arguments) {
  return AppendCall("SQLReconnectShutdown", arguments);
}
Variant ErrorReportingObject::SQLReconnectShowBad(const Arguments& arguments) {
  return AppendCall("SQLReconnectShowBad", arguments);
}
Variant ErrorReportingObject::SQLReconnectShowOK(const Arguments& arguments) {
  return AppendCall("SQLReconnectShowOK", arguments);
}

}  // namespace quenta::sandbox::com
