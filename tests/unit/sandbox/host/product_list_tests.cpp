#include "sandbox/host/product_list.h"

#include <gtest/gtest.h>

namespace quenta::sandbox::host {
namespace {

ProductList SampleList() {
  ProductList list;
  list.Assign({
      {1, "10", "P\xC3\xA3o de \xC3\x81gua", "Padaria", 0.2, false},
      {2, "9", "\xC3\x81gua mineral 1,5 l", "Bebidas", 0.65, false},
      {3, "A10", "Camisola de l\xC3\xA3", "Vestu\xC3\xA1rio", std::nullopt, false},
      {4, "A9",
       "A\xC3\xA7\xC3\xBA"
       "car",
       "Mercearia", 1.2, true},
      {5, "10-AZ", "P\xC3\xA3o, azul", "Padaria", 0.2, false},
      {6, "A9", "Camisa", "Vestu\xC3\xA1rio", 25, false},
      {7, "7", "Bar\xC3\xA3o", "Vinhos", 9, true},
  });
  return list;
}

std::vector<int> Shown(const ProductList& list) {
  std::vector<int> identifiers;
  for (std::size_t row = 0; row < list.size(); ++row) identifiers.push_back(list[row].produto_id);
  return identifiers;
}

TEST(ProductList, FindsWordsWithoutRegardToCaseAccentsAndOrder) {
  struct Case {
    const char* search;
    std::vector<int> found;
  };
  const Case cases[] = {
      {"", {2, 1, 5, 6, 3}}, {"  ", {2, 1, 5, 6, 3}}, {"pao", {1, 5}},           {"P\xC3\x83O", {1, 5}},
      {"agua pao", {1}},     {"pada 10-", {5}},       {"vestuario cam", {6, 3}}, {"acucar", {}},  // deleted
      {"1,5", {2}},          {"agua vestuario", {}},
  };
  ProductList list = SampleList();
  for (const Case& each : cases) {
    list.SetSearch(each.search);
    EXPECT_EQ(Shown(list), each.found) << each.search;
  }
}

TEST(ProductList, FoldsEveryLetterThatSearchesMeet) {
  EXPECT_EQ(FoldText("\xC3\x80\xC3\x87\xC3\x8A\xC3\x95\xC3\x9C \xC3\xB1\xC3\xBF \xC5\x81\xC3\xB3\xC4\x91\xC5\xBA "
                     "\xC5\xBD\xC5\xBF"),
            "aceou ny lodz zs");
  EXPECT_EQ(FoldText("\xE2\x82\xAC 5 \xC3\xA6 \xC3\xB7 \xCE\x91"), "\xE2\x82\xAC 5 \xC3\xA6 \xC3\xB7 \xCE\x91");
}

TEST(ProductList, SortsByEachColumnBothWays) {
  using Column = ProductList::Column;
  struct Case {
    Column column;
    bool descending;
    std::vector<int> order;
  };
  const Case cases[] = {
      {Column::kCodigo, false, {7, 2, 1, 5, 4, 6, 3}},  // numbers in codes by their value
      {Column::kCodigo, true, {3, 4, 6, 5, 1, 2, 7}},
      {Column::kNome, false, {4, 2, 7, 6, 3, 1, 5}},     // accents do not send words to the end
      {Column::kFamilia, false, {2, 4, 1, 5, 6, 3, 7}},  // equal families by code
      {Column::kPreco, false, {1, 5, 2, 4, 7, 6, 3}},    // without a price last,
      {Column::kPreco, true, {6, 7, 4, 2, 1, 5, 3}},     // whichever way
  };
  for (const Case& each : cases) {
    ProductList list = SampleList();
    list.ShowDeleted(true);
    list.SortBy(each.column, each.descending);
    EXPECT_EQ(Shown(list), each.order) << static_cast<int>(each.column) << each.descending;
  }
}

TEST(ProductList, KeepsSearchAndOrderWhenTheProductsAreReadAgain) {
  ProductList list = SampleList();
  list.SetSearch("pao");
  list.SortBy(ProductList::Column::kCodigo, true);
  list.Assign({{8, "1", "P\xC3\xA3o", "", std::nullopt, false},
               {9, "2", "Sal", "", std::nullopt, false},
               {10, "3", "Pao", "", std::nullopt, false}});
  EXPECT_EQ(Shown(list), (std::vector<int>{10, 8}));
  EXPECT_EQ(list.total(), 3u);
  EXPECT_EQ(list.RowOf(8), 1u);
  EXPECT_EQ(list.RowOf(9), std::nullopt);
}

TEST(ProductList, FindsOneProductByCodeOrIdentifier) {
  struct Case {
    const char* text;
    int found;  // 0: none
  };
  const Case cases[] = {
      {"10", 1},  // the code before the identifier 10, which does not exist
      {"7", 7},   // a deleted product's code, when no other has it
      {"a9", 6},  // not the deleted product with the same code
      {"#7", 7}, {"#9", 0}, {"3", 3}, {"", 0}, {"#", 0}, {"10 ", 0}, {"99999999999", 0},
  };
  const ProductList list = SampleList();
  for (const Case& each : cases) {
    const Product* product = list.Find(each.text);
    EXPECT_EQ(product != nullptr ? product->produto_id : 0, each.found) << each.text;
  }
}

TEST(ProductList, GoesRoundWhenLookingForABeginning) {
  const ProductList list = SampleList();  // shown: 9, 10, 10-AZ, A9, A10
  EXPECT_EQ(list.RowThatBegins("pa", 0), 1u);
  EXPECT_EQ(list.RowThatBegins("pa", 2), 2u);
  EXPECT_EQ(list.RowThatBegins("pa", 3), 1u);
  EXPECT_EQ(list.RowThatBegins("x", 0), std::nullopt);
  EXPECT_EQ(ProductList().RowThatBegins("x", 0), std::nullopt);
}

}  // namespace
}  // namespace quenta::sandbox::host
