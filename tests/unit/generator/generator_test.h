// What the tests of the generator share: an open generator, choosing in its lists, and what it leaves in the database.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>

#include "generator/frm_gerar.h"
#include "support/sample_component.h"

namespace quenta::tests {

class GeneratorTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }

  // The generator for this product, opened from its form.
  std::shared_ptr<generator::frmGerar> OpenGenerator(const std::string& codigo) {
    opener = OpenForm(IdOfCode(codigo));
    main_id = std::to_string(opener->ProdutoId());
    const auto before = form_host.shown;
    opener->Toolbar2.Clicked("gerar");
    for (const auto& [form, alive] : form_host.shown) {
      if (form->name() == "frmGerar" && !before.contains(form))
        return std::static_pointer_cast<generator::frmGerar>(alive);
    }
    return nullptr;
  }
  static void Check(controls::ListView& list, std::initializer_list<const char*> texts) {
    for (int i = 0; i < list.Count(); ++i) {
      const std::string& text = list.At(i).text;
      if (std::find(texts.begin(), texts.end(), text) != texts.end()) list.Checked(i, true);
    }
  }
  // Codes, colours and sizes of the live dependants in the order of their creation.
  std::string Dependants() {
    std::string all;
    for (const ports::Row row :
         Sql("SELECT codigo + ' ' + ISNULL(cor, '-') + ' ' + ISNULL(tamanho, '-') FROM tbProdutos WHERE is_deleted = 0 "
             "AND main_id = " +
             main_id + " ORDER BY produto_id")) {
      all += (all.empty() ? "" : ", ") + row.At(0).text();
    }
    return all;
  }
  // Dependants that lack a row that their main product has; "0" when all are whole.
  std::string HalfDependants() {
    return SqlText(
        "SELECT COUNT(*) FROM tbProdutos p WHERE p.main_id = " + main_id +
        " AND p.is_deleted = 0 AND ((SELECT COUNT(*) FROM tbProdutos_Stocks s WHERE s.produto_id = p.produto_id) <> "
        "(SELECT COUNT(*) FROM tbArmazens WHERE has_stocks <> 0) OR (SELECT COUNT(*) FROM tbProdutos_Stocks_Minimos s "
        "WHERE s.produto_id = p.produto_id) <> (SELECT COUNT(*) FROM tbProdutos_Stocks_Minimos WHERE produto_id = " +
        main_id +
        ") OR (SELECT COUNT(*) FROM tbProdutos_Precos s WHERE s.produto_id = p.produto_id) <> (SELECT COUNT(*) FROM "
        "tbProdutos_Precos WHERE produto_id = " +
        main_id + "))");
  }

  std::shared_ptr<product::frmMain> opener;
  std::string main_id;
};

}  // namespace quenta::tests
