#include "controls/list_view.h"

#include "base/error.h"
#include "base/value.h"
#include "gtest/gtest.h"
#include "support/locales.h"

namespace quenta::tests {
namespace {

using controls::Aspect;
using controls::ListView;
using controls::SortAs;

// What the window of a list is told, and what it then finds.
class NotingView final : public controls::ControlView {
 public:
  explicit NotingView(ListView& list) : list_(list) { list.Attach(this); }
  void ControlChanged(controls::Control&, Aspect aspect) noexcept override {
    told += aspect == Aspect::kItems ? "rows " : "selection ";
    count = list_.Count();
  }
  std::string Told() { return std::exchange(told, {}); }

  std::string told;
  int count = 0;

 private:
  ListView& list_;
};

std::string FirstColumn(const ListView& list) {
  std::string text;
  for (int i = 0; i < list.Count(); ++i) text += (i > 0 ? "|" : "") + list.Cell(i, 0);
  return text;
}

void Fill(ListView& list, const std::vector<const char*>& cells) {
  list.Clear();
  for (const char* cell : cells) list.Add("#" + std::to_string(list.Count() + 1), cell);
}

TEST(ListViewSort, ColumnsSortByWhatTheyHold) {
  const struct {
    SortAs kind;
    base::Locale locale;
    std::vector<const char*> cells;
    const char* ascending;
  } cases[] = {
      {SortAs::kText, PortugueseLocale(), {"Zebra", "água", "Agua", "avó", "Ávila"}, "Agua|água|Ávila|avó|Zebra"},
      {SortAs::kText, PortugueseLocale(), {"10", "9"}, "10|9"},
      {SortAs::kNumber,
       PortugueseLocale(),
       {"10,00", "9,50", "- 3,00", "1\u00A0000,00"},
       "- 3,00|9,50|10,00|1\u00A0000,00"},
      {SortAs::kNumber, PortugueseLocale(), {"€ 10,00", "€ -3,00", " ", "€ 9,50"}, " |€ -3,00|€ 9,50|€ 10,00"},
      {SortAs::kNumber, EnglishLocale(), {"1,000.00", "9.50", "x"}, "x|9.50|1,000.00"},
  };
  for (const auto& c : cases) {
    ListView list("Lista", {{"Coluna", 100, false, c.kind}});
    Fill(list, c.cells);
    list.Sort({0, false}, c.locale);
    EXPECT_EQ(FirstColumn(list), c.ascending);
    list.Sort({0, true}, c.locale);
    std::string backwards;
    for (int i = list.Count() - 1; i >= 0; --i) backwards += list.Cell(i, 0) + (i > 0 ? "|" : "");
    EXPECT_EQ(backwards, c.ascending);
  }
}

// What the cells show is rounded and shortened, and may be read otherwise in the user's notation.
TEST(ListViewSort, ValuesBehindTheCellsDecide) {
  using base::Value;
  const struct {
    SortAs kind;
    std::vector<Value> values;
    const char* ascending;
  } cases[] = {
      {SortAs::kDate,
       {base::Date{46054.75}, base::Date{46054.25}, Value::Null(), base::Date{46025}, base::Date{-1.75},
        base::Date{-1.25}},
       "3|6|5|4|2|1"},
      {SortAs::kNumber, {1.004, base::Currency{10030}, Value::Null(), -7}, "3|4|2|1"},
  };
  for (const auto& c : cases) {
    ListView list("Lista", {{"Coluna", 100, false, c.kind}});
    for (const Value& value : c.values) {
      const std::string number = std::to_string(list.Count() + 1);
      list.Add("#" + number, number).values = {value};
    }
    list.Sort({0, false}, EnglishLocale());
    EXPECT_EQ(FirstColumn(list), c.ascending);
  }
}

TEST(ListViewSort, EqualRowsStayAndSelectionMarksAndKeysGoWithTheirRows) {
  ListView list("Lista", {{"Nome"}, {"Grupo"}});
  list.multi_select = true;
  for (const char* name : {"d", "c", "b", "a"})
    list.Add(std::string("#") + name, name).sub_items = {name[0] < 'c' ? "1" : "2"};
  list.Select(0);
  list.Marked(1, 1, true);
  NotingView view(list);
  list.Sort({1, false}, {});
  EXPECT_EQ(FirstColumn(list), "b|a|d|c");
  EXPECT_EQ(list.At(list.selected()).key, "#d");
  EXPECT_EQ(list.MarkedRows(), (std::vector<int>{2, 3}));
  EXPECT_EQ(list.Item("#c").text, "c");
  EXPECT_EQ(view.Told(), "rows selection ");
  list.Sort({7, true}, {});
  EXPECT_EQ(FirstColumn(list), "b|a|d|c") << "no such column";
  EXPECT_EQ(list.sort(), (controls::ListSort{7, true}));
}

TEST(ListView, TheSelectionStaysWithItsRowWhenOthersGo) {
  ListView list("Lista", {{"Nome"}});
  Fill(list, {"a", "b", "c"});
  list.Select(1);
  list.Remove("#1");
  EXPECT_EQ(list.At(list.selected()).text + list.Item("#3").text, "bc");
  list.Remove("#3");
  EXPECT_EQ(list.selected(), 0);
  list.Remove("#2");
  EXPECT_EQ(list.selected(), -1);
  EXPECT_THROW(list.Remove("#3"), base::Error);
  EXPECT_THROW(list.Item("#3"), base::Error);
  list.Add("#3", "c");
  EXPECT_THROW(list.Add("#3", "c"), base::Error);
}

TEST(ListView, MarkedRowsAreCopiedAsTextThatASpreadsheetTakes) {
  ListView list("Lista", {{"Nome"}, {"Nota"}});
  for (const char* key : {"#1", "#2", "#3"}) list.Add(key, key).sub_items = {"a\tb\r\nc", "não se vê"};
  list.Select(1);
  list.MarkAll();
  EXPECT_EQ(list.MarkedText(), "#2\ta b  c\r\n") << "the selected row where only one can be";
  list.multi_select = true;
  list.Marked(2, 7, true);
  EXPECT_EQ(list.MarkedRows(), std::vector<int>{2});
  list.Select(0);
  EXPECT_EQ(list.MarkedRows(), std::vector<int>{0}) << "what code selects is the only one";
}

// A view that hears of the selection before it knows of the row cannot bring it into view.
TEST(ListView, AnUpdateTellsTheRowsOnceAndThenTheSelection) {
  ListView list("Lista", {{"Nome"}});
  NotingView view(list);
  {
    const ListView::Update outer(list);
    const ListView::Update inner(list);
    Fill(list, {"a", "b"});
    list.Select(1);
  }
  EXPECT_EQ(view.Told(), "rows selection ");
  EXPECT_EQ(view.count, 2);
  { const ListView::Update nothing(list); }
  EXPECT_EQ(view.Told(), "");
  list.Select(0);
  EXPECT_EQ(view.Told(), "selection ");
}

}  // namespace
}  // namespace quenta::tests
