#include "platform/win32/window_memory.h"

#include <charconv>

#include "base/text.h"

namespace quenta::platform {
namespace {

// [frmMain]
// place=100 80 900 640
// columns ListView13=90 230 140
// sort ListView13=0 1
constexpr std::string_view kPlace = "place";
constexpr std::string_view kColumns = "columns ";  // then the list's name
constexpr std::string_view kSort = "sort ";        // column from 0, and 1 for descending
constexpr int kLargest = 100000;                   // nothing on a screen is larger

// Nothing unless the whole text is numbers with one blank between them.
std::optional<std::vector<int>> ParseNumbers(std::string_view text) {
  std::vector<int> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    int number = 0;
    const auto [next, error] = std::from_chars(at, end, number);
    if (error != std::errc{} || number < -kLargest || number > kLargest) return std::nullopt;
    numbers.push_back(number);
    if (next == end) return numbers;
    if (*next != ' ') return std::nullopt;
    at = next + 1;
  }
}

std::string JoinNumbers(const std::vector<int>& numbers) {
  std::string text;
  for (const int number : numbers) {
    if (!text.empty()) text += ' ';
    text += base::DecimalText(number);
  }
  return text;
}

void TakeEntry(RememberedForm& form, std::string_view name, std::string_view text) {
  const std::optional<std::vector<int>> numbers = ParseNumbers(text);
  if (!numbers) return;
  if (name == kPlace && numbers->size() == 4 && (*numbers)[2] > 0 && (*numbers)[3] > 0) {
    form.place = {(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
  } else if (name.starts_with(kColumns)) {
    for (const int width : *numbers) {
      if (width < 0) return;
    }
    form.lists[std::string(name.substr(kColumns.size()))].widths = *numbers;
  } else if (name.starts_with(kSort) && numbers->size() == 2 && (*numbers)[0] >= 0) {
    form.lists[std::string(name.substr(kSort.size()))].sort = {(*numbers)[0], (*numbers)[1] != 0};
  }
}

}  // namespace

WindowMemory WindowMemory::Parse(std::string_view text) {
  WindowMemory memory;
  RememberedForm* form = nullptr;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with('[')) {
      form = line.ends_with(']') ? &memory.forms_[std::string(line.substr(1, line.size() - 2))] : nullptr;
      continue;
    }
    const std::size_t equals = line.find('=');
    if (form != nullptr && equals != std::string_view::npos) {
      TakeEntry(*form, line.substr(0, equals), line.substr(equals + 1));
    }
  }
  return memory;
}

std::string WindowMemory::Serialise() const {
  std::string text;
  for (const auto& [name, form] : forms_) {
    text += "[" + name + "]\r\n";
    if (form.place) {
      const RememberedForm::Place& place = *form.place;
      text += std::string(kPlace) + "=" + JoinNumbers({place.left, place.top, place.width, place.height}) + "\r\n";
    }
    for (const auto& [list, record] : form.lists) {
      if (!record.widths.empty()) text += std::string(kColumns) + list + "=" + JoinNumbers(record.widths) + "\r\n";
      if (record.sort.column < 0) continue;
      text += std::string(kSort) + list + "=" + JoinNumbers({record.sort.column, record.sort.descending}) + "\r\n";
    }
  }
  return text;
}

const RememberedForm& WindowMemory::Find(const std::string& form) const {
  static const RememberedForm kNothing;
  const auto found = forms_.find(form);
  return found != forms_.end() ? found->second : kNothing;
}

}  // namespace quenta::platform
