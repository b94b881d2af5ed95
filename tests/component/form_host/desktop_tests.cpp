// The user's desktop: a file to save in, the clipboard, and waits.
#include "platform/win32/desktop.h"

#include <windows.h>

#include <commdlg.h>
#include <dlgs.h>

#include <thread>

#include "base/error.h"
#include "component/form_host/form_fixture.h"
#include "platform/win32/files.h"
#include "platform/win32/handles.h"
#include "platform/win32/wide_text.h"

namespace quenta::tests {
namespace {

using platform::Narrow;
using platform::Wide;

// A window that posts to itself, so that the thread's queue does not run empty; it gives up for who never comes back.
constexpr int kGivesUp = 100000;
int posted = 0;
LRESULT CALLBACK PostAgain(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  if (message != WM_APP) return DefWindowProcW(window, message, wparam, lparam);
  if (++posted < kGivesUp) PostMessageW(window, WM_APP, 0, 0);
  return 0;
}

class DesktopTest : public FormFixture {
 protected:
  void SetUp() override {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    folder_ = Narrow(folder);
  }

  // Asks, and answers in the dialog: types the name (unless it is empty) and presses the key; then answers the warning
  // of an existing file, if it comes, by this button.
  std::optional<std::string> Ask(const std::string& name, int key, int answer_to_warning = IDNO) {
    const HWND owner = host.WindowOf(*form);
    int stage = 0;
    const Meanwhile answer([&, this] {
      const HWND dialog = GetLastActivePopup(owner);
      if (dialog == owner) return stage > 0;
      // The warning lies over the dialog, which comes back when it is answered by No.
      if (FindWindowExW(dialog, nullptr, L"Edit", nullptr) == nullptr && GetDlgItem(dialog, cmb13) == nullptr &&
          GetDlgItem(dialog, IDNO) != nullptr) {
        warned_ = true;
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(answer_to_warning), 0);
        stage = answer_to_warning == IDNO ? 2 : 1;
        return false;
      }
      if (stage == 0 || stage == 2) {
        if (stage == 0 && !name.empty()) SetDlgItemTextW(dialog, FileName(dialog), Wide(name).c_str());
        SendKeys(stage == 0 ? key : VK_ESCAPE);
        ++stage;
      }
      return false;
    });
    return desktop_.AskFileToSave(
        {.title = "Guardar histórico", .name = "histórico A/10", .type_name = "Ficheiros CSV", .extension = "csv"},
        form.get());
  }

  static int FileName(HWND dialog) { return GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1; }

  platform::Desktop desktop_{host};
  std::string folder_;
  bool warned_ = false;
};

TEST_F(DesktopTest, AFileToSaveIsAskedFor) {
  Show();
  wchar_t before[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, before);
  const std::string path = folder_ + "preços.csv";
  DeleteFileW(Wide(path).c_str());
  EXPECT_EQ(Ask("", VK_ESCAPE), std::nullopt);
  EXPECT_EQ(Ask(folder_ + "preços", VK_RETURN), path) << "with the extension that was left out";
  EXPECT_FALSE(warned_);
  ASSERT_TRUE(platform::WriteWholeFile(Wide(path), "antes"));
  EXPECT_EQ(Ask(path, VK_RETURN, IDNO), std::nullopt);
  EXPECT_TRUE(warned_);
  EXPECT_EQ(Ask(path, VK_RETURN, IDYES), path);
  DeleteFileW(Wide(path).c_str());
  wchar_t after[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, after);
  EXPECT_STREQ(before, after) << "the host's working folder";
  EXPECT_TRUE(IsWindowEnabled(window));
}

TEST_F(DesktopTest, ATextIsCopiedForOtherPrograms) {
  const auto clipboard = [] {
    if (!OpenClipboard(nullptr)) return std::string("busy");
    const HANDLE data = GetClipboardData(CF_UNICODETEXT);
    std::string text;
    if (data != nullptr) {
      text = Narrow(static_cast<const wchar_t*>(GlobalLock(data)));
      GlobalUnlock(data);
    }
    CloseClipboard();
    return text;
  };
  for (const std::string& text : {std::string("Preço\t€ 8,13\r\n𝒜"), std::string(300000, 'x'), std::string()}) {
    EXPECT_TRUE(desktop_.CopyText(text));
    EXPECT_EQ(clipboard(), text);
  }
  desktop_.CopyText("antes");
  std::thread([&] {
    // Another program that has it open.
    ASSERT_TRUE(OpenClipboard(nullptr));
    std::thread([&] { EXPECT_FALSE(desktop_.CopyText("depois")); }).join();
    CloseClipboard();
  }).join();
  EXPECT_EQ(clipboard(), "antes");
}

TEST_F(DesktopTest, AWaitProcessesMessagesComesBackFromABusyQueueAndEndsWhenTheHostQuits) {
  Show();
  PostMessageW(window, WM_CLOSE, 0, 0);
  EXPECT_TRUE(desktop_.PumpMessages());
  EXPECT_EQ(form->closed, 1);

  const platform::OwnedWindow busy(
      CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
  SetWindowLongPtrW(busy.get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&PostAgain));
  posted = 0;
  PostMessageW(busy.get(), WM_APP, 0, 0);
  EXPECT_TRUE(desktop_.PumpMessages());
  PostQuitMessage(7);
  EXPECT_FALSE(desktop_.PumpMessages());
  EXPECT_LT(posted, kGivesUp);
  MSG quit;
  ASSERT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the host's loop must still see it";
  EXPECT_EQ(quit.wParam, 7U);
}

}  // namespace
}  // namespace quenta::tests
