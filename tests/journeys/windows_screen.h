// Forms in real windows, found by the names that they carry, and a person in front of them: keys and clicks as Windows
// gives them.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "journeys/observation.h"
#include "platform/win32/handles.h"

namespace quenta::journeys {

// What a list shows in a row.
struct ShownRow {
  std::string text;
  int icon = 0;
  bool checked = false;
};

class WindowsScreen {
 public:
  // Tells what happens to the forms, as it is written in a journey, and which box has opened.
  WindowsScreen(std::function<void(const std::string& event)> tell, std::function<void(HWND box)> answer);
  ~WindowsScreen();
  WindowsScreen(const WindowsScreen&) = delete;
  WindowsScreen& operator=(const WindowsScreen&) = delete;

  // Lets the host's loop, which knows no dialogs, run until nothing has come for a moment, or for so long.
  void Pump(DWORD milliseconds = 0);

  // What the person does in the form in front; std::runtime_error when that cannot be done.
  void FocusOn(const std::string& control);
  void Type(const std::string& control, const std::string& text);
  void Key(const std::string& keys);
  void Choose(const std::string& box, const std::string& entry);
  void Click(const std::string& control, const std::string& part);
  void ClickMenu(const std::string& name);
  void ClickTab(const std::string& key);
  void ClickRow(const std::string& list, const std::string& start, bool twice);
  void OpenMenu(const std::string& list);
  void ClickHeader(const std::string& list, int column);
  void Pick(const std::string& date_field, const std::string& date);
  void CloseBox();
  void BringToFront(const std::string& form);
  void Lose(const std::string& form);  // destroys it without asking, as a host may do

  // The forms that are open, each by its name, "#2" behind the second one of a name.
  const std::vector<std::pair<std::string, HWND>>& Forms() const { return forms_; }
  std::string NameOfForm(HWND window) const;  // "nothing" for no form
  static Facts FactsOf(HWND form, const std::string& form_name);
  // By the lists' names, as in the facts. Of a long list the rows that a journey names.
  static std::map<std::string, std::vector<ShownRow>> RowsOf(HWND form, const std::string& form_name);

  std::deque<std::string> answers;  // of the menus that pop up: names of entries
  bool refuses_boxes = false;       // the next box cannot be shown

 private:
  static LRESULT CALLBACK OnSent(int code, WPARAM wparam, LPARAM lparam) noexcept;
  static LRESULT CALLBACK OnCreating(int code, WPARAM wparam, LPARAM lparam) noexcept;
  static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD) noexcept;
  void Sent(const CWPSTRUCT& message);
  void SentToForm(const CWPSTRUCT& message);
  // In a moment, from whatever loop runs by then.
  void Later(std::function<void()> act);
  void ChooseFrom(HMENU menu);
  HWND FormNamed(const std::string& wanted) const;
  HWND Front() const;
  HWND Reachable(const std::string& name) const;
  HWND List(const std::string& name) const;
  void ClickAt(HWND window, POINT at, bool twice = false);
  static int RowThatBegins(HWND list, const std::string& start);

  static WindowsScreen* current_;
  std::function<void(const std::string&)> tell_;
  std::function<void(HWND)> answer_;
  platform::OwnedHook sent_hook_;
  platform::OwnedHook creating_hook_;
  std::vector<std::pair<std::string, HWND>> forms_;
  HWND opening_ = nullptr;  // a form that is shown, and has not put the focus into its first field yet
  bool acts_ = false;       // the person moves the focus, not the form
  std::string entry_;       // of a toolbar's menu, to be chosen without a word
  std::map<UINT_PTR, std::function<void()>> later_;
};

// What a window says of itself.
std::string NameOf(HWND window, const std::wstring& property = L"ControlName");
std::string TextOf(HWND window);
std::string ClassOf(HWND window);

}  // namespace quenta::journeys
