// SPDX-License-Identifier: Apache-2.0
#include "examples/storefront/Catalogue.h"

#include <algorithm>
#include <array>
#include <random>
#include <string_view>

namespace storefront {
namespace {

constexpr std::size_t kProductsInPiece = 256;
constexpr std::array<std::string_view, 8> kKinds = {
    "Espresso", "Croissant", "Crème brûlée", "Mug", "Tea", "Sandwich & dip", "Lemonade", "Bagel"};
constexpr std::array<std::string_view, 6> kSizes = {"small",  "medium", "large",
                                                    "double", "family", "mini"};
constexpr std::array<std::string_view, 5> kOrigins = {"Lyon", "Brno", "Malmö", "Porto", "<own>"};

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string priceText(long cents) {
  const std::string fraction = std::to_string(100 + cents % 100);
  return std::to_string(cents / 100) + "." + fraction.substr(1);
}

std::string productXml(const Product& product) {
  return "  <product id=\"" + std::to_string(product.number) + "\" stock=\"" +
         std::to_string(product.stock) + "\">\n    <name>" + escaped(product.name) +
         "</name>\n    <price currency=\"EUR\">" + priceText(product.priceInCents) +
         "</price>\n  </product>\n";
}

}  // namespace

Catalogue::Catalogue(std::size_t productCount) {
  std::minstd_rand random(9630);  // NOLINT: the same catalogue in every run is the point
  const auto pick = [&random](const auto& list) {
    return std::string(list[random() % list.size()]);
  };
  products_.reserve(productCount);
  for (std::size_t i = 0; i < productCount; ++i) {
    products_.push_back({i + 1, pick(kKinds) + ", " + pick(kSizes) + ", " + pick(kOrigins),
                         static_cast<long>(random() % 20000), static_cast<int>(random() % 500)});
  }
}

std::size_t Catalogue::pieceCount() const noexcept {
  return (products_.size() + kProductsInPiece - 1) / kProductsInPiece + 2;
}

std::string Catalogue::xmlPiece(std::size_t index) const {
  if (index == 0) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalogue count=\"" +
           std::to_string(products_.size()) + "\">\n";
  }
  if (index + 1 == pieceCount()) return "</catalogue>\n";
  const std::size_t first = (index - 1) * kProductsInPiece;
  const std::size_t end = std::min(first + kProductsInPiece, products_.size());
  std::string piece;
  for (std::size_t i = first; i < end; ++i)
    piece += productXml(products_[i]);
  return piece;
}

}  // namespace storefront
