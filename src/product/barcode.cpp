#include "product/barcode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <numeric>
#include <utility>

#include "base/text.h"

namespace quenta::product {
namespace {

// The symbol's characters by value: widths of three bars and three gaps in turn, of four and three for the stop.
constexpr std::array<std::string_view, 107> kPatterns{
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312", "132212", "221213", "221312",
    "231212", "112232", "122132", "122231", "113222", "123122", "123221", "223211", "221132", "221231", "213212",
    "223112", "312131", "311222", "321122", "321221", "312212", "322112", "322211", "212123", "212321", "232121",
    "111323", "131123", "131321", "112313", "132113", "132311", "211313", "231113", "231311", "112133", "112331",
    "132131", "113123", "113321", "133121", "313121", "211331", "231131", "213113", "213311", "213131", "311123",
    "311321", "331121", "312113", "312311", "332111", "314111", "221411", "431111", "111224", "111422", "121124",
    "121421", "141122", "141221", "112214", "112412", "122114", "122411", "142112", "142211", "241211", "221114",
    "413111", "241112", "134111", "111242", "121142", "121241", "114212", "124112", "124211", "411212", "421112",
    "421211", "212141", "214121", "412121", "111143", "111341", "131141", "114113", "114311", "411113", "411311",
    "113141", "114131", "311141", "411131", "211412", "211214", "211232", "2331112"};

constexpr int kToC = 99;
constexpr int kToB = 100;
constexpr int kStartB = 104;
constexpr int kStartC = 105;
constexpr int kStop = 106;
constexpr int kCheckModulus = 103;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The values of the symbol's characters from the start to the last one of the text.
std::vector<int> Encode(std::string_view text) {
  // Characters that the rest of the text takes from each position on, in set B and in set C.
  const std::size_t size = text.size();
  std::vector<std::size_t> in_b(size + 1);
  std::vector<std::size_t> in_c(size + 1);
  const auto pair_at = [&](std::size_t i) { return i + 1 < size && IsDigit(text[i]) && IsDigit(text[i + 1]); };
  for (std::size_t i = size; i-- > 0;) {
    const std::size_t stay_b = 1 + in_b[i + 1];
    const std::size_t stay_c = pair_at(i) ? 1 + in_c[i + 2] : stay_b + 1;
    in_b[i] = std::min(stay_b, stay_c + 1);
    in_c[i] = std::min(stay_c, stay_b + 1);
  }
  bool c = in_c[0] < in_b[0];
  std::vector<int> values{c ? kStartC : kStartB};
  for (std::size_t i = 0; i < size;) {
    const bool by_pair = pair_at(i) && (c ? 1 + in_c[i + 2] == in_c[i] : 2 + in_c[i + 2] == in_b[i]);
    if (by_pair != c) values.push_back(by_pair ? kToC : kToB);
    c = by_pair;
    if (c) {
      values.push_back((text[i] - '0') * 10 + (text[i + 1] - '0'));
      i += 2;
    } else {
      values.push_back(text[i] - ' ');
      ++i;
    }
  }
  return values;
}

int CheckValue(const std::vector<int>& values) {
  int sum = values[0];
  for (std::size_t i = 1; i < values.size(); ++i) sum += static_cast<int>(i) * values[i];
  return sum % kCheckModulus;
}

// --- The picture
// ------------------------------------------------------------------------------------------------------

constexpr int kQuietModules = 10;
constexpr int kMostTwips = 3515;  // 62 mm; 1440 twips are an inch
constexpr int kHeightTwips = 624;
// In tenths of a twip: three dots of a printer with 300 dots to the inch where there is room for them, five dots with
// 600, two dots with 300.
constexpr int kModuleWidths[] = {144, 120, 96};

// Units of the drawing in a module: bars end on whole units, and a reader that draws their borders changes nothing.
constexpr int kModuleUnits = 50;
constexpr int kHeightUnits = 2000;

// A Windows metafile as rich text holds it: 16-bit words, lowest byte first, in hexadecimal digits.
class Metafile {
 public:
  void Record(int function, std::initializer_list<int> parameters) {
    const std::size_t words = 3 + parameters.size();
    longest_ = std::max(longest_, words);
    Long(words);
    Word(function);
    for (const int parameter : parameters) Word(parameter);
  }
  std::string Finish(int objects) {
    Record(0, {});
    const std::string records = std::move(hex_);
    hex_.clear();
    constexpr int kInMemory = 1;
    constexpr std::size_t kHeaderWords = 9;
    Word(kInMemory);
    Word(kHeaderWords);
    Word(0x0300);  // version
    Long(kHeaderWords + records.size() / 4);
    Word(objects);
    Long(longest_);
    Word(0);
    return hex_ + records;
  }

 private:
  void Word(int value) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto word = static_cast<std::uint16_t>(value);
    for (const int shift : {4, 0, 12, 8}) hex_ += kDigits[static_cast<std::size_t>(word >> shift) & 15U];
  }
  void Long(std::size_t value) {
    Word(static_cast<int>(value & 0xFFFF));
    Word(static_cast<int>(value >> 16));
  }

  std::string hex_;
  std::size_t longest_ = 0;
};

std::string DrawBars(const std::vector<int>& widths, int modules) {
  constexpr int kSetMapMode = 0x0103;
  constexpr int kAnisotropic = 8;
  constexpr int kSetWindowOrg = 0x020B;
  constexpr int kSetWindowExt = 0x020C;
  constexpr int kCreatePen = 0x02FA;
  constexpr int kNoPen = 5;
  constexpr int kCreateBrush = 0x02FC;
  constexpr int kSelectObject = 0x012D;
  constexpr int kRectangle = 0x041B;
  Metafile file;
  file.Record(kSetMapMode, {kAnisotropic});
  file.Record(kSetWindowOrg, {0, 0});
  file.Record(kSetWindowExt, {kHeightUnits, modules * kModuleUnits});
  file.Record(kCreatePen, {kNoPen, 0, 0, 0, 0});
  file.Record(kSelectObject, {0});
  file.Record(kCreateBrush, {0, 0, 0, 0});  // solid black
  file.Record(kSelectObject, {1});
  int at = kQuietModules;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const int end = at + widths[i];
    // Bottom, right, top, left.
    if (i % 2 == 0) file.Record(kRectangle, {kHeightUnits, end * kModuleUnits, 0, at * kModuleUnits});
    at = end;
  }
  return file.Finish(2);
}

// Rich text wants a metafile's size in hundredths of a millimetre, and the size to show in twips.
std::string Hundredths(int twips) {
  return base::DecimalText(twips * 2540 / 1440);
}

}  // namespace

std::optional<std::vector<int>> Code128(std::string_view text) {
  if (text.empty() || std::any_of(text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; })) {
    return std::nullopt;
  }
  std::vector<int> values = Encode(text);
  values.push_back(CheckValue(values));
  values.push_back(kStop);
  std::vector<int> widths;
  for (const int value : values) {
    for (const char width : kPatterns[static_cast<std::size_t>(value)]) widths.push_back(width - '0');
  }
  return widths;
}

std::optional<std::string> BarcodePicture(std::string_view text) {
  const auto widths = Code128(text);
  if (!widths) return std::nullopt;
  const int modules = std::accumulate(widths->begin(), widths->end(), 2 * kQuietModules);
  for (const int module : kModuleWidths) {
    const int twips = modules * module / 10;
    if (twips > kMostTwips) continue;
    return "{\\pict\\wmetafile8\\picw" + Hundredths(twips) + "\\pich" + Hundredths(kHeightTwips) + "\\picwgoal" +
           base::DecimalText(twips) + "\\pichgoal" + base::DecimalText(kHeightTwips) + " " +
           DrawBars(*widths, modules) + "}";
  }
  return std::nullopt;
}

}  // namespace quenta::product
