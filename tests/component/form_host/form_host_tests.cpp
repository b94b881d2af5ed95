// The forms' windows: that they exist as long as they should, where they should, and take their keyboard with them.
#include <windows.h>

#include <commctrl.h>

#include <fstream>

#include "component/form_host/form_fixture.h"
#include "platform/win32/desktop.h"
#include "platform/win32/handles.h"
#include "platform/win32/host_window_object.h"
#include "platform/win32/wide_text.h"

namespace quenta::tests {
namespace {

using platform::FormHost;

class HostWindow final : public platform::HostWindowObject {
 public:
  explicit HostWindow(RECT place)
      : window_(CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place.left, place.top,
                                place.right - place.left, place.bottom - place.top, nullptr, nullptr, nullptr,
                                nullptr)) {}
  ~HostWindow() override { DestroyWindow(window_); }
  HWND Window() const noexcept override { return window_; }

 private:
  HWND window_;
};

RECT PlaceOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

std::string TempFile(const char* name) {
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  return platform::Narrow(folder) + name;
}

HWND FirstList(HWND form) {
  HWND list = nullptr;
  EnumChildWindows(
      form,
      [](HWND child, LPARAM found) CALLBACK -> BOOL {
        wchar_t name[40];
        GetClassNameW(child, name, 40);
        if (wcscmp(name, WC_LISTVIEWW) != 0) return TRUE;
        *reinterpret_cast<HWND*>(found) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&list));
  return list;
}

using FormHostTest = FormFixture;

TEST_F(FormHostTest, AFormHasNoOwnerAndItsWindowIsADialog) {
  Show();
  EXPECT_EQ(GetWindow(window, GW_OWNER), nullptr);
  EXPECT_TRUE(IsWindowVisible(window));
  EXPECT_EQ(HIWORD(SendMessageW(window, DM_GETDEFID, 0, 0)), DC_HASDEFID);
  EXPECT_EQ(Focused(), "FXCodigo") << "the first field, not the toolbar";
}

TEST_F(FormHostTest, ClosingFromInsideAnEventEndsTheEventFirst) {
  Show();
  bool window_was_there = false;
  form->Command1.on_click = [&] {
    form->Unload();
    window_was_there = IsWindow(window);
    EXPECT_EQ(host.WindowOf(*form), nullptr) << "the form has let go of it already";
  };
  SendMessageW(Window("Command1"), BM_CLICK, 0, 0);
  EXPECT_TRUE(window_was_there);
  EXPECT_EQ(form->closed, 1);
  Pump();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(host.OpenForms(), 0);
}

TEST_F(FormHostTest, AFormCanBeShownAgainInTheEventThatClosedIt) {
  Show();
  form->Command1.on_click = [&] {
    form->Unload();
    form->Show();
  };
  SendMessageW(Window("Command1"), BM_CLICK, 0, 0);
  Pump();
  EXPECT_FALSE(IsWindow(window)) << "the former window";
  EXPECT_TRUE(IsWindow(host.WindowOf(*form)));
  EXPECT_EQ(host.OpenForms(), 1);
  form->FXCodigo.set_text("novo");
  window = host.WindowOf(*form);
  EXPECT_EQ(TextOf("FXCodigo"), "novo") << "the controls follow the new window";
}

TEST_F(FormHostTest, AHostThatDestroysTheWindowLosesTheFormNothingElse) {
  Show();
  const std::weak_ptr<SampleForm> alive = form;
  DestroyWindow(window);
  EXPECT_EQ(form->closed, 1);
  EXPECT_FALSE(form->Happened("unload")) << "nothing can be asked any more";
  EXPECT_FALSE(form->loaded());
  EXPECT_EQ(host.OpenForms(), 0);
  form->FXCodigo.set_text("still a model");
  form.reset();
  EXPECT_TRUE(alive.expired());
  form = std::make_shared<SampleForm>(host);
}

TEST_F(FormHostTest, TheWindowKeepsItsFormAlive) {
  Show();
  const std::weak_ptr<SampleForm> alive = form;
  form.reset();
  EXPECT_FALSE(alive.expired());
  host.CloseAll();
  EXPECT_TRUE(alive.expired());
  form = std::make_shared<SampleForm>(host);
}

TEST_F(FormHostTest, NothingIsLeftBehind) {
  Show();
  host.CloseAll();
  Pump();
  const int handles = platform::LiveHandles();
  for (int i = 0; i < 5; ++i) {
    form->Show();
    Pump();
    EXPECT_GT(platform::LiveHandles(), handles);
    host.Close(*form);
    form->WindowLost();
    Pump();
    EXPECT_EQ(platform::LiveHandles(), handles) << "round " << i;
    EXPECT_EQ(host.OpenForms(), 0);
  }
}

TEST_F(FormHostTest, TheLastFormTakesTheKeyboardHookWithIt) {
  Show();
  const auto second = std::make_shared<SampleForm>(host);
  second->Show();
  Pump();
  host.Close(*second);
  Pump();
  Press(VK_TAB);
  EXPECT_TRUE(form->Happened("FXNome got focus")) << "a form still has its keyboard";
  // Closed by a key: the hook is removed while its own code runs.
  Press(VK_ESCAPE);
  EXPECT_EQ(host.OpenForms(), 0);
}

TEST_F(FormHostTest, EndOfTheSessionAsksTheForm) {
  Show();
  form->refuse_unload = true;
  EXPECT_EQ(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), FALSE);
  EXPECT_TRUE(IsWindow(window));
  form->refuse_unload = false;
  EXPECT_EQ(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
  EXPECT_EQ(form->closed, 1);
  Pump();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(FormHostTest, SessionThatEndsWithoutAskingLosesTheForm) {
  Show();
  SendMessageW(window, WM_ENDSESSION, TRUE, 0);
  EXPECT_EQ(form->closed, 1);
  EXPECT_FALSE(form->Happened("unload"));
}

TEST_F(FormHostTest, FormAspectsReachTheWindow) {
  Show();
  form->set_caption("Stocks");
  wchar_t caption[40];
  GetWindowTextW(window, caption, 40);
  EXPECT_STREQ(caption, L"Stocks");
  form->set_enabled(false);
  EXPECT_FALSE(IsWindowEnabled(window));
  form->set_enabled(true);
  EXPECT_TRUE(IsWindowEnabled(window));
  host.SetTopmost(*form, true);
  EXPECT_NE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
  host.SetTopmost(*form, false);
  EXPECT_EQ(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
  form->set_mouse_pointer(controls::MousePointer::kHourglass);
  EXPECT_EQ(SendMessageW(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)),
            TRUE);
  EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
}

TEST_F(FormHostTest, OpensOverItsCallerAndWhollyOnTheScreen) {
  const RECT work = [] {
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
  }();
  form->caller = std::make_shared<HostWindow>(RECT{work.right - 60, work.bottom - 60, work.right, work.bottom});
  Show();
  const RECT place = PlaceOf(window);
  EXPECT_EQ(place.right, work.right);
  EXPECT_EQ(place.bottom, work.bottom);
  const auto second = std::make_shared<SampleForm>(host);
  const RECT large{work.left + 20, work.top + 30, work.right - 20, work.bottom - 30};
  second->caller = std::make_shared<HostWindow>(large);
  second->Show();
  const RECT centred = PlaceOf(host.WindowOf(*second));
  EXPECT_NEAR(centred.left + centred.right, large.left + large.right, 2);
  EXPECT_NEAR(centred.top + centred.bottom, large.top + large.bottom, 2);

  const auto later = std::make_shared<HostWindow>(large);
  second->caller = later;
  second->Show();
  EXPECT_TRUE(second->Unload());
  EXPECT_EQ(GetForegroundWindow(), later->Window()) << "back to whoever asked last";
  second->caller.reset();
}

// Rows that were there before the window, as those that a form fills while it loads.
void AddHistory(SampleForm& form) {
  for (const char* units : {"5", "20", "7"})
    form.ListView13.Add(std::string("#") + units, "2024").sub_items = {"", units};
}

TEST(FormMemory, PlaceColumnsAndOrderComeBackAndADamagedFileDoesNoHarm) {
  const std::string path = TempFile("quenta_form_host_tests\\windows.ini");
  RECT before{};
  {
    FormHost host(path);
    const auto form = std::make_shared<SampleForm>(host);
    form->Show();
    const HWND window = host.WindowOf(*form);
    MoveWindow(window, 40, 50, 850, 720, TRUE);
    before = PlaceOf(window);
    ListView_SetColumnWidth(FirstList(window), 0, 333);
    form->ListView13.Sort({2, true}, {});
    form->ListView2.Sort({0, true}, {});
    host.Close(*form);
  }
  const auto reopen = [&](const std::function<void(HWND, SampleForm&)>& check) {
    FormHost host(path);
    const auto form = std::make_shared<SampleForm>(host);
    AddHistory(*form);
    form->Show();
    check(host.WindowOf(*form), *form);
  };
  reopen([&](HWND window, SampleForm& form) {
    const RECT after = PlaceOf(window);
    EXPECT_TRUE(EqualRect(&before, &after)) << after.left << ' ' << after.top;
    EXPECT_EQ(ListView_GetColumnWidth(FirstList(window), 0), 333);
    EXPECT_EQ(form.ListView13.sort(), (controls::ListSort{2, true}));
    EXPECT_EQ(form.ListView13.At(0).key, "#20") << "the rows are in that order already";
    EXPECT_EQ(form.ListView2.sort(), controls::ListSort{}) << "not a list that the user can sort";
  });
  std::ofstream(path, std::ios::binary) << "[frmAmostra]\nplace=1 2\nplace=x\n[[[\n\xff\xfe columns =";
  reopen([](HWND window, SampleForm& form) {
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(form.ListView13.At(0).key, "#5");
  });
  DeleteFileW(platform::Wide(path).c_str());
  RemoveDirectoryW(platform::Wide(TempFile("quenta_form_host_tests")).c_str());
}

TEST_F(FormHostTest, AQuestionLeavesTheFormAsItsModelSays) {
  Show();
  platform::Desktop desktop(host);
  // Answered by a timer, as the user would: while the box is open the form is disabled by the model, too.
  static SampleForm* asked;
  asked = form.get();
  SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR timer, DWORD) CALLBACK {
    const HWND box = FindWindowW(L"#32770", L"Alteração de Preços");
    if (box == nullptr) return;
    KillTimer(nullptr, timer);
    asked->set_enabled(false);
    PostMessageW(box, WM_COMMAND, IDNO, 0);
  });
  const ports::Answer answer = desktop.Ask({.text = "Deseja replicar?",
                                            .title = "Alteração de Preços",
                                            .icon = ports::Icon::kQuestion,
                                            .buttons = ports::Buttons::kYesNo,
                                            .system_modal = true},
                                           form.get());
  EXPECT_EQ(answer, ports::Answer::kNo);
  EXPECT_FALSE(IsWindowEnabled(window));
}

}  // namespace
}  // namespace quenta::tests
