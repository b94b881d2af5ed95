#include "product/label_fit.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "base/text.h"
#include "product/rich_text_walk.h"

namespace quenta::product {
namespace {

constexpr char16_t kEllipsis = u'…';
constexpr int kTwipsPerHalfPoint = 10;
constexpr double kAutomaticLine = 1.15;  // height of a line of Arial over the font's size
constexpr double kTolerance = 0.98;      // programs round the widths of letters to their devices

// Advance widths of the characters from the blank to "~" in thousandths of the font's size.
constexpr short kRegular[] = {278,  278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278,
                              556,  556, 556, 556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556,
                              1015, 667, 667, 722, 722, 667, 611, 778, 722, 278, 500, 667, 556, 833, 722, 778,
                              667,  778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 278, 278, 278, 469, 556,
                              333,  556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833, 556, 556,
                              556,  556, 333, 500, 278, 556, 500, 722, 500, 500, 500, 334, 260, 334, 584};
constexpr short kBold[] = {278, 333, 474, 556, 556, 889, 722, 238, 333, 333, 389, 584, 278, 333, 278, 278,
                           556, 556, 556, 556, 556, 556, 556, 556, 556, 556, 333, 333, 584, 584, 584, 611,
                           975, 722, 722, 722, 722, 667, 611, 778, 722, 278, 556, 722, 611, 833, 722, 778,
                           667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 333, 278, 333, 584, 556,
                           333, 556, 611, 556, 611, 556, 333, 611, 611, 278, 278, 556, 278, 889, 611, 611,
                           611, 611, 389, 556, 333, 611, 556, 778, 556, 556, 500, 389, 280, 389, 584};
static_assert(std::size(kRegular) == '~' - ' ' + 1 && std::size(kBold) == std::size(kRegular));

// Letters with an accent count as the widest ones without, and what is neither as a square.
int WidthOf(char16_t unit, bool bold) {
  constexpr int kCapital = 778;
  constexpr int kSmall = 611;
  constexpr int kSquare = 1000;
  if (unit >= u' ' && unit <= u'~') return (bold ? kBold : kRegular)[unit - u' '];
  if (unit == u'\u00A0') return kRegular[0];
  const bool is_letter = unit >= 0xC0 && unit <= 0x17F;
  const bool is_wide = unit == u'Æ' || unit == u'æ' || unit == u'Œ' || unit == u'œ';
  if (!is_letter || is_wide) return kSquare;
  const std::string letter = base::FromUtf16({&unit, 1});
  return base::ToLower(letter) == letter ? kSmall : kCapital;
}

// Breaks a text into lines as it is read.
class Lines {
 public:
  Lines(int width, bool bold) : width_(width), bold_(bold) {}

  int count() const noexcept { return count_; }

  void Add(char16_t unit) {
    if (unit == u'\n' || unit == u'\r' || unit == u'\v') {
      Begin(0);
    } else if (unit == u' ') {
      // Blanks at a line's end stand beyond it.
      blanks_ += WidthOf(unit, bold_);
      word_ = 0;
    } else {
      const int letter = WidthOf(unit, bold_);
      word_ += letter;
      if (line_ + blanks_ + letter > width_) {
        // The word goes to the next line, but for one that has none of its own room there either.
        Begin(word_ > width_ ? letter : word_);
      } else {
        line_ += blanks_ + letter;
        blanks_ = 0;
      }
    }
  }

 private:
  void Begin(int used) {
    ++count_;
    line_ = used;
    word_ = used;
    blanks_ = 0;
  }

  int width_;
  bool bold_;
  int count_ = 1;
  int line_ = 0;    // what the last line holds
  int blanks_ = 0;  // behind it
  int word_ = 0;    // the word that is being read
};

// What rich text says of the place that it has come to.
struct Format {
  int half_points = 24;
  bool bold = false;
  int left = 0;  // twips from here on
  int right = 0;
  int before = 0;
  int after = 0;
  int line = 0;  // below zero: exactly; above: at least, or in 240ths of the automatic height
  bool line_is_multiple = false;
  bool in_table = false;

  void ResetParagraph() {
    Format plain;
    plain.half_points = half_points;
    plain.bold = bold;
    *this = plain;
  }
  void ResetCharacters() {
    half_points = Format().half_points;
    bold = false;
  }
  double LineHeight() const {
    const double automatic = half_points * kTwipsPerHalfPoint * kAutomaticLine;
    if (line < 0) return -line;
    return line_is_multiple && line > 0 ? automatic * line / 240 : std::max<double>(automatic, line);
  }
};

struct TableRow {
  int left = 0;
  int gap = 0;  // on either side of a cell's text
  int height = 0;
  std::vector<int> ends;  // right edges of the cells
};

class RoomReader {
 public:
  std::optional<LabelRoom> Room() const {
    const Format& format = formats_.back();
    if (!format.in_table || row_.height >= 0 || cell_ >= row_.ends.size()) return std::nullopt;
    const int begin = cell_ == 0 ? row_.left : row_.ends[cell_ - 1];
    const int height = -row_.height - format.before - format.after;
    return LabelRoom{row_.ends[cell_] - begin - 2 * row_.gap - format.left - format.right,
                     std::max(static_cast<int>(height / std::max(format.LineHeight(), 1.0)), 1), format.half_points,
                     format.bold};
  }
  void Group(int step) {
    if (step > 0) {
      formats_.push_back(formats_.back());
    } else if (formats_.size() > 1) {
      formats_.pop_back();
    }
  }
  // The parameter is nothing for a word that has none.
  void Word(std::string_view word, std::optional<int> parameter) {
    Format& format = formats_.back();
    const int number = parameter.value_or(0);
    const struct {
      std::string_view word;
      int& field;
    } measures[] = {{"fs", format.half_points}, {"li", format.left},  {"ri", format.right},
                    {"sb", format.before},      {"sa", format.after}, {"sl", format.line},
                    {"trleft", row_.left},      {"trgaph", row_.gap}, {"trrh", row_.height}};
    for (const auto& measure : measures) {
      if (measure.word == word) measure.field = number;
    }
    if (word == "b") format.bold = parameter.value_or(1) != 0;
    if (word == "slmult") format.line_is_multiple = number != 0;
    if (word == "intbl") format.in_table = true;
    if (word == "plain") format.ResetCharacters();
    if (word == "pard") format.ResetParagraph();
    if (word == "trowd") row_ = {};
    if (word == "cellx") row_.ends.push_back(number);
    if (word == "cell") ++cell_;
    if (word == "row") cell_ = 0;
  }

 private:
  std::vector<Format> formats_ = std::vector<Format>(1);
  TableRow row_;
  std::size_t cell_ = 0;
};

std::optional<int> ParameterAt(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

}  // namespace

std::vector<std::optional<LabelRoom>> RoomsOf(std::string_view label_template, std::size_t from,
                                              std::string_view placeholder) {
  std::vector<std::optional<LabelRoom>> rooms;
  RoomReader reader;
  Walk(
      label_template,
      [&](int step, std::size_t) {
        reader.Group(step);
        return true;
      },
      [&](std::string_view word, std::size_t at) {
        reader.Word(word, ParameterAt(label_template.substr(at + 1 + word.size())));
        return true;
      },
      [&](std::size_t at) {
        if (at >= from && label_template.substr(at).starts_with(placeholder)) rooms.push_back(reader.Room());
        return true;
      });
  return rooms;
}

std::string FitToRoom(std::string_view text, const LabelRoom& room) {
  const double font = std::max(room.half_points, 1) * kTwipsPerHalfPoint;
  const int width = static_cast<int>(std::max(room.width, 0) / font * 1000 * kTolerance);
  const std::u16string units = base::ToUtf16(base::ReplaceAll(text, "\r\n", "\n"));
  std::size_t fits = units.size();  // how much stands in the lines
  std::size_t fits_with_mark = 0;   // and how much with the mark behind it
  Lines lines(width, room.bold);
  for (std::size_t i = 0; i < units.size() && fits == units.size(); ++i) {
    Lines marked = lines;
    marked.Add(kEllipsis);
    if (marked.count() <= room.lines) fits_with_mark = i;
    lines.Add(units[i]);
    if (lines.count() > room.lines) fits = i;
  }
  if (fits == units.size()) return std::string(text);
  std::u16string cut = units.substr(0, fits_with_mark);
  if (!cut.empty() && cut.back() >= 0xD800 && cut.back() <= 0xDBFF) cut.pop_back();
  while (!cut.empty() && (cut.back() == u' ' || cut.back() == u'\n')) cut.pop_back();
  return base::FromUtf16(cut + kEllipsis);
}

}  // namespace quenta::product
