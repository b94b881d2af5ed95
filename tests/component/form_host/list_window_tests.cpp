// Lists: many rows marked at once, sorting, copying and menus.
#include <windows.h>

#include <commctrl.h>

#include "base/text.h"
#include "component/form_host/form_fixture.h"

namespace quenta::tests {
namespace {

class ListWindowTest : public FormFixture {
 protected:
  // Shows the history with this many rows, "Entidade 0" of 0 units and so on.
  void ShowHistory(int rows) {
    Show();
    form->TabStrip1.SelectKey("compras");
    Pump();
    AddRows(rows);
    FocusOn("ListView13");
  }

  void AddRows(int rows) {
    controls::ListView& list = form->ListView13;
    const controls::ListView::Update update(list);
    for (int i = list.Count(); i < rows; ++i) {
      const std::string number = base::DecimalText(i);
      list.Add("#" + number, "2024").sub_items = {"Entidade " + number, number};
    }
  }

  static std::string Text(const std::vector<int>& rows) {
    std::string text;
    for (const int row : rows) text += (text.empty() ? "" : " ") + base::DecimalText(row);
    return text;
  }

  // The rows that are marked, on the screen and in the model alike; the end of a long text is cut off.
  std::string Marked() const {
    const HWND list = Window("ListView13");
    std::vector<int> shown;
    for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;) shown.push_back(row);
    EXPECT_EQ(Text(shown), Text(form->ListView13.MarkedRows()));
    EXPECT_EQ(ListView_GetNextItem(list, -1, LVNI_FOCUSED), form->ListView13.selected());
    return Text(form->ListView13.MarkedRows()).substr(0, 20);
  }

  POINT MiddleOf(const char* name, int row) const {
    RECT bounds{};
    ListView_GetItemRect(Window(name), row, &bounds, LVIR_LABEL);
    return {bounds.left + 5, (bounds.top + bounds.bottom) / 2};
  }
};

class MarkingTest : public ListWindowTest, public testing::WithParamInterface<int> {};

// In long lists by other ways than in short ones: the user must not see a difference.
TEST_P(MarkingTest, RowsAreMarkedAsEverywhere) {
  const int last = GetParam() - 1;
  const std::string end = base::DecimalText(last);
  ShowHistory(GetParam());
  form->ListView13.Select(0);
  EXPECT_EQ(Marked(), "0");
  const struct {
    int key;
    std::vector<int> modifiers;
    std::string marked;
    int chosen;
  } steps[] = {
      {VK_DOWN, {}, "1", 1},
      {VK_DOWN, {VK_SHIFT}, "1 2", 2},
      {VK_DOWN, {VK_SHIFT}, "1 2 3", 3},
      {VK_UP, {VK_SHIFT}, "1 2", 2},
      {VK_DOWN, {VK_CONTROL}, "1 2", 3},
      {VK_DOWN, {VK_CONTROL}, "1 2", 4},
      {VK_SPACE, {VK_CONTROL}, "1 2 4", 4},
      {VK_UP, {}, "3", 3},
      {VK_HOME, {}, "0", 0},
      {VK_UP, {}, "0", 0},
      {VK_HOME, {}, "0", 0},
      {'A',
       {VK_CONTROL},
       Text([&] {
         std::vector<int> all;
         for (int i = 0; i <= last; ++i) all.push_back(i);
         return all;
       }())
           .substr(0, 20),
       0},
      {VK_DOWN, {}, "1", 1},
      {VK_END, {}, end, last},
      {VK_DOWN, {}, end, last},
      {VK_PRIOR, {}, "", -1},
  };
  for (const auto& [key, modifiers, marked, chosen] : steps) {
    Press(key, modifiers);
    const std::string now = Marked();
    if (chosen < 0) continue;  // depends on the size of the window
    EXPECT_EQ(now, marked) << "after key " << key;
    EXPECT_EQ(form->ListView13.selected(), chosen) << "after key " << key;
  }
  Press(VK_HOME);
  Click("ListView13", MiddleOf("ListView13", 2));
  EXPECT_EQ(Marked(), "2");
  PostMessageW(Window("ListView13"), WM_LBUTTONUP, 0, 0);
  const POINT fourth = MiddleOf("ListView13", 4);
  PostMessageW(Window("ListView13"), WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(fourth.x, fourth.y));
  PostMessageW(Window("ListView13"), WM_LBUTTONUP, MK_SHIFT, MAKELPARAM(fourth.x, fourth.y));
  Pump();
  EXPECT_EQ(Marked(), "2 3 4");
  Click("ListView13", MiddleOf("ListView13", 3), true);
  EXPECT_EQ(Marked(), "2 3 4") << "the menu is for all of them";
  EXPECT_EQ(form->ListView13.selected(), 3);
}

INSTANTIATE_TEST_SUITE_P(ShortAndLong, MarkingTest, testing::Values(8, 2500));

TEST_F(ListWindowTest, AClickOnAHeaderSortsAndMarksStayWithTheirRows) {
  ShowHistory(12);
  form->ListView13.Select(9);
  const HWND list = Window("ListView13");
  const HWND header = ListView_GetHeader(list);
  const auto click = [&](int column) {
    RECT bounds{};
    Header_GetItemRect(header, column, &bounds);
    const LPARAM at = MAKELPARAM((bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2);
    PostMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(header, WM_LBUTTONUP, 0, at);
    Pump();
  };
  const auto arrows = [&] {
    std::string text;
    for (int column = 0; column < 3; ++column) {
      HDITEMW item{};
      item.mask = HDI_FORMAT;
      SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
      text += (item.fmt & HDF_SORTUP) != 0 ? '^' : (item.fmt & HDF_SORTDOWN) != 0 ? 'v' : '-';
    }
    return text;
  };
  EXPECT_EQ(arrows(), "---");
  click(2);
  EXPECT_EQ(arrows(), "--^");
  EXPECT_EQ(Marked(), "9");
  click(2);
  EXPECT_EQ(arrows(), "--v");
  EXPECT_EQ(Marked(), "2") << "row 9 of 12, from the other end";
  EXPECT_EQ(form->ListView13.At(2).key, "#9");
  FocusOn("ListView13");
  Press(VK_DOWN, {VK_SHIFT});
  EXPECT_EQ(Marked(), "2 3") << "a range begins at the row that is chosen";
  wchar_t text[40] = L"";
  ListView_GetItemText(list, 0, 1, text, 40);
  EXPECT_STREQ(text, L"Entidade 11");
  Press('2', {VK_CONTROL});
  EXPECT_EQ(arrows(), "-^-") << "by the keyboard";
  Press('4', {VK_CONTROL});
  EXPECT_EQ(arrows(), "-^-") << "there is no such column";
  form->ListView13.Clear();
  click(0);
  EXPECT_EQ(arrows(), "^--") << "the order of what will be listed";
  EXPECT_EQ(GetWindowLongW(Window("ListView2"), GWL_STYLE) & LVS_NOSORTHEADER, LVS_NOSORTHEADER);
}

TEST_F(ListWindowTest, RowsAreCopiedByBothKeysInEveryList) {
  ShowHistory(3);
  EXPECT_EQ(EventsOf([&] { Press('C', {VK_CONTROL}); }), "ListView13 key 17, ListView13 key 67, ListView13 copy");
  EXPECT_EQ(EventsOf([&] { Press(VK_INSERT, {VK_CONTROL}); }), "ListView13 key 17, ListView13 key 45, ListView13 copy");
  form->TabStrip1.SelectKey("precos");
  FocusOn("ListView2");
  Press('C', {VK_CONTROL});
  EXPECT_TRUE(form->Happened("ListView2 copy"));
  Press('A', {VK_CONTROL});
  EXPECT_EQ(ListView_GetSelectedCount(Window("ListView2")), form->ListView2.selected() >= 0 ? 1U : 0U);
}

// The menu's place on the screen, and what came of it, when something opens it and a key is pressed in it.
TEST_F(ListWindowTest, AMenuOpensWhereItIsAskedFor) {
  Show();
  FocusOn("ListView2");
  form->ListView2.Select(1);
  const HWND list = Window("ListView2");
  RECT row{};
  ListView_GetItemRect(list, 1, &row, LVIR_LABEL);
  MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&row), 2);
  const POINT below{row.left, row.bottom};
  POINT third = MiddleOf("ListView2", 2);
  POINT third_on_screen = third;
  ClientToScreen(list, &third_on_screen);

  POINT opened{};
  const auto events_with = [&](const std::function<void()>& ask, std::vector<int> keys) {
    int times_seen = 0;
    const Meanwhile press([&] {
      const HWND menu = FindWindowW(L"#32768", nullptr);
      if (menu == nullptr || !IsWindowVisible(menu)) return times_seen > 0;
      RECT place{};
      GetWindowRect(menu, &place);
      opened = {place.left, place.top};
      constexpr int kStillOpen = 8;
      if (++times_seen == kStillOpen) keys = {VK_ESCAPE};
      if (times_seen == 1 || times_seen == kStillOpen) {
        for (const int key : keys) SendKeys(key);
      }
      return times_seen == kStillOpen;
    });
    return EventsOf(ask);
  };
  const struct {
    const char* what;
    std::function<void()> ask;
    POINT place;
    int chosen;
  } ways[] = {
      {"menu key", [&] { Press(VK_APPS); }, below, 1},
      {"Shift+F10", [&] { Press(VK_F10, {VK_SHIFT}); }, below, 1},
      {"right button",
       [&] {
         SetCursorPos(third_on_screen.x, third_on_screen.y);
         Click("ListView2", third, true);
       },
       third_on_screen, 2},
  };
  for (const auto& [what, ask, place, chosen] : ways) {
    form->ListView2.Select(1);
    const std::string events = events_with(ask, {VK_UP, VK_RETURN});
    EXPECT_NE(events.find("mnProdutosPredef"), std::string::npos) << what << ": " << events;
    EXPECT_NEAR(opened.x, place.x, 4) << what;
    EXPECT_NEAR(opened.y, place.y, 4) << what;
    EXPECT_EQ(form->ListView2.selected(), chosen) << what;
    EXPECT_EQ(events_with(ask, {VK_ESCAPE}).find("mn"), std::string::npos) << what;
  }
  EXPECT_EQ(events_with(ways[0].ask, {VK_DOWN, VK_RETURN}).find("mnNada"), std::string::npos)
      << "a greyed entry does nothing";
  EXPECT_TRUE(IsWindow(window));

  form->ListView2.Select(-1);
  events_with(ways[0].ask, {VK_ESCAPE});
  EXPECT_GE(form->ListView2.selected(), 0) << "the menu is that of a row";
  Click("ListView2", {third.x, third.y + 60}, false);
  form->ListView2.Clear();
  for (const auto& way : ways) events_with(way.ask, {VK_UP, VK_RETURN});
  SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
  EXPECT_EQ(form->ListView2.selected(), -1);
}

}  // namespace
}  // namespace quenta::tests
