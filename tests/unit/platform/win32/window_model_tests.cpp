// What of the windows is plain arithmetic and text: layout, remembered places, drawings.
#include <gtest/gtest.h>

#include <map>

#include "controls/list_view.h"
#include "controls/text_field.h"
#include "platform/win32/glyphs.h"
#include "platform/win32/layout_engine.h"
#include "platform/win32/window_memory.h"

namespace quenta::tests {
namespace {

using platform::Rect;

platform::Metrics TestMetrics() {
  platform::Metrics metrics;
  metrics.text_width = [](const std::string& caption) { return static_cast<int>(caption.size()) * 6; };
  return metrics;
}

class LayoutTest : public testing::Test {
 protected:
  LayoutTest() {
    head.rows = {{{{&code, &code_label, 2}, {&name, &name_label, 8}, {&retired, nullptr, 2}}}};
    page.rows = {{{{&list, nullptr, 12}}, 5, true}};
    other_page.rows = {{{{&other_list, nullptr, 12}}, 9, true}, {{{&total, &total_label, 3}}}};
    layout.toolbar = &toolbar;
    layout.frames = {&head};
    layout.tabs = &tabs;
    layout.pages = {{"a", &page}, {"b", &other_page}};
    layout.buttons = {&ok, &cancel};
  }

  // Places by name; those inside frames are turned into places in the form.
  std::map<std::string, Rect> Places(int width, int height) const {
    std::map<std::string, Rect> places;
    const platform::Arrangement arrangement = platform::Arrange(layout, TestMetrics(), width, height);
    for (const auto& [control, place] : arrangement.controls) places[control->name()] = place;
    for (const auto& frame : arrangement.frames) {
      places[frame.frame->name()] = frame.place;
      for (const auto& [control, place] : frame.controls) {
        places[control->name()] = {frame.place.left + place.left, frame.place.top + place.top, place.width,
                                   place.height};
      }
    }
    return places;
  }

  controls::Toolbar toolbar{"toolbar", {}};
  controls::Frame head{"head"};
  controls::Label code_label{"code_label", "C"};
  controls::TextField code{"code"};
  controls::Label name_label{"name_label", "N"};
  controls::TextField name{"name"};
  controls::CheckBox retired{"retired", "R"};
  controls::TabStrip tabs{"tabs", {{"a", "A"}, {"b", "B"}}};
  controls::Frame page{"page"};
  controls::ListView list{"list", {}};
  controls::Frame other_page{"other_page"};
  controls::ListView other_list{"other_list", {}};
  controls::Label total_label{"total_label", "T"};
  controls::TextField total{"total"};
  controls::CommandButton ok{"ok", "OK"};
  controls::CommandButton cancel{"cancel", "A caption longer than a button"};
  controls::Layout layout;
};

TEST_F(LayoutTest, ControlsOfARowShareItsWidthAndItsBaseline) {
  const auto places = Places(900, 700);
  const platform::Metrics metrics = TestMetrics();
  EXPECT_EQ(places.at("code").left, metrics.margin);
  EXPECT_EQ(places.at("name").left, places.at("code").right() + metrics.column_gap);
  EXPECT_EQ(places.at("retired").right(), 900 - metrics.margin) << "twelve columns fill the row";
  EXPECT_EQ(places.at("name").top, places.at("code").top);
  EXPECT_EQ(places.at("retired").top, places.at("code").top) << "in line with the fields, not with the labels";
  EXPECT_EQ(places.at("code_label").bottom() + metrics.label_gap, places.at("code").top);
  EXPECT_NEAR(places.at("name").width, 4 * places.at("code").width, 40);
}

// At any size that is large enough: nothing overlaps, nothing is cut, and the lists take what is left over.
TEST_F(LayoutTest, EverythingHasItsRoomAtEverySize) {
  const auto least = platform::MinimumExtent(layout, TestMetrics());
  for (int height = least.height; height < least.height + 300; height += 37) {
    const auto places = Places(800, height);
    EXPECT_EQ(places.at("ok").bottom(), height - TestMetrics().margin);
    EXPECT_LT(places.at("head").bottom(), places.at("tabs").top);
    EXPECT_EQ(places.at("page"), places.at("other_page"));
    EXPECT_EQ(places.at("tabs").bottom(), places.at("page").top);
    EXPECT_LT(places.at("page").bottom(), places.at("ok").top);
    EXPECT_EQ(places.at("list").bottom() + TestMetrics().margin, places.at("page").bottom());
    EXPECT_EQ(places.at("total").bottom() + TestMetrics().margin, places.at("page").bottom());
    EXPECT_LT(places.at("other_list").bottom(), places.at("total_label").top);
    EXPECT_GT(places.at("cancel").width, places.at("ok").width);
    EXPECT_LT(places.at("ok").right(), places.at("cancel").left);
  }
}

TEST_F(LayoutTest, AListShrinksBeforeTheFieldsBelowItAreCut) {
  const auto least = platform::MinimumExtent(layout, TestMetrics());
  const auto places = Places(800, least.height - 80);
  EXPECT_EQ(places.at("total").bottom() + TestMetrics().margin, places.at("page").bottom());
  EXPECT_GT(places.at("other_list").height, 40);
}

TEST_F(LayoutTest, WhatShowsNothingLeavesItsRoomToTheRest) {
  controls::Label note{"note", "A note"};
  layout.note = &note;
  const auto with_note = Places(800, 700);
  note.set_caption("");
  const auto before = Places(800, 700);
  EXPECT_GT(before.at("list").height, with_note.at("list").height);
  head.set_visible(false);
  const auto after = Places(800, 700);
  EXPECT_EQ(after.count("head"), 0U);
  EXPECT_GT(after.at("list").height, before.at("list").height);
}

TEST(MovedInside, KeepsSizeWherePossibleAndAlwaysStaysInside) {
  const Rect area{0, 30, 1000, 700};
  EXPECT_EQ(platform::MovedInside({-50, 0, 400, 300}, area), (Rect{0, 30, 400, 300}));
  EXPECT_EQ(platform::MovedInside({900, 600, 400, 300}, area), (Rect{600, 430, 400, 300}));
  EXPECT_EQ(platform::MovedInside({10, 40, 4000, 3000}, area), area);
}

TEST(WindowMemory, KeepsWhatItWasToldAndNothingOfWhatItCannotRead) {
  platform::WindowMemory memory;
  memory.Remember(
      "frmMain",
      {{{-1200, 5, 900, 640}},
       {{"ListView2", {{200, 0, 90}, {}}}, {"ListView13", {{90, 230}, {1, true}}}, {"ListView3", {{}, {0, false}}}}});
  memory.Remember("frmStocks", {});
  EXPECT_EQ(platform::WindowMemory::Parse(memory.Serialise()), memory);
  const auto before_sorting =
      platform::WindowMemory::Parse("[frmMain]\r\nplace=1 2 3 4\r\ncolumns ListView13=90 230\r\n");
  EXPECT_EQ(before_sorting.Find("frmMain").lists.at("ListView13"), (platform::RememberedList{{90, 230}, {}}))
      << "a file of the time when lists could not be sorted";

  const struct {
    const char* text;
    const char* what;
  } damaged[] = {
      {"", "empty"},
      {"place=1 2 3 4\n", "before any form"},
      {"[frmMain]\nplace=1 2 3\n", "too few numbers"},
      {"[frmMain]\nplace=1 2 0 4\n", "no width"},
      {"[frmMain]\nplace=1 2 3 99999999999999999999\n", "a number out of range"},
      {"[frmMain]\nplace=1  2 3 4\ncolumns L=-1\ncolumns=4\nplace\n=\n", "stray text"},
      {"[frmMain]\nsort L=-1 0\nsort L=1\nsort L=1 0 0\nsort L=x 0\n", "no order"},
      {"[frmMain\nplace=1 2 3 4\n", "an open bracket"},
      {"\xFF\xFE[\0f", "another encoding"},
  };
  for (const auto& [text, what] : damaged) {
    const platform::WindowMemory read = platform::WindowMemory::Parse(text);
    EXPECT_FALSE(read.Find("frmMain").place.has_value()) << what;
    EXPECT_TRUE(read.Find("frmMain").lists.empty()) << what;
  }
}

TEST(Glyphs, EveryCommandHasADrawingOfItsOwnAtEverySize) {
  std::map<std::vector<std::uint32_t>, std::string> seen;
  for (const char* key : {"gravar", "apagar", "duplicar", "imprimir", "sair", "gerar", "adicionar", "remover",
                          "relatorio", "produto", "list1", "list2", "list3", "unknown"}) {
    for (const int size : {16, 24, 36, 48}) {
      const auto pixels = platform::RenderGlyph(key, size, {0x202020, 0x0066CC});
      ASSERT_EQ(pixels.size(), static_cast<std::size_t>(size * size));
      EXPECT_TRUE(seen.emplace(pixels, key).second) << key << " looks like " << seen[pixels];
      for (const std::uint32_t pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        ASSERT_LE(pixel >> 16 & 0xFF, alpha) << "colours are premultiplied";
        ASSERT_LE(pixel & 0xFF, alpha);
      }
    }
  }
}

}  // namespace
}  // namespace quenta::tests
