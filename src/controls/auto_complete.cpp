#include "controls/auto_complete.h"

#include <algorithm>
#include <string>

#include "base/text.h"

namespace quenta::controls {
namespace {

// Enter, Backspace and Esc, but also copying, pasting and undoing by keys come as characters of this kind.
bool IsControlCharacter(int key) {
  constexpr int kDeleteWord = 0x7F;  // Ctrl+Backspace
  return key < ' ' || key == kDeleteWord;
}

}  // namespace

void AutoCompletarCombo(ComboBox& box, int& key) {
  if (IsControlCharacter(key)) return;
  // In UTF-16: a letter beyond the basic plane comes as two keys.
  std::u16string search = base::ToUtf16(box.text());
  const TextRange selection = box.selection();
  if (selection.start + selection.length < search.size()) return;
  search.resize(std::min(selection.start, search.size()));
  search += static_cast<char16_t>(key);
  const std::size_t longest = box.max_length();
  if (longest != 0 && search.size() > longest) return;

  const std::string search_text = base::FromUtf16(search);
  box.ShowDropDown();
  const int found = box.FindString(search_text);
  if (found >= 0 && (longest == 0 || base::Utf16Length(box.List(found)) <= longest)) {
    box.SetListIndex(found);
    box.Select({search.size(), base::Utf16Length(box.text()) - search.size()});
  } else {
    box.set_text(search_text);
    box.Select({search.size(), 0});
  }
  key = 0;
}

}  // namespace quenta::controls
