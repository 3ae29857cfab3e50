// SPDX-License-Identifier: Apache-2.0
//
// KeyedArchiveProbe GRAPH: writes an archive of the named graph to standard output.
// KeyedArchiveProbe read: describes the root of the archive on standard input. Exit status 65, and
// what is wrong on standard error, if it cannot be read.

#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/ArchivedNode.h"

namespace rvf {
namespace {

id list(std::vector<id> objects) {
  return NSArray::arrayWithObjects(std::move(objects));
}

id leaves() {
  return list({box("text"), box("é 😀"), box(-5), box(~0UL), box(0.5), box(true), box(false),
               NSData::dataWithBytes(std::string_view("\0\xFF", 2)), box("")});
}

id collections() {
  const auto changing = NSMutableArray::array();
  changing->addObject(box("inner"));
  return list({NSDictionary::dictionaryWithEntries({{"key", box("value")}}),
               NSSet::setWithObjects({box("member")}), std::make_shared<NSDate>(1.5),
               NSNull::null(), changing, list({})});
}

id sharedObjects() {
  const id shared = NSDictionary::dictionaryWithEntries({{"a", box(1)}});
  return list({shared, shared, list({shared})});
}

id circle() {
  const auto a = ArchivedNode::nodeWithName("a");
  const auto b = ArchivedNode::nodeWithName("b");
  a->next = b;
  b->next = a;
  b->parent = a;
  return a;
}

id lonelyChild() {
  static const auto kParent = ArchivedNode::nodeWithName("parent");
  const auto child = ArchivedNode::nodeWithName("child");
  child->parent = kParent;
  return child;
}

id million() {
  std::vector<id> objects;
  for (long i = 0; i < 1'000'000; ++i)
    objects.push_back(box(i));
  return list(std::move(objects));
}

int describe() {
  constexpr int kDataError = 65;
  const std::string input((std::istreambuf_iterator<char>(std::cin)), {});
  Ref<NSError> error;
  const id root =
      NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(NSData::dataWithBytes(input), &error);
  if (error) {
    std::cerr << error->userInfo()->description() << "\n";
    return kDataError;
  }
  std::cout << (root ? root->description() : "absent") << "\n";
  return 0;
}

int write(const std::string& name) {
  const std::map<std::string, id (*)()> graphs = {
      {"leaves", &leaves},
      {"collections", &collections},
      {"shared", &sharedObjects},
      {"circle", &circle},
      {"lonely child", &lonelyChild},
      {"million", &million},
      {"absent", [] { return id(); }},
  };
  const auto graph = graphs.find(name);
  if (graph == graphs.end()) return 64;
  const id root = graph->second();
  std::cout << NSKeyedArchiver::archivedDataWithRootObject(root)->characters() << std::flush;
  if (auto* node = dynamic_cast<ArchivedNode*>(root.get())) node->next = nullptr;  // the circle
  return std::cout ? 0 : 1;
}

}  // namespace
}  // namespace rvf

int main(int argc, char** argv) {
  const std::string name = argc > 1 ? argv[1] : "";
  return name == "read" ? rvf::describe() : rvf::write(name);
}
