// What every copy of a product gets, be it a duplicate or a dependant: its number, and its rows beside the product's.
#pragma once

#include <cstdint>

#include "component/session/session.h"

namespace quenta::product {

// What a named counter holds; it then moves on by one, and never back. Both statements are given whole. Error 3021 when
// there is no such counter.
std::int32_t ReadAndAdvance(session::Session& session, const char* read, const char* advance);

// The identifier of the next product: the counter as it stands.
std::int32_t TakeProdutoId(session::Session& session);

// An empty stock row in each warehouse that keeps stocks.
void InsertStocks(session::Session& session, std::int32_t copy);

// The minimums of the source.
void CopyMinimums(session::Session& session, std::int32_t source, std::int32_t copy);

}  // namespace quenta::product
