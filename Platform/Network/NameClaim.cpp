// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NameClaim.h"

#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

namespace rvf {
namespace {

/// Every name that is published or rests, with the moment of its withdrawal.
struct Names {
  std::mutex mutex;
  std::unordered_map<std::string, std::optional<NameClaim::Clock::time_point>> withdrawnAt;
};

Names& names() {
  static auto* const kNames = new Names;  // claims may outlive every static object
  return *kNames;
}

std::string lowercased(std::string_view text) {
  std::string result(text);
  for (char& character : result) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
  }
  return result;
}

std::string keyOf(const ServiceIdentity& identity) {
  const std::string domain = identity.domain.empty() ? "local." : identity.domain;
  return lowercased(identity.name + '\0' + identity.type + '\0' + domain);
}

}  // namespace

std::unique_ptr<NameClaim> NameClaim::take(const ServiceIdentity& identity, Names wanted,
                                           Clock::time_point now) {
  std::string key = keyOf(identity);
  auto& all = names();
  const std::lock_guard lock(all.mutex);
  std::erase_if(all.withdrawnAt,
                [now](const auto& entry) { return entry.second && now - *entry.second >= kRest; });
  const auto known = all.withdrawnAt.find(key);
  if (known != all.withdrawnAt.end() && (!known->second || wanted == Names::chosen)) return nullptr;
  all.withdrawnAt[key] = std::nullopt;
  return std::unique_ptr<NameClaim>(new NameClaim(std::move(key)));
}

NameClaim::NameClaim(std::string key) : key_(std::move(key)) {}

NameClaim::~NameClaim() {
  auto& all = names();
  const std::lock_guard lock(all.mutex);
  all.withdrawnAt[key_] = Clock::now();
}

}  // namespace rvf
