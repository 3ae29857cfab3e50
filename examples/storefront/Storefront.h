// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <thread>

#include "examples/storefront/Catalogue.h"
#include "examples/storefront/Certificate.h"

namespace httplib {
class SSLServer;
}

namespace storefront {

/// The shop's HTTPS server, in a thread of its own. "POST /catalogue" answers the catalogue's XML
/// in chunks, compressed with gzip for clients that accept it.
class Storefront final {
 public:
  Storefront(const Catalogue& catalogue, const Certificate& certificate);
  ~Storefront();
  Storefront(const Storefront&) = delete;
  Storefront& operator=(const Storefront&) = delete;

  /// Binds a port, the first free one from `first` to `last`, on all addresses, and starts
  /// serving. Absent if none is free.
  std::optional<std::uint16_t> start(std::uint16_t first, std::uint16_t last);

 private:
  void serveCatalogue();
  bool bind(std::uint16_t port);

  const Catalogue& catalogue_;
  std::unique_ptr<httplib::SSLServer> server_;
  std::thread thread_;
};

}  // namespace storefront
