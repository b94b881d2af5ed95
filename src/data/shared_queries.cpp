#include "data/shared_queries.h"

#include "base/convert.h"
#include "base/date.h"
#include "base/error.h"

namespace quenta::data {

base::Date ServerDate(session::Session& session) {
  try {
    const ports::RowSet rows = session.Query("SELECT GETDATE() AS DATE");
    if (!rows.empty()) return base::ToDate(rows.front()["date"], session.locale());
  } catch (const base::Error&) {
    // Answered below: the empty date.
  }
  return base::EmptyDate();
}

}  // namespace quenta::data
