// ADODB.Connection of the sandbox: ADO's behaviour with SQLOLEDB, over the sandbox's own database.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ports/database.h"
#include "sandbox/com/ado_errors.h"
#include "sandbox/com/automation_object.h"

namespace quenta::sandbox::com {

class RecordsetObject;

class ConnectionObject final : public Automation<ConnectionObject> {
 public:
  ConnectionObject();
  ~ConnectionObject() override;

  static std::span<const Member<ConnectionObject>> Members();

  // _Connection is answered with IDispatch: callers of its function table are not served.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;

  // Open recordsets, which close with their connection. A recordset holds its connection, never the other way round.
  void Attach(RecordsetObject& recordset) { recordsets_.push_back(&recordset); }
  void Detach(RecordsetObject& recordset) { std::erase(recordsets_, &recordset); }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Connection"; }

 private:
  Variant GetConnectionString(const Arguments&);
  void PutConnectionString(const Arguments& arguments);
  Variant GetConnectionTimeout(const Arguments&);
  void PutConnectionTimeout(const Arguments& arguments);
  Variant GetErrors(const Arguments&);
  Variant GetCursorLocation(const Arguments&);
  void PutCursorLocation(const Arguments& arguments);
  Variant GetState(const Arguments&);

  Variant Open(const Arguments& arguments);
  Variant Close(const Arguments&);
  Variant Cancel(const Arguments&);
  Variant Execute(const Arguments& arguments);
  Variant BeginTrans(const Arguments&);
  Variant CommitTrans(const Arguments&);
  Variant RollbackTrans(const Arguments&);

  // The state now; when an open in the background has just failed, its error enters the collection.
  ports::ConnectionState Settle();
  void RequireClosed();
  void RequireOpen();
  bool HasPendingResult() const;
  void CloseRecordsets();

  // Runs what may fail at the provider: its error enters the collection on the way out.
  template <typename Action>
  auto AtProvider(Action action) -> decltype(action());
  [[noreturn]] void FailAtProvider(const char* text);

  std::unique_ptr<ports::Connection> connection_;
  ComPtr<ErrorList> errors_;
  std::vector<RecordsetObject*> recordsets_;
  bool opening_ = false;              // an open in the background whose end nobody has seen yet
  bool in_transaction_ = false;       // between BeginTrans and its end, whatever the server made of it
  std::int32_t cursor_location_ = 2;  // adUseServer
};

}  // namespace quenta::sandbox::com
