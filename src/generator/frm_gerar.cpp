#include "generator/frm_gerar.h"

#include <utility>

#include "base/convert.h"
#include "base/text.h"
#include "component/session/guarded.h"

namespace quenta::generator {
namespace {

// Kept as the suite has it: the project is another one.
constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Encomendas", "frmGerar",
                                  session::DescriptionStyle::kAlone};

std::vector<controls::ListColumn> Columns(const char* attribute) {
  return {{attribute, 210}, {"Código", 80}};
}

std::string TextOf(const base::Value& value, const base::Locale& locale) {
  return value.is_null() ? std::string() : base::ToText(value, locale);
}

// Equal for the combinations that the server takes for the same.
std::string KeyOf(const std::optional<std::string>& cor, const std::optional<std::string>& tamanho) {
  const auto part = [](const std::optional<std::string>& text) {
    return text ? "=" + base::ToUpper(base::Trim(*text)) : std::string("-");
  };
  return part(cor) + "\n" + part(tamanho);
}

std::optional<std::string> TextOf(const Attribute* attribute) {
  return attribute != nullptr ? std::optional(attribute->text) : std::nullopt;
}

// The checked rows, or the one "none".
std::vector<std::optional<Attribute>> Checked(controls::ListView& list) {
  std::vector<std::optional<Attribute>> checked;
  for (int i = 0; i < list.Count(); ++i) {
    const controls::ListItem& item = list.At(i);
    if (item.checked) checked.push_back(Attribute{item.text, item.sub_items.front()});
  }
  if (checked.empty()) checked.push_back(std::nullopt);
  return checked;
}

class Mark {
 public:
  explicit Mark(bool& mark) noexcept : mark_(mark) { mark_ = true; }
  ~Mark() { mark_ = false; }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

 private:
  bool& mark_;
};

}  // namespace

// While one lives, the form can only be told to stop, and the other forms cannot be used.
class frmGerar::Run {
 public:
  explicit Run(frmGerar& form) : form_(form), exclusive_(form.forms_, form) { Set(true); }
  ~Run() { Set(false); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

 private:
  void Set(bool running) {
    form_.set_mouse_pointer(running ? controls::MousePointer::kHourglass : controls::MousePointer::kDefault);
    for (controls::Control* control : std::initializer_list<controls::Control*>{
             &form_.ListView1, &form_.ListView2, &form_.CoresTodas, &form_.CoresNenhuma, &form_.TamanhosTodos,
             &form_.TamanhosNenhum, &form_.Command1}) {
      control->set_enabled(!running);
    }
    form_.ProgressBar1.set_visible(running);
    form_.Label2.set_visible(running);
  }

  frmGerar& form_;
  hosting::ExclusiveUse exclusive_;
};

frmGerar::frmGerar(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                   const std::shared_ptr<product::frmMain>& opener, std::int32_t produto_id)
    : FormOverProduct("frmGerar", session, host, forms, opener),
      ListView1("ListView1", Columns("Cor"), true),
      ListView2("ListView2", Columns("Tamanho"), true),
      produto_id_(produto_id) {
  set_caption("Gerar Produtos Dependentes");
  LayOut();
  ListView1.on_item_check = [this] { ShowCounts(); };
  ListView2.on_item_check = [this] { ShowCounts(); };
  CoresTodas.on_click = [this] { CheckAll(ListView1, true); };
  CoresNenhuma.on_click = [this] { CheckAll(ListView1, false); };
  TamanhosTodos.on_click = [this] { CheckAll(ListView2, true); };
  TamanhosNenhum.on_click = [this] { CheckAll(ListView2, false); };
  Command1.on_click = [this] { Command1_Click(); };
  Command2.on_click = [this] { Command2_Click(); };
}

void frmGerar::LayOut() {
  for (controls::Control* control : std::initializer_list<controls::Control*>{
           &Label3, &Frame1, &ListView1_Label, &ListView1, &ListView2_Label, &ListView2, &CoresTodas, &CoresNenhuma,
           &TamanhosTodos, &TamanhosNenhum, &Label1, &ProgressBar1, &Label2, &Command1, &Command2}) {
    Add(*control);
  }
  Frame1.rows = {
      {{{&ListView1, &ListView1_Label, 6}, {&ListView2, &ListView2_Label, 6}}, 10, true},
      {{{&CoresTodas, nullptr, 3},
        {&CoresNenhuma, nullptr, 3},
        {&TamanhosTodos, nullptr, 3},
        {&TamanhosNenhum, nullptr, 3}}},
      {{{&Label1, nullptr, 12}}},
      {{{&ProgressBar1, nullptr, 6}, {&Label2, nullptr, 6}}},
  };
  Command2.set_tooltip("Fecha esta janela; durante a geração, interrompe-a (Esc)");
  ProgressBar1.set_visible(false);
  Label2.set_visible(false);
  layout_.note = &Label3;
  layout_.frames = {&Frame1};
  layout_.buttons = {&Command1, &Command2};
  layout_.minimum_width = 560;
  layout_.minimum_height = 400;
  layout_.initial_width = 700;
  layout_.initial_height = 560;
}

template <typename Body>
auto frmGerar::Guarded(const char* procedure, Body&& body) noexcept {
  return session::Guarded(session_.ports().error_reporting, kLabels, procedure, body);
}

void frmGerar::OnLoad() {
  Guarded("Form_Load", [&] {
    FormOverProduct::OnLoad();
    if (const auto opener = OpenerOf(produto_id_)) {
      Label3.set_caption(opener->FXCodigo.text() + "  " + opener->FXNome.text());
    }
    FillList(ListView1, "SELECT * FROM tbProdutos_Cores ORDER BY descrit", "cor_id");
    FillList(ListView2, "SELECT * FROM tbProdutos_Tamanhos ORDER BY descrit", "tamanho_id");
    ReadExisting();
  });
  ShowCounts();
}

// Closing while it generates means to stop; the generation closes the form when it has ended.
void frmGerar::OnUnload(bool& cancel) {
  cancel = generating_;
  stop_ = true;
  FormOverProduct::OnUnload(cancel);
}

// An attribute without a text is left out: its dependants would have none, and be created again each time.
void frmGerar::FillList(controls::ListView& list, const char* query, const char* id_column) {
  const base::Locale& locale = session_.locale();
  list.Clear();
  const ports::RowSet rows = session_.Query(query);
  const controls::ListView::Update update(list);
  for (const ports::Row row : rows) {
    std::string text = TextOf(row["descrit"], locale);
    if (base::Trim(text).empty()) continue;
    list.Add("#" + base::ToText(row[id_column], locale), std::move(text)).sub_items = {TextOf(row["code"], locale)};
  }
}

void frmGerar::ReadExisting() {
  const base::Locale& locale = session_.locale();
  existing_.clear();
  for (const ports::Row row : session_.Query("SELECT cor, tamanho FROM tbProdutos WHERE is_deleted = 0 AND main_id = " +
                                             base::DecimalText(produto_id_))) {
    const auto text = [&](const char* column) {
      return row[column].is_null() ? std::nullopt : std::optional(base::ToText(row[column], locale));
    };
    existing_.insert(KeyOf(text("cor"), text("tamanho")));
  }
}

void frmGerar::CheckAll(controls::ListView& list, bool checked) {
  for (int i = 0; i < list.Count(); ++i) list.At(i).checked = checked;
  list.ItemsChanged();
  ShowCounts();
}

void frmGerar::ShowCounts() {
  const Choice choice = Chosen();
  if (choice.Empty()) {
    Label1.set_caption("Escolha as cores, os tamanhos, ou ambos.");
    return;
  }
  auto known = existing_;
  int created = 0;
  for (int i = 0; i < choice.Count(); ++i) {
    const Combination combination = choice.At(i);
    if (known.insert(KeyOf(TextOf(combination.cor), TextOf(combination.tamanho))).second) ++created;
  }
  Label1.set_caption("Produtos a criar: " + base::DecimalText(created) +
                     ". Já existem: " + base::DecimalText(choice.Count() - created) + ".");
}

frmGerar::Choice frmGerar::Chosen() {
  return {Checked(ListView1), Checked(ListView2)};
}

Combination frmGerar::Choice::At(int position) const {
  const auto attribute = [](const std::vector<std::optional<Attribute>>& chosen, std::size_t index) {
    return chosen[index] ? &*chosen[index] : nullptr;
  };
  const auto index = static_cast<std::size_t>(position);
  return {attribute(cores, index / tamanhos.size()), attribute(tamanhos, index % tamanhos.size())};
}

void frmGerar::Command1_Click() {
  if (generating_) return;
  const std::shared_ptr<Form> alive = shared_from_this();
  const Choice choice = Chosen();
  if (choice.Empty()) {
    session_.ports().desktop.Ask(
        {.text = "Tem de selecionar pelo menos uma cor ou um tamanho.", .icon = ports::Icon::kInformation}, this);
    return;
  }
  End end = End::kError;
  {
    const Mark mark(generating_);
    stop_ = false;
    quitting_ = false;
    Progress progress;
    end = Guarded("Command1_Click", [&] { return Generate(choice, progress); });
    if (loaded() && !quitting_) TellEnd(end, progress);
  }
  if (!loaded()) return;
  RefreshOpener();
  if (end != End::kError) {
    Unload();
    return;
  }
  Guarded("Command1_Click", [&] { ReadExisting(); });
  ShowCounts();
}

frmGerar::End frmGerar::Generate(const Choice& choice, Progress& progress) {
  const Run run(*this);
  const ports::RowSet products =
      session_.Query("SELECT * FROM tbProdutos WHERE produto_id=" + base::DecimalText(produto_id_));
  if (products.empty() || base::IsNonZero(products.front()["is_deleted"])) return End::kNoMainProduct;
  const MainProduct main(session_, products.front());
  for (int i = 0; i < choice.Count(); ++i) {
    const Combination combination = choice.At(i);
    progress.code = main.CodeOf(combination);
    if (!MayGoOn(progress.code, i, choice.Count())) return End::kStopped;
    const bool created = !main.HasDependant(combination) && main.CreateDependant(combination);
    ++(created ? progress.created : progress.skipped);
  }
  return End::kComplete;
}

// Between two products, when nothing is open in the database, the user and the host have their turn.
bool frmGerar::MayGoOn(const std::string& code, int position, int count) {
  ProgressBar1.SetProgress(position, count);
  Label2.set_caption(code + " (" + base::DecimalText(position + 1) + " de " + base::DecimalText(count) + ")");
  quitting_ = !session_.ports().desktop.PumpMessages();
  return !quitting_ && !stop_ && loaded();
}

void frmGerar::Tell(const std::string& text, ports::Icon icon) {
  Guarded("Command1_Click", [&] {
    const hosting::ExclusiveUse exclusive(forms_, *this);
    session_.ports().desktop.Ask({.text = text, .title = caption(), .icon = icon}, this);
  });
}

void frmGerar::TellEnd(End end, const Progress& progress) {
  std::string text;
  if (end == End::kNoMainProduct) text = "O produto principal já não existe.\n";
  if (end == End::kStopped) text = "A geração foi interrompida antes de " + progress.code + ".\n";
  if (end == End::kError) {
    text = "Um erro parou a geração" + (progress.code.empty() ? "" : " em " + progress.code) +
           ". O que foi criado até aí mantém-se.\n";
  }
  text += "Produtos criados: " + base::DecimalText(progress.created) +
          "\nCombinações que já existiam: " + base::DecimalText(progress.skipped);
  Tell(text, end == End::kError ? ports::Icon::kCritical : ports::Icon::kInformation);
}

// The opener may be gone, or show another product by now.
void frmGerar::RefreshOpener() {
  if (const auto opener = OpenerOf(produto_id_)) opener->Fill_Dependentes();
}

std::shared_ptr<controls::Form> MakeGenerator(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                                              const std::shared_ptr<product::frmMain>& opener,
                                              std::int32_t produto_id) {
  return std::make_shared<frmGerar>(session, host, forms, opener, produto_id);
}

}  // namespace quenta::generator
