// ADODB.Recordset of the sandbox, with its fields: a read-only result, held whole and read row by row or in blocks.
#pragma once

#include <optional>
#include <string>

#include "ports/row_set.h"
#include "sandbox/com/ado_connection.h"
#include "sandbox/com/automation_object.h"

namespace quenta::sandbox::com {

namespace cursor {
inline constexpr std::int32_t kServer = 2;  // adUseServer
inline constexpr std::int32_t kClient = 3;  // adUseClient
}  // namespace cursor

// ADO's CursorLocation, CursorType and LockType.
struct CursorChoice {
  std::int32_t location = cursor::kServer;
  std::int32_t type = 0;  // adOpenForwardOnly
  std::int32_t lock = 1;  // adLockReadOnly
};

class RecordsetObject final : public Automation<RecordsetObject> {
 public:
  RecordsetObject() = default;
  ~RecordsetObject() override;

  static std::span<const Member<RecordsetObject>> Members();

  // _Recordset is answered with IDispatch: callers of its function table are not served.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;

  // Becomes the open result of a statement; stays closed when the result has no columns.
  void Take(ComPtr<ConnectionObject> connection, std::string source, ports::RowSet rows, CursorChoice choice);
  // Closes because the connection did.
  void Abandon();
  // The server is still sending, and its connection can do nothing else: forward only, read only, on the server, and
  // not read to its end.
  bool IsPending() const;

  // For the fields. Throw base::Error 3704 when closed, 3021 without a current row.
  const ports::RowSet& Rows() const { return rows_; }
  const base::Value& CurrentValue(std::size_t column) const;
  std::size_t FindField(const VARIANT& key) const;

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Recordset"; }

 private:
  Variant GetAbsolutePosition(const Arguments&);
  Variant GetActiveConnection(const Arguments&);
  void PutActiveConnection(const Arguments& arguments);
  Variant GetBof(const Arguments&);
  Variant GetEof(const Arguments&);
  Variant GetCacheSize(const Arguments&);
  void PutCacheSize(const Arguments& arguments);
  Variant GetCursorType(const Arguments&);
  void PutCursorType(const Arguments& arguments);
  Variant GetCursorLocation(const Arguments&);
  void PutCursorLocation(const Arguments& arguments);
  Variant GetLockType(const Arguments&);
  void PutLockType(const Arguments& arguments);
  Variant GetEditMode(const Arguments&);
  Variant GetFields(const Arguments& arguments);
  Variant GetRecordCount(const Arguments&);
  Variant GetSource(const Arguments&);
  void PutSource(const Arguments& arguments);
  Variant GetState(const Arguments&);

  Variant Open(const Arguments& arguments);
  Variant Close(const Arguments&);
  Variant Requery(const Arguments&);
  Variant NextRecordset(const Arguments&);
  Variant Move(const Arguments& arguments);
  Variant MoveFirst(const Arguments&);
  Variant MoveLast(const Arguments&);
  Variant MoveNext(const Arguments&);
  Variant MovePrevious(const Arguments&);
  Variant GetRows(const Arguments& arguments);
  Variant RefuseUpdate(const Arguments&);

  // Takes the connection that an argument names: an object, Nothing, or a string to open one with.
  void Connect(const Arguments& arguments, std::size_t index);
  void RequireOpen() const;
  void RequireClosed() const;
  // Reads rows as the server sends them, once and in one direction.
  bool ForwardOnly() const;
  void MoveBy(std::int64_t rows);
  void Reset();
  std::vector<std::size_t> ChosenColumns(const Arguments& arguments, std::size_t argument) const;

  ComPtr<ConnectionObject> connection_;
  std::string source_;
  bool open_ = false;
  ports::RowSet rows_;
  std::int64_t position_ = 0;  // -1 before the first row, size() after the last
  CursorChoice choice_;
  bool location_chosen_ = false;  // set here, not inherited from the connection
  std::int32_t cache_size_ = 1;
};

}  // namespace quenta::sandbox::com
