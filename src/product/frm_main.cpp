#include "product/frm_main.h"

#include "controls/field_value.h"
#include "product/frm_main_guard.h"
#include "product/product_forms.h"

namespace quenta::product {
namespace {

std::vector<controls::ListColumn> PriceColumns() {
  return {{"Preço", 240, false}, {"Valor", 110, true}, {"Total com IVA", 110, true}};
}

std::vector<controls::ListColumn> StockColumns() {
  return {{"Armazém", 220, false},  {"Em stock", 100, true},         {"Mínimo", 100, true},
          {"Reposição", 100, true}, {"Enc. de clientes", 120, true}, {"Enc. a fornecedores", 130, true}};
}

std::vector<controls::ListColumn> HistoryColumns() {
  using controls::SortAs;
  return {{"Data", 90, false, SortAs::kDate},
          {"Entidade", 230},
          {"Tipo", 140},
          {"N.º", 80},
          {"Quantidade", 90, true, SortAs::kNumber},
          {"Preço unitário", 110, true, SortAs::kNumber},
          {"Preço total", 110, true, SortAs::kNumber}};
}

std::vector<controls::ListColumn> DependantColumns() {
  return {{"Código", 140, false}, {"Nome", 300, false}, {"Cor", 120, false}, {"Tamanho", 120, false}};
}

// Which of them can be used follows from the record; until one is loaded, none that needs it.
std::vector<controls::Toolbar::Button> MainButtons() {
  return {{.key = "gravar", .caption = "Gravar", .tooltip = "Gravar (Ctrl+S)", .enabled = false},
          {.key = "duplicar",
           .caption = "Duplicar",
           .tooltip = "Duplicar este produto (Ctrl+D)",
           .enabled = false,
           .starts_group = true},
          {.key = "apagar", .caption = "Apagar", .tooltip = "Apagar este produto (Ctrl+Shift+Del)", .enabled = false},
          {.key = "imprimir",
           .caption = "Imprimir",
           .tooltip = "Imprimir etiquetas (Ctrl+P)",
           .enabled = false,
           .starts_group = true,
           .menu = {{"etiquetas", "Etiquetas"}}},
          {.key = "sair", .caption = "Sair", .tooltip = "Fechar a ficha (Esc)", .starts_group = true}};
}

std::vector<controls::Toolbar::Button> DependantButtons() {
  return {
      {.key = "gerar", .caption = "Gerar", .tooltip = "Gerar produtos dependentes por cor e tamanho (Ctrl+G)"},
      {.key = "adicionar", .caption = "Adicionar", .tooltip = "Os dependentes são criados com Gerar", .enabled = false},
      {.key = "remover", .caption = "Remover", .tooltip = "Apagar o produto dependente selecionado"}};
}

std::vector<controls::Toolbar::Button> HistoryButtons() {
  return {{.key = "relatorio", .caption = "Relatório", .tooltip = "Relatório do produto (Ctrl+R)", .enabled = false}};
}

std::vector<controls::TabStrip::Tab> Tabs() {
  return {{"precos", "Preços"},
          {"stocks", "Stocks em Armazém"},
          {"compras", "Compras"},
          {"vendas", "Vendas"},
          {"encomendas_fornecedores", "Encomendas a Fornecedores"},
          {"encomendas_clientes", "Encomendas de Clientes"},
          {"dependentes", "Dependentes"}};
}

}  // namespace

frmMain::frmMain(session::Session& session, ports::FormHost& host, hosting::Forms& forms, MakeGenerator make_generator)
    : Form(host, "frmMain"),
      ListView2("ListView2", PriceColumns()),
      ListView1("ListView1", StockColumns()),
      ListView13("ListView13", HistoryColumns()),
      ListView3("ListView3", DependantColumns()),
      Toolbar1("Toolbar1", MainButtons()),
      Toolbar2("Toolbar2", DependantButtons()),
      Toolbar3("Toolbar3", HistoryButtons()),
      TabStrip1("TabStrip1", Tabs()),
      session_(session),
      forms_(forms),
      make_generator_(make_generator) {
  set_caption("Ficha de Produto");
  AddControls();
  LayOut();
  AddCommands();
  AddFieldEvents();
  AddPriceEvents();
}

void frmMain::Open(const ports::ProductRequest& request) {
  request_ = request;
  produto_id_ = request.produto_id;
  Show();
}

// What is let go of may run the host's code: it goes last, when all members have their new values.
void frmMain::Activate(const ports::ProductRequest& request) {
  const ports::ProductRequest former = request_;
  request_.caller = ports::HostObjectRef(request.caller);
  if (request.current_index) {
    request_.current_index = request.current_index;
    request_.current_object = ports::HostObjectRef(request.current_object);
    request_.last_related_id = request.last_related_id;
  }
  Show();
}

void frmMain::OnLoad() {
  Guarded("Form_Load", [&] {
    forms_.Add(*this);
    // Loaded once more it begins as a new one does: only the first page is filled with the product.
    TabStrip1.SelectKey("precos");
    Fill();
    SetHistoryPeriod();
  });
}

// The form and its General refer to each other; here the form lets go of it and of the host's objects.
void frmMain::OnClosed() noexcept {
  forms_.Remove(*this);
  request_ = {};
}

void frmMain::OnUnloadFailed() noexcept {
  session::ReportException(session_.ports().error_reporting, kFormLabels, "Form_Unload");
}

void frmMain::SetAltered(bool altered) {
  altered_ = altered && !filling_;
  if (!filling_) Toolbar1.EnableButton("gravar", altered_);
}

void frmMain::Set(controls::Control& control, const base::Value& value, int code) {
  controls::SetFieldValue(control, value, code, session_.locale());
}

std::string frmMain::Sql(const controls::Control& control, int code) {
  return controls::GetFieldValue(control, code, session_.locale());
}

std::shared_ptr<ports::ProductForm> ProductForms::Create() {
  return std::make_shared<frmMain>(session_, form_host_, forms_, make_generator_);
}

}  // namespace quenta::product
