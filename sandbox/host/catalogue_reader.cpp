#include "sandbox/host/catalogue_reader.h"

namespace quenta::sandbox::host {
namespace {

constexpr char kProductsQuery[] =
    "SELECT tbProdutos.produto_id, tbProdutos.codigo, tbProdutos.nome, tbProdutos_Familias.descrit, "
    "venda.preco_total, tbProdutos.is_deleted FROM tbProdutos "
    "LEFT JOIN tbProdutos_Familias ON tbProdutos_Familias.familia_id = tbProdutos.familia_id "
    "LEFT JOIN (SELECT tbProdutos_Precos.produto_id, MIN(tbProdutos_Precos.preco_total) AS preco_total "
    "FROM tbProdutos_Precos INNER JOIN tbProdutos_Precos_Tipos "
    "ON tbProdutos_Precos_Tipos.tipo_id = tbProdutos_Precos.tipo_id "
    "WHERE tbProdutos_Precos_Tipos.predef_venda <> 0 GROUP BY tbProdutos_Precos.produto_id) venda "
    "ON venda.produto_id = tbProdutos.produto_id ORDER BY tbProdutos.codigo";

// The block of values that GetRows gives: columns by rows, a row's values side by side.
class Rows {
 public:
  explicit Rows(const Variant& block) : array_(block.get().parray) {
    if (block.get().vt != (VT_ARRAY | VT_VARIANT) || SafeArrayGetDim(array_) != 2) ThrowIfFailed(DISP_E_TYPEMISMATCH);
    columns_ = Size(1);
    rows_ = Size(2);
    ThrowIfFailed(SafeArrayAccessData(array_, reinterpret_cast<void**>(&values_)));
  }
  ~Rows() { SafeArrayUnaccessData(array_); }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  std::size_t size() const { return rows_; }
  const VARIANT* operator[](std::size_t row) const { return values_ + row * columns_; }

 private:
  std::size_t Size(UINT dimension) const {
    LONG first = 0;
    LONG last = -1;
    ThrowIfFailed(SafeArrayGetLBound(array_, dimension, &first));
    ThrowIfFailed(SafeArrayGetUBound(array_, dimension, &last));
    return static_cast<std::size_t>(last - first + 1);
  }

  SAFEARRAY* array_;
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  VARIANT* values_ = nullptr;
};

Product ProductFrom(const VARIANT* row) {
  Product product;
  product.produto_id = LongOf(row[0]);
  product.codigo = TextOf(row[1]);
  product.nome = TextOf(row[2]);
  product.familia = TextOf(row[3]);
  if (row[4].vt != VT_NULL && row[4].vt != VT_EMPTY) product.preco = DoubleOf(row[4]);
  product.is_deleted = BoolOf(row[5]);
  return product;
}

}  // namespace

CatalogueReader::CatalogueReader(const Server& server) : connection_(Object::Create(L"ADODB.Connection")) {
  std::vector<Variant> arguments;
  arguments.emplace_back(ConnectionString(server));
  connection_.Call(L"Open", std::move(arguments));
}

CatalogueReader::~CatalogueReader() {
  try {
    connection_.Call(L"Close");
  } catch (const ComError&) {
    // A connection that broke is closed as far as it can be.
  }
}

std::vector<Product> CatalogueReader::ReadProducts() {
  std::vector<Variant> arguments;
  arguments.emplace_back(kProductsQuery);
  const Object recordset = Object::From(connection_.Call(L"Execute", std::move(arguments)));
  std::vector<Product> products;
  if (!BoolOf(recordset.Get(L"EOF").get())) {
    const Variant block = recordset.Call(L"GetRows");
    const Rows rows(block);
    products.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) products.push_back(ProductFrom(rows[row]));
  }
  recordset.Call(L"Close");
  return products;
}

}  // namespace quenta::sandbox::host
