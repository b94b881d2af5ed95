// The small form in which the user edits the minimum and the reposition quantity of a product in one warehouse.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "product/form_over_product.h"

namespace quenta::product {

class frmStocks final : public FormOverProduct {
 public:
  frmStocks(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
            const std::shared_ptr<frmMain>& opener, std::int32_t armazem_id);

  // Saves both quantities, shows them in the product form's stock list, and closes. The form stays open when the user
  // may not change products, who is then told, and when saving failed, which is reported.
  void Command1_Click();

  controls::Label FXArmazem{"FXArmazem", ""};
  controls::Label FXStock_Label{"FXStock_Label", "Em stock"};
  controls::TextField FXStock{"FXStock"};
  controls::Label FXStockMinimo_Label{"FXStockMinimo_Label", "Stock &mínimo"};
  controls::TextField FXStockMinimo{"FXStockMinimo"};
  controls::Label FXReposicao_Label{"FXReposicao_Label", "&Reposição"};
  controls::TextField FXReposicao{"FXReposicao"};
  controls::CommandButton Command1{"Command1", "&Gravar", true};
  controls::CommandButton Command2{"Command2", "Cancelar", false, true};
  controls::Frame Frame1{"Frame1"};

 protected:
  void OnLoad() override;

 private:
  // Runs a procedure by the convention for errors.
  template <typename Body, typename... Untold>
  void Guarded(const std::string& procedure, Body&& body, Untold&&... untold) noexcept;

  void LayOut();
  void AddEvents();
  void LeaveField(controls::TextField& field);
  void ShowRecord();
  void SaveRecord();
  void ShowInList();

  std::int32_t produto_id_;
  std::int32_t armazem_id_;
};

}  // namespace quenta::product
