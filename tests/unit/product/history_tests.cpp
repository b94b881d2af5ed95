#include "base/date.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class HistoryTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
  void ChooseTab(product::frmMain& form, const std::string& key) {
    for (int i = 0; i < form.TabStrip1.Count(); ++i) {
      if (form.TabStrip1.tabs()[static_cast<std::size_t>(i)].key == key) form.TabStrip1.Chosen(i);
    }
  }
};

TEST_F(HistoryTest, EachTabListsItsLinesOfThePeriodWithTheirStatistics) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  const std::string id = std::to_string(form->ProdutoId());
  const std::pair<const char*, std::string> tabs[] = {
      {"vendas",
       "vwDocumentos_Details d LEFT JOIN tbDocumentos h ON h.armazem_id = d.armazem_id AND h.documento_main_id = "
       "d.documento_main_id LEFT JOIN tbDocumentos_Tipos t ON h.tipo_doc_id = t.tipo_doc_id WHERE (h.anulado = 0 OR "
       "h.anulado IS NULL) AND t.change_stocks <> 0"},
      {"compras",
       "vwDocumentos_Fornec_Details d LEFT JOIN tbDocumentos_Fornec h ON h.armazem_id = d.armazem_id AND "
       "h.documento_main_id = d.documento_main_id LEFT JOIN tbDocumentos_Fornec_Tipos t ON h.tipo_doc_id = "
       "t.tipo_doc_id WHERE (h.anulado = 0 OR h.anulado IS NULL) AND t.change_stocks <> 0"},
      {"encomendas_clientes",
       "vwEncomendas_Details d LEFT JOIN tbEncomendas h ON h.armazem_id = d.armazem_id AND h.encomenda_main_id = "
       "d.encomenda_main_id WHERE (h.anulada = 0 OR h.anulada IS NULL)"},
      {"encomendas_fornecedores",
       "vwEncomendas_Fornec_Details d LEFT JOIN tbEncomendas_Fornec h ON h.armazem_id = d.armazem_id AND "
       "h.encomenda_main_id = d.encomenda_main_id WHERE (h.anulada = 0 OR h.anulada IS NULL)"},
  };
  for (const auto& [tab, lines] : tabs) {
    ChooseTab(*form, tab);
    const std::string count = SqlText("SELECT COUNT(*) FROM " + lines + " AND produto_id = " + id +
                                      " AND h.data >= CONVERT(DATETIME,'2025-01-01',102)");
    EXPECT_EQ(std::to_string(form->ListView13.Count()), count) << tab;
    EXPECT_GT(form->ListView13.Count(), 0) << tab;
    EXPECT_EQ(form->ListView13.selected(), form->ListView13.Count() - 1) << "the latest line, " << tab;
    EXPECT_NE(form->ListView13.Cell(0, 3), " ") << "a number, " << tab;
    EXPECT_FALSE(form->FXQuantidade.text().empty()) << tab;
  }
  EXPECT_FALSE(form->Altered());
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(HistoryTest, AnEmptyPeriodListsNothingAndTheStatisticsAreEmpty) {
  const auto form = OpenForm(IdOfCode("10011"));
  ChooseTab(*form, "vendas");
  form->FXData_Fim.Picked(*base::MakeDate({1999, 1, 1, 0, 0, 0}));
  EXPECT_EQ(form->ListView13.Count(), 0);
  EXPECT_EQ(form->FXPrecoMin.text() + form->FXPrecoMax.text() + form->FXQuantidade.text() + form->FXValorTotal.text(),
            "");
}

TEST_F(HistoryTest, DependantsAreListedWithoutTheDeletedOnes) {
  const auto form = OpenForm(IdOfCode("10300"));
  const std::string live = " FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + std::to_string(form->ProdutoId());
  ChooseTab(*form, "dependentes");
  EXPECT_EQ(std::to_string(form->ListView3.Count()), SqlText("SELECT COUNT(*)" + live));
  Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE codigo = '10300-CS-42'");
  ChooseTab(*form, "dependentes");
  EXPECT_EQ(std::to_string(form->ListView3.Count()), SqlText("SELECT COUNT(*)" + live));
  EXPECT_EQ(form->ListView3.At(0).sub_items.size(), 3U);
}

}  // namespace
}  // namespace quenta::tests
