// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/DescribeCommand.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSArray.h"
#include "RVFoundation/RuntimeServices/NSObject-RVFProperties.h"
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct DescribeOptions {
  std::string className;
  bool asJson = false;
};

using Json = nlohmann::ordered_json;

/// A name and what stands behind it.
using Line = std::pair<std::string, std::string>;

void addUnlessEmpty(Json& object, const char* key, std::string_view value) {
  if (!value.empty()) object[key] = value;
}

Json jsonOf(const Property& property) {
  const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
  Json object = {{"name", property.name}, {"attributes", property.attributes}};
  addUnlessEmpty(object, "type", info.type);
  addUnlessEmpty(object, "getter", info.getter);
  addUnlessEmpty(object, "setter", info.setter);
  addUnlessEmpty(object, "ivar", info.ivar);
  object["readonly"] = info.readonly;
  object["dynamic"] = info.dynamic;
  return object;
}

std::vector<std::string> protocolNames(Class aClass) {
  std::vector<std::string> names;
  for (const Protocol protocol : class_copyProtocolList(aClass))
    names.emplace_back(protocol_getName(protocol));
  return names;
}

std::vector<Line> propertyLines(Class aClass) {
  std::vector<Line> lines;
  for (const Property& property : class_copyPropertyList(aClass))
    lines.emplace_back(property.name, property.attributes);
  return lines;
}

std::vector<Line> ivarLines(Class aClass) {
  std::vector<Line> lines;
  const Ref<NSArray> ivars = RVF_ivars(aClass);
  for (const id& object : ivars->objects()) {
    const auto ivar = std::static_pointer_cast<RVFClassIvarDescriptor>(object);
    lines.emplace_back(ivar->name(), ivar->encodedType());
  }
  return lines;
}

std::vector<Line> methodLines(Class aClass) {
  std::vector<Line> lines;
  for (const Method& method : class_copyMethodList(aClass))
    lines.emplace_back(NSStringFromSelector(method.selector), method.implementation.typeEncoding());
  return lines;
}

Json jsonOf(const std::vector<Line>& lines, const char* nameKey) {
  Json list = Json::array();
  for (const auto& [name, types] : lines)
    list.push_back({{nameKey, name}, {"types", types}});
  return list;
}

Json jsonOf(Class aClass) {
  Json object = {{"name", class_getName(aClass)}, {"superclass", nullptr}};
  if (const Class superclass = class_getSuperclass(aClass)) {
    object["superclass"] = class_getName(superclass);
  }
  object["protocols"] = protocolNames(aClass);
  object["properties"] = Json::array();
  for (const Property& property : class_copyPropertyList(aClass))
    object["properties"].push_back(jsonOf(property));
  object["ivars"] = jsonOf(ivarLines(aClass), "name");
  object["methods"] = jsonOf(methodLines(aClass), "selector");
  return object;
}

void printSection(std::string_view title, const std::vector<Line>& lines) {
  if (lines.empty()) return;
  std::size_t width = 0;
  for (const auto& [name, text] : lines)
    width = std::max(width, name.size());
  std::cout << title << "\n";
  for (const auto& [name, text] : lines)
    std::cout << "  " << name << std::string(width - name.size() + 2, ' ') << text << "\n";
}

void printText(Class aClass) {
  std::cout << class_getName(aClass);
  if (const Class superclass = class_getSuperclass(aClass)) {
    std::cout << " : " << class_getName(superclass);
  }
  const char* separator = " <";
  const std::vector<std::string> protocols = protocolNames(aClass);
  for (const std::string& name : protocols)
    std::cout << std::exchange(separator, ", ") << name;
  std::cout << (protocols.empty() ? "\n" : ">\n");
  printSection("properties", propertyLines(aClass));
  printSection("instance variables", ivarLines(aClass));
  printSection("methods", methodLines(aClass));
}

ExitCode describeCommand(const DescribeOptions& options) {
  const Class aClass = objc_getClass(options.className);
  if (!aClass) {
    return report({ExitCode::dataError, "there is no class named \"" + options.className + "\""},
                  options.asJson);
  }
  if (options.asJson) {
    std::cout << jsonOf(aClass).dump() << "\n";
  } else {
    printText(aClass);
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addDescribeCommand(CommandLine& line) {
  const auto options = std::make_shared<DescribeOptions>();
  CLI::App& command =
      line.addCommand("describe", "Print the properties, instance variables and methods of a class",
                      [options] { return describeCommand(*options); });
  command.add_option("CLASS", options->className, "For example RVFStaticServer")->required();
  addJsonFlag(command, options->asJson);
}

}  // namespace rvf::tool
