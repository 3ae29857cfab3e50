// SPDX-License-Identifier: Apache-2.0
#include "examples/storefront/Storefront.h"

#include <httplib.h>

#include <chrono>
#include <stdexcept>

namespace storefront {

Storefront::Storefront(const Catalogue& catalogue, const Certificate& certificate)
    : catalogue_(catalogue),
      server_(std::make_unique<httplib::SSLServer>(certificate.server(), certificate.serverKey())) {
  if (!server_->is_valid()) throw std::runtime_error("TLS cannot be set up");
  // Two servers on one port would share its connections: the default of this library.
  server_->set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  serveCatalogue();
}

Storefront::~Storefront() {
  server_->stop();
  if (thread_.joinable()) thread_.join();
}

void Storefront::serveCatalogue() {
  server_->Post("/catalogue", [this](const httplib::Request&, httplib::Response& response) {
    response.set_chunked_content_provider(
        "application/xml",
        [this, piece = std::size_t{0}](std::size_t, httplib::DataSink& sink) mutable {
          const std::string xml = catalogue_.xmlPiece(piece++);
          if (!sink.write(xml.data(), xml.size())) return false;
          if (piece == catalogue_.pieceCount()) sink.done();
          return true;
        });
  });
}

bool Storefront::bind(std::uint16_t port) {
  return server_->bind_to_port("::", port) || server_->bind_to_port("0.0.0.0", port);
}

std::optional<std::uint16_t> Storefront::start(std::uint16_t first, std::uint16_t last) {
  std::uint32_t port = first;
  while (port <= last && !bind(static_cast<std::uint16_t>(port)))
    ++port;
  if (port > last) return std::nullopt;
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  // Stopping a server that does not run yet would be forgotten.
  while (!server_->is_running())
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return static_cast<std::uint16_t>(port);
}

}  // namespace storefront
