// The registered library as a host uses it: General through its ProgID, forms as windows, a database that is asked.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <windows.h>

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
  void PressButton(const std::string& toolbar, const std::string& key) const;
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
  std::vector<FormOnScreen> Forms();

  // Answers the next message box with this button, and keeps its text and title.
  void AnswerNext(int button);

  // The database as another user sees it: the first column of the first row, "" for null, "(none)" without a row.
  std::string Sql(const std::string& statement);
  int IdOfCode(const std::string& code) {
    return std::stoi(Sql("SELECT produto_id FROM tbProdutos WHERE codigo = '" + code + "'"));
  }

  // What the component has reported since the last call, a line for each report.
  std::vector<std::string> Reports();

  std::string box_text;
  std::string box_title;

 private:
  static void CALLBACK LookForBox(HWND, UINT, UINT_PTR, DWORD) noexcept;

  platform::ComPtr<IDispatch> database_;
  std::size_t reports_seen_ = 0;
};

}  // namespace quenta::tests
