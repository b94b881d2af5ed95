// The movement history: the document or order lines of a period, and their statistics.
#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "base/convert.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "data/sql_field.h"
#include "product/csv.h"
#include "product/documents.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using data::ListKind;

// One of the four sources, under the number that Fill_Track takes. The texts keep the blanks that they always had.
struct Source {
  std::string_view tab;
  const char* columns;     // of the list
  const char* statistics;  // the same head for the statistics
  const char* lines;       // from where, and which of them count
  const char* since;
  const char* until;
  const char* line_id;
};

constexpr Source kSources[] = {
    {"vendas",
     "SELECT tbDocumentos.data, tbDocumentos.nome as entidade, tbDocumentos_Tipos.descrit as tipo, "
     "tbDocumentos.documento_no, vwDocumentos_Details.*, tbDocumentos_Tipos.peso FROM ",
     "SELECT MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as preco_unitario_max, SUM(quantidade) as "
     "quantidade_sum, SUM(preco_total) as preco_total_sum FROM ",
     "vwDocumentos_Details LEFT JOIN tbDocumentos ON tbDocumentos.armazem_id = vwDocumentos_Details.armazem_id AND "
     "tbDocumentos.documento_main_id = vwDocumentos_Details.documento_main_id LEFT JOIN tbDocumentos_Tipos ON "
     "tbDocumentos.tipo_doc_id = tbDocumentos_Tipos.tipo_doc_id WHERE (tbDocumentos.anulado = 0 OR "
     "tbDocumentos.anulado is null) AND tbDocumentos_Tipos.change_stocks <> 0 AND produto_id = ",
     " AND tbDocumentos.data >= ", " AND tbDocumentos.data <= ", "documento_item_id"},
    {"compras",
     "SELECT tbDocumentos_Fornec.data, tbDocumentos_Fornec.nome as entidade, tbDocumentos_Fornec_Tipos.descrit as "
     "tipo, tbDocumentos_Fornec.documento_no, vwDocumentos_Fornec_Details.*, tbDocumentos_Fornec_Tipos.peso FROM ",
     "SELECT MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as preco_unitario_max, SUM(quantidade) as "
     "quantidade_sum, SUM(preco_total) as preco_total_sum FROM ",
     "vwDocumentos_Fornec_Details LEFT JOIN tbDocumentos_Fornec ON tbDocumentos_Fornec.armazem_id = "
     "vwDocumentos_Fornec_Details.armazem_id AND tbDocumentos_Fornec.documento_main_id = "
     "vwDocumentos_Fornec_Details.documento_main_id LEFT JOIN tbDocumentos_Fornec_Tipos ON "
     "tbDocumentos_Fornec.tipo_doc_id = tbDocumentos_Fornec_Tipos.tipo_doc_id WHERE (tbDocumentos_Fornec.anulado = 0 "
     "OR tbDocumentos_Fornec.anulado is null) AND tbDocumentos_Fornec_Tipos.change_stocks <> 0 AND produto_id = ",
     " AND tbDocumentos_Fornec.data >= ", " AND tbDocumentos_Fornec.data <= ", "documento_item_id"},
    {"encomendas_clientes",
     "SELECT tbEncomendas.data, tbEncomendas.nome  as entidade, 'Encomenda' as tipo, tbEncomendas.encomenda_no, "
     "vwEncomendas_Details.* FROM ",
     "SELECT  MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as preco_unitario_max, SUM(quantidade) as "
     "quantidade_sum, SUM(preco_total) as preco_total_sum FROM ",
     "vwEncomendas_Details LEFT JOIN tbEncomendas ON tbEncomendas.armazem_id = vwEncomendas_Details.armazem_id AND "
     "tbEncomendas.encomenda_main_id = vwEncomendas_Details.encomenda_main_id WHERE (tbEncomendas.anulada = 0 OR "
     "tbEncomendas.anulada is null) AND produto_id = ",
     " AND tbEncomendas.data >= ", " AND tbEncomendas.data <= ", "encomenda_item_id"},
    {"encomendas_fornecedores",
     "SELECT tbEncomendas_Fornec.data, tbEncomendas_Fornec.nome as entidade, 'Encomenda' as tipo, "
     "tbEncomendas_Fornec.encomenda_no, vwEncomendas_Fornec_Details.* FROM ",
     "SELECT  MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as preco_unitario_max, SUM(quantidade) as "
     "quantidade_sum, SUM(preco_total) as preco_total_sum FROM ",
     "vwEncomendas_Fornec_Details LEFT JOIN tbEncomendas_Fornec ON tbEncomendas_Fornec.armazem_id = "
     "vwEncomendas_Fornec_Details.armazem_id AND tbEncomendas_Fornec.encomenda_main_id = "
     "vwEncomendas_Fornec_Details.encomenda_main_id WHERE (tbEncomendas_Fornec.anulada = 0 OR "
     "tbEncomendas_Fornec.anulada is null) AND produto_id = ",
     "  AND tbEncomendas_Fornec.data >= ", " AND tbEncomendas_Fornec.data <= ", "encomenda_item_id"},
};

constexpr const char* kCsvTitle = "Guardar como CSV";

std::string WhyNotWritten(const base::Error& error) {
  switch (error.number()) {
    case base::error_number::kPermissionDenied:
      return "O ficheiro está aberto noutro programa ou não pode ser alterado.";
    case base::error_number::kPathNotFound:
      return "A pasta não existe.";
    case base::error_number::kDiskFull:
      return "O disco está cheio.";
    default:
      return error.description();
  }
}

}  // namespace

void frmMain::AddHistoryCommands() {
  ListView13.multi_select = true;
  ListView13.sortable = true;
  ListView13.on_column_click = [this](int column) { ListView13_ColumnClick(column); };
  ListView13.on_context_menu = [this] { host().PopupMenu(*this, "mnHistorico"); };
  for (controls::ListView* list : {&ListView1, &ListView3, &ListView13}) {
    list->on_copy = [this, list] { CopyRows(*list); };
  }
}

void frmMain::CopyRows(const controls::ListView& list) {
  Guarded("CopyRows", [&] {
    const std::string rows = list.MarkedText();
    if (rows.empty() || session_.ports().desktop.CopyText(rows)) return;
    Tell({.text = "Não foi possível copiar: outro programa está a usar a área de transferência.",
          .title = "Copiar",
          .icon = ports::Icon::kInformation});
  });
}

// The same header again turns the order round.
void frmMain::ListView13_ColumnClick(int column) {
  Guarded("ListView13_ColumnClick", [&] {
    const controls::ListSort& sort = ListView13.sort();
    const bool descending = sort.column == column && !sort.descending;
    const Hourglass hourglass(*this);
    ListView13.Sort({column, descending}, session_.locale());
  });
}

void frmMain::mnHistoricoGuardar_Click() {
  Guarded("mnHistoricoGuardar_Click", [&] {
    const std::string& tab = TabStrip1.tabs().at(static_cast<std::size_t>(TabStrip1.selected())).caption;
    const std::string name = FXCodigo.text() + " " + tab;
    const auto path = session_.ports().desktop.AskFileToSave({.title = kCsvTitle,
                                                              .name = FileNameOf(base::Trim(name)) + ".csv",
                                                              .type_name = "Ficheiros CSV",
                                                              .extension = "csv"},
                                                             this);
    if (!path) return;
    try {
      WriteHistory(*path);
    } catch (const base::Error& error) {
      Tell({.text = "Não foi possível gravar o ficheiro " + *path + ".\n" + WhyNotWritten(error),
            .title = kCsvTitle,
            .icon = ports::Icon::kCritical});
      throw;
    }
  });
}

void frmMain::WriteHistory(const std::string& path) {
  const Hourglass hourglass(*this);
  session_.ports().settings.WriteFile(path, CsvOf(ListView13, session_.locale()));
}

// The tab that is selected decides what its page shows.
void frmMain::TabStrip1_Click() {
  const std::string& tab = TabStrip1.selected_key();
  if (tab == "dependentes") Fill_Dependentes();
  ShowHistoryOf(tab);
}

void frmMain::ShowHistoryOf(const std::string& tab) {
  const auto* const source =
      std::find_if(std::begin(kSources), std::end(kSources), [&](const Source& s) { return s.tab == tab; });
  if (source != std::end(kSources)) Fill_Track(static_cast<int>(source - std::begin(kSources)) + 1);
}

void frmMain::Fill_Track(int mode) {
  if (mode < 1 || mode > static_cast<int>(std::size(kSources))) return;
  Guarded("Fill_Track", [&] {
    const Hourglass hourglass(*this);
    const Source& source = kSources[mode - 1];
    const std::string start = Sql(FXData_Inicio, controls::format_code::kDate);
    const std::string end = Sql(FXData_Fim, controls::format_code::kDate);
    const std::string lines = source.lines + base::DecimalText(produto_id_) + source.since + start + source.until + end;
    {
      const controls::ListView::Update update(ListView13);
      // Before the queries: if one fails, nothing of another source stays.
      ListView13.Clear();
      for (controls::TextField* field : {&FXPrecoMin, &FXPrecoMax, &FXQuantidade, &FXValorTotal}) {
        Set(*field, base::Value::Null());
      }
      ShowLines(session_.Query(source.columns + lines + " ORDER BY data"), source.line_id);
      ListView13.Select(ListView13.Count() - 1);
      ListView13.Sort(ListView13.sort(), session_.locale());
    }
    ShowStatistics(session_.Query(source.statistics + lines));
  });
}

// A product can have a hundred thousand lines: columns are looked up once, and a value that a line repeats from the one
// before it (its date, its price) is not formatted again.
void frmMain::ShowLines(const ports::RowSet& lines, const char* line_id) {
  struct Column {
    std::optional<std::size_t> position;
    ListKind kind;
    const base::Value* shown = nullptr;
    std::string text = " ";
  };
  // Orders may come without a document number; theirs then stands in its place.
  const char* const number = lines.FindColumn("documento_no") ? "documento_no" : "encomenda_no";
  Column date{lines.FindColumn("data"), ListKind::kDate};
  Column columns[] = {
      {lines.FindColumn("entidade"), ListKind::kText},
      {lines.FindColumn("tipo"), ListKind::kText},
      {lines.FindColumn(number), ListKind::kText},
      {lines.FindColumn("quantidade"), ListKind::kNumber},
      {lines.FindColumn("preco_unitario"), ListKind::kAmount},
      {lines.FindColumn("preco_total"), ListKind::kAmount},
      {lines.FindColumn("preco_unitario"), ListKind::kNumber},
      {lines.FindColumn("preco_total"), ListKind::kNumber},
  };
  const auto text = [&](const ports::Row line, Column& column) -> const std::string& {
    if (!column.position) return column.text;
    const base::Value& value = line.At(*column.position);
    if (column.shown == nullptr || *column.shown != value) {
      column.text = data::ListField(session_, value, column.kind);
      column.shown = &value;
    }
    return column.text;
  };
  // The list sorts by them, and files get them; texts are shown whole.
  const auto value = [](const ports::Row line, const Column& column) {
    return column.position && column.kind != ListKind::kText ? line.At(*column.position) : base::Value();
  };
  const std::size_t visible = ListView13.columns().size();
  ListView13.Reserve(lines.size());
  for (const ports::Row line : lines) {
    std::string key = base::ToText(line["armazem_id"], session_.locale());
    key += '#';
    key += base::ToText(line[line_id], session_.locale());
    controls::ListItem& item = ListView13.Add(std::move(key), text(line, date));
    item.sub_items.reserve(std::size(columns));
    for (Column& column : columns) item.sub_items.push_back(text(line, column));
    item.values.reserve(visible);
    item.values.push_back(value(line, date));
    for (std::size_t i = 0; i + 1 < visible; ++i) item.values.push_back(value(line, columns[i]));
  }
}

void frmMain::ShowStatistics(const ports::RowSet& statistics) {
  using namespace controls::format_code;
  const struct {
    controls::TextField& field;
    const char* column;
    int code;
  } fields[] = {{FXPrecoMin, "preco_unitario_min", kAmount},
                {FXPrecoMax, "preco_unitario_max", kAmount},
                {FXQuantidade, "quantidade_sum", kNumber},
                {FXValorTotal, "preco_total_sum", kAmount}};
  for (const auto& [field, column, code] : fields) {
    Set(field, statistics.empty() ? base::Value(0) : statistics.front()[column], code);
  }
}

}  // namespace quenta::product
