// SPDX-License-Identifier: Apache-2.0
#include "examples/storefront/Certificate.h"

#include <ifaddrs.h>
#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <set>
#include <stdexcept>

#include "Platform/Network/SocketAddress.h"

namespace storefront {
namespace {

constexpr long kLifetimeSeconds = 24L * 60 * 60;

void require(bool succeeded, const char* what) {
  if (!succeeded) throw std::runtime_error(std::string("certificate: ") + what);
}

KeyPointer newKey() {
  KeyPointer key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
  require(key != nullptr, "no key");
  return key;
}

std::string hostName() {
  std::array<char, 256> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "localhost";
}

/// "DNS:localhost,IP:127.0.0.1,…": the names that a client may use for this host.
std::string alternativeNames() {
  std::set<std::string> names = {"DNS:localhost", "DNS:" + hostName(), "IP:127.0.0.1", "IP:::1"};
  ifaddrs* list = nullptr;
  require(getifaddrs(&list) == 0, "no interface addresses");
  for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
    if (!entry->ifa_addr) continue;
    if (const auto address =
            rvf::SocketAddress::fromSockaddr(entry->ifa_addr, sizeof(sockaddr_storage))) {
      names.insert("IP:" + address->addressText());
    }
  }
  freeifaddrs(list);
  std::string text;
  for (const std::string& name : names)
    text += (text.empty() ? "" : ",") + name;
  return text;
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
  require(extension != nullptr, "bad extension");
  const bool added = X509_add_ext(certificate, extension, -1) == 1;
  X509_EXTENSION_free(extension);
  require(added, "extension not added");
}

X509Pointer newCertificate(const char* commonName, EVP_PKEY* key) {
  X509Pointer certificate(X509_new(), &X509_free);
  require(certificate != nullptr, "no memory");
  std::array<unsigned char, 8> serial{};
  require(RAND_bytes(serial.data(), static_cast<int>(serial.size())) == 1, "no random numbers");
  serial[0] &= 0x7F;
  BIGNUM* number = BN_bin2bn(serial.data(), static_cast<int>(serial.size()), nullptr);
  BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate.get()));
  BN_free(number);
  X509_set_version(certificate.get(), X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -60);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), kLifetimeSeconds);
  X509_set_pubkey(certificate.get(), key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
  return certificate;
}

}  // namespace

Certificate::Certificate()
    : authorityKey_(newKey()),
      serverKey_(newKey()),
      authority_(newCertificate("Storefront demo authority", authorityKey_.get())),
      server_(newCertificate("Storefront demo", serverKey_.get())) {
  X509_set_issuer_name(authority_.get(), X509_get_subject_name(authority_.get()));
  addExtension(authority_.get(), authority_.get(), NID_basic_constraints, "critical,CA:TRUE");
  addExtension(authority_.get(), authority_.get(), NID_key_usage, "critical,keyCertSign");
  require(X509_sign(authority_.get(), authorityKey_.get(), EVP_sha256()) > 0, "not signed");

  X509_set_issuer_name(server_.get(), X509_get_subject_name(authority_.get()));
  addExtension(server_.get(), authority_.get(), NID_basic_constraints, "critical,CA:FALSE");
  addExtension(server_.get(), authority_.get(), NID_ext_key_usage, "serverAuth");
  addExtension(server_.get(), authority_.get(), NID_subject_alt_name, alternativeNames());
  require(X509_sign(server_.get(), authorityKey_.get(), EVP_sha256()) > 0, "not signed");
}

std::string Certificate::authorityPem() const {
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
  require(memory && PEM_write_bio_X509(memory.get(), authority_.get()) == 1, "no PEM form");
  char* text = nullptr;
  const long length = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace storefront
