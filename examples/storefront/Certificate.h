// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace storefront {

using X509Pointer = std::unique_ptr<X509, decltype(&X509_free)>;
using KeyPointer = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

/// A server certificate for this host and the certificate authority of its own that signed it,
/// both made new and valid for a day. The server certificate names "localhost", the host name and
/// every address that the host has at the moment.
class Certificate final {
 public:
  /// Throws `std::runtime_error` if OpenSSL fails.
  Certificate();

  X509* server() const noexcept { return server_.get(); }
  EVP_PKEY* serverKey() const noexcept { return serverKey_.get(); }
  /// The authority in PEM form, for clients to verify against.
  std::string authorityPem() const;

 private:
  KeyPointer authorityKey_;
  KeyPointer serverKey_;
  X509Pointer authority_;
  X509Pointer server_;
};

}  // namespace storefront
