// What is typed, on its way from the keyboard to the model: keys that a handler swallows or changes, names that are
// completed, the decimal key.
#include <windows.h>

#include "base/text.h"
#include "component/form_host/form_fixture.h"
#include "controls/auto_complete.h"
#include "platform/win32/edit_text.h"
#include "platform/win32/settings.h"
#include "platform/win32/wide_text.h"

namespace quenta::tests {
namespace {

using platform::Narrow;

class TypingTest : public FormFixture {
 protected:
  // Shows the form with an empty name field that completes, from these names.
  void ShowNames(const std::vector<std::string>& names) {
    Show();
    FillNames(names);
    form->FXNome.on_key_press = [&](int& key) { controls::AutoCompletarCombo(form->FXNome, key); };
    FocusOn("FXNome");
  }

  void FillNames(const std::vector<std::string>& names) {
    controls::ComboBox& box = form->FXNome;
    const controls::ComboBox::Update update(box);
    box.Clear();
    for (const std::string& name : names) box.AddItem(name);
    box.set_text("");
  }

  bool IsOpen(const char* name) const { return SendMessageW(Window(name), CB_GETDROPPEDSTATE, 0, 0) != 0; }

  // The name field as the user sees it, what is selected in brackets. The model must hold the same.
  std::string Name() const {
    std::u16string text = base::ToUtf16(TextOf("FXNome"));
    EXPECT_EQ(form->FXNome.text(), TextOf("FXNome"));
    const controls::TextRange selection = platform::EditSelection(GetFocus());
    text.insert(selection.start + selection.length, u"]");
    text.insert(selection.start, u"[");
    return base::FromUtf16(text);
  }
};

TEST_F(TypingTest, AHandlerSeesEachKeyBeforeTheWindowAndDecidesOnIt) {
  Show();
  const std::pair<const char*, controls::Control*> fields[] = {
      {"FXCodigo", &form->FXCodigo}, {"FXMarca", &form->FXMarca}, {"FXObs", &form->FXObs}, {"FXHora", &form->FXHora}};
  for (const auto& [name, field] : fields) {
    std::string seen;
    field->on_key_press = [&](int& key) {
      seen += Narrow(std::wstring(1, static_cast<wchar_t>(key)));
      if (key == 'x') key = 0;
      if (key == 'y') key = 0xE7;  // ç
    };
    FocusOn(name);
    SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
    TypeUnicode("axyã");
    EXPECT_EQ(seen, "axyã") << name;
    EXPECT_EQ(TextOf(name), "açã") << name;
    field->on_key_press = nullptr;
  }
  // Where the caret stands is known by then.
  controls::TextRange caret;
  form->FXCodigo.on_key_press = [&](int&) { caret = form->FXCodigo.selection(); };
  FocusOn("FXCodigo");
  SendMessageW(GetFocus(), EM_SETSEL, 1, 2);
  Press('K');
  EXPECT_EQ(caret, (controls::TextRange{1, 1}));
  // The form may be gone when the handler returns.
  form->FXCodigo.on_key_press = [&](int&) { host.Close(*form); };
  Press('K');
  EXPECT_FALSE(IsWindow(window));
  form->WindowLost();
}

TEST_F(TypingTest, ANameIsCompletedFromTheListWhileItIsTyped) {
  ShowNames({"Camisa", "Camisola", "Calção às riscas", "𝒜lgodão"});
  const struct {
    const char* what;
    std::function<void()> act;
    const char* name;
  } steps[] = {
      {"a letter", [&] { Press('C'); }, "C[amisa]"},
      {"in small letters", [&] { Type("amiso"); }, "Camiso[la]"},
      {"Backspace takes the proposal away", [&] { Press(VK_BACK); }, "Camiso[]"},
      {"and then a letter", [&] { Press(VK_BACK); }, "Camis[]"},
      {"another proposal", [&] { Press('A'); }, "Camisa[]"},
      {"not in the list", [&] { Press('R'); }, "Camisar[]"},
      {"inside the text the key is typed",
       [&] {
         Press(VK_LEFT);
         Press('X');
       },
       "Camisax[]r"},
      {"letters with accents",
       [&] {
         Press('A', {VK_CONTROL});
         TypeUnicode("calçÃ");
       },
       "Calçã[o às riscas]"},
      {"a letter of two units",
       [&] {
         SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
         TypeUnicode("𝒜");
       },
       "𝒜[lgodão]"},
      {"copying is no typing", [&] { Press('C', {VK_CONTROL}); }, "𝒜[lgodão]"},
      {"nor is pasting", [&] { Press('V', {VK_CONTROL}); }, "𝒜lgodão[]"},
  };
  for (const auto& [what, act, name] : steps) {
    act();
    EXPECT_EQ(Name(), name) << what;
    EXPECT_TRUE(IsOpen("FXNome")) << what;
  }
}

TEST_F(TypingTest, AnOpenListKeepsEscAndEnterForItself) {
  ShowNames({"Camisa", "Camisola"});
  Type("camis");
  Press(VK_ESCAPE);
  EXPECT_FALSE(IsOpen("FXNome"));
  EXPECT_FALSE(form->Happened("unload")) << "Esc closes the list, not the form";
  EXPECT_EQ(form->FXNome.text(), "Camisa");
  FocusOn("FXNome");
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  Type("camiso");
  Press(VK_RETURN);
  EXPECT_FALSE(IsOpen("FXNome"));
  EXPECT_FALSE(form->Happened("Command1 click")) << "nor is it the default button's";
  EXPECT_EQ(form->FXNome.text(), "Camisola");
  EXPECT_EQ(form->FXNome.ListIndex(), 1);
  // What the user has taken back does not return when the list closes.
  Press('A', {VK_CONTROL});
  Type("camiso");
  Press(VK_BACK);
  Press(VK_TAB);
  EXPECT_EQ(TextOf("FXNome"), "Camiso");
  EXPECT_EQ(form->FXNome.text(), "Camiso");

  FocusOn("FXFamilia_ID");
  Press(VK_DOWN, {VK_MENU});
  EXPECT_TRUE(IsOpen("FXFamilia_ID"));
  Press(VK_ESCAPE);
  EXPECT_FALSE(IsOpen("FXFamilia_ID"));
  EXPECT_FALSE(form->Happened("unload"));
}

TEST_F(TypingTest, TheDecimalKeyIsTheUsersSeparatorWhereNumbersStand) {
  Show();
  FocusOn("FXValor");
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  Press('1');
  Press(VK_DECIMAL);
  Press('5');
  TypeUnicode(".,");
  EXPECT_EQ(form->FXValor.text(), "1" + platform::Settings().UserLocale().decimal + "5.,")
      << "both signs are typed as they are";
  FocusOn("FXCodigo");
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  Press(VK_DECIMAL);
  EXPECT_EQ(form->FXCodigo.text(), ".");
}

}  // namespace
}  // namespace quenta::tests
