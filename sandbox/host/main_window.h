// The sample host's window: finds products, opens and creates them through the component, says what happened.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sandbox/host/catalogue_reader.h"
#include "sandbox/host/command_line.h"
#include "sandbox/host/component_link.h"
#include "sandbox/host/product_list.h"
#include "sandbox/host/server_list.h"

namespace quenta::sandbox::host {

class MainWindow {
 public:
  // Makes the window. Throws std::runtime_error when that fails.
  explicit MainWindow(CommandLine command_line);
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // Shows the window and serves it until it closes. Gives the program's exit code: 0, or 1 when something that the
  // command line asked for failed.
  int Run();

 private:
  static INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
  static LRESULT CALLBACK SearchProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                          DWORD_PTR self) noexcept;
  INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam);
  INT_PTR Notified(const NMHDR& header);
  void Command(int id, int code);

  void Begin();  // logs in and does what the command line asks
  bool LogIn();  // false when the user gave up
  std::size_t ChosenServer() const;
  void RunActions();
  void Close();

  void OpenSelected();
  void Open(const Product& product);
  void OpenByText(const std::string& code_or_id);
  void New();
  void CopyCode();
  void Refresh();
  void RefreshQuietly() noexcept;  // after the user comes back from a product's form

  void MakeColumns();
  void Layout();
  void ShowRows(std::optional<std::int32_t> selected);
  void ShowOrder();
  std::optional<std::int32_t> SelectedProduct() const;
  void SelectRow(std::size_t row);
  void CellText(NMLVDISPINFOW& info);
  LRESULT RowColours(NMLVCUSTOMDRAW& draw) const;
  void ShowRowMenu(POINT where);
  void Say(const std::string& text);
  void Fail(const std::string& text);  // Say, and remember it for the exit code
  HWND Control(int id) const { return GetDlgItem(window_, id); }

  CommandLine command_line_;
  HWND window_ = nullptr;
  HACCEL accelerators_ = nullptr;  // of the program's resources, which free themselves
  UINT dpi_ = 96;
  std::vector<Server> servers_;
  std::unique_ptr<ComponentLink> component_;
  std::unique_ptr<CatalogueReader> catalogue_;
  ProductList products_;
  std::wstring cell_;  // the text that the list shows until it asks for the next
  bool products_may_differ_ = false;
  int exit_code_ = 0;
};

}  // namespace quenta::sandbox::host
