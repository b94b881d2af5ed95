// The small form in which the user says how many labels to print, and where on the sheet they begin.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "product/form_over_product.h"
#include "product/labels.h"

namespace quenta::product {

// What can be printed for a product. At least one of the templates is there, and each has a place for a label.
struct LabelChoice {
  ProductLabel product;
  std::vector<ProductLabel> dependants;  // when there are any, a sheet takes theirs instead of the product's own
  std::optional<std::string> label_template;
  std::optional<std::string> sheet_template;
};

class frmEtiquetas final : public FormOverProduct {
 public:
  frmEtiquetas(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
               const std::shared_ptr<frmMain>& opener, LabelChoice choice);

  // Prints what was chosen, and closes. What cannot be printed is refused with a message.
  void Command1_Click();

  controls::Label Label1{"Label1", ""};
  controls::OptionButton Option1;  // one label
  controls::OptionButton Option2;  // a sheet of labels
  controls::Label FXQuantidade_Label{"FXQuantidade_Label", "&Quantas etiquetas"};
  controls::TextField FXQuantidade{"FXQuantidade"};
  controls::Label FXPosicao_Label{"FXPosicao_Label", "&Primeira posição livre"};
  controls::TextField FXPosicao{"FXPosicao"};
  controls::CommandButton Command1{"Command1", "&Imprimir", true};
  controls::CommandButton Command2{"Command2", "Cancelar", false, true};
  controls::Frame Frame1{"Frame1"};

 protected:
  void OnLoad() override;

 private:
  void LayOut();
  void EnableFields();
  std::optional<LabelRun> Run();
  std::optional<std::size_t> Number(controls::TextField& field, const std::string& question, std::size_t most);
  void TellOfCodesWithoutBars(const std::vector<std::string>& codes);

  LabelChoice choice_;
  std::size_t positions_;  // on a sheet; 0 without its template
};

}  // namespace quenta::product
