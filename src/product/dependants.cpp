// The dependent products: variants of this one by colour and size.
#include "base/convert.h"
#include "base/text.h"
#include "component/session/transaction.h"
#include "data/sql_field.h"
#include "product/deleting.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using ports::Answer;
using ports::Buttons;
using ports::Icon;

// Kept as the suite has it: the project is another one.
constexpr session::Labels kToolbarLabels{"Programa de Contabilidade", "Quenta_Encomendas", "frmMain",
                                         session::DescriptionStyle::kAlone};

}  // namespace

void frmMain::Fill_Dependentes() {
  // Under the label of the tab that asks for the list, as the suite has it.
  Guarded("TabStrip1_Click", [&] {
    using data::ListKind;
    ListView3.Clear();
    const ports::RowSet rows =
        session_.Query("SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + base::DecimalText(produto_id_));
    const controls::ListView::Update update(ListView3);
    for (const ports::Row row : rows) {
      const std::string key = "#" + base::ToText(row["produto_id"], session_.locale());
      ListView3.Add(key, data::ListField(session_, row, "codigo", ListKind::kText));
      for (const char* column : {"nome", "cor", "tamanho"}) {
        ListView3.Item(key).sub_items.push_back(data::ListField(session_, row, column, ListKind::kText));
      }
    }
  });
}

void frmMain::Toolbar2_ButtonClick(const std::string& key) {
  const auto generate = [&] {
    const ports::RowSet products =
        session_.Query("SELECT * FROM tbProdutos WHERE produto_id = " + base::DecimalText(produto_id_));
    if (products.empty()) return;
    if (!products.front()["main_id"].is_null()) {
      Tell({.text = "Não pode gerar produtos dependentes porque este produto já é dependente de outro.",
            .icon = Icon::kInformation});
      return;
    }
    make_generator_(session_, host(), forms_, std::static_pointer_cast<frmMain>(shared_from_this()), produto_id_)
        ->Show();
  };
  const auto remove = [&] {
    if (!MayDeleteProducts(session_, *this) || ListView3.Count() == 0) return;
    if (ListView3.selected() < 0) {
      Tell({.text = "Tem de selecionar o produto que pretende remover.",
            .title = "Remover Produto",
            .icon = Icon::kInformation});
      return;
    }
    const std::string item = ListView3.At(ListView3.selected()).key;
    // The question does not name the product: the user must see which one it is.
    ListView3.Select(ListView3.selected());
    const Answer answer = Ask({.text = "Deseja mesmo apagar o produto selecionado?",
                               .title = "Remover Produto",
                               .icon = Icon::kQuestion,
                               .buttons = Buttons::kYesNo,
                               .system_modal = true});
    if (answer != Answer::kYes) return;
    const hosting::ExclusiveUse exclusive(forms_, *this);
    session::Transaction transaction(session_);
    DeleteSoftly(session_, item.substr(1));
    transaction.Commit();
    // Only now: had the commit failed, the dependant would still be there.
    ListView3.Remove(item);
  };
  const Operation operation(*this);
  session::Guarded(session_.ports().error_reporting, kToolbarLabels, "Toolbar2_ButtonClick", [&] {
    // A product that was created here and not saved yet may still be given up: dependants of it would stay.
    if (produto_id_ == 0 || (new_product_ && key == "gerar")) {
      Tell({.text = "Tem de gravar a ficha de produto antes de gerar dependentes.", .icon = Icon::kInformation});
      return;
    }
    if (key == "gerar") generate();
    if (key == "remover") remove();
  });
}

}  // namespace quenta::product
