// The recordset of the sandbox's ADO: a read-only result of a connection, held whole and read in blocks.
#pragma once

#include "ports/row_set.h"
#include "sandbox/com/ado_connection.h"
#include "sandbox/com/automation_object.h"

namespace quenta::sandbox::com {

// ADO's CursorLocation.
inline constexpr std::int32_t kServerCursor = 2;  // adUseServer: forward only and read only here
inline constexpr std::int32_t kClientCursor = 3;  // adUseClient

class RecordsetObject final : public Automation<RecordsetObject> {
 public:
  RecordsetObject() = default;
  ~RecordsetObject() override;

  static std::span<const Member<RecordsetObject>> Members();

  // _Recordset is answered with IDispatch: callers of its function table are not served.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;

  // Becomes the open result of a statement; stays closed when the result has no columns.
  void Take(ComPtr<ConnectionObject> connection, ports::RowSet rows, std::int32_t cursor_location);
  // Closes, also because the connection did.
  void Reset();
  // The server is still sending, and its connection can do nothing else: on the server, and not read to its end.
  bool IsPending() const;

  // For the fields. CurrentValue throws base::Error 3704 when closed, 3021 without a current row.
  const ports::RowSet& Rows() const { return rows_; }
  const base::Value& CurrentValue(std::size_t column) const;

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Recordset"; }

 private:
  Variant GetEof(const Arguments&);
  Variant GetFields(const Arguments&);
  Variant GetRecordCount(const Arguments&);
  Variant GetState(const Arguments&);
  Variant Close(const Arguments&);
  Variant GetRows(const Arguments& arguments);

  void RequireOpen() const;
  bool AtEnd() const { return position_ >= rows_.size(); }

  ComPtr<ConnectionObject> connection_;
  bool open_ = false;
  ports::RowSet rows_;
  std::size_t position_ = 0;  // size() after the last row
  std::int32_t cursor_location_ = kServerCursor;
};

}  // namespace quenta::sandbox::com
