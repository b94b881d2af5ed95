// Hand-written stand-ins for the outside, for faults that no real one produces on demand.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "controls/form.h"
#include "ports/database.h"
#include "ports/desktop.h"
#include "ports/error_reporting.h"
#include "ports/form_host.h"
#include "ports/settings.h"
#include "support/faults.h"
#include "support/locales.h"

namespace quenta::tests {

// Counts its calls with a plan where it is given one. A call that is struck does what its port says of a failure: it
// answers so, throws, or nothing happens. Those that must not fail (closing a window, stopping a timer) are no calls of
// the plan's.
class Fallible {
 public:
  explicit Fallible(CallTo port) : port_(port) {}

  FaultPlan* faults = nullptr;

  bool Strikes() noexcept { return faults != nullptr && faults->Strikes(port_); }
  void FailIfStruck(std::int32_t error) {
    if (Strikes()) throw base::Error(error, "Injected failure");
  }

 private:
  CallTo port_;
};

class FakeErrorReporting final : public ports::ErrorReporting, public Fallible {
 public:
  FakeErrorReporting() : Fallible(CallTo::kReporting) {}
  bool Report(const ports::ErrorReport& report) noexcept override {
    if (Strikes()) {
      ++lost;
      return false;
    }
    reports.push_back(report);
    return true;
  }
  void SQLReconnectShow(controls::Form* form) noexcept override {
    Note("SQLReconnectShow");
    reconnecting = true;
    shown_over = form;
  }
  void SQLReconnectShutdown(controls::Form*) noexcept override { Note("SQLReconnectShutdown"); }
  void SQLReconnectShowBad(controls::Form*) noexcept override { Note("SQLReconnectShowBad"); }
  void SQLReconnectShowOK(controls::Form*) noexcept override { Note("SQLReconnectShowOK"); }
  void ReleaseReconnect() noexcept override { reconnecting = false; }

  // Whether anything was reported, delivered or not.
  bool told() const noexcept { return lost > 0 || !reports.empty(); }

  std::vector<ports::ErrorReport> reports;
  int lost = 0;  // reports that could not be delivered
  std::vector<std::string> calls;
  bool reconnecting = false;             // an object of a reconnect is held
  controls::Form* shown_over = nullptr;  // what the last reconnect was shown with

 private:
  void Note(const char* call) noexcept {
    if (!Strikes()) calls.emplace_back(call);
  }
};

// A registry and a file system in memory. Values are keyed "HKEY_LOCAL_MACHINE\key:name".
class FakeSettings final : public ports::Settings, public Fallible {
 public:
  FakeSettings() : Fallible(CallTo::kSettings) {}
  std::optional<std::string> ReadRegistryText(ports::RootKey root, const std::string& subkey,
                                              const std::string& value_name) override {
    if (Strikes() || root != 0x80000002U) return std::nullopt;
    const auto found = registry.find(subkey + ":" + value_name);
    return found == registry.end() ? std::nullopt : std::optional(found->second);
  }
  std::vector<std::string> EnumerateSubkeys(ports::RootKey, const std::string& subkey) override {
    return Strikes() ? std::vector<std::string>{} : subkeys[subkey];
  }
  std::string SpecialFolder(int number) override { return Strikes() || number != 35 ? "" : "C:\\ProgramData"; }
  std::string TempFolder() override { return Strikes() ? "" : "C:\\Temp"; }
  std::string InstallationFolder() override { return Strikes() ? "" : "C:\\Quenta"; }
  std::optional<std::string> ReadFile(const std::string& path) override {
    if (Strikes()) return std::nullopt;
    const auto found = files.find(path);
    return found == files.end() ? std::nullopt : std::optional(found->second);
  }
  bool ReplaceContents(const std::string& path, const std::string&, const std::string& bytes) override {
    if (Strikes() || files.find(path) == files.end()) return false;
    files[path] = bytes;
    return true;
  }
  void WriteFile(const std::string& path, const std::string& bytes) override {
    if (Strikes()) throw base::Error(base::error_number::kPermissionDenied, "Cannot write.");
    if (const auto error = write_errors.find(path); error != write_errors.end()) {
      throw base::Error(error->second, "Cannot write.");
    }
    files[path] = bytes;
  }
  bool AppendFile(const std::string& path, const std::string& bytes) override {
    if (Strikes()) return false;
    files[path] += bytes;
    return true;
  }
  base::Locale UserLocale() override {
    FailIfStruck(base::error_number::kOutOfMemory);
    return locale;
  }

  std::map<std::string, std::string> registry;
  std::map<std::string, std::vector<std::string>> subkeys;
  std::map<std::string, std::string> files;
  std::map<std::string, std::int32_t> write_errors;  // numbers of the errors that writing these paths ends with
  base::Locale locale = PortugueseLocale();
};

// Answers questions as told and lets time pass in steps.
class FakeDesktop final : public ports::Desktop, public Fallible {
 public:
  FakeDesktop() : Fallible(CallTo::kDesktop) {}
  ports::Answer Ask(const ports::Message& message, controls::Form*) override {
    FailIfStruck(base::error_number::kOutOfMemory);
    messages.push_back(message);
    if (while_asking) while_asking();
    return answer;
  }
  bool OpenDocument(const std::string& path, const std::string&, controls::Form*) override {
    opened.push_back(path);
    return !Strikes();
  }
  std::optional<std::string> AskFileToSave(const ports::FileToSave& file, controls::Form*) override {
    FailIfStruck(base::error_number::kOutOfMemory);
    asked_files.push_back(file);
    return file_to_save;
  }
  bool CopyText(const std::string& text) override {
    if (Strikes()) return false;
    copied = text;
    return true;
  }
  bool PumpMessages() override {
    ++pumps;
    std::this_thread::sleep_for(pump_time);
    if (while_pumping) while_pumping();
    const bool goes_on = !Strikes() && pumps < quits_after;
    quitting = quitting || !goes_on;
    return goes_on;
  }
  std::chrono::steady_clock::time_point Now() override { return std::chrono::steady_clock::now() + skipped; }

  ports::Answer answer = ports::Answer::kOk;
  std::vector<ports::Message> messages;
  std::vector<std::string> opened;
  std::vector<ports::FileToSave> asked_files;
  std::optional<std::string> file_to_save;  // what the user answers
  std::string copied;
  int pumps = 0;
  int quits_after = 1000;                 // pumps until the host is quitting
  bool quitting = false;                  // it was told so
  std::chrono::milliseconds pump_time{};  // how long one takes; none where time is not real
  std::chrono::milliseconds skipped{};    // by how much the clock is ahead of the real one
  std::function<void()> while_asking;
  std::function<void()> while_pumping;
};

// Windows that exist only in name.
class FakeFormHost final : public ports::FormHost, public Fallible {
 public:
  FakeFormHost() : Fallible(CallTo::kFormHost) {}
  void Show(controls::Form& form) override {
    FailIfStruck(base::error_number::kOutOfMemory);
    shown[&form] = form.shared_from_this();
  }
  void Close(controls::Form& form) override { shown.erase(&form); }
  void SetTopmost(controls::Form&, bool topmost) override {
    if (!Strikes()) window_order.push_back(topmost);
  }
  void Focus(controls::Form&, const char* control_name) override {
    if (!Strikes()) focused = control_name;
  }
  void PopupMenu(controls::Form&, const char* menu_name) override {
    if (!Strikes()) popped_up.emplace_back(menu_name);
  }
  void StartTimer(ports::TimerTarget& target, int) override {
    FailIfStruck(base::error_number::kOutOfMemory);
    StopTimer(target);
    timers.push_back(&target);
  }
  void StopTimer(ports::TimerTarget& target) noexcept override { std::erase(timers, &target); }

  // Lets the interval of every timer pass once, in the order in which they were started.
  void PassTime() {
    for (ports::TimerTarget* target : std::vector<ports::TimerTarget*>(timers)) {
      if (std::find(timers.begin(), timers.end(), target) != timers.end()) target->OnTimer();
    }
  }

  std::map<controls::Form*, std::shared_ptr<controls::Form>> shown;
  std::vector<bool> window_order;
  std::string focused;
  std::vector<std::string> popped_up;
  std::vector<ports::TimerTarget*> timers;
};

// How a server of FakeDatabase behaves when a connection to it is opened.
struct FakeServer {
  int steps_to_answer = 1;  // times State() says "connecting" before the open ends
  bool answers = true;
};

// Servers by data source name; users by name and clear password. Queries are answered by a function.
class FakeDatabase final : public ports::Database, public Fallible {
 public:
  FakeDatabase() : Fallible(CallTo::kQuery) {}
  std::unique_ptr<ports::Connection> CreateConnection() override;

  std::map<std::string, FakeServer> servers;
  std::map<std::string, std::string> users;
  std::function<ports::RowSet(const std::string& sql)> on_query = [](const std::string&) { return ports::RowSet(); };
  std::vector<std::string> opened;  // connection strings, in the order of their opens
  int open_connections = 0;
};

class FakeConnection final : public ports::Connection {
 public:
  explicit FakeConnection(FakeDatabase& database) : database_(database) {}
  ~FakeConnection() override { LetGo(); }

  ports::ConnectionState State() override {
    Call();
    if (state_ == ports::ConnectionState::kConnecting && steps_left_-- <= 0) EndOpen();
    return state_;
  }
  std::string ConnectionString() override { return Call(), connection_string_; }
  void SetConnectionString(const std::string& text) override { Call(), connection_string_ = text; }
  int ConnectionTimeout() override { return Call(), timeout_; }
  void SetConnectionTimeout(int seconds) override { Call(), timeout_ = seconds; }
  void Open() override {
    OpenAsync();
    EndOpen();
    ThrowIfOpenFailed();
  }
  void OpenAsync() override {
    Call();
    database_.opened.push_back(connection_string_);
    state_ = ports::ConnectionState::kConnecting;
    steps_left_ = database_.servers[Part("Data Source")].steps_to_answer;
  }
  void ThrowIfOpenFailed() override {
    Call();
    if (state_ == ports::ConnectionState::kClosed)
      throw base::Error(base::error_number::kDataAccess, "Cannot connect.");
  }
  void Close() override {
    Call();
    LetGo();
  }
  ports::RowSet Query(const std::string& sql) override {
    Call();
    if (state_ != ports::ConnectionState::kOpen) {
      throw base::Error(base::error_number::kClosedConnection, "The connection is closed.");
    }
    return database_.on_query(sql);
  }
  void Execute(const std::string& sql) override { Query(sql); }
  void BeginTransaction() override { Call(); }
  void CommitTransaction() override { Call(); }
  void RollbackTransaction() override { Call(); }

 private:
  void Call() { database_.FailIfStruck(base::error_number::kDataAccess); }
  void LetGo() noexcept {
    if (state_ == ports::ConnectionState::kOpen) --database_.open_connections;
    state_ = ports::ConnectionState::kClosed;
  }
  // The value of a keyword, which in these tests is never quoted.
  std::string Part(const std::string& keyword) const {
    const std::size_t at = connection_string_.find(";" + keyword + "=");
    if (at == std::string::npos) return {};
    const std::size_t start = at + keyword.size() + 2;
    return connection_string_.substr(start, connection_string_.find(';', start) - start);
  }
  void EndOpen() {
    const auto user = database_.users.find(Part("User ID"));
    const bool good = database_.servers[Part("Data Source")].answers && user != database_.users.end() &&
                      user->second == Part("Password");
    state_ = good ? ports::ConnectionState::kOpen : ports::ConnectionState::kClosed;
    if (good) ++database_.open_connections;
  }

  FakeDatabase& database_;
  std::string connection_string_;
  int timeout_ = 15;
  ports::ConnectionState state_ = ports::ConnectionState::kClosed;
  int steps_left_ = 0;
};

inline std::unique_ptr<ports::Connection> FakeDatabase::CreateConnection() {
  FailIfStruck(base::error_number::kDataAccess);
  return std::make_unique<FakeConnection>(*this);
}

}  // namespace quenta::tests
