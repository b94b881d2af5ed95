// The in-process server: what the four exports of the library do, and the one component that all its objects share.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <atomic>
#include <memory>

#include "platform/automation/com_ptr.h"
#include "platform/com/composition.h"

namespace quenta::platform {

// One for each loaded library. It outlives every object it makes.
//
// The component belongs to the single-threaded apartment that first asks for a General, because the shared connection
// does. It is built then, and ends with the apartment's COM or with the library, whichever comes first. No lock is held
// while it is built or ends: either may let messages through, and with them other calls.
class Server {
 public:
  // The module carries the type library; compose builds the component on first use.
  Server(HMODULE module, Compose compose);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // DllGetClassObject: the class object of General. CLASS_E_CLASSNOTAVAILABLE for any other class.
  HRESULT GetClassObject(REFCLSID class_id, REFIID iid, void** object) noexcept;

  // DllCanUnloadNow: S_OK when nothing of the library is in use any more. The component then ends at once, because
  // nothing may be left behind that points into the library. Only the apartment that owns the component can do that:
  // any other thread is told S_FALSE as long as there is a component.
  HRESULT CanUnload() noexcept;

  // A new General. RPC_E_WRONG_THREAD outside the owning apartment and in any multi-threaded one,
  // CO_E_NOTINITIALIZED where COM is not running, CO_E_SERVER_STOPPING while the component ends.
  HRESULT CreateGeneral(REFIID iid, void** object) noexcept;

  // Ends the component now: its windows are closed, its connection is released. The next General builds a new one.
  // Called on the owning thread.
  void End() noexcept;

  bool OnOwningThread() const noexcept { return owner_ == GetCurrentThreadId(); }
  HMODULE Module() const noexcept { return module_; }

  // Objects alive and locks held by clients; each keeps the library loaded.
  void AddUse() noexcept { ++uses_; }
  void DropUse() noexcept { --uses_; }

 private:
  HRESULT Claim() noexcept;
  HRESULT ComposeAndWatch() noexcept;

  const HMODULE module_;
  const Compose compose_;
  std::atomic<long> uses_{0};
  // 0 while there is no component. Changed by the owning thread only, or by the one that becomes it. All that follows
  // is the owning thread's.
  std::atomic<DWORD> owner_{0};
  int claims_ = 0;  // in progress; more than one where a creation was entered again from a message
  bool ending_ = false;
  std::shared_ptr<Composition> composition_;
  ComPtr<IUnknown> spy_;
  ULARGE_INTEGER spy_cookie_{};
};

// Counts one use of the library for as long as it lives.
class ServerUse {
 public:
  explicit ServerUse(Server& server) noexcept : server_(server) { server_.AddUse(); }
  ~ServerUse() { server_.DropUse(); }
  ServerUse(const ServerUse&) = delete;
  ServerUse& operator=(const ServerUse&) = delete;

  Server& Get() const noexcept { return server_; }

 private:
  Server& server_;
};

}  // namespace quenta::platform
