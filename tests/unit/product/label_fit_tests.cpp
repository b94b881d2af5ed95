#include "product/label_fit.h"

#include "base/text.h"
#include "gtest/gtest.h"
#include "product/labels.h"
#include "support/rich_text_reader.h"

namespace quenta::tests {
namespace {

// Which names are cut is the template's to say: by the cell's width and exact height, and by the font.
TEST(LabelFit, ANameThatDoesNotFitEndsInAnEllipsis) {
  const std::string w(40, 'W');
  const std::string n = std::string(35, 'n') + " " + std::string(35, 'n');
  const struct {
    const char* place;
    std::string name;
    std::string shown;  // "…" for the name cut somewhere
  } cases[] = {
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", "Azeite virgem extra", "Azeite virgem extra"},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w, w},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w + w, "…"},
      {R"(\trrh-400\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\trgaph100\cellx3515\pard\intbl\sl-205\li200\ri200{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205\sb100{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\cellx9000\cellx12515\pard\intbl\sl-205{\b\fs17 x\cell #}\cell\row)", w + w, "…"},
      {R"(\trrh-410\cellx9000\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w + w, w + w},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs8 }{\fs17 #}\cell\row)", n, n},
      {R"(\trrh410\cellx3515\pard\intbl{\b\fs17 #}\cell\row)", w + w, w + w},
      {R"(\trrh-410\cellx3515\pard\intbl a\cell\row\pard\par #)", w + w, w + w},
  };
  for (const auto& [place, name, shown] : cases) {
    const std::string label_template = R"({\rtf1\trowd)" + base::ReplaceAll(place, "#", "<<nome>>") + "}";
    const std::string text = ReadRichText(product::FillLabel(label_template, {.nome = name})).text;
    const bool cut = text.find("…") != std::string::npos;
    EXPECT_EQ(cut, shown == "…") << place << ": " << text;
    if (!cut) {
      EXPECT_NE(text.find(shown), std::string::npos) << place << ": " << text;
    }
  }
  const product::LabelRoom room{.width = 3515, .lines = 2, .half_points = 17, .bold = true};
  const std::string name = "Máquina de café automática com moinho integrado e depósito duplo de água, aço inoxidável";
  EXPECT_EQ(product::FitToRoom(name, room),
            "Máquina de café automática com moinho integrado e depósito duplo de água, aç…");
  EXPECT_EQ(product::FitToRoom("", room), "");
  EXPECT_EQ(product::FitToRoom("a\r\nb\r\nc", room), "a\nb…");
  EXPECT_EQ(product::FitToRoom("🍷🍷", {.width = 300, .lines = 1, .half_points = 17}), "…") << "no half of a character";
}

}  // namespace
}  // namespace quenta::tests
