// Report list with keyed rows. The window holds no copy: it asks the model for the cells it paints.
#pragma once

#include <unordered_map>
#include <vector>

#include "base/locale.h"
#include "base/value.h"
#include "controls/control.h"

namespace quenta::controls {

// How the cells of a column compare when the list is sorted by it.
enum class SortAs { kText, kNumber, kDate };

struct ListColumn {
  std::string caption;
  int width = 100;  // in 1/96 inch, before the user has changed it
  bool right_aligned = false;
  SortAs sort_as = SortAs::kText;
};

// The order that the user has chosen for a list's rows; column -1 is the order in which they were added.
struct ListSort {
  int column = -1;
  bool descending = false;
  bool operator==(const ListSort&) const = default;
};

struct ListItem {
  std::string key;                     // unique in its list, never a bare number: "#" and an identifier
  std::string text;                    // first column
  std::vector<std::string> sub_items;  // position 1 is sub_items[0]; those beyond the columns are a hidden store
  int small_icon = 0;                  // image of the list's image list, from 1; 0 is none
  bool checked = false;
  bool marked = false;  // part of the selection of a list in which many rows can be selected
  // What number and date columns show a rounded or shortened text of, by column; Empty for the others. None where the
  // list keeps only texts.
  std::vector<base::Value> values{};
};

class ListView final : public Control {
 public:
  ListView(std::string name, std::vector<ListColumn> columns, bool check_boxes = false)
      : Control(std::move(name)), columns_(std::move(columns)), check_boxes_(check_boxes) {}

  ControlKind kind() const noexcept override { return ControlKind::kListView; }
  std::string Describe() const override;

  const std::vector<ListColumn>& columns() const noexcept { return columns_; }
  bool check_boxes() const noexcept { return check_boxes_; }

  // Properties of the list's design, set before there is a window.
  bool multi_select = false;  // many rows can be marked at once
  bool sortable = false;      // a click on a column's header sorts; the view remembers the order for each user

  int Count() const noexcept { return static_cast<int>(items_.size()); }
  void Clear();
  // Makes room for this many rows, so that none of them moves while they are added.
  void Reserve(std::size_t rows);
  // Adds a row at the end. Error 5 when the key is there already. The reference lives until the next Add, Remove or
  // Sort.
  ListItem& Add(std::string key, std::string text);
  // Error 5 when there is no such row. The selection stays with its row; the next row takes that of the row that went.
  void Remove(const std::string& key);
  // Row by position (from 0) or by key; Error 5 when there is none.
  ListItem& At(int index);
  ListItem& Item(const std::string& key);
  // Row by key; null when there is none.
  ListItem* Find(const std::string& key);
  // While one lives, changes of rows and of the selection are gathered and told to the view as one at its end.
  class Update {
   public:
    explicit Update(ListView& list) noexcept : list_(list) { ++list_.updating_; }
    ~Update() {
      if (--list_.updating_ == 0) list_.TellView();
    }
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

   private:
    ListView& list_;
  };

  // Tells the view after rows were changed through the references above.
  void ItemsChanged() noexcept { RowsChanged(); }

  // Text of a cell: column 0 is the row's text; empty beyond its sub-items.
  const std::string& Cell(int row, int column) const;
  // The whole value behind a cell; Empty where the list keeps only its text.
  const base::Value& CellValue(int row, int column) const;

  int selected() const noexcept { return selected_; }  // position of the row that has the selection mark, -1 for none
  // Selects the row (-1: none) and scrolls it into view. With multi_select it is the only one marked from then on.
  void Select(int index);

  // Rows of a list with multi_select that are marked, by position in the list's order. In other lists, the selected
  // row.
  std::vector<int> MarkedRows() const;
  // Nothing happens without multi_select.
  void MarkAll();
  // The marked rows as text, cells separated by tabs and rows by line ends, the visible columns only. Tabs and line
  // ends within a cell become blanks.
  std::string MarkedText() const;

  const ListSort& sort() const noexcept { return sort_; }
  // Puts the rows into this order, rows that compare equal staying as they are; selection and marks go with their rows.
  // Number and date columns go by the values behind their cells, numbers without one by the cell in the user's
  // notation; what is neither comes first. A column that is not there leaves the rows as they are.
  void Sort(const ListSort& sort, const base::Locale& locale);
  // The order is to be this one from now on; rows that are there already stay. For the view that remembers it.
  void RestoreSort(const ListSort& sort) { sort_ = sort; }

  std::function<void(int column)> on_column_click;  // the user clicked a column's header
  std::function<void()> on_copy;                    // Ctrl+C
  std::function<void()> on_item_check;              // the user set or cleared a check box
  std::function<void()> on_item_click;              // the user chose another row, or clicked the one chosen
  std::function<void()> on_item_activate;           // double click or Enter
  std::function<void()> on_context_menu;            // right click, menu key or Shift+F10
  void Clicked(int index);
  void Activated();
  void ContextMenu();
  void Checked(int index, bool checked);
  void Marked(int first, int last, bool marked);  // positions, both included
  void ColumnClicked(int column);
  void Copy();

 private:
  void RowsChanged() noexcept { Note(rows_changed_); }
  void SelectionChanged() noexcept { Note(selection_changed_); }
  void Note(bool& changed) noexcept;
  void TellView() noexcept;

  std::vector<ListColumn> columns_;
  bool check_boxes_;
  std::vector<ListItem> items_;
  std::unordered_map<std::string, std::size_t> positions_;
  int selected_ = -1;
  ListSort sort_;
  int updating_ = 0;
  bool rows_changed_ = false;  // and the view was not told yet
  bool selection_changed_ = false;
};

}  // namespace quenta::controls
