// A form over a form that it disables: who has the keyboard, who is in front, and who is there afterwards. Timers and
// progress of such forms.
#include <windows.h>

#include <commctrl.h>

#include "component/form_host/form_fixture.h"
#include "controls/timer.h"
#include "platform/win32/desktop.h"
#include "platform/win32/window_names.h"

namespace quenta::tests {
namespace {

// The small form that a product form waits for.
class DialogForm final : public controls::Form {
 public:
  DialogForm(ports::FormHost& form_host, controls::Form& opener) : Form(form_host, "frmDialogo"), opener_(opener) {
    for (controls::Control* control :
         std::initializer_list<controls::Control*>{&Frame1, &FXMinimo, &Progress1, &Command1, &Command2}) {
      Add(*control);
    }
    Frame1.rows = {{{{&FXMinimo, nullptr, 12}}}, {{{&Progress1, nullptr, 12}}}};
    layout_.frames = {&Frame1};
    layout_.buttons = {&Command1, &Command2};
    layout_.initial_width = layout_.minimum_width = 300;
    layout_.initial_height = layout_.minimum_height = 160;
    layout_.resizable = false;
    Command1.on_click = [this] { Unload(); };
    Command2.on_click = [this] { Unload(); };
  }

  controls::Frame Frame1{"Frame1"};
  controls::TextField FXMinimo{"FXMinimo"};
  controls::ProgressBar Progress1{"Progress1"};
  controls::CommandButton Command1{"Command1", "Gravar", true};
  controls::CommandButton Command2{"Command2", "Cancelar", false, true};

 protected:
  void OnClosed() noexcept override { opener_.set_enabled(true); }

 private:
  controls::Form& opener_;
};

class DialogTest : public FormFixture {
 protected:
  // Opens the dialog over the form, in which the notes have the keyboard.
  void OpenDialog() {
    if (window == nullptr) Show();
    FocusOn("FXObs");
    dialog = std::make_shared<DialogForm>(host, *form);
    dialog->Show();
    form->set_enabled(false);
    Pump();
    dialog_window = host.WindowOf(*dialog);
  }

  std::shared_ptr<DialogForm> dialog;
  HWND dialog_window = nullptr;
};

TEST_F(DialogTest, WhicheverWayItClosesTheFormBelowIsActiveAgain) {
  Show();
  // A window of the host's that lies between them, and would be next.
  const platform::OwnedWindow between(CreateWindowExW(0, L"STATIC", L"between", WS_OVERLAPPEDWINDOW, 0, 0, 200, 200,
                                                      nullptr, nullptr, nullptr, nullptr));
  const std::pair<const char*, std::function<void()>> ways[] = {
      {"by its default button", [&] { Press(VK_RETURN); }},
      {"by Esc", [&] { Press(VK_ESCAPE); }},
      {"by Alt+F4", [&] { Press(VK_F4, {VK_MENU}); }},
      {"by its close box", [&] { PostMessageW(dialog_window, WM_SYSCOMMAND, SC_CLOSE, 0); }},
      {"by the program", [&] { dialog->Unload(); }},
      {"by the host, who destroys it", [&] { DestroyWindow(dialog_window); }},
  };
  for (const auto& [way, close] : ways) {
    OpenDialog();
    EXPECT_EQ(GetForegroundWindow(), dialog_window) << way;
    EXPECT_FALSE(IsWindowEnabled(window)) << way;
    SetWindowPos(between.get(), dialog_window, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    close();
    Pump();
    EXPECT_FALSE(IsWindow(dialog_window)) << way;
    EXPECT_TRUE(IsWindowEnabled(window)) << way;
    EXPECT_EQ(GetForegroundWindow(), window) << way;
    EXPECT_EQ(Focused(), "FXObs") << way;
    ShowWindow(between.get(), SW_HIDE);
  }
}

TEST_F(DialogTest, ADisabledFormCannotBeClosedAndShowsWhoKeepsItWaiting) {
  OpenDialog();
  PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  PostMessageW(window, WM_CLOSE, 0, 0);
  Pump();
  EXPECT_TRUE(IsWindow(window));
  EXPECT_FALSE(form->Happened("unload"));
  // Clicked, where the dialog does not cover it.
  SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  RECT place{};
  GetWindowRect(window, &place);
  SetCursorPos(place.left + 60, place.bottom - 20);
  mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  Pump();
  SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
  EXPECT_EQ(GetForegroundWindow(), dialog_window);
  EXPECT_NE(GetTopWindow(nullptr), window);
  // Brought to the front by the task bar, or because the host asks for its product again.
  form->Show();
  Pump();
  EXPECT_EQ(GetForegroundWindow(), dialog_window);
  Press('Z');
  EXPECT_EQ(dialog->FXMinimo.text(), "z");
}

TEST_F(DialogTest, AQuestionOverTheDialogStaysInFront) {
  OpenDialog();
  platform::Desktop desktop(host);
  HWND front = nullptr;
  const Meanwhile answer([&] {
    const HWND box = FindWindowW(L"#32770", L"Pergunta");
    if (box == nullptr) return front != nullptr;
    if (front == nullptr) {
      form->Show();
      front = box;
      return false;
    }
    EXPECT_EQ(GetForegroundWindow(), box);
    PostMessageW(box, WM_COMMAND, IDYES, 0);
    return true;
  });
  EXPECT_EQ(desktop.Ask({.text = "Sim?", .title = "Pergunta", .buttons = ports::Buttons::kYesNo}, dialog.get()),
            ports::Answer::kYes);
  EXPECT_EQ(GetForegroundWindow(), dialog_window);
}

TEST_F(DialogTest, WithoutTheWindowBelowTheHostsOwnIsNext) {
  const platform::OwnedWindow host_window(CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                                          400, 300, nullptr, nullptr, nullptr, nullptr));
  OpenDialog();
  host.Close(*form);
  form->WindowLost();
  Pump();
  Press(VK_ESCAPE);
  EXPECT_EQ(GetForegroundWindow(), host_window.get());
}

TEST_F(DialogTest, ProgressIsShown) {
  OpenDialog();
  HWND bar = nullptr;
  EnumChildWindows(
      dialog_window,
      [](HWND child, LPARAM found) CALLBACK -> BOOL {
        if (NameOf(child) == "Progress1") *reinterpret_cast<HWND*>(found) = child;
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&bar));
  dialog->Progress1.SetProgress(70000, 200000);
  EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 70000);
  EXPECT_EQ(SendMessageW(bar, PBM_GETRANGE, FALSE, 0), 200000);
  Press(VK_TAB);
  EXPECT_EQ(NameOf(GetFocus()), "Command1") << "it takes no keyboard";
}

class TimerTest : public FormFixture {
 protected:
  // Lets the host's loop run for so long.
  static void Wait(DWORD milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    while (GetTickCount64() < end) Pump();
  }
};

TEST_F(TimerTest, ATimerRunsUntilItIsStopped) {
  int ticks = 0;
  controls::Timer timer(host, 20);
  timer.on_timer = [&] {
    if (++ticks == 3) timer.set_enabled(false);
  };
  EXPECT_FALSE(host.TimersRun());
  timer.set_enabled(true);
  timer.set_enabled(true);
  EXPECT_TRUE(host.TimersRun());
  Wait(400);
  EXPECT_EQ(ticks, 3) << "stopped in its own event";
  EXPECT_FALSE(host.TimersRun());
}

TEST_F(TimerTest, NoTimerIsToldAfterItsEnd) {
  int ticks = 0;
  {
    controls::Timer timer(host, 10);
    timer.on_timer = [&] { ++ticks; };
    timer.set_enabled(true);
    Sleep(50);
  }
  Wait(100);
  EXPECT_EQ(ticks, 0) << "it was due, but gone";
  controls::Timer long_timer(host, 60000);
  controls::Timer timer(host, 10);
  long_timer.on_timer = timer.on_timer = [&] { ++ticks; };
  timer.set_enabled(true);
  long_timer.set_enabled(true);
  host.CloseAll();
  EXPECT_FALSE(host.TimersRun());
  Wait(100);
  EXPECT_EQ(ticks, 0);
}

}  // namespace
}  // namespace quenta::tests
