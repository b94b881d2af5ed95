// Duplicates the product: a copy with numbers of its own, which the form then shows as a new product.
#include <array>
#include <optional>

#include "base/convert.h"
#include "base/error.h"
#include "base/text.h"
#include "controls/form_state.h"
#include "data/check_permissions.h"
#include "data/sql_field.h"
#include "product/copying.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using data::SQLKind;
using ports::Answer;
using ports::Buttons;
using ports::Icon;

// Kept as the suite has them: the project is another one, and the procedure "Gravar".
constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Contabilidade", "frmMain",
                                  session::DescriptionStyle::kAlone};

// The numbers of a copy, as far as they were taken.
struct CopyNumbers {
  std::optional<std::int32_t> codigo;
  std::optional<std::int32_t> produto_id;

  std::string Text() const {
    std::string text;
    if (produto_id) text += " | produto_id = " + base::DecimalText(*produto_id);
    if (codigo) text += " | codigo = " + base::DecimalText(*codigo);
    return text;
  }
};

// The two counters deliberately count differently: one holds the last code given out, the other the next identifier.
void TakeNumbers(session::Session& session, CopyNumbers& numbers) {
  const std::int32_t last_code =
      ReadAndAdvance(session, "SELECT * FROM tbContadores WHERE nome = 'produto_codigo'",
                     "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'");
  numbers.codigo = base::RoundToLong(static_cast<double>(last_code) + 1);
  numbers.produto_id = TakeProdutoId(session);
}

std::string NameOfCopy(const base::Value& nome, const base::Locale& locale) {
  return nome.is_null() ? std::string() : base::ToText(nome, locale) + " (Cópia)";
}

void InsertProduct(session::Session& session, const ports::Row& source, const CopyNumbers& numbers) {
  const auto number = [&](const char* column) { return data::SQLField(session, source[column], SQLKind::kNumber); };
  const auto text = [&](const char* column) { return data::SQLField(session, source[column], SQLKind::kText); };
  session.Execute(
      "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, data_modified, "
      "fornecedor_id, marca, descontinuado, tipo_id, tamanho, cor, largura, profundidade, altura, centro_id) VALUES (" +
      base::DecimalText(*numbers.produto_id) + ",'" + base::DecimalText(*numbers.codigo) + "'," +
      data::SQLField(session, NameOfCopy(source["nome"], session.locale()), SQLKind::kText) + "," +
      number("familia_id") + ", " + number("subfamilia_id") + ", " + text("obs") + ", GETDATE(), GETDATE(), " +
      number("fornecedor_id") + ", " + text("marca") + ", " + number("descontinuado") + ", " + number("tipo_id") +
      ", " + text("tamanho") + ", " + text("cor") + ", " + number("largura") + ", " + number("profundidade") + ", " +
      number("altura") + ", " + number("centro_id") + ")");
}

void CopyPrices(session::Session& session, std::int32_t source, std::int32_t copy) {
  const std::string id = base::DecimalText(copy);
  for (const ports::Row line :
       session.Query("SELECT * FROM tbProdutos_Precos WHERE produto_id = " + base::DecimalText(source))) {
    const auto number = [&](const char* column) { return data::SQLField(session, line[column], SQLKind::kNumber); };
    session.Execute(
        "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, iva_descrit, preco_total, desconto, "
        "predef) VALUES (" +
        number("tipo_id") + ", " + id + ", " + number("preco") + ", " + number("iva_id") + ", " + number("iva") + ", " +
        data::SQLField(session, line["iva_descrit"], SQLKind::kText) + ", " + number("preco_total") + ", " +
        number("desconto") + ", " + number("predef") + ")");
  }
}

// False when there is no such product. Each statement stands by itself: what was written before an error stays.
bool CopyProduct(session::Session& session, std::int32_t produto_id, CopyNumbers& numbers) {
  const ports::RowSet products =
      session.Query("SELECT * FROM tbProdutos WHERE produto_id = " + base::DecimalText(produto_id));
  if (products.empty()) return false;
  TakeNumbers(session, numbers);
  InsertProduct(session, products.front(), numbers);
  InsertStocks(session, *numbers.produto_id);
  CopyMinimums(session, produto_id, *numbers.produto_id);
  CopyPrices(session, produto_id, *numbers.produto_id);
  return true;
}

}  // namespace

void frmMain::Duplicar() {
  const Operation operation(*this);
  session::Guarded(session_.ports().error_reporting, kLabels, "Gravar", [&] {
    const Answer answer = Ask({.text = "Deseja duplicar este produto?",
                               .title = "Registo de Documentos",
                               .icon = Icon::kQuestion,
                               .buttons = Buttons::kYesNo,
                               .system_modal = true});
    if (answer != Answer::kYes) return;
    if (!data::CheckSecurityPolicy(session_, session_.state().session_user, "#2282", this)) {
      Tell({.text = "Não tem permissões para criar novos produtos. Contacte o administrador de segurança para que lhe "
                    "sejam atribuídas as permissões necessárias.",
            .title = "Politicas de Segurança",
            .icon = Icon::kCritical});
      return;
    }
    const hosting::ExclusiveUse exclusive(forms_, *this);
    CopyNumbers numbers;
    try {
      if (!CopyProduct(session_, produto_id_, numbers)) return;
    } catch (const base::Error& error) {
      // By its numbers, what is there of the copy can be found.
      throw base::Error(error.number(), error.description() + numbers.Text());
    }
    ShowCopy(*numbers.produto_id);
    if (!loaded()) return;
    if (produto_id_ != *numbers.produto_id) {
      throw base::Error(base::error_number::kDataAccess, "The copy could not be shown." + numbers.Text());
    }
    new_product_ = true;
    SetAltered(true);
    // The page that is open may show the lists of the product that was copied.
    TabStrip1_Click();
  });
}

// A copy that cannot be shown whole leaves the form with the product that it showed, whole.
void frmMain::ShowCopy(std::int32_t produto_id) {
  controls::FormState shown(*this);
  const auto put_back = [this, id = produto_id_, created = new_product_, altered = altered_, key = PrecoKey,
                         prices = PrecosAltered, typed = std::array{ValorAltered, IVAAltered, TotalAltered},
                         uncomputed = uncomputed_, modified = modified_, deletion = deletion_known_, locked = locked_,
                         exempt = line_is_exempt_, familia = familia_of_subfamilias_, attributes = has_attribute_] {
    produto_id_ = id;
    new_product_ = created;
    PrecoKey = key;
    PrecosAltered = prices;
    ValorAltered = typed[0];
    IVAAltered = typed[1];
    TotalAltered = typed[2];
    uncomputed_ = uncomputed;
    modified_ = modified;
    deletion_known_ = deletion;
    locked_ = locked;
    incomplete_ = false;
    line_is_exempt_ = exempt;
    familia_of_subfamilias_ = familia;
    has_attribute_ = attributes;
    SetAltered(altered);
  };
  produto_id_ = produto_id;
  Fill();
  if (!loaded() || !incomplete_) return;
  shown.PutBack();
  put_back();
}

}  // namespace quenta::product
