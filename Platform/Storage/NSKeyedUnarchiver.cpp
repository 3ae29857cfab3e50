// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSKeyedUnarchiver.h"

#include <algorithm>
#include <any>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Storage/ArchiveReference.h"
#include "Platform/Storage/BinaryPropertyListReader.h"
#include "Platform/Storage/KeyedArchiveForm.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSKeyedUnarchiver::classObject);

template <class T>
Ref<T> entryOf(const NSDictionary& dictionary, std::string_view key) {
  return std::dynamic_pointer_cast<T>(dictionary.objectForKey(key));
}

/// A new object of exactly this class; absent if it cannot be unarchived.
id instanceOf(Class aClass) {
  static const SEL kAlloc("alloc");
  const Method* allocation = aClass->ownMethod(kAlloc);
  if (!allocation) return nullptr;
  ClassReceiver receiver(aClass);
  return allocation->implementation.call<id>(receiver, kAlloc);
}

}  // namespace

/// The archive, and what has been made of it so far.
class NSKeyedUnarchiver::Graph final {
 public:
  /// Absent, with `problem` saying why, if the root is none of an archive.
  static std::unique_ptr<Graph> graphOfRoot(const id& root, std::string& problem) {
    const auto dictionary = std::dynamic_pointer_cast<NSDictionary>(root);
    if (!dictionary || dictionary->textForKey(kArchiveArchiverKey) != kArchiver) {
      problem = "no keyed archive";
      return nullptr;
    }
    const auto version = entryOf<NSNumber>(*dictionary, kArchiveVersionKey);
    auto top = entryOf<NSDictionary>(*dictionary, kArchiveTopKey);
    auto objects = entryOf<NSArray>(*dictionary, kArchiveObjectsKey);
    if (!version || version->integerValue() != kArchiveVersion || !top || !objects) {
      problem = "a keyed archive of another version, or without objects";
      return nullptr;
    }
    return std::unique_ptr<Graph>(new Graph(std::move(top), std::move(objects)));
  }

  ~Graph() = default;
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  void setUnarchiver(NSKeyedUnarchiver& unarchiver) { unarchiver_ = &unarchiver; }
  const Ref<NSError>& error() const noexcept { return error_; }

  std::nullptr_t fail(const std::string& problem) {
    if (!error_) error_ = propertyListError(NSCoderReadCorruptError, problem);
    return nullptr;
  }

  /// Fails after the latest object from the top could not be made.
  void giveUp(const std::string& problem) {
    fail(problem);
    discardLatest();
  }

  bool contains(std::string_view key) const {
    return !error_ && current_->objectForKey(archiveKey(key)) != nullptr;
  }

  id object(std::string_view key) {
    if (depth_ > 0) return referredTo(key);
    ++latest_;
    const bool hadFailed = error_ != nullptr;
    id object = referredTo(key);
    if (error_ && !hadFailed) discardLatest();
    return object;
  }

  /// Null if there is no number.
  Ref<NSNumber> number(std::string_view key) {
    const id value = valueForKey(key);
    if (!value) return nullptr;
    auto number = std::dynamic_pointer_cast<NSNumber>(value);
    return number ? number : fail("no number under " + quoted(key));
  }

 private:
  enum class State : std::uint8_t { unseen, open, done };
  struct Slot {
    State state = State::unseen;
    std::uint32_t madeFor = 0;  // which of the objects that were asked for from outside
    id object;                  // already known while open, if what it leads to may have it
    std::uint64_t cost = kUnbounded;
  };

  /// What hashing a collection that leads back to itself would cost. Costs are in steps: one an
  /// object, however often it is shared, and one more for every 64 bytes of text or data.
  static constexpr std::uint64_t kUnbounded = std::uint64_t{1} << 62U;
  static constexpr std::uint64_t kHashingAllowance = std::uint64_t{1} << 24U;
  static constexpr std::size_t kBytesInAStep = 64;

  Graph(Ref<NSDictionary> top, Ref<NSArray> objects)
      : objects_(std::move(objects)), current_(std::move(top)), slots_(objects_->count()) {}

  static std::string quoted(std::string_view key) { return "\"" + std::string(key) + "\""; }

  /// Circles of collections would keep one another alive, and nobody gets to know those of an
  /// object that could not be made. What earlier calls answered belongs to their callers.
  void discardLatest() {
    for (const Slot& slot : slots_) {
      if (slot.madeFor != latest_) continue;
      if (auto* array = dynamic_cast<NSMutableArray*>(slot.object.get())) array->removeAllObjects();
      auto* dictionary = dynamic_cast<NSMutableDictionary*>(slot.object.get());
      if (dictionary) dictionary->removeAllObjects();
    }
  }

  id referredTo(std::string_view key) {
    const id value = valueForKey(key);
    if (!value) return nullptr;
    const auto* reference = dynamic_cast<const ArchiveReference*>(value.get());
    return reference ? objectAt(reference->number()) : fail("no reference under " + quoted(key));
  }

  id valueForKey(std::string_view key) const {
    return error_ ? nullptr : current_->objectForKey(archiveKey(key));
  }

  id objectAt(std::uint64_t number) {
    if (number == 0 || error_) return nullptr;
    if (number >= slots_.size()) return fail("a reference to no object");
    Slot& slot = slots_[number];
    const bool isKnown = slot.state == State::done || slot.object;
    if (!isKnown && slot.state == State::open) {
      return fail("an object that cannot contain itself does");
    }
    if (!isKnown) {
      slot.state = State::open;
      slot.madeFor = latest_;
      id object = make(objects_->objectAtIndex(number), slot);
      if (!error_) slot.object = std::move(object);
      slot.state = State::done;
    }
    cost_ = std::min(cost_ + slot.cost, kUnbounded);
    return error_ ? nullptr : slot.object;
  }

  id make(const id& archived, Slot& slot) {
    const auto values = std::dynamic_pointer_cast<NSDictionary>(archived);
    if (!values) return leafOf(archived, slot);
    const auto* reference =
        dynamic_cast<const ArchiveReference*>(values->objectForKey(kArchiveClassKey).get());
    const Class aClass = reference ? classAt(reference->number()) : nullptr;
    if (!aClass) return fail("an object of no class");
    if (depth_ == kDeepestArchive)
      return fail("more than 1,000 objects lead to one another in a row");
    const auto outer = std::exchange(current_, values);
    const auto outerCost = std::exchange(cost_, 1);
    ++depth_;
    const ScopeExit left([&] {
      current_ = outer;
      cost_ = outerCost;
      --depth_;
    });
    id object = makeOfClass(aClass, slot);
    const bool goesByIdentity = object == slot.object && slot.cost == 1;
    if (!goesByIdentity) slot.cost = cost_;
    return object;
  }

  id leafOf(const id& archived, Slot& slot) {
    const std::string* text = textOfObject(*archived);
    const auto* data = dynamic_cast<const NSData*>(archived.get());
    if (!text && !data && !dynamic_cast<const NSNumber*>(archived.get())) {
      return fail("something that is no object of an archive");
    }
    slot.cost = 1 + (text ? text->size() : data ? data->length() : 0) / kBytesInAStep;
    return archived;
  }

  /// Null if the class is not known.
  Class classAt(std::uint64_t number) {
    if (number >= slots_.size()) return fail("a reference to no class");
    const auto [known, isNew] = classes_.try_emplace(number, nullptr);
    if (!isNew) return known->second;
    const auto* values = dynamic_cast<const NSDictionary*>(objects_->objectAtIndex(number).get());
    const auto name = values ? values->textForKey(kArchiveClassNameKey) : std::nullopt;
    if (!name) return fail("a class without a name");
    known->second = objc_getClass(*name);
    return known->second ? known->second : fail("no class is called " + quoted(*name));
  }

  id makeOfClass(Class aClass, Slot& slot) {
    if (aClass == NSArray::classObject()) return makeArray();
    if (aClass == NSMutableArray::classObject()) return makeMutableArray(slot);
    if (aClass == NSDictionary::classObject()) return makeDictionary();
    if (aClass == NSMutableDictionary::classObject()) return makeMutableDictionary(slot);
    if (aClass == NSSet::classObject()) return makeSet();
    if (aClass == NSDate::classObject()) return makeDate();
    if (aClass == NSNull::classObject()) return NSNull::null();
    return makeCoded(aClass, slot);
  }

  /// The list of references under the key.
  Ref<NSArray> referencesForKey(std::string_view key) {
    auto references = entryOf<NSArray>(*current_, key);
    return references ? references : fail("no list under " + quoted(key));
  }

  /// The object at this position of a list; absent only if that fails.
  id element(const NSArray& references, std::size_t position) {
    const auto* reference =
        dynamic_cast<const ArchiveReference*>(references.objectAtIndex(position).get());
    if (!reference) return fail("an element that is no reference");
    id object = objectAt(reference->number());
    return object ? object : fail("an absent element");
  }

  /// An element that is about to be hashed. Shared collections could make that last for ever, and
  /// those that lead back to themselves would overflow the stack.
  id hashedElement(const NSArray& references, std::size_t position) {
    const std::uint64_t others = std::exchange(cost_, 0);
    id object = element(references, position);
    hashed_ = std::min(hashed_ + cost_, kUnbounded);
    cost_ = std::min(others + cost_, kUnbounded);
    if (hashed_ <= kHashingAllowance + 4 * slots_.size()) return object;
    return fail("keys, or elements of sets, that would take too long to compare");
  }

  /// The objects of a list, got one by one from `get`.
  std::optional<std::vector<id>> elements(id (Graph::*get)(const NSArray&, std::size_t)) {
    const auto references = referencesForKey(kArchivedObjectsKey);
    if (!references) return std::nullopt;
    std::vector<id> objects;
    objects.reserve(references->count());
    for (std::size_t i = 0; i < references->count(); ++i) {
      objects.push_back((this->*get)(*references, i));
      if (!objects.back()) return std::nullopt;
    }
    return objects;
  }

  id makeArray() {
    auto objects = elements(&Graph::element);
    return objects ? NSArray::arrayWithObjects(*std::move(objects)) : nullptr;
  }

  id makeSet() {
    const auto objects = elements(&Graph::hashedElement);
    return objects ? NSSet::setWithObjects(*objects) : nullptr;
  }

  id makeMutableArray(Slot& slot) {
    const auto array = NSMutableArray::array();
    slot.object = array;
    const auto references = referencesForKey(kArchivedObjectsKey);
    for (std::size_t i = 0; references && i < references->count(); ++i) {
      id object = element(*references, i);
      if (!object) return nullptr;
      array->addObject(std::move(object));
    }
    return array;
  }

  /// Adds the entries to a dictionary that may have been handed out already.
  bool addEntries(NSMutableDictionary& dictionary) {
    const auto keys = referencesForKey(kArchivedKeysKey);
    const auto values = keys ? referencesForKey(kArchivedObjectsKey) : nullptr;
    if (!values) return false;
    if (keys->count() != values->count()) {
      fail("not as many keys as values");
      return false;
    }
    std::vector<id> hashed;  // all keys first, because they were written so
    hashed.reserve(keys->count());
    for (std::size_t i = 0; i < keys->count(); ++i) {
      hashed.push_back(hashedElement(*keys, i));
      if (!hashed.back()) return false;
    }
    for (std::size_t i = 0; i < values->count(); ++i) {
      id value = element(*values, i);
      if (!value) return false;
      dictionary.setObject(std::move(value), hashed[i]);
    }
    return true;
  }

  id makeDictionary() {
    const auto dictionary = NSMutableDictionary::dictionary();
    return addEntries(*dictionary) ? dictionary->copy() : nullptr;
  }

  id makeMutableDictionary(Slot& slot) {
    const auto dictionary = NSMutableDictionary::dictionary();
    slot.object = dictionary;
    return addEntries(*dictionary) ? dictionary : nullptr;
  }

  id makeDate() {
    const auto seconds = number(kArchivedTimeKey);
    return seconds ? NSDate::dateWithTimeIntervalSinceReferenceDate(seconds->doubleValue())
                   : fail("a date without time");
  }

  id makeCoded(Class aClass, Slot& slot) {
    static const SEL kInit("initWithCoder:");
    const id object = class_respondsToSelector(aClass, kInit) ? instanceOf(aClass) : nullptr;
    if (!object) {
      return fail("the class " + std::string(class_getName(aClass)) + " cannot be unarchived");
    }
    slot.object = object;
    slot.cost = 1;
    const std::any coder(id(refTo(unarchiver_)));
    const std::any result = sendWithArguments(*object, kInit, {&coder, 1});
    return result.has_value() ? objectFromAny(result) : object;
  }

  NSKeyedUnarchiver* unarchiver_ = nullptr;
  const Ref<NSArray> objects_;
  Ref<NSDictionary> current_;  // the values of what is being decoded
  std::vector<Slot> slots_;
  std::unordered_map<std::uint64_t, Class> classes_;
  std::size_t depth_ = 0;
  std::uint32_t latest_ = 0;  // counts the objects that were asked for from outside
  std::uint64_t cost_ = 0;    // of what has been decoded for the object that is being decoded
  std::uint64_t hashed_ = 0;  // the cost of all that has been hashed
  Ref<NSError> error_;
};

id NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(const Ref<NSData>& data,
                                                      Ref<NSError>* error) {
  const auto unarchiver = initForReadingFromData(data, error);
  if (!unarchiver) return nullptr;
  id root;
  try {
    root = unarchiver->decodeObjectForKey("root");
  } catch (const NSException& exception) {
    unarchiver->graph_->giveUp(exception.what());
  }
  if (!unarchiver->error()) return root;
  reportError(error, [&] { return unarchiver->error(); });
  return nullptr;
}

Ref<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingFromData(const Ref<NSData>& data,
                                                                 Ref<NSError>* error) {
  std::string problem;
  const id root = readBinaryPropertyList(data ? data->characters() : std::string_view(),
                                         ArchiveReferences::allowed, problem);
  auto graph = root ? Graph::graphOfRoot(root, problem) : nullptr;
  if (!graph) {
    reportError(error, [&] { return propertyListError(NSCoderReadCorruptError, problem); });
    return nullptr;
  }
  return std::make_shared<NSKeyedUnarchiver>(Private(), std::move(graph));
}

NSKeyedUnarchiver::NSKeyedUnarchiver(Private, std::unique_ptr<Graph> graph)
    : graph_(std::move(graph)) {
  graph_->setUnarchiver(*this);
}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

Class NSKeyedUnarchiver::classObject() {
  static const Class kClass =
      ClassBuilder<NSKeyedUnarchiver>("NSKeyedUnarchiver", NSCoder::classObject()).registered();
  return kClass;
}

Class NSKeyedUnarchiver::isa() const {
  return classObject();
}

const Ref<NSError>& NSKeyedUnarchiver::error() const noexcept {
  return graph_->error();
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) {
  return graph_->contains(key);
}

id NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  return graph_->object(key);
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const auto number = graph_->number(key);
  return number && number->boolValue();
}

long NSKeyedUnarchiver::decodeIntegerForKey(std::string_view key) {
  const auto number = graph_->number(key);
  return number ? number->integerValue() : 0;
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const auto number = graph_->number(key);
  return number ? number->doubleValue() : 0;
}

}  // namespace rvf
