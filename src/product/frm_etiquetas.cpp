#include "product/frm_etiquetas.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <utility>

#include "base/text.h"
#include "product/documents.h"

namespace quenta::product {
namespace {

constexpr session::Labels kLabels{kDocumentLabels.product, kDocumentLabels.project, "frmEtiquetas",
                                  kDocumentLabels.style};
// A hundred sheets: more than that is a slip of the finger.
constexpr std::size_t kMostLabels = 2400;
constexpr std::size_t kCodesToName = 10;

std::string Count(std::size_t number) {
  return base::DecimalText(static_cast<long long>(number));
}

// What cannot be chosen says what is missing: a template can be mended.
std::string OptionCaption(const std::string& caption, const std::optional<std::string>& label_template,
                          const char* name) {
  return label_template ? caption : caption + " (falta um modelo " + name + " que sirva)";
}

}  // namespace

frmEtiquetas::frmEtiquetas(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                           const std::shared_ptr<frmMain>& opener, LabelChoice choice)
    : FormOverProduct("frmEtiquetas", session, host, forms, opener),
      Option1("Option1", OptionCaption("&Uma etiqueta", choice.label_template, kLabelTemplate)),
      Option2("Option2", OptionCaption("&Folha de etiquetas", choice.sheet_template, kSheetTemplate)),
      choice_(std::move(choice)),
      positions_(choice_.sheet_template ? LabelsOnSheet(*choice_.sheet_template) : 0) {
  set_caption("Etiquetas");
  LayOut();
  Option1.on_click = [this] { EnableFields(); };
  Option2.on_click = [this] { EnableFields(); };
  Command1.on_click = [this] { Command1_Click(); };
  Command2.on_click = [this] { Unload(); };
}

void frmEtiquetas::LayOut() {
  for (controls::Control* control :
       std::initializer_list<controls::Control*>{&Label1, &Frame1, &Option1, &Option2, &FXQuantidade_Label,
                                                 &FXQuantidade, &FXPosicao_Label, &FXPosicao, &Command1, &Command2}) {
    Add(*control);
  }
  FXQuantidade.right_aligned = true;
  FXPosicao.right_aligned = true;
  FXQuantidade.set_max_length(4);
  FXPosicao.set_max_length(4);
  Frame1.rows = {{{{&Option1, nullptr, 12}}},
                 {{{&Option2, nullptr, 12}}},
                 {{{&FXQuantidade, &FXQuantidade_Label, 6}, {&FXPosicao, &FXPosicao_Label, 6}}}};
  layout_.note = &Label1;
  layout_.frames = {&Frame1};
  layout_.buttons = {&Command1, &Command2};
  layout_.minimum_width = 420;
  layout_.minimum_height = 220;
  layout_.initial_width = 420;
  layout_.initial_height = 240;
  layout_.resizable = false;
}

void frmEtiquetas::OnLoad() {
  FormOverProduct::OnLoad();
  const std::size_t dependants = choice_.dependants.size();
  Label1.set_caption(choice_.product.codigo + "  " + choice_.product.nome);
  if (dependants > 0) {
    Label1.set_caption(Label1.caption() +
                       (dependants == 1 ? " (1 dependente)" : " (" + Count(dependants) + " dependentes)"));
    FXQuantidade_Label.set_caption("&Quantas de cada dependente");
  }
  if (positions_ > 0) FXPosicao_Label.set_caption("&Primeira posição livre (1 a " + Count(positions_) + ")");
  const bool sheet = choice_.sheet_template && (dependants > 0 || !choice_.label_template);
  Option1.set_value(!sheet);
  Option2.set_value(sheet);
  Option1.set_enabled(choice_.label_template.has_value());
  Option2.set_enabled(choice_.sheet_template.has_value());
  FXQuantidade.set_text("1");
  FXPosicao.set_text("1");
  EnableFields();
}

void frmEtiquetas::EnableFields() {
  for (controls::Control* control :
       std::initializer_list<controls::Control*>{&FXQuantidade_Label, &FXQuantidade, &FXPosicao_Label, &FXPosicao}) {
    control->set_enabled(Option2.value());
  }
}

void frmEtiquetas::Command1_Click() {
  session::Guarded(session_.ports().error_reporting, kLabels, "Command1_Click", [&] {
    const auto run = Run();
    if (!run) return;
    const bool sheet = Option2.value();
    const std::string& label_template = (sheet ? choice_.sheet_template : choice_.label_template).value();
    TellOfCodesWithoutBars(CodesWithoutBars(label_template, *run));
    const std::string path = DocumentPath(session_, sheet ? kSheetTemplate : kLabelTemplate);
    const std::string document =
        sheet ? FillLabels(label_template, *run) : FillLabel(label_template, run->labels.front());
    if (!WriteDocument(session_, path, document, *this)) return;
    OpenDocument(session_, path, *this);
    Unload();
  });
}

// What the fields say; nothing when the user has to correct it.
std::optional<LabelRun> frmEtiquetas::Run() {
  if (!Option2.value()) return LabelRun{.labels = {choice_.product}};
  LabelRun run;
  run.labels = choice_.dependants.empty() ? std::vector<ProductLabel>{choice_.product} : choice_.dependants;
  const std::size_t most = std::max<std::size_t>(kMostLabels / run.labels.size(), 1);
  const auto copies = Number(FXQuantidade, "Indique quantas etiquetas quer", most);
  if (!copies) return std::nullopt;
  const auto position = Number(FXPosicao, "Indique a primeira posição livre da folha", positions_);
  if (!position) return std::nullopt;
  run.copies = *copies;
  run.first_position = *position;
  return run;
}

// A whole number from 1 to the most; anything else is refused, and the user is taken to the field.
std::optional<std::size_t> frmEtiquetas::Number(controls::TextField& field, const std::string& question,
                                                std::size_t most) {
  const std::string_view text = base::Trim(field.text());
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size() && number >= 1 && number <= most) return number;
  TellAboutDocuments(session_, question + ": um número de 1 a " + Count(most) + ".", *this);
  field.SelectAll();
  host().Focus(*this, field.name().c_str());
  return std::nullopt;
}

void frmEtiquetas::TellOfCodesWithoutBars(const std::vector<std::string>& codes) {
  if (codes.empty()) return;
  std::string named;
  for (std::size_t i = 0; i < std::min(codes.size(), kCodesToName); ++i) named += (i > 0 ? ", " : "") + codes[i];
  if (codes.size() > kCodesToName) named += " …";
  TellAboutDocuments(session_, "Estes códigos não cabem num código de barras; as suas etiquetas saem sem ele: " + named,
                     *this);
}

}  // namespace quenta::product
