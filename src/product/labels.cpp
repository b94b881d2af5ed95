// Labels of a product, or of each of its dependants.
#include "product/labels.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "base/convert.h"
#include "base/error.h"
#include "base/format.h"
#include "base/text.h"
#include "product/barcode.h"
#include "product/documents.h"
#include "product/frm_etiquetas.h"
#include "product/frm_main_guard.h"
#include "product/label_fit.h"
#include "product/price_row.h"
#include "product/rich_text.h"

namespace quenta::product {
namespace {

constexpr std::string_view kPlaceholders[] = {"<<nome>>",    "<<codigo>>", "<<cor>>",
                                              "<<tamanho>>", "<<preco>>",  "<<barras>>"};
constexpr std::size_t kName = 0;  // position of the first one
constexpr std::size_t kBars = 5;  // and of the last
constexpr std::string_view kAmount = "€ #,##0.00;€ -#,##0.00";

using Counts = std::array<std::size_t, std::size(kPlaceholders)>;

// What is filled in for a label.
struct LabelTexts {
  std::string nome;                                             // as it is read: its place decides how much of it
  std::array<std::string, std::size(kPlaceholders)> rich_text;  // for each placeholder
};

// Position of the placeholder that stands at the start of the text; their number for none.
std::size_t PlaceholderAt(std::string_view text) {
  const auto* const found = std::find_if(std::begin(kPlaceholders), std::end(kPlaceholders),
                                         [&](std::string_view placeholder) { return text.starts_with(placeholder); });
  return static_cast<std::size_t>(found - std::begin(kPlaceholders));
}

LabelTexts TextsOf(const ProductLabel& label) {
  return {label.nome,
          {StringRTF(label.nome), StringRTF(label.codigo), StringRTF(label.cor), StringRTF(label.tamanho),
           StringRTF(label.preco), BarcodePicture(label.codigo).value_or(std::string())}};
}

// The piece of a label template that is filled, again for each sheet.
class Page {
 public:
  Page(std::string_view label_template, const Stretch& body)
      : text_(label_template.substr(body.begin, body.end - body.begin)),
        rooms_(RoomsOf(label_template.substr(0, body.end), body.begin, kPlaceholders[kName])) {}

  // Appends it, its places filled: `label_of` answers which label an occurrence of a placeholder shows, counted from 0;
  // null for none.
  template <typename LabelOf>
  void AppendTo(std::string& out, LabelOf&& label_of) const {
    Counts counts{};
    std::string name;
    AppendFilled(out, text_, [&](std::string_view text) -> Placeholder {
      const std::size_t placeholder = PlaceholderAt(text);
      if (placeholder == counts.size()) return {};
      const std::size_t occurrence = counts[placeholder]++;
      const std::size_t length = kPlaceholders[placeholder].size();
      const LabelTexts* const label = label_of(occurrence);
      if (label == nullptr) return {length, {}};
      if (placeholder != kName || occurrence >= rooms_.size() || !rooms_[occurrence]) {
        return {length, label->rich_text[placeholder]};
      }
      name = StringRTF(FitToRoom(label->nome, *rooms_[occurrence]));
      return {length, name};
    });
  }

 private:
  std::string_view text_;
  std::vector<std::optional<LabelRoom>> rooms_;  // of each occurrence of the name
};

[[noreturn]] void RaiseNoPlace() {
  throw base::Error(base::error_number::kInvalidCall, "The template has no place for a label");
}

// Nothing when it cannot be read, or has no place for a label.
std::optional<std::string> UsableTemplate(session::Session& session, const std::string& folder, const char* name) {
  auto bytes = FindTemplate(session, folder, name);
  return bytes && LabelsOnSheet(*bytes) > 0 ? bytes : std::nullopt;
}

std::string PriceText(const base::Value& preco_total, const base::Locale& locale) {
  return preco_total.is_null() ? std::string() : base::Format(preco_total, kAmount, locale);
}

// The product as the form shows it. The default line is the last one that is marked, as in the price list.
ProductLabel LabelOf(frmMain& form, const base::Locale& locale) {
  ProductLabel label{form.FXNome.text(), form.FXCodigo.text(), form.FXCor.text(), form.FXTamanho.text(), {}};
  for (int i = 0; i < form.ListView2.Count(); ++i) {
    const PriceRow line(form.ListView2.At(i));
    if (line.is_default()) label.preco = PriceText(line.preco_total(), locale);
  }
  return label;
}

std::vector<ProductLabel> LabelsOfDependants(session::Session& session, std::int32_t produto_id) {
  const base::Locale& locale = session.locale();
  const ports::RowSet rows = session.Query(
      "SELECT tbProdutos.produto_id, tbProdutos.codigo, tbProdutos.nome, tbProdutos.cor, tbProdutos.tamanho, "
      "tbProdutos_Precos.preco_total FROM tbProdutos LEFT JOIN tbProdutos_Precos ON tbProdutos.produto_id = "
      "tbProdutos_Precos.produto_id AND "
      "tbProdutos_Precos.predef <> 0 LEFT JOIN tbProdutos_Precos_Tipos ON tbProdutos_Precos.tipo_id = "
      "tbProdutos_Precos_Tipos.tipo_id WHERE tbProdutos.is_deleted = 0 AND tbProdutos.main_id = " +
      base::DecimalText(produto_id) +
      " ORDER BY tbProdutos.codigo, tbProdutos.produto_id, tbProdutos_Precos_Tipos.descrit");
  const auto text = [&](const base::Value& value) {
    return value.is_null() ? std::string() : base::ToText(value, locale);
  };
  std::vector<ProductLabel> labels;
  base::Value last;
  for (const ports::Row row : rows) {
    // Of several default lines of one product, the last one counts.
    if (!labels.empty() && row["produto_id"] == last) labels.pop_back();
    last = row["produto_id"];
    labels.push_back({text(row["nome"]), text(row["codigo"]), text(row["cor"]), text(row["tamanho"]),
                      PriceText(row["preco_total"], locale)});
  }
  return labels;
}

}  // namespace

std::size_t LabelsOnSheet(std::string_view label_template) {
  Counts counts{};
  for (std::size_t at = label_template.find("<<"); at != std::string_view::npos;
       at = label_template.find("<<", at + 1)) {
    const std::size_t placeholder = PlaceholderAt(label_template.substr(at));
    if (placeholder < counts.size()) ++counts[placeholder];
  }
  return *std::max_element(counts.begin(), counts.end());
}

std::string FillLabel(std::string_view label_template, const ProductLabel& label) {
  if (LabelsOnSheet(label_template) == 0) RaiseNoPlace();
  const LabelTexts texts = TextsOf(label);
  std::string out;
  Page(label_template, {.begin = 0, .end = label_template.size(), .separator = {}}).AppendTo(out, [&](std::size_t) {
    return &texts;
  });
  return out;
}

std::string FillLabels(std::string_view label_template, const LabelRun& run) {
  const std::size_t positions = LabelsOnSheet(label_template);
  if (positions == 0) RaiseNoPlace();
  std::vector<LabelTexts> texts;
  texts.reserve(run.labels.size());
  std::transform(run.labels.begin(), run.labels.end(), std::back_inserter(texts), TextsOf);
  const std::size_t skipped = run.first_position - 1;
  const std::size_t end = skipped + texts.size() * run.copies;

  const Stretch body = FindBody(label_template);
  const Page page(label_template, body);
  std::string out(label_template.substr(0, body.begin));
  for (std::size_t start = 0; start < end; start += positions) {
    // A section's end is a page's end, and takes no line of the page that begins.
    if (start > 0) out += "\\sect\n";
    page.AppendTo(out, [&](std::size_t occurrence) -> const LabelTexts* {
      const std::size_t position = start + occurrence;
      return position < skipped || position >= end ? nullptr : &texts[(position - skipped) / run.copies];
    });
  }
  out += label_template.substr(body.end);
  return out;
}

std::vector<std::string> CodesWithoutBars(std::string_view label_template, const LabelRun& run) {
  std::vector<std::string> codes;
  if (label_template.find(kPlaceholders[kBars]) == std::string_view::npos) return codes;
  for (const ProductLabel& label : run.labels) {
    if (!label.codigo.empty() && !BarcodePicture(label.codigo)) codes.push_back(label.codigo);
  }
  return codes;
}

void frmMain::ConstructDoc(const std::string&) {
  const Operation operation(*this);
  session::Guarded(session_.ports().error_reporting, kDocumentLabels, "ConstructDoc", [&] {
    const auto folder = TemplatesFolder(session_, *this);
    if (!folder) return;
    LabelChoice choice{.product = LabelOf(*this, session_.locale()),
                       .dependants = LabelsOfDependants(session_, produto_id_),
                       .label_template = UsableTemplate(session_, *folder, kLabelTemplate),
                       .sheet_template = UsableTemplate(session_, *folder, kSheetTemplate)};
    if (!choice.label_template && !choice.sheet_template) {
      ReadTemplate(session_, *folder, kLabelTemplate);
      RaiseNoPlace();
    }
    const auto labels = std::make_shared<frmEtiquetas>(
        session_, host(), forms_, std::static_pointer_cast<frmMain>(shared_from_this()), std::move(choice));
    labels->Show();
    if (labels->Option2.value()) host().Focus(*labels, "FXQuantidade");
  });
}

}  // namespace quenta::product
