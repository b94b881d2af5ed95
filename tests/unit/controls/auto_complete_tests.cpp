#include "controls/auto_complete.h"

#include "base/text.h"
#include "gtest/gtest.h"

namespace quenta::tests {
namespace {

using controls::AutoCompletarCombo;
using controls::ComboBox;

// A box's text with what is selected in brackets: "Cam[isa]".
std::string Shown(const ComboBox& box) {
  std::u16string text = base::ToUtf16(box.text());
  text.insert(box.selection().start + box.selection().length, u"]");
  text.insert(box.selection().start, u"[");
  return base::FromUtf16(text);
}

class AutoCompleteTest : public testing::Test {
 protected:
  AutoCompleteTest() {
    for (const char* name : {"Camisa", "Camisola", "CAMISA DE LINHO", "Água", "42", "𝒜lgodão", ""}) box.AddItem(name);
  }

  // Puts text and selection into the box, from "Cam[isa]".
  void Put(const std::string& shown) {
    std::u16string text = base::ToUtf16(shown);
    const std::size_t start = text.find(u'[');
    text.erase(start, 1);
    const std::size_t end = text.find(u']');
    text.erase(end, 1);
    box.set_text(base::FromUtf16(text));
    box.SelectionMoved({start, end - start});
  }

  ComboBox box{"FXNome", ComboBox::Style::kEditable};
};

TEST_F(AutoCompleteTest, TheFirstEntryThatBeginsWithWhatWasTypedIsProposed) {
  const struct {
    const char* before;
    int key;
    const char* after;
    int entry;  // selected in the list, -1 for none
  } cases[] = {
      {"[]", 'C', "C[amisa]", 0},
      {"[]", 'c', "C[amisa]", 0},
      {"C[amisa]", 'a', "Ca[misa]", 0},
      {"Camis[]", 'O', "Camiso[la]", 1},
      {"camisa[]", ' ', "CAMISA [DE LINHO]", 2},
      {"Camis[a]", 'a', "Camisa[]", 0},
      {"[]", 0xE1, "Á[gua]", 3},
      {"4[]", '2', "42[]", 4},
      {"Ca[lça]", 'x', "Cax[]", -1},
      {"Camisa[]", 's', "Camisas[]", -1},
      {"[Camisola]", 'z', "z[]", -1},
      {"z[]", 'z', "zz[]", -1},
      {"[]", 'A', "A[]", -1},
  };
  for (const auto& c : cases) {
    Put(c.before);
    int key = c.key;
    AutoCompletarCombo(box, key);
    EXPECT_EQ(key, 0) << c.before;
    EXPECT_EQ(Shown(box), c.after) << c.before;
    EXPECT_EQ(box.ListIndex(), c.entry) << c.before;
  }
}

TEST_F(AutoCompleteTest, ElsewhereTheKeyPassesAndTheBoxStays) {
  box.set_max_length(6);
  const struct {
    const char* before;
    int key;
  } cases[] = {
      {"Cam[isa]", 13}, {"Cam[isa]", 8}, {"Cam[isa]", 27},  {"Cam[isa]", 22},  {"Cam[isa]", 0x7F},
      {"C[]am", 'a'},   {"C[a]m", 'a'},  {"[]Camisa", 'C'}, {"Camisa[]", 's'},
  };
  for (const auto& c : cases) {
    Put(c.before);
    int key = c.key;
    AutoCompletarCombo(box, key);
    EXPECT_EQ(key, c.key) << c.before;
    EXPECT_EQ(Shown(box), c.before) << c.key;
  }
  box.set_max_length(4);
  box.Chosen(0);
  EXPECT_EQ(box.text(), box.List(0).substr(0, 4)) << "of a longer entry what its column takes";
}

TEST_F(AutoCompleteTest, ALetterBeyondTheBasicPlaneComesInTwoUnits) {
  Put("[]");
  for (const char16_t unit : base::ToUtf16("𝒜L")) {
    int key = unit;
    AutoCompletarCombo(box, key);
    EXPECT_EQ(key, 0);
  }
  EXPECT_EQ(Shown(box), "𝒜l[godão]");
}

// The search through a long list takes a short cut; it must not find anything else.
TEST(FindString, FindsWhatTheComparisonOfTextsFinds) {
  const char* const texts[] = {"",  "a", "A", "Ç",     "ç", "çã", "ÇÃO", "cao", "Calção", "CALÇÃO às riscas", "calço",
                               "á", "à", "ß", "İ",     "ı", "i",  "Iı",  "𝒜",   "𝒜b",     "\xED\xA0\xB5",     "@",
                               "`", "[", "{", "Œuvre", "œu"};
  for (const char* const text : texts) {
    for (const char* const start : texts) {
      ComboBox box("FXNome", ComboBox::Style::kEditable);
      box.AddItem(text);
      EXPECT_EQ(box.FindString(start) == 0, base::StartsWithIgnoreCase(text, start)) << text << " / " << start;
    }
  }
}

}  // namespace
}  // namespace quenta::tests
