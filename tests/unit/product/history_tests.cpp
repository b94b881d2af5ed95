#include <algorithm>

#include "base/convert.h"
#include "base/date.h"
#include "base/text.h"
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
  static std::string Cells(const product::frmMain& form, int row) {
    std::string text;
    for (int column = 0; column <= 8; ++column) text += form.ListView13.Cell(row, column) + "|";
    return text;
  }
  static std::string Statistics(const product::frmMain& form) {
    return form.FXPrecoMin.text() + "|" + form.FXPrecoMax.text() + "|" + form.FXQuantidade.text() + "|" +
           form.FXValorTotal.text();
  }
};

TEST_F(HistoryTest, EachTabListsLinesOfThePeriodWithTheirStatistics) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  for (const char* const tab : {"vendas", "compras", "encomendas_clientes", "encomendas_fornecedores"}) {
    ChooseTab(*form, tab);
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
  const std::pair<int, int> periods[] = {{1998, 1999}, {2026, 2025}};  // before the first line; start after end
  for (const auto& [start, end] : periods) {
    form->FXData_Inicio.set_value(*base::MakeDate({start, 1, 1, 0, 0, 0}));
    form->FXData_Fim.set_value(*base::MakeDate({2030, 1, 1, 0, 0, 0}));
    form->FXData_Fim.Picked(*base::MakeDate({end, 1, 1, 0, 0, 0}));
    EXPECT_EQ(form->ListView13.Count(), 0) << start;
    EXPECT_EQ(Statistics(*form), "|||") << start;
  }
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(HistoryTest, TheStatementsAreTheSuites) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2026, 1, 1, 0, 0, 0}));
  form->FXData_Fim.set_value(*base::MakeDate({2026, 11, 22, 0, 0, 0}));
  const std::string id = std::to_string(form->ProdutoId());
  // H is the header table, D the view of the lines.
  const char* const documents =
      "SELECT H.data, H.nome as entidade, H_Tipos.descrit as tipo, H.documento_no, D.*, H_Tipos.peso FROM D LEFT JOIN "
      "H "
      "ON H.armazem_id = D.armazem_id AND H.documento_main_id = D.documento_main_id LEFT JOIN H_Tipos ON H.tipo_doc_id "
      "= H_Tipos.tipo_doc_id WHERE (H.anulado = 0 OR H.anulado is null) AND H_Tipos.change_stocks <> 0 AND "
      "produto_id = ";
  const char* const orders =
      "SELECT H.data, H.nome as entidade, 'Encomenda' as tipo, H.encomenda_no, D.* FROM D LEFT JOIN H ON H.armazem_id "
      "= "
      "D.armazem_id AND H.encomenda_main_id = D.encomenda_main_id WHERE (H.anulada = 0 OR H.anulada is null) AND "
      "produto_id = ";
  const struct {
    const char* list;
    const char* header;
    const char* name;  // with its blanks
    const char* since;
    const char* statistics;  // what stands before MIN
  } cases[] = {{documents, "tbDocumentos", "nome as", " AND ", "SELECT "},
               {documents, "tbDocumentos_Fornec", "nome as", " AND ", "SELECT "},
               {orders, "tbEncomendas", "nome  as", " AND ", "SELECT  "},
               {orders, "tbEncomendas_Fornec", "nome as", "  AND ", "SELECT  "}};
  for (int mode = 1; mode <= 4; ++mode) {
    const auto& c = cases[mode - 1];
    const std::string header(c.header);
    std::string list = base::ReplaceAll(c.list, "nome as", c.name);
    list = base::ReplaceAll(list, "D.", "vw" + header.substr(2) + "_Details.");
    list = base::ReplaceAll(list, "FROM D ", "FROM vw" + header.substr(2) + "_Details ");
    for (const char* const end : {".", "_Tipos", " ON"})
      list = base::ReplaceAll(list, std::string("H") + end, header + end);
    const std::string period = id + c.since + header + ".data >= CONVERT(DATETIME,'2026-01-01',102) AND " + header +
                               ".data <= CONVERT(DATETIME,'2026-11-22',102)";
    database.Forget();
    form->Fill_Track(mode);
    EXPECT_EQ(database.statements,
              (std::vector<std::string>{
                  list + period + " ORDER BY data",
                  c.statistics +
                      std::string("MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as "
                                  "preco_unitario_max, SUM(quantidade) as quantidade_sum, SUM(preco_total) as "
                                  "preco_total_sum") +
                      list.substr(list.find(" FROM ")) + period}));
  }
  database.Forget();
  for (const int mode : {0, 5, -1}) form->Fill_Track(mode);
  EXPECT_TRUE(database.statements.empty());
}

// Which lines count: by the document's flag, by its type, by its date.
TEST_F(HistoryTest, LinesCountByFlagTypeAndDate) {
  const auto form = OpenForm(IdOfCode("10145"));  // without any history
  const std::string id = std::to_string(form->ProdutoId());
  form->FXData_Inicio.set_value(*base::MakeDate({2026, 3, 1, 0, 0, 0}));
  form->FXData_Fim.set_value(*base::MakeDate({2026, 3, 31, 0, 0, 0}));
  const struct {
    const char* what;
    const char* flag;
    int type;
    const char* date;
    bool counts;
  } cases[] = {
      {"on the first day", "0", 1, "2026-03-01 00:00:00", true},
      {"before it", "0", 1, "2026-02-28 23:59:59", false},
      {"flag null", "NULL", 1, "2026-03-02 00:00:00", true},
      {"cancelled", "1", 1, "2026-03-02 00:00:00", false},
      {"a type that moves no stock", "0", 5, "2026-03-03 00:00:00", false},
      {"a type that does not say", "0", 6, "2026-03-03 00:00:00", false},
      {"a credit note", "0", 4, "2026-03-04 00:00:00", true},
      {"on the last day", "0", 1, "2026-03-31 00:00:00", true},
      {"after it", "0", 1, "2026-03-31 00:00:01", false},
  };
  int line = 900000;
  std::string expected;
  for (const auto& c : cases) {
    const std::string number = std::to_string(++line);
    Sql("INSERT INTO tbDocumentos (armazem_id, documento_main_id, tipo_doc_id, documento_no, data, anulado) VALUES "
        "(1, " +
        number + ", " + std::to_string(c.type) + ", 'N" + number + "', '" + c.date + "', " + c.flag + ")");
    Sql("INSERT INTO tbDocumentos_Items (armazem_id, documento_item_id, documento_main_id, produto_id) VALUES (1, " +
        number + ", " + number + ", " + id + ")");
    if (c.counts) expected += "1#" + number + " ";
  }
  form->Fill_Track(1);
  std::string keys;
  for (int i = 0; i < form->ListView13.Count(); ++i) keys += form->ListView13.At(i).key + " ";
  EXPECT_EQ(keys, expected);
  EXPECT_EQ(Cells(*form, 0), "01-03-2026| |Factura|N900001| | | | | |") << "null name and amounts";
  EXPECT_EQ(Statistics(*form), "|||");

  const std::string here = " WHERE armazem_id = 1 AND documento_item_id = 900001";
  Sql("UPDATE tbDocumentos_Items SET quantidade = 1234.5, preco_unitario = -8.13, preco_total = -10036.485" + here);
  Sql("UPDATE tbDocumentos SET nome = 'Café d''Além' WHERE documento_main_id = 900001");
  form->Fill_Track(1);
  EXPECT_EQ(Cells(*form, 0),
            "01-03-2026|Café d'Além|Factura|N900001|1\u00A0234,50|€ -8,13|€ -10\u00A0036,49|- 8,13|- 10\u00A0036,49|");
  EXPECT_EQ(Statistics(*form), "€ -8,13|€ -8,13|1\u00A0234,50|€ -10\u00A0036,49");
}

TEST_F(HistoryTest, AnOrderIsKnownByItsOwnNumberWhereTheViewHasNoOther) {
  Sql("DROP VIEW vwEncomendas_Details");
  Sql("CREATE VIEW vwEncomendas_Details AS SELECT * FROM tbEncomendas_Items");
  session.ReleaseConnection();  // it remembers the view's columns
  LogIn("ana");
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  form->Fill_Track(3);
  ASSERT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
  EXPECT_EQ(form->ListView13.Cell(0, 3).substr(0, 3), "EC ");
}

TEST_F(HistoryTest, TheChosenOrderStaysAndTheLatestLineIsShown) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  form->Fill_Track(1);
  controls::ListView& list = form->ListView13;
  const std::string latest = list.At(list.Count() - 1).key;
  constexpr int kTotal = 6;
  list.ColumnClicked(kTotal);
  EXPECT_EQ(list.sort(), (controls::ListSort{kTotal, false}));
  list.ColumnClicked(kTotal);
  EXPECT_EQ(list.sort(), (controls::ListSort{kTotal, true}));
  const auto totals_fall = [&] {
    for (int i = 1; i < list.Count(); ++i) {
      const auto total = [&](int row) { return base::ParseNumber(list.Cell(row, kTotal), {}).value_or(-1e9); };
      if (total(i - 1) < total(i)) return false;
    }
    return true;
  };
  EXPECT_TRUE(totals_fall());
  form->Fill_Track(1);
  EXPECT_TRUE(totals_fall());
  EXPECT_EQ(list.At(list.selected()).key, latest);
  EXPECT_EQ(list.MarkedRows(), std::vector<int>{list.selected()});
  list.ColumnClicked(0);
  EXPECT_EQ(list.sort(), (controls::ListSort{0, false})) << "another column begins ascending";
}

class HistoryAbroadTest : public HistoryTest {
 protected:
  void SetUp() override {
    settings.locale = EnglishLocale();
    HistoryTest::SetUp();
  }
};

// Dates show the day first for everybody, and neither the time nor more than two decimals.
TEST_F(HistoryAbroadTest, TheListSortsByThePointInTimeAndSavesWhatIsBehindTheCells) {
  const auto form = OpenForm(IdOfCode("10145"));
  const std::pair<const char*, const char*> lines[] = {{"2026-01-12 18:30:05", "1.0049"},
                                                       {"2026-12-01 00:00:00", "1.0041"},
                                                       {"2026-01-12 09:00:00", "-1234.5"},
                                                       {"2026-02-03 00:00:00", "NULL"}};
  int number = 900000;
  for (const auto& [date, price] : lines) {
    const std::string id = std::to_string(++number);
    Sql("INSERT INTO tbDocumentos (armazem_id, documento_main_id, tipo_doc_id, documento_no, data, anulado) VALUES "
        "(1, " +
        id + ", 1, 'N" + id + "', '" + date + "', 0)");
    Sql("INSERT INTO tbDocumentos_Items (armazem_id, documento_item_id, documento_main_id, produto_id, preco_unitario) "
        "VALUES (1, " +
        id + ", " + id + ", " + std::to_string(form->ProdutoId()) + ", " + price + ")");
  }
  form->FXData_Inicio.set_value(*base::MakeDate({2026, 1, 1, 0, 0, 0}));
  form->FXData_Fim.set_value(*base::MakeDate({2027, 1, 1, 0, 0, 0}));
  ChooseTab(*form, "vendas");
  controls::ListView& list = form->ListView13;
  const auto order = [&] {
    std::string numbers;
    for (int i = 0; i < list.Count(); ++i) numbers += list.Cell(i, 3).back();
    return numbers;
  };
  list.ColumnClicked(5);
  EXPECT_EQ(order(), "4321") << "by the whole price";
  list.ColumnClicked(0);
  EXPECT_EQ(order(), "3142");
  desktop.file_to_save = "C:\\Vendas.csv";
  controls::FindMenuItem(form->menus(), "mnHistoricoGuardar")->on_click();
  const std::string& csv = settings.files["C:\\Vendas.csv"];
  EXPECT_EQ(csv.substr(csv.find('\n') + 1),
            "1/12/2026 09:00:00;;Factura;N900003;;-1234.5;\r\n1/12/2026 18:30:05;;Factura;N900001;;1.0049;\r\n"
            "2/3/2026;;Factura;N900004;;;\r\n12/1/2026;;Factura;N900002;;1.0041;\r\n");
}

TEST_F(HistoryTest, RowsAreCopiedAndSavedFromTheMenu) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  ChooseTab(*form, "vendas");
  const auto choose = [&](const char* name) { controls::FindMenuItem(form->menus(), name)->on_click(); };
  form->ListView13.ContextMenu();
  EXPECT_EQ(form_host.popped_up, std::vector<std::string>{"mnHistorico"});
  choose("mnHistoricoCopiar");
  EXPECT_EQ(std::count(desktop.copied.begin(), desktop.copied.end(), '\n'), 1) << "the latest line is the selected one";
  choose("mnHistoricoSelecionarTudo");
  form->ListView13.Copy();
  EXPECT_EQ(std::count(desktop.copied.begin(), desktop.copied.end(), '\n'), form->ListView13.Count());

  choose("mnHistoricoGuardar");
  EXPECT_TRUE(settings.files.empty()) << "the user gave up";
  EXPECT_EQ(desktop.asked_files.at(0).name, "10011 Vendas.csv");
  desktop.file_to_save = "C:\\Vendas.csv";
  choose("mnHistoricoGuardar");
  const std::string csv = settings.files["C:\\Vendas.csv"];
  EXPECT_EQ(csv.substr(0, csv.find('\r')),
            "\xEF\xBB\xBF"
            "Data;Entidade;Tipo;N.º;Quantidade;Preço unitário;Preço total");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), form->ListView13.Count() + 1);
  EXPECT_TRUE(desktop.messages.empty());

  const std::pair<std::int32_t, const char*> errors[] = {
      {70, "O ficheiro está aberto noutro programa ou não pode ser alterado."},
      {76, "A pasta não existe."},
      {61, "O disco está cheio."},
      {57, "Cannot write."},
  };
  for (const auto& [number, why] : errors) {
    settings.write_errors["C:\\Vendas.csv"] = number;
    choose("mnHistoricoGuardar");
    EXPECT_EQ(desktop.messages.back().text, std::string("Não foi possível gravar o ficheiro C:\\Vendas.csv.\n") + why);
  }
  EXPECT_EQ(reporting.reports.size(), std::size(errors));
  EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
}

TEST_F(HistoryTest, AFailureLeavesNothingOfAnotherSource) {
  const auto form = OpenForm(IdOfCode("10011"));
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 1, 0, 0, 0}));
  for (const int failing : {0, 1}) {
    form->Fill_Track(1);
    const int lines = form->ListView13.Count();
    reporting.reports.clear();
    database.Forget();
    database.fail_at = failing;
    form->Fill_Track(2);
    database.Forget();
    ASSERT_EQ(reporting.reports.size(), 1U);
    EXPECT_EQ(reporting.reports[0].procedure, "Fill_Track");
    EXPECT_EQ(form->ListView13.Count() > 0, failing == 1) << lines;
    EXPECT_EQ(Statistics(*form), "|||");
    EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
  }
}

}  // namespace
}  // namespace quenta::tests
