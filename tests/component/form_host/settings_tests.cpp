// The settings port against the real registry, files and regional conventions.
#include "platform/win32/settings.h"

#include <gtest/gtest.h>

#include <windows.h>

#include "base/error.h"
#include "platform/win32/files.h"
#include "platform/win32/handles.h"
#include "platform/win32/wide_text.h"

namespace quenta::tests {
namespace {

using platform::Narrow;
using platform::OwnedFile;
using platform::Settings;
using platform::Wide;

constexpr ports::RootKey kCurrentUser = 0x80000001;
constexpr char kKey[] = "SOFTWARE\\QuentaTests\\Settings";

class SettingsTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_CURRENT_USER, Wide(kKey).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr),
        ERROR_SUCCESS);
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path_ = Narrow(folder) + "quenta_settings_tests.db";
    work_path_ = Narrow(folder) + "quenta_settings_tests.tmp";
  }
  void TearDown() override {
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\QuentaTests");
    DeleteFileW(Wide(path_).c_str());
  }
  void Write(const wchar_t* name, DWORD type, const std::wstring& text) {
    RegSetValueExW(key_, name, 0, type, reinterpret_cast<const BYTE*>(text.data()),
                   static_cast<DWORD>(text.size() * sizeof(wchar_t)));
  }

  Settings settings_;
  HKEY key_ = nullptr;
  std::string path_;
  std::string work_path_;
};

TEST_F(SettingsTest, RegistryTextIsCutAtItsEndAndOtherTypesAreNoText) {
  using namespace std::string_literals;
  Write(L"plain", REG_SZ, L"servidor\\ção\0"s);
  Write(L"unterminated", REG_SZ, L"abc"s);
  Write(L"inner", REG_SZ, L"abc\0def\0"s);
  Write(L"long", REG_SZ, std::wstring(5000, L'x') + L'\0');
  Write(L"empty", REG_SZ, L""s);
  Write(L"binary", REG_BINARY, L"abc\0"s);
  const struct {
    const char* name;
    std::optional<std::string> text;
  } cases[] = {{"plain", "servidor\\ção"},       {"unterminated", "abc"}, {"inner", "abc"},
               {"long", std::string(3500, 'x')}, {"empty", ""},           {"binary", std::nullopt},
               {"missing", std::nullopt}};
  for (const auto& [name, text] : cases) EXPECT_EQ(settings_.ReadRegistryText(kCurrentUser, kKey, name), text) << name;
  EXPECT_EQ(settings_.ReadRegistryText(kCurrentUser, "SOFTWARE\\QuentaTests\\None", "plain"), std::nullopt);
  EXPECT_EQ(settings_.ReadRegistryText(0, kKey, "plain"), std::nullopt);
}

TEST_F(SettingsTest, SubkeysAreNamedAndAMissingKeyHasNone) {
  EXPECT_EQ(settings_.EnumerateSubkeys(kCurrentUser, "SOFTWARE\\QuentaTests"), std::vector<std::string>{"Settings"});
  EXPECT_TRUE(settings_.EnumerateSubkeys(kCurrentUser, "SOFTWARE\\QuentaNone").empty());
}

TEST_F(SettingsTest, AFileIsReplacedWholeOrNotAtAll) {
  EXPECT_FALSE(settings_.ReplaceContents(path_, work_path_, "x")) << "it must exist beforehand";
  EXPECT_FALSE(settings_.ReadFile(work_path_).has_value());
  ASSERT_TRUE(platform::WriteWholeFile(Wide(path_), "before\r\n"));
  EXPECT_TRUE(settings_.ReplaceContents(path_, work_path_, "after\r\n"));
  EXPECT_EQ(settings_.ReadFile(path_), "after\r\n");
  EXPECT_FALSE(settings_.ReadFile(work_path_).has_value()) << "the work file is gone";
  // Held open by a program that lets nobody write.
  const HANDLE held =
      CreateFileW(Wide(path_).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(settings_.ReplaceContents(path_, work_path_, "later\r\n"));
  EXPECT_EQ(settings_.ReadFile(path_), "after\r\n");
  EXPECT_FALSE(settings_.ReadFile(work_path_).has_value());
  CloseHandle(held);
}

// What the system leaves behind when replacing fails half-way, as it is documented for each error.
TEST_F(SettingsTest, ReplacingThatFailsHalfWayLosesNothing) {
  using Path = const std::wstring&;
  static OwnedFile in_use;
  const struct {
    const char* what;
    platform::ReplaceCall replace;
    const char* left;
    bool answer;
  } cases[] = {
      {"all goes well", &platform::ReplaceByTheSystem, "new", true},
      {"the old file cannot be removed", [](Path, Path, Path) -> DWORD { return ERROR_UNABLE_TO_REMOVE_REPLACED; },
       "old", false},
      {"the new file cannot be moved, and the old one stays",
       [](Path, Path, Path) -> DWORD { return ERROR_UNABLE_TO_MOVE_REPLACEMENT; }, "old", false},
      {"the same where the old one has gone all the same",
       [](Path path, Path, Path) -> DWORD {
         DeleteFileW(path.c_str());
         return ERROR_UNABLE_TO_MOVE_REPLACEMENT;
       },
       "new", true},
      {"the old file was moved away",
       [](Path path, Path, Path backup) -> DWORD {
         MoveFileW(path.c_str(), backup.c_str());
         return ERROR_UNABLE_TO_MOVE_REPLACEMENT_2;
       },
       "old", false},
      {"it was moved away, and cannot be moved back",
       [](Path path, Path, Path backup) -> DWORD {
         MoveFileW(path.c_str(), backup.c_str());
         in_use = OwnedFile(CreateFileW(backup.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
         return ERROR_UNABLE_TO_MOVE_REPLACEMENT_2;
       },
       "new", true},
      {"anything else", [](Path, Path, Path) -> DWORD { return ERROR_ACCESS_DENIED; }, "old", false},
  };
  const std::wstring path = Wide(path_);
  const std::wstring work = Wide(work_path_);
  for (const auto& given : cases) {
    SCOPED_TRACE(given.what);
    ASSERT_TRUE(platform::WriteWholeFile(path, "old"));
    EXPECT_EQ(platform::ReplaceWholeFile(path, work, "new", given.replace), given.answer);
    EXPECT_EQ(settings_.ReadFile(path_), given.left);
    EXPECT_FALSE(settings_.ReadFile(work_path_).has_value());
    in_use = {};
    DeleteFileW((work + L".old").c_str());
  }
}

TEST_F(SettingsTest, AFileIsWrittenOrTheReasonIsToldByItsNumber) {
  settings_.WriteFile(path_, std::string(5000, 'x'));
  settings_.WriteFile(path_, "preço");
  EXPECT_EQ(settings_.ReadFile(path_), "preço") << "in place of a longer one";
  const auto error_of = [&](const std::string& path) -> int {
    try {
      settings_.WriteFile(path, "x");
    } catch (const base::Error& error) {
      return error.number();
    }
    return 0;
  };
  {
    // As a report is that somebody still reads.
    const platform::OwnedFile open(
        CreateFileW(Wide(path_).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(error_of(path_), base::error_number::kPermissionDenied);
  }
  EXPECT_EQ(settings_.ReadFile(path_), "preço") << "what was there stays";
  EXPECT_EQ(error_of(settings_.TempFolder()), base::error_number::kPermissionDenied) << "a folder";
  EXPECT_EQ(error_of(settings_.TempFolder() + "\\quenta none\\x.doc"), base::error_number::kPathNotFound);
  EXPECT_EQ(error_of("Q:\\x.doc"), base::error_number::kPathNotFound);
}

TEST_F(SettingsTest, FoldersAndLocaleAreTheUsers) {
  constexpr int kAllUsersData = 35;
  const std::string folder = settings_.SpecialFolder(kAllUsersData);
  EXPECT_FALSE(folder.empty());
  EXPECT_FALSE(folder.ends_with('\\'));
  EXPECT_EQ(settings_.SpecialFolder(9999), "");
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  const std::string path = Narrow(program);
  EXPECT_EQ(settings_.InstallationFolder(), path.substr(0, path.rfind('\\')));
  EXPECT_FALSE(settings_.TempFolder().empty());
  EXPECT_FALSE(settings_.TempFolder().ends_with('\\'));
  const base::Locale locale = settings_.UserLocale();
  EXPECT_TRUE(locale.decimal == "," || locale.decimal == ".") << locale.decimal;
  EXPECT_EQ(locale.short_date.find_first_of("M'"), std::string::npos) << locale.short_date;
  EXPECT_NE(locale.short_date.find("yy"), std::string::npos) << locale.short_date;
  EXPECT_FALSE(locale.month_names[11].empty());
}

}  // namespace
}  // namespace quenta::tests
