// The registered library as a host uses it: General through its ProgID, forms as windows, a database that is asked.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <windows.h>

#include "platform/automation/com_ptr.h"
#include "platform/automation/dispatch.h"

namespace quenta::tests {

// Lets the host's loop, which knows no dialogs, run until nothing has come for a moment.
void Pump();

// A form on the screen.
class FormOnScreen {
 public:
  explicit FormOnScreen(HWND window) : window_(window) {}

  HWND window() const { return window_; }
  std::string Caption() const;
  // The window of a control by its name; null when there is none.
  HWND Control(const std::string& name) const;
  // What the user reads in a control: text, or "1" and "0" of a check box.
  std::string Text(const std::string& name) const;
  bool IsEnabled(const std::string& name) const { return IsWindowEnabled(Control(name)) != FALSE; }
  bool IsReadOnly(const std::string& name) const;
  bool ButtonIsEnabled(const std::string& toolbar, const std::string& key) const;

  // As a person does it: keys to whatever has the focus.
  void FocusOn(const std::string& name) const;
  void TypeOver(const std::string& name, const std::string& text) const;
  // A key to the control that has the focus; characters as they are typed there.
  void Key(int virtual_key) const;
  void Type(const std::string& text) const;
  // Goes through a list by its keys until the entry that begins so is chosen.
  void Choose(const std::string& name, const std::string& start) const;
  void PressButton(const std::string& toolbar, const std::string& key) const;
  // The name of the control that has the focus.
  std::string Focused() const;
  // The cells of a list's row, separated by " | ".
  std::string Row(const std::string& list, int row) const;
  int RowCount(const std::string& list) const;
  // The context menu of the control that has the focus, as the menu key opens it: the entry this far down is chosen.
  void ChooseFromContextMenu(int entry) const;
  void SelectTab(const std::string& key) const;
  int TabCount() const;
  void ClickHeader(const std::string& list, int column) const;
  void PressCommand(const std::string& button) const;
  void Close() const;  // the close box

 private:
  HWND window_;
};

class ProductFixture : public testing::Test {
 protected:
  ProductFixture();
  ~ProductFixture() override;

  // A new General.
  platform::ComPtr<IDispatch> NewGeneral();
  // Login with the clear password; true when the session is open.
  bool LogIn(IDispatch& general, const std::string& user, const std::string& password);
  bool LogIn(IDispatch& general) { return LogIn(general, "ana", "ana-senha"); }
  // SQLConnect to two servers by their data sources.
  bool Connect(IDispatch& general, const std::string& primary, const std::string& secondary,
               const std::string& password = "ana-senha");
  // ObjectOpen with this key.
  void Open(IDispatch& general, const platform::Variant& key);
  void OpenId(IDispatch& general, int id) { Open(general, platform::Variant(id)); }

  // The product forms that are on the screen, the one shown last first.
  std::vector<FormOnScreen> Forms(const std::string& name = "frmMain");
  // The form of this name on the screen; one without a window when there is none.
  FormOnScreen FormNamed(const std::string& name);

  // Answers the next message boxes with these buttons, and keeps the text and title of the last. A box that nobody
  // expects fails the test and is closed.
  void AnswerNext(std::vector<int> buttons);
  void AnswerNext(int button) { AnswerNext(std::vector<int>{button}); }

  // The database as another user sees it: the first column of the first row, "" for null, "(none)" without a row.
  std::string Sql(const std::string& statement);
  int IdOfCode(const std::string& code) {
    return std::stoi(Sql("SELECT produto_id FROM tbProdutos WHERE codigo = '" + code + "'"));
  }

  // What the component has reported since the last call, a line for each report.
  std::vector<std::string> Reports();

  // Lets a new product be asked for as ObjectNew does.
  void New(IDispatch& general);

  std::string box_text;
  std::string box_title;

 private:
  static void CALLBACK LookForBox(HWND, UINT, UINT_PTR, DWORD) noexcept;

  platform::ComPtr<IDispatch> database_;
  UINT_PTR box_timer_ = 0;
  std::vector<int> box_buttons_;  // for the boxes to come
  HWND answered_ = nullptr;       // the box that has got its answer, and the looks it has survived since
  int looks_ = 0;
  std::size_t reports_seen_ = 0;
};

// With a session that is open.
class FormTest : public ProductFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(LogIn(*general.Get())); }
  FormOnScreen OpenCode(const std::string& code);
  // The only form on the screen after a new product was asked for.
  FormOnScreen NewProduct();

  platform::ComPtr<IDispatch> general = NewGeneral();
};

}  // namespace quenta::tests
