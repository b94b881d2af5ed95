#include "sandbox/odbc/code_page.h"

#include <algorithm>
#include <iterator>

#include "base/ansi.h"
#include "base/text.h"

namespace quenta::sandbox {
namespace {

struct BestFits {
  std::u16string_view letters;
  std::u16string_view fits;  // as long
};

// Microsoft's table of best fits for Windows-1252, whole but for the fullwidth forms. What combines, shows nothing or
// would change when a text editor normalises it is spelled by its number.
constexpr BestFits kBestFits[] = {
    {u"ĀāĂăĄąĆćĈĉĊċČčĎďĐđĒēĔĕĖėĘęĚěĜĝĞğĠġĢģĤĥĦħĨĩĪīĬĭĮįİıĴĵĶķĹĺĻļĽľŁłŃńŅņŇňŌōŎŏŐőŔŕŖŗŘřŚśŜŝŞşŢţŤťŦŧŨũŪūŬŭŮůŰűŲų",
     u"AaAaAaCcCcCcCcDdÐdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIiJjKkLlLlLlLlNnNnNnOoOoOoRrRrRrSsSsSsTtTtTtUuUuUuUuUuUu"},
    {u"ŴŵŶŷŹźŻżƀƉƑƗƚƟƠơƫƮƯưƶ\u01C0\u01C3ǍǎǏǐǑǒǓǔǕǖǗǘǙǚǛǜǞǟǤǥǦǧǨǩǪǫǬǭǰ",
     u"WwYyZzZzbÐƒIlOOotTUuz|!AaIiOoUuUuUuUuUuAaGgGgKkOoOoj"},
    {u"ɡʹʺ\u02BC˄\u02C8\u02C9ˊˋˍ˚\u0300\u0301\u0302\u0303\u0304\u0305\u0308\u030A\u030E\u0327\u0331\u0332",
     u"g'\"'^'¯´`_°`´^~¯¯¨°\"¸__"},
    {u"\u037EΓΘΣΦΩαβδεμπστφһ\u0589", u";GTSFOaßdeµpstfh:"},
    {u"\u066A\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2010\u2011‗\u2024\u2032‵⁄⁰⁴⁵⁶⁷⁸ⁿ₀₁₂₃₄₅₆₇₈₉₡₤₧",
     u"%       --=·'`/°45678n0123456789¢£P"},
    {u"ℂℇℊℋℌℍℎℐℑℒℓℕ℘ℙℚℛℜℝℤℨ\u212A\u212Bℬℭ℮ℯℰℱℳℴ", u"CEgHHHhIILlNPPQRRRZZKÅBCeeEFMo"},
    {u"∅\u2212∓\u2215\u2216∗∘∙√∞∣∩\u2236∼≈≡≤≥≪≫⋅⌂⌃⌐⌠⌡\u2329\u232A", u"Ø-±/\\*°·v8|n:~˜===«»·¦^¬()<>"},
    {u"\u2500│┌┐└┘├┤┬┴┼═║╒╓╔╕╖╗╘╙╚╛╜╝╞╟╠╡╢╣╤╥╦╧╨╩╪╫╬▀▄█▌▐░▒▓■☼❘",
     u"-¦+++++¦--+-¦++++++++++++¦¦¦¦¦¦------+++¯_¦¦¦¦¦¦¦¤|"},
    {u"\u3000〈〉《》〚〛・", u" <>«»[]·"},
};
static_assert(std::all_of(std::begin(kBestFits), std::end(kBestFits),
                          [](const BestFits& row) { return row.letters.size() == row.fits.size(); }));

char16_t BestFit(char16_t unit) {
  constexpr char16_t kFirstFullwidth = 0xFF01;
  constexpr char16_t kLastFullwidth = 0xFF5E;
  if (unit < 0x100) return unit;
  if (unit >= kFirstFullwidth && unit <= kLastFullwidth) return static_cast<char16_t>(unit - kFirstFullwidth + u'!');
  // Each half of a pair is a character of its own here.
  if (unit >= 0xD800 && unit <= 0xDFFF) return u'?';
  for (const auto& [letters, fits] : kBestFits) {
    if (const std::size_t at = letters.find(unit); at != std::u16string_view::npos) return fits[at];
  }
  return unit;
}

}  // namespace

std::string Narrowed(std::string_view text) {
  std::u16string units = base::ToUtf16(text);
  for (char16_t& unit : units) unit = BestFit(unit);
  return base::FromAnsi(base::ToAnsi(base::FromUtf16(units)));
}

}  // namespace quenta::sandbox
