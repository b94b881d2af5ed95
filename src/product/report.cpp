// The product's report: a template of the suite's, filled with the product, its prices and the history that is listed.
#include <algorithm>
#include <iterator>
#include <vector>

#include "base/convert.h"
#include "base/format.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "data/shared_queries.h"
#include "product/documents.h"
#include "product/frm_main_guard.h"
#include "product/rich_text.h"

namespace quenta::product {
namespace {

constexpr session::Labels kToolbarLabels{"Programa de Contabilidade", "Quenta_Encomendas", "frmMain",
                                         session::DescriptionStyle::kAlone};
constexpr const char* kReportTemplate = "produto_stats.doc";
constexpr std::string_view kAmount = "#,##0.00; - #,##0.00";

// A placeholder of the product's, with its value as rich text.
struct Field {
  std::string_view placeholder;
  std::string rich_text;
  bool any_case = false;  // of the letters A to Z
};

// The placeholders of a history row; each stands for the list's column of the same position. The first one marks the
// row.
constexpr std::string_view kRowPlaceholders[] = {"<data>",       "<entidade>",       "<tipo>",       "<documento_no>",
                                                 "<quantidade>", "<preco_unitario>", "<preco_total>"};

char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool StandsAt(const Field& field, std::string_view text) {
  if (!field.any_case) return text.starts_with(field.placeholder);
  return text.size() >= field.placeholder.size() &&
         std::equal(field.placeholder.begin(), field.placeholder.end(), text.begin(),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

Placeholder FindField(const std::vector<Field>& fields, std::string_view text) {
  for (const Field& field : fields) {
    if (StandsAt(field, text)) return {field.placeholder.size(), field.rich_text};
  }
  return {};
}

// Appends one copy of the history row: the row's own placeholders go before the product's, so that its "<tipo>" is the
// document's.
template <typename Cell>
void AppendRow(std::string& out, std::string_view row, const std::vector<Field>& fields, Cell&& cell) {
  std::string rich_text;
  AppendFilled(out, row, [&](std::string_view text) -> Placeholder {
    for (std::size_t column = 0; column < std::size(kRowPlaceholders); ++column) {
      if (!text.starts_with(kRowPlaceholders[column])) continue;
      rich_text = StringRTF(cell(static_cast<int>(column)));
      return {kRowPlaceholders[column].size(), rich_text};
    }
    return FindField(fields, text);
  });
}

// The template filled. Outside of a whole table row the placeholders of history rows stand for nothing and stay as they
// are: whoever wrote the template sees what is wrong with it.
std::string FillReport(std::string_view text, const std::vector<Field>& fields, const controls::ListView& history) {
  const auto find = [&](std::string_view piece) { return FindField(fields, piece); };
  std::string out;
  const auto row = FindTableRow(text, kRowPlaceholders[0]);
  if (!row) {
    out.reserve(text.size());
    AppendFilled(out, text, find);
    return out;
  }
  const std::string_view one = text.substr(row->begin, row->end - row->begin);
  out.reserve(text.size() + one.size() * static_cast<std::size_t>(history.Count()));
  AppendFilled(out, text.substr(0, row->begin), find);
  for (int line = 0; line < history.Count(); ++line) {
    if (line > 0) out += row->separator;
    AppendRow(out, one, fields, [&](int column) -> const std::string& { return history.Cell(line, column); });
  }
  if (history.Count() == 0) AppendRow(out, one, fields, [](int) { return std::string(" "); });
  AppendFilled(out, text.substr(row->end), find);
  return out;
}

std::string UserName(session::Session& session) {
  const ports::RowSet rows = session.Query(
      "SELECT tbContactos.nome_union FROM tbUsers LEFT JOIN tbContactos ON tbUsers.contacto_id = "
      "tbContactos.contacto_id WHERE tbUsers.descrit = " +
      base::SqlTextLiteral(session.state().session_user));
  if (rows.empty() || rows.front()["nome_union"].is_null()) return {};
  return base::ToText(rows.front()["nome_union"], session.locale());
}

std::vector<Field> FieldsOf(const frmMain& form, session::Session& session) {
  const base::Locale& locale = session.locale();
  const auto text = [](const std::string& value, const char* when_empty) {
    return value.empty() ? std::string(when_empty) : StringRTF(value);
  };
  const auto date = [&](const base::Value& value, std::string_view pattern) {
    return StringRTF(base::Format(value, pattern, locale));
  };
  // As the field shows it: the discount, which shows with its percent sign, keeps it.
  const auto amount = [&](const controls::TextField& field) {
    return StringRTF(base::Format(field.text(), kAmount, locale));
  };
  const std::string user = UserName(session);
  const base::Date today = data::ServerDate(session);
  const auto& tabs = form.TabStrip1.tabs();
  const auto tab = std::find_if(tabs.begin(), tabs.end(), [&](const controls::TabStrip::Tab& one) {
    return one.key == form.TabStrip1.selected_key();
  });
  return {
      {"<user>", text(user, "  "), true},
      {"<today>", date(today, "dd mmmm") + " " + date(today, "yyyy"), true},
      {"<data_inicio>", date(form.FXData_Inicio.value(), "dd-mm-yyyy")},
      {"<data_fim>", date(form.FXData_Fim.value(), "dd-mm-yyyy")},
      {"<tipo>", text(form.FXTipo_ID.text(), " ")},
      {"<codigo>", text(form.FXCodigo.text(), " ")},
      {"<fornecedor>", text(form.FXFornecedor_ID.text(), "  ")},
      {"<familia>", text(form.FXFamilia_ID.text(), "  ")},
      {"<sub_familia>", text(form.FXSub_Familia_ID.text(), "  ")},
      {"<marca>", text(form.FXMarca.text(), "  ")},
      {"<descrit>", text(form.FXNome.text(), "  ")},
      {"<listagem>", text(tab == tabs.end() ? std::string() : tab->caption, "")},
      {"<tamanho>", text(form.FXTamanho.text(), "  ")},
      {"<cor>", text(form.FXCor.text(), "  ")},
      {"<altura>", text(form.FXAltura.text(), "  ")},
      {"<largura>", text(form.FXLargura.text(), "  ")},
      {"<profundidade>", text(form.FXProfundidade.text(), "  ")},
      {"<obs>", text(form.FXObs.text(), "  ")},
      {"<tipo_preco>", text(form.FXTipo.text(), "  ")},
      {"<valor>", amount(form.FXValor)},
      {"<iva>", amount(form.FXIVA)},
      {"<total>", amount(form.FXTOTAL)},
      {"<desconto>", amount(form.FXDesconto)},
      {"<taxa_iva>", text(form.FXIva_ID.text(), "")},
      {"<preco_min>", amount(form.FXPrecoMin)},
      {"<preco_max>", amount(form.FXPrecoMax)},
      {"<quantidade_total>", amount(form.FXQuantidade)},
      {"<valor_total>", amount(form.FXValorTotal)},
  };
}

}  // namespace

std::string frmMain::DoReport(std::string& output_path, const std::string& template_name) {
  const Operation operation(*this);
  return session::Guarded(session_.ports().error_reporting, kDocumentLabels, "DoReport", [&]() -> std::string {
    const auto folder = TemplatesFolder(session_, *this);
    if (!folder) return {};
    if (output_path.empty()) output_path = DocumentPath(session_, template_name);
    std::string report;
    {
      const Hourglass hourglass(*this);
      const std::string text = ReadTemplate(session_, *folder, template_name);
      report = FillReport(text, FieldsOf(*this, session_), ListView13);
      report += "\r\n";
    }
    return WriteDocument(session_, output_path, report, *this) ? output_path : std::string();
  });
}

void frmMain::Toolbar3_ButtonClick(const std::string& key) {
  const Operation operation(*this);
  session::Guarded(session_.ports().error_reporting, kToolbarLabels, "Toolbar3_ButtonClick", [&] {
    if (key != "relatorio") return;
    std::string path;
    const std::string report = DoReport(path, kReportTemplate);
    if (!report.empty()) OpenDocument(session_, report, *this);
  });
}

}  // namespace quenta::product
