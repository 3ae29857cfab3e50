// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace storefront {

struct Product {
  std::size_t number;
  std::string name;
  long priceInCents;
  int stock;
};

/// The shop's products, made up from a fixed seed so that every run serves the same ones.
class Catalogue final {
 public:
  explicit Catalogue(std::size_t productCount);

  std::size_t productCount() const noexcept { return products_.size(); }

  /// The catalogue's XML document comes in pieces, piece 0 the head, the last one the end. A
  /// piece is some tens of kilobytes.
  std::size_t pieceCount() const noexcept;
  std::string xmlPiece(std::size_t index) const;

 private:
  std::vector<Product> products_;
};

}  // namespace storefront
