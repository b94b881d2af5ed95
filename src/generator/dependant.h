// The dependants of a main product by colour and size: how they are called, whether they are there, and creating one.
#pragma once

#include <cstdint>
#include <string>

#include "component/session/session.h"
#include "ports/row_set.h"

namespace quenta::generator {

// A colour or a size: its text goes into the dependant's column, its code into the dependant's code.
struct Attribute {
  std::string text;  // never empty
  std::string code;  // may be empty
};

// What a dependant differs by. Either may be null, for none; not both.
struct Combination {
  const Attribute* cor = nullptr;
  const Attribute* tamanho = nullptr;
};

// A main product as its row was read, with what all its dependants take over from it. Errors are thrown.
class MainProduct {
 public:
  MainProduct(session::Session& session, const ports::Row& row);

  std::string CodeOf(const Combination& combination) const;
  // Deleted dependants do not count.
  bool HasDependant(const Combination& combination) const;
  // The product with its stock, minimum and price rows, in a transaction of its own (or in the host's, which it
  // commits). False, and nothing is created, when another user has made the same dependant meanwhile.
  bool CreateDependant(const Combination& combination) const;

 private:
  void InsertProduct(std::int32_t produto_id, const Combination& combination) const;
  void CopyPrices(std::int32_t produto_id) const;
  std::string TextLiteral(const Attribute* attribute) const;

  session::Session& session_;
  std::int32_t produto_id_;
  std::string codigo_;
  std::string before_attributes_;  // literals of the insert that stand before and behind colour and size
  std::string after_attributes_;
};

}  // namespace quenta::generator
