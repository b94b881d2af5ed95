// Drop-down list, with or without typing; its entries carry a text and a number (the item data).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "controls/control.h"
#include "controls/item_list.h"

namespace quenta::controls {

class ComboBox final : public Control, public ItemList {
 public:
  // kList can only be chosen from; kEditable can be typed into.
  enum class Style { kList, kEditable };

  ComboBox(std::string name, Style style) : Control(std::move(name)), style_(style) {}

  ControlKind kind() const noexcept override { return ControlKind::kComboBox; }
  std::string Describe() const override { return text(); }
  Style style() const noexcept { return style_; }

  // Entries. Indexes run from 0; -1 stands for none.
  void Clear() override;
  void AddItem(std::string text) override;
  int NewIndex() const noexcept override { return static_cast<int>(items_.size()) - 1; }
  int ListCount() const noexcept { return static_cast<int>(items_.size()); }
  const std::string& List(int index) const { return items_.at(static_cast<std::size_t>(index)).text; }
  // Nothing where no number was set.
  std::optional<std::int32_t> ItemData(int index) const { return items_.at(static_cast<std::size_t>(index)).data; }
  void SetItemData(int index, std::int32_t data) override { items_.at(static_cast<std::size_t>(index)).data = data; }

  int ListIndex() const noexcept { return list_index_; }
  // Selects an entry and shows its text; -1 clears the selection, and in a kList box the text too.
  void SetListIndex(int index);
  std::optional<std::int32_t> SelectedItemData() const;

  // What the box shows: the selected entry's text, or what stands in an editable box.
  const std::string& text() const noexcept { return text_; }
  // Editable boxes only: puts any text in; the selection goes unless an entry was selected with this very text.
  void set_text(std::string text);

  bool locked() const noexcept { return locked_; }
  void set_locked(bool locked);

  // How much the user can enter into an editable box, in UTF-16 units; 0 is no limit. What is longer already stays.
  std::size_t max_length() const noexcept { return max_length_; }
  void set_max_length(std::size_t units);

  // Properties of the box's design, set before there is a window.
  bool holds_text = false;  // the record keeps the text of the entry, not its item data, even where it is a number
  int drop_down_rows = 15;  // entries visible when dropped down

  TextRange selection() const noexcept { return selection_; }
  void Select(TextRange range);
  void SelectAll();
  void SelectionMoved(TextRange range) noexcept { selection_ = range; }

  // Position of the first entry that begins with the text, without regard to case; -1 when there is none.
  int FindString(const std::string& start) const;

  // Opens the list under the box; text and selection stay.
  void ShowDropDown() { Changed(Aspect::kDropDown); }

  std::function<void()> on_change;  // the user changed the text of an editable box by typing
  std::function<void()> on_click;   // the user chose an entry

  void Typed(std::string text);
  // The user chose an entry (-1: none). Of one that is longer than the box takes, the beginning enters as if typed.
  void Chosen(int index);

 private:
  struct Item {
    std::string text;
    std::optional<std::int32_t> data;
  };

  void ItemsChanged() noexcept;
  void BeginUpdate() noexcept override { ++updating_; }
  void EndUpdate() noexcept override;
  void TakeIndex(int index);

  Style style_;
  std::vector<Item> items_;
  int list_index_ = -1;
  std::string text_;
  bool locked_ = false;
  std::size_t max_length_ = 0;
  int updating_ = 0;
  bool items_changed_ = false;
  TextRange selection_;
};

}  // namespace quenta::controls
