// Controls' windows and their models: what the user does arrives as events, what the model does shows without echo.
#include <atomic>
#include <set>
#include <thread>

#include <windows.h>

#include <commctrl.h>

#include "base/date.h"
#include "base/text.h"
#include "component/form_host/form_fixture.h"
#include "platform/win32/edit_text.h"

namespace quenta::tests {
namespace {

using ControlWindowTest = FormFixture;

TEST_F(ControlWindowTest, WhatIsTypedReachesTheModelAfterItsKey) {
  Show();
  FocusOn("FXCodigo");
  Press(VK_END);
  EXPECT_EQ(EventsOf([&] { Press('X'); }), "FXCodigo key 88, FXCodigo change");
  EXPECT_EQ(form->FXCodigo.text(), "A10x");
  EXPECT_EQ(form->FXCodigo.selection(), (controls::TextRange{4, 0}));
  Press(VK_LEFT, {VK_SHIFT});
  Press(VK_HOME);
  EXPECT_EQ(form->FXCodigo.selection(), (controls::TextRange{3, 1})) << "as it was when the key came";
}

TEST_F(ControlWindowTest, WhatTheModelWritesIsNotEchoedAndNotWrittenWhenEqual) {
  Show();
  FocusOn("FXCodigo");
  const std::string events = EventsOf([&] {
    form->FXCodigo.set_text("B20");
    form->FXNome.set_text("Casaco");
    form->FXFamilia_ID.SetListIndex(2);
    form->FXDescontinuado.set_value(true);
    form->Option2.set_value(true);
    form->FXHora.set_text("12:30");
    form->FXObs.set_text("um\ndois");
    form->FXData_Inicio.set_value(*base::MakeDate({2023, 2, 28, 13, 14, 15}));
    form->ListView2.Select(1);
    form->TabStrip1.SelectKey("stocks");
    form->TabStrip1.SelectKey("precos");
    Pump();
  });
  EXPECT_EQ(events, "");
  EXPECT_EQ(TextOf("FXCodigo"), "B20");
  EXPECT_EQ(TextOf("FXNome"), "Casaco");
  EXPECT_EQ(TextOf("FXFamilia_ID"), "Casacos");
  EXPECT_EQ(TextOf("FXObs"), "um\r\ndois");
  EXPECT_EQ(SendMessageW(Window("FXDescontinuado"), BM_GETCHECK, 0, 0), BST_CHECKED);
  EXPECT_EQ(ListView_GetNextItem(Window("ListView2"), -1, LVNI_SELECTED), 1);
  Press(VK_END);
  form->FXCodigo.set_text("B20");
  EXPECT_EQ(platform::EditSelection(GetFocus()).start, 3U) << "an equal text leaves the caret alone";
}

TEST_F(ControlWindowTest, WhatIsCutUndoneAndPastedIsTyped) {
  Show();
  for (const UINT edit : {WM_COPY, WM_CUT, WM_UNDO, WM_CUT, WM_PASTE}) {
    FocusOn("FXCodigo");
    SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
    EXPECT_EQ(EventsOf([&] { SendMessageW(GetFocus(), edit, 0, 0); }), edit == WM_COPY ? "" : "FXCodigo change")
        << edit;
  }
}

TEST_F(ControlWindowTest, TabWalksInReadingOrderAndSkipsWhatCannotBeUsed) {
  Show();
  form->FXMarca.set_enabled(false);
  form->FXHora.set_visible(false);
  EXPECT_FALSE(IsWindowVisible(Window("FXHora_Label"))) << "a label goes with its field";
  FocusOn("FXCodigo");
  std::string order;
  for (int i = 0; i < 11; ++i) {
    Press(VK_TAB);
    order += Focused() + " ";
  }
  EXPECT_EQ(
      order,
      "FXNome FXDescontinuado FXFamilia_ID FXValor Option1 FXObs TabStrip1 ListView2 Command1 Command2 Toolbar1 ");
  Press(VK_TAB, {VK_SHIFT});
  EXPECT_EQ(Focused(), "Command2");
}

TEST_F(ControlWindowTest, AControlThatGoesLetsTheFocusGo) {
  Show();
  const std::pair<std::string, std::function<void()>> cases[] = {
      {"FXCodigo", [&] { form->FXCodigo.set_enabled(false); }},
      {"FXNome", [&] { form->FXNome.set_visible(false); }},
      {"ListView2", [&] { form->TabStrip1.SelectKey("compras"); }},
      {"FXObs", [&] { form->Frame6.set_visible(false); }},
  };
  for (const auto& [name, act] : cases) {
    FocusOn(name);
    ASSERT_EQ(Focused(), name);
    const std::string events = EventsOf(act);
    EXPECT_EQ(events.rfind(name + " lost focus, ", 0), 0U) << events;
    EXPECT_TRUE(IsWindowVisible(GetFocus()) && IsWindowEnabled(GetFocus())) << name;
  }
}

TEST_F(ControlWindowTest, MnemonicsLeadToTheFieldBelowTheLabel) {
  Show();
  const std::pair<int, const char*> cases[] = {{'M', "FXMarca"}, {'V', "FXValor"}, {'O', "FXObs"},
                                               {'H', "FXHora"},  {'N', "FXNome"},  {'F', "FXFamilia_ID"}};
  for (const auto& [key, name] : cases) {
    Press(key, {VK_MENU});
    EXPECT_EQ(Focused(), name);
  }
  EXPECT_EQ(EventsOf([&] { Press('D', {VK_MENU}); }).find("FXDescontinuado click") != std::string::npos, true);
}

TEST_F(ControlWindowTest, EnterPressesTheDefaultButtonExceptInNotes) {
  Show();
  FocusOn("FXValor");
  EXPECT_EQ(EventsOf([&] { Press(VK_RETURN); }), "FXValor lost focus, Command1 click");
  FocusOn("FXObs");
  Press(VK_END, {VK_CONTROL});
  Press(VK_RETURN);
  Press('Z');
  EXPECT_FALSE(form->Happened("Command1 click"));
  EXPECT_EQ(form->FXObs.text(), "Primeira linha\r\nSegunda linha\r\nz");
  EXPECT_EQ(EventsOf([&] {
              form->refuse_unload = true;
              Press(VK_ESCAPE);
            }),
            "FXObs lost focus, unload");
  EXPECT_TRUE(IsWindow(window)) << "Esc asks, in notes too";
}

// The user's text and caret are as they were when he comes back, whatever the leave routine has made of the text.
TEST_F(ControlWindowTest, CommandsThatLeaveTheFocusRunTheLeaveRoutineAndNothingElse) {
  Show();
  FocusOn("FXValor");
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  TypeUnicode("12");
  const auto note = form->FXValor.on_lost_focus;
  form->FXValor.on_lost_focus = [&] {
    note();
    form->FXValor.set_text("€ 12,00");
  };
  SendMessageW(GetFocus(), EM_SETSEL, 1, 2);
  const auto expect_as_it_was = [&] {
    EXPECT_EQ(TextOf("FXValor"), "12");
    EXPECT_EQ(platform::EditSelection(GetFocus()), (controls::TextRange{1, 1}));
  };
  EXPECT_EQ(EventsOf([&] { PressButton("Toolbar1", "gravar"); }), "FXValor lost focus, Toolbar1 gravar");
  expect_as_it_was();
  EXPECT_EQ(EventsOf([&] { Press('S', {VK_CONTROL}); }), "FXValor key 17, FXValor lost focus, shortcut");
  EXPECT_EQ(EventsOf([&] { SendMessageW(window, WM_COMMAND, GetMenuItemID(GetSubMenu(GetMenu(window), 0), 0), 0); }),
            "FXValor lost focus, mnGravar");
  expect_as_it_was();
  // Another program comes to the front, and goes again.
  std::atomic<bool> gone = false;
  std::thread program([&] {
    const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                       nullptr, nullptr, nullptr);
    SetForegroundWindow(other);
    Pump();
    Sleep(300);
    DestroyWindow(other);
    gone = true;
  });
  bool was_away = false;
  EXPECT_EQ(EventsOf([&] {
              while (!gone) {
                Pump();
                was_away = was_away || GetFocus() == nullptr;
              }
              program.join();
              SetForegroundWindow(window);
              Pump();
            }),
            "");
  EXPECT_TRUE(was_away) << "the other program has had the keyboard";
  EXPECT_EQ(Focused(), "FXValor");
  expect_as_it_was();
  form->Toolbar1.EnableButton("gravar", false);
  EXPECT_EQ(EventsOf([&] { PressButton("Toolbar1", "gravar"); }), "");
  // A command that moves the focus: the field is left once, and not entered again.
  form->Toolbar1.on_button_click = [&](const std::string&) { host.Focus(*form, "FXCodigo"); };
  EXPECT_EQ(EventsOf([&] { PressButton("Toolbar1", "apagar"); }), "FXValor lost focus, FXCodigo got focus");
}

TEST_F(ControlWindowTest, ToolbarsHaveAKeyboard) {
  Show();
  form->Toolbar1.EnableButton("apagar", false);
  FocusOn("Toolbar1");
  Press(VK_RIGHT);
  EXPECT_NE(EventsOf([&] { Press(VK_RETURN); }).find("Toolbar1 duplicar"), std::string::npos);
}

TEST_F(ControlWindowTest, AnEntryOfAListBoxIsChosenByKeys) {
  Show();
  FocusOn("FXFamilia_ID");
  EXPECT_EQ(EventsOf([&] { Press(VK_DOWN); }), "FXFamilia_ID key 40, FXFamilia_ID click");
  EXPECT_EQ(form->FXFamilia_ID.ListIndex(), 2);
  form->FXFamilia_ID.on_key_down = [&](int key) {
    if (key == controls::key_code::kDelete) form->FXFamilia_ID.SetListIndex(-1);
  };
  Press(VK_DELETE);
  EXPECT_EQ(TextOf("FXFamilia_ID"), "");
  form->FXFamilia_ID.set_locked(true);
  Press(VK_DOWN);
  Press('C');
  EXPECT_EQ(form->FXFamilia_ID.ListIndex(), -1) << "a locked box cannot be chosen from";
  // It looks closed: no arrow, as grey as a read-only field, its text still to be read.
  RECT box{};
  GetClientRect(Window("FXFamilia_ID"), &box);
  UpdateWindow(Window("FXFamilia_ID"));
  const HDC dc = GetDC(Window("FXFamilia_ID"));
  const auto colours = [&](int from, int to) {
    std::set<COLORREF> found;
    for (int x = from; x < to; ++x) found.insert(GetPixel(dc, x, box.bottom / 2));
    return found;
  };
  EXPECT_EQ(colours(box.right - 20, box.right - 2), std::set<COLORREF>{GetSysColor(COLOR_3DFACE)});
  ReleaseDC(Window("FXFamilia_ID"), dc);
}

TEST_F(ControlWindowTest, RowsAreChosenActivatedAndChecked) {
  Show();
  FocusOn("ListView2");
  form->ListView2.Select(0);
  EXPECT_EQ(EventsOf([&] { Press(VK_DOWN); }), "ListView2 key 40, ListView2 click");
  EXPECT_EQ(form->ListView2.selected(), 1);
  EXPECT_EQ(EventsOf([&] { Press(VK_RETURN); }), "ListView2 key 13, ListView2 activate");
  // The search by letters is answered by the model.
  form->ListView2.Item("#3").text = "Zero";
  EXPECT_EQ(EventsOf([&] { Press('Z'); }), "ListView2 key 90, ListView2 click");
  EXPECT_EQ(form->ListView2.selected(), 2);

  RECT row{};
  ListView_GetItemRect(Window("ListView2"), 2, &row, LVIR_LABEL);
  const LPARAM at = MAKELPARAM(row.left + 5, row.top + 5);
  const auto click = [&](LPARAM where) {
    PostMessageW(Window("ListView2"), WM_LBUTTONDOWN, MK_LBUTTON, where);
    PostMessageW(Window("ListView2"), WM_LBUTTONUP, 0, where);
    Pump();
  };
  EXPECT_EQ(EventsOf([&] { click(at); }), "ListView2 click") << "the row that is chosen already";
  EXPECT_EQ(EventsOf([&] { click(at - (((row.bottom - row.top) * 2) << 16)); }), "ListView2 click") << "another row";
  EXPECT_EQ(form->ListView2.selected(), 0);
  EXPECT_EQ(EventsOf([&] { click(at + (60 << 16)); }), "") << "beside the rows";
  EXPECT_EQ(ListView_GetNextItem(Window("ListView2"), -1, LVNI_SELECTED), 0) << "a row stays chosen";

  form->TabStrip1.SelectKey("stocks");
  FocusOn("ListView1");
  form->ListView1.Select(1);
  Press(VK_SPACE);
  EXPECT_TRUE(form->ListView1.At(1).checked);
  const HWND boxes = Window("ListView1");
  EXPECT_EQ(ListView_GetItemState(boxes, 1, LVIS_STATEIMAGEMASK), static_cast<UINT>(INDEXTOSTATEIMAGEMASK(2)));
  RECT icon{};
  ListView_GetItemRect(boxes, 2, &icon, LVIR_BOUNDS);
  PostMessageW(boxes, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(icon.left + 8, (icon.top + icon.bottom) / 2));
  PostMessageW(boxes, WM_LBUTTONUP, 0, MAKELPARAM(icon.left + 8, (icon.top + icon.bottom) / 2));
  Pump();
  EXPECT_TRUE(form->ListView1.At(2).checked) << "by a click on its box";
}

TEST_F(ControlWindowTest, TabsShowTheirPages) {
  Show();
  const auto shown = [&] {
    std::string names;
    for (const char* name : {"Frame1", "Frame2", "Frame3"}) {
      if (IsWindowVisible(Window(name))) names += name;
    }
    return names;
  };
  EXPECT_EQ(shown(), "Frame1");
  FocusOn("FXValor");
  EXPECT_EQ(EventsOf([&] { Press(VK_TAB, {VK_CONTROL}); }), "FXValor key 17, FXValor lost focus, TabStrip1 stocks");
  EXPECT_EQ(shown(), "Frame2");
  Press(VK_TAB, {VK_CONTROL});
  EXPECT_EQ(shown(), "Frame3");
  Press(VK_TAB, {VK_CONTROL});
  EXPECT_EQ(form->TabStrip1.selected_key(), "vendas");
  EXPECT_EQ(shown(), "Frame3") << "tabs may share a page";
  form->TabStrip1.Remove(4);
  form->TabStrip1.Remove(2);
  EXPECT_EQ(form->TabStrip1.selected_key(), "compras");
  EXPECT_EQ(NameOf(Window("TabStrip1"), L"Tab1"), "compras");
  EXPECT_EQ(NameOf(Window("TabStrip1"), L"Tab2"), "");
  // To a field of a page that is hidden: its tab is chosen as the user would.
  EXPECT_NE(EventsOf([&] { host.Focus(*form, "ListView2"); }).find("TabStrip1 precos"), std::string::npos);
  EXPECT_EQ(Focused(), "ListView2");
  EXPECT_EQ(shown(), "Frame1");
}

TEST_F(ControlWindowTest, AQuestionInALeaveRoutineIsAskedOnce) {
  Show();
  FocusOn("FXValor");
  int asked = 0;
  form->FXValor.on_lost_focus = [&] {
    ++asked;
    // As a message box does: the focus goes elsewhere and comes back.
    const HWND before = GetFocus();
    SetFocus(nullptr);
    SetFocus(before);
  };
  EXPECT_EQ(EventsOf([&] { Press(VK_TAB); }), "FXHora got focus");
  EXPECT_EQ(asked, 1);
  FocusOn("FXValor");
  PressButton("Toolbar1", "gravar");
  EXPECT_EQ(asked, 2) << "left for another field, and by the command";
}

TEST_F(ControlWindowTest, AnEmptyNoteLeavesItsRoom) {
  Show();
  RECT before{};
  GetWindowRect(Window("FXCodigo"), &before);
  form->Label1.set_caption("");
  RECT after{};
  GetWindowRect(Window("FXCodigo"), &after);
  EXPECT_LT(after.top, before.top);
  EXPECT_FALSE(IsWindowVisible(Window("Label1")));
  form->Label1.set_caption("Produto dependente");
  EXPECT_TRUE(IsWindowVisible(Window("Label1")));
}

TEST_F(ControlWindowTest, AnErrorInAnEventStaysInside) {
  Show();
  form->FXCodigo.on_change = [] { throw std::runtime_error("from a handler"); };
  form->Toolbar1.on_button_click = [](const std::string&) { throw 1; };
  FocusOn("FXCodigo");
  Press('A');
  PressButton("Toolbar1", "gravar");
  EXPECT_EQ(form->FXCodigo.text(), "a");
  EXPECT_TRUE(IsWindowVisible(window));
}

}  // namespace
}  // namespace quenta::tests
