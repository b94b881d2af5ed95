// The small form in which the user edits the minimum and the reposition quantity of a product in one warehouse.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "component/session/session.h"
#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "hosting/forms.h"
#include "product/frm_main.h"

namespace quenta::product {

class frmStocks final : public controls::Form {
 public:
  // The product form is disabled from the load until this one closes. It may go earlier: the host can take it away.
  frmStocks(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
            const std::shared_ptr<frmMain>& opener, std::int32_t armazem_id);

  ports::HostObjectRef Caller() const override;

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
  void OnClosed() noexcept override;

 private:
  // Runs a procedure by the convention for errors.
  template <typename Body>
  void Guarded(const std::string& procedure, Body&& body) noexcept;

  void LayOut();
  void AddEvents();
  void ShowRecord();
  void SaveRecord();
  void ShowInList();

  session::Session& session_;
  hosting::Forms& forms_;
  std::weak_ptr<frmMain> opener_;
  std::int32_t produto_id_;
  std::int32_t armazem_id_;
};

}  // namespace quenta::product
