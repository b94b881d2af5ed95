#include "controls/list_view.h"

#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
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
