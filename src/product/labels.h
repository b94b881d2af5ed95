// Product labels: what stands on one, and sheets of them from a template.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quenta::product {

// Label templates mark what goes where by "<<nome>>", "<<codigo>>", "<<cor>>", "<<tamanho>>", "<<preco>>" and
// "<<barras>>", the code as a bar code. On a sheet, the n-th occurrence of each belongs to the n-th label; the template
// of one label shows the same label at all of them. A name that its place cannot hold ends in an ellipsis
// (label_fit.h).
inline constexpr const char* kLabelTemplate = "Etiqueta.doc";
inline constexpr const char* kSheetTemplate = "Etiquetas.doc";

// What stands on a label, as it is read.
struct ProductLabel {
  std::string nome{};
  std::string codigo{};
  std::string cor{};
  std::string tamanho{};
  std::string preco{};  // empty where there is no default price
};

// How many labels a template has: the occurrences of its most frequent placeholder.
std::size_t LabelsOnSheet(std::string_view label_template);

// The template of one label, filled. Error 5 when it has no place for one.
std::string FillLabel(std::string_view label_template, const ProductLabel& label);

// Which labels go where on sheets.
struct LabelRun {
  std::vector<ProductLabel> labels{};
  std::size_t copies = 1;          // of each label, one beside the other
  std::size_t first_position = 1;  // on the first sheet, from 1
};

// The template of a sheet with the run's labels, and with further pages of its kind when they need more than one.
// Positions without a label stay empty. Error 5 when the template has no place for a label.
std::string FillLabels(std::string_view label_template, const LabelRun& run);

// The codes that the template would print as bar codes and that cannot be one: their labels go without.
std::vector<std::string> CodesWithoutBars(std::string_view label_template, const LabelRun& run);

}  // namespace quenta::product
