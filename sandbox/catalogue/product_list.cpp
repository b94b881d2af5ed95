#include "sandbox/catalogue/product_list.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "sandbox/catalogue/random.h"

namespace quenta::sandbox {
namespace {

constexpr int kFirstDependentId = 1001;
constexpr int kFirstInventedId = 10001;
constexpr int kFirstInventedCode = 20000;

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto end = text.find(separator);
    parts.push_back(Trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

// A decimal number with a point as an integer count of 10^-decimals.
int ParseDecimal(std::string_view text, int decimals) {
  const auto point = text.find('.');
  std::string digits(text.substr(0, point));
  std::string fraction(point == std::string_view::npos ? std::string_view{} : text.substr(point + 1));
  fraction.resize(static_cast<std::size_t>(decimals), '0');
  digits += fraction;
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    throw std::runtime_error("not a number: " + std::string(text));
  }
  return number;
}

template <typename Map>
const typename Map::mapped_type& Find(const Map& map, const typename Map::key_type& key, std::string_view name) {
  const auto found = map.find(key);
  if (found == map.end()) throw std::runtime_error("unknown " + std::string(name));
  return found->second;
}

std::vector<std::string> SplitCodes(std::string_view text) {
  const auto parts = Split(text, ',');
  return {parts.begin(), parts.end()};
}

// A product line with the attributes its dependent products are to have.
struct ListedProduct {
  Product product;
  std::vector<std::string> colour_codes;
  std::vector<std::string> size_codes;
};

class ListReader {
 public:
  explicit ListReader(const LookupIds& ids) : ids_(ids) {}

  std::vector<Product> Read(std::string_view list) {
    int number = 0;
    for (const std::string_view line : Split(list, '\n')) {
      ++number;
      if (line.empty() || line.front() == '#') continue;
      try {
        if (line.front() == '[') {
          ReadSection(line);
        } else {
          AddWithDependents(ReadProduct(line));
        }
      } catch (const std::runtime_error& error) {
        throw std::runtime_error("products.txt, line " + std::to_string(number) + ": " + error.what());
      }
    }
    return std::move(products_);
  }

 private:
  void ReadSection(std::string_view line) {
    section_ = Product();
    const auto end = line.find(']');
    if (end == std::string_view::npos) throw std::runtime_error("no end of section name");
    const auto names = Split(line.substr(1, end - 1), '>');
    section_.family_id = Find(ids_.families, std::string(names[0]), names[0]);
    if (names.size() > 1) {
      section_.subfamily_id = Find(ids_.subfamilies, {section_.family_id, std::string(names[1])}, names[1]);
    }
    for (const std::string_view setting : Split(line.substr(end + 1), ';')) {
      const auto colon = setting.find(':');
      const std::string_view key = setting.substr(0, colon);
      const std::string value(colon == std::string_view::npos ? setting : Trimmed(setting.substr(colon + 1)));
      if (key == "tipo") {
        section_.type_id = Find(ids_.types, value, value);
      } else if (key == "iva") {
        section_.vat = Find(ids_.vat_rates, value, value);
      } else if (key == "fornecedor") {
        section_.supplier_id = ParseDecimal(value, 0);
      } else if (key == "centro") {
        section_.cost_centre_id = Find(ids_.cost_centres, value, value);
      } else if (key == "isencao") {
        section_.exemption = Find(ids_.exemptions, value, value);
      } else {
        throw std::runtime_error("unknown setting " + std::string(key));
      }
    }
  }

  ListedProduct ReadProduct(std::string_view line) const {
    const auto fields = Split(line, '|');
    if (fields.size() < 4) throw std::runtime_error("a product needs code, name, brand and price");
    ListedProduct listed{section_, {}, {}};
    listed.product.code = fields[0];
    listed.product.name = fields[1];
    listed.product.brand = fields[2];
    listed.product.retail_cents = ParseDecimal(fields[3], 2);
    if (fields.size() > 4) {
      for (const std::string_view extra : Split(fields[4], ';')) ReadExtra(extra, listed);
    }
    return listed;
  }

  void ReadExtra(std::string_view extra, ListedProduct& listed) const {
    Product& product = listed.product;
    const auto blank = extra.find(' ');
    const std::string_view key = extra.substr(0, blank);
    const std::string value(blank == std::string_view::npos ? std::string_view{} : Trimmed(extra.substr(blank)));
    if (key == "cores") {
      listed.colour_codes = SplitCodes(value);
    } else if (key == "tamanhos") {
      listed.size_codes = SplitCodes(value);
    } else if (key == "cor") {
      product.colour = Find(ids_.colours, value, value);
    } else if (key == "tamanho") {
      product.size = Find(ids_.sizes, value, value);
    } else if (key == "medidas") {
      const auto sides = Split(value, 'x');
      if (sides.size() != 3) throw std::runtime_error("three measures are needed");
      product.height_mm = ParseDecimal(sides[0], 1);
      product.width_mm = ParseDecimal(sides[1], 1);
      product.depth_mm = ParseDecimal(sides[2], 1);
    } else if (key == "fornecedor") {
      product.supplier_id = ParseDecimal(value, 0);
    } else if (key == "obs") {
      product.notes = value;
    } else if (key == "descontinuado") {
      product.discontinued = true;
    } else if (key == "apagado") {
      product.deleted = true;
    } else if (key == "sem-movimentos") {
      product.moves = false;
    } else if (key == "quota") {
      product.quota = value;
    } else if (key == "tratamento") {
      product.treatment = value;
    } else if (key == "servico") {
      product.service = value;
    } else {
      throw std::runtime_error("unknown attribute " + std::string(key));
    }
  }

  void AddWithDependents(ListedProduct listed) {
    Product& main = listed.product;
    main.id = next_main_id_++;
    products_.push_back(main);
    if (listed.colour_codes.empty() && listed.size_codes.empty()) return;
    // An attribute that the list does not vary is that of the main product.
    const std::vector<std::string> none{""};
    for (const std::string& colour : listed.colour_codes.empty() ? none : listed.colour_codes) {
      for (const std::string& size : listed.size_codes.empty() ? none : listed.size_codes) {
        Product dependent = main;
        dependent.id = next_dependent_id_++;
        dependent.main_id = main.id;
        dependent.notes.clear();
        if (!colour.empty()) {
          dependent.colour = Find(ids_.colours, colour, colour);
          dependent.code += "-" + colour;
        }
        if (!size.empty()) {
          dependent.size = Find(ids_.sizes, size, size);
          dependent.code += "-" + size;
        }
        products_.push_back(std::move(dependent));
      }
    }
  }

  const LookupIds& ids_;
  Product section_;
  std::vector<Product> products_;
  int next_main_id_ = 1;
  int next_dependent_id_ = kFirstDependentId;
};

}  // namespace

std::vector<Product> ReadProducts(std::string_view list, const LookupIds& ids) {
  return ListReader(ids).Read(list);
}

void CompleteProducts(std::vector<Product>& products, int count, const LookupIds& ids, unsigned seed) {
  static constexpr const char* kThings[] = {"Caixa",   "Cesto",      "Suporte", "Conjunto", "Estojo",       "Painel",
                                            "Tapete",  "Cordão",     "Frasco",  "Bandeja",  "Escova",       "Puxador",
                                            "Cadeira", "Prateleira", "Pano",    "Lanterna", "Pulverizador", "Saco"};
  static constexpr const char* kKinds[] = {"em cortiça", "d'aço",     "em algodão", "de vime",      "dobrável",
                                           "em pinho",   "esmaltado", "com tampa",  "d'exterior",   "reforçado",
                                           "em linho",   "de latão",  "rústico",    "de segurança", "português"};
  static constexpr const char* kBrands[] = {"Lumarel", "Ferrovar", "Tecibela", "Ceramonte", "Papelume", "Regavale"};
  const auto wanted = static_cast<std::size_t>(count);
  if (products.size() > wanted) products.resize(wanted);
  products.reserve(wanted);

  const std::vector<std::pair<std::pair<int, std::string>, int>> subfamilies(ids.subfamilies.begin(),
                                                                             ids.subfamilies.end());
  Random random(seed);
  for (int number = 0; products.size() < wanted; ++number) {
    Product product;
    product.id = kFirstInventedId + number;
    product.code = std::to_string(kFirstInventedCode + number);
    // One draw a statement: the compiler chooses the order within one.
    product.name = random.OneOf(kThings);
    product.name.append(" ").append(random.OneOf(kKinds));
    product.name.append(" mod. ").append(std::to_string(random.Between(100, 999)));
    product.brand = random.OneOf(kBrands);
    const auto& [family_and_name, subfamily_id] = random.OneOf(subfamilies);
    product.family_id = family_and_name.first;
    product.subfamily_id = subfamily_id;
    product.supplier_id = random.Between(101, 115);
    product.type_id = ids.types.at("Artigo");
    product.cost_centre_id = ids.cost_centres.at("ARM");
    product.retail_cents = random.Between(50, 19999);
    product.vat = ids.vat_rates.at("NOR");
    product.discontinued = random.Percent(4);
    products.push_back(std::move(product));
  }
}

}  // namespace quenta::sandbox
