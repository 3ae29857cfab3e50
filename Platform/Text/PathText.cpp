// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/PathText.h"

namespace rvf {
namespace {

void appendWithSingleSeparators(std::string_view text, std::string& path) {
  for (const char c : text)
    if (c != '/' || !path.ends_with('/')) path += c;
}

}  // namespace

std::string appendPathComponent(std::string_view path, std::string_view component) {
  std::string result;
  result.reserve(path.size() + 1 + component.size());
  appendWithSingleSeparators(path, result);
  if (!result.empty() && !component.empty()) appendWithSingleSeparators("/", result);
  appendWithSingleSeparators(component, result);
  if (result.size() > 1 && result.ends_with('/')) result.pop_back();
  return result;
}

}  // namespace rvf
