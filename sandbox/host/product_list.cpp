#include "sandbox/host/product_list.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/text.h"

namespace quenta::sandbox::host {
namespace {

// The plain letters of U+00E0 to U+00FF and of U+0100 to U+017F; a blank where a letter has none and stays itself.
constexpr std::string_view kLatin1 = "aaaaaa ceeeeiiii nooooo ouuuuy y";
constexpr std::string_view kLatinExtended =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiiijjkkklllllll"
    "lllnnnnnnnnnoooooooorrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(kLatin1.size() == 32 && kLatinExtended.size() == 128);

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Codes are mostly numbers, and a person expects 9 before 10. Negative, zero or positive.
int CompareCodes(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (IsDigit(a.front()) && IsDigit(b.front())) {
      const auto number = [](std::string_view& text) {
        text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
        std::size_t digits = 0;
        while (digits < text.size() && IsDigit(text[digits])) ++digits;
        return std::exchange(text, text.substr(digits)).substr(0, digits);
      };
      const std::string_view number_a = number(a);
      const std::string_view number_b = number(b);
      if (number_a.size() != number_b.size()) return number_a.size() < number_b.size() ? -1 : 1;
      if (const int order = number_a.compare(number_b); order != 0) return order;
      continue;
    }
    if (a.front() != b.front()) {
      return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front()) ? -1 : 1;
    }
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace

std::string FoldText(std::string_view text) {
  const std::string lower = base::ToLower(text);
  std::string folded;
  folded.reserve(lower.size());
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const auto lead = static_cast<unsigned char>(lower[i]);
    if (lead < 0xC3 || lead > 0xC5 || i + 1 == lower.size()) {
      folded += lower[i];
      continue;
    }
    const unsigned letter = (lead & 0x1Fu) << 6 | (static_cast<unsigned char>(lower[i + 1]) & 0x3Fu);
    const char plain = letter >= 0x100 ? kLatinExtended[letter - 0x100] : letter >= 0xE0 ? kLatin1[letter - 0xE0] : ' ';
    if (plain == ' ') {
      folded.append(lower, i, 2);
    } else {
      folded += plain;
    }
    ++i;
  }
  return folded;
}

void ProductList::Assign(std::vector<Product> products) {
  entries_.clear();
  entries_.reserve(products.size());
  for (Product& product : products) {
    Entry entry;
    entry.codigo = FoldText(product.codigo);
    entry.nome = FoldText(product.nome);
    entry.familia = FoldText(product.familia);
    entry.product = std::move(product);
    entries_.push_back(std::move(entry));
  }
  SortBy(column_, descending_);
}

void ProductList::SetSearch(std::string_view text) {
  words_.clear();
  const std::string folded = FoldText(text);
  for (std::size_t start = 0; start < folded.size();) {
    const std::size_t end = std::min(folded.find(' ', start), folded.size());
    if (end > start) words_.push_back(folded.substr(start, end - start));
    start = end + 1;
  }
  Select();
}

void ProductList::ShowDeleted(bool show) {
  show_deleted_ = show;
  Select();
}

void ProductList::SortBy(Column column, bool descending) {
  column_ = column;
  descending_ = descending;
  std::stable_sort(entries_.begin(), entries_.end(), [this](const Entry& a, const Entry& b) { return Before(a, b); });
  Select();
}

std::size_t ProductList::total() const noexcept {
  if (show_deleted_) return entries_.size();
  return static_cast<std::size_t>(
      std::count_if(entries_.begin(), entries_.end(), [](const Entry& entry) { return !entry.product.is_deleted; }));
}

std::optional<std::size_t> ProductList::RowOf(std::int32_t produto_id) const {
  for (std::size_t row = 0; row < shown_.size(); ++row) {
    if ((*this)[row].produto_id == produto_id) return row;
  }
  return std::nullopt;
}

std::optional<std::size_t> ProductList::RowThatBegins(std::string_view text, std::size_t start) const {
  const std::string folded = FoldText(text);
  for (std::size_t step = 0; step < shown_.size(); ++step) {
    const std::size_t row = (start + step) % shown_.size();
    const Entry& entry = entries_[shown_[row]];
    if (entry.codigo.starts_with(folded) || entry.nome.starts_with(folded)) return row;
  }
  return std::nullopt;
}

const Product* ProductList::Find(std::string_view code_or_id) const {
  const Product* deleted = nullptr;
  if (!code_or_id.starts_with('#')) {
    const std::string code = FoldText(code_or_id);
    for (const Entry& entry : entries_) {
      if (entry.codigo != code) continue;
      if (!entry.product.is_deleted) return &entry.product;
      deleted = &entry.product;
    }
  }
  if (deleted != nullptr) return deleted;
  const std::string_view digits = code_or_id.substr(code_or_id.starts_with('#') ? 1 : 0);
  std::int32_t produto_id = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), produto_id);
  if (error != std::errc() || end != digits.data() + digits.size()) return nullptr;
  for (const Entry& entry : entries_) {
    if (entry.product.produto_id == produto_id) return &entry.product;
  }
  return nullptr;
}

bool ProductList::Matches(const Entry& entry) const {
  if (entry.product.is_deleted && !show_deleted_) return false;
  return std::all_of(words_.begin(), words_.end(), [&](const std::string& word) {
    return entry.codigo.find(word) != std::string::npos || entry.nome.find(word) != std::string::npos ||
           entry.familia.find(word) != std::string::npos;
  });
}

bool ProductList::Before(const Entry& a, const Entry& b) const {
  int order = 0;
  switch (column_) {
    case Column::kCodigo:
      break;
    case Column::kNome:
      order = a.nome.compare(b.nome);
      break;
    case Column::kFamilia:
      order = a.familia.compare(b.familia);
      break;
    case Column::kPreco: {
      const std::optional<double>& price_a = a.product.preco;
      const std::optional<double>& price_b = b.product.preco;
      if (price_a.has_value() != price_b.has_value()) return price_a.has_value();
      if (price_a) order = *price_a < *price_b ? -1 : *price_a > *price_b ? 1 : 0;
      break;
    }
  }
  if (order != 0) return descending_ ? order > 0 : order < 0;
  const int codes = CompareCodes(a.codigo, b.codigo);
  return column_ == Column::kCodigo && descending_ ? codes > 0 : codes < 0;
}

void ProductList::Select() {
  shown_.clear();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (Matches(entries_[i])) shown_.push_back(i);
  }
}

}  // namespace quenta::sandbox::host
