// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSKeyedArchiver.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Storage/ArchiveReference.h"
#include "Platform/Storage/BinaryPropertyListWriter.h"
#include "Platform/Storage/KeyedArchiveForm.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSKeyedArchiver::classObject);

/// The position of "$null".
constexpr std::uint64_t kAbsent = 0;

id referenceTo(std::uint64_t number) {
  return std::make_shared<ArchiveReference>(number);
}

/// Whether an archive has room for the object itself. Numbers of subclasses hold more than a
/// property list's do.
bool standsForItself(const NSObject& object) {
  return textOfObject(object) || dynamic_cast<const NSData*>(&object) ||
         object.isMemberOfClass(NSNumber::classObject());
}

}  // namespace

NSKeyedArchiverDelegate::~NSKeyedArchiverDelegate() = default;

id NSKeyedArchiverDelegate::archiverWillEncodeObject(const Ref<NSKeyedArchiver>&,
                                                     const id& object) {
  return object;
}

/// What has been encoded so far. All objects met are kept alive, so that their addresses tell them
/// apart.
class NSKeyedArchiver::Graph final {
 public:
  explicit Graph(NSKeyedArchiver& archiver) : archiver_(archiver) {}

  void encode(const id& object, std::string_view key) {
    perform([&] { put(referenceTo(numberFor(object)), key); });
  }
  void encodeConditionally(const id& object, std::string_view key) {
    perform([&] {
      put(referenceTo(kAbsent), key);
      if (id answer = answerFor(object)) {
        conditional_.push_back({current_, box(archiveKey(key)), std::move(answer)});
      }
    });
  }
  void encodeValue(const id& value, std::string_view key) {
    perform([&] { put(value, key); });
  }

  Ref<NSData> data() {
    if (data_) return data_;
    perform([this] {
      if (running_ > 1) {
        NSException::raise(NSInvalidArgumentException,
                           "the archive cannot end while an object is encoded");
      }
      data_ = finishedData();
    });
    return data_;
  }

 private:
  struct ConditionalReference {
    Ref<NSMutableDictionary> holder;
    id key;
    id object;
  };

  template <class Step>
  void perform(Step step) {
    if (data_ || isBroken_) {
      NSException::raise(NSInvalidArgumentException,
                         data_ ? "the archive has ended" : "the archive was given up");
    }
    ++running_;
    const ScopeExit left([this] { --running_; });
    try {
      step();
    } catch (...) {
      isBroken_ = true;
      throw;
    }
  }

  void put(id value, std::string_view key) {
    const id boxed = box(archiveKey(key));
    if (current_->objectForKey(boxed)) {
      NSException::raise(NSInvalidArgumentException,
                         "the key \"" + std::string(key) + "\" is used twice in one object");
    }
    current_->setObject(std::move(value), boxed);
  }

  /// The object that is encoded for this one, absent if none is.
  id answerFor(const id& object) {
    if (!object) return nullptr;
    if (const auto known = answers_.find(object); known != answers_.end()) return known->second;
    id answer = replacementOf(object);
    if (const auto known = answers_.find(answer); known != answers_.end()) {
      answer = known->second;
    } else if (const auto delegate = answer ? archiver_.delegate() : nullptr) {
      const id asked = answer;
      answers_.emplace(asked, asked);  // for a delegate that encodes what it is asked for
      answer = delegate->archiverWillEncodeObject(refTo(&archiver_), asked);
      answers_[asked] = answer;
    }
    answers_.emplace(object, answer);
    return answer;
  }

  id replacementOf(const id& object) {
    static const SEL kReplacement("replacementObjectForCoder:");
    if (!object->respondsToSelector(kReplacement)) return object;
    return send<id>(object, kReplacement, Ref<NSCoder>(refTo(&archiver_)));
  }

  std::uint64_t numberFor(const id& object) {
    const id answer = answerFor(object);
    if (!answer) return kAbsent;
    const auto [known, isNew] = numbers_.try_emplace(answer, objects_.size());
    const std::uint64_t number = known->second;
    if (isNew) write(answer);
    return number;
  }

  void write(const id& object) {
    if (standsForItself(*object)) {
      objects_.push_back(object);
      return;
    }
    if (depth_ == kDeepestArchive) {
      NSException::raise(NSInvalidArgumentException,
                         "more than 1,000 objects lead to one another in a row");
    }
    const auto holder = NSMutableDictionary::dictionary();
    objects_.push_back(holder);
    {
      const auto outer = std::exchange(current_, holder);
      ++depth_;
      const ScopeExit left([&] {
        current_ = outer;
        --depth_;
      });
      writeContent(object);
    }
    holder->setObject(referenceTo(numberOfClass(object->isa())), kArchiveClassKey);
  }

  void writeContent(const id& object) {
    static const SEL kEncode("encodeWithCoder:");
    if (object->respondsToSelector(kEncode)) {
      send(object, kEncode, Ref<NSCoder>(refTo(&archiver_)));
    } else if (const auto* array = dynamic_cast<const NSArray*>(object.get())) {
      writeList(std::vector<id>(array->objects()), kArchivedObjectsKey);
    } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(object.get())) {
      writeEntries(*dictionary);
    } else if (const auto* set = dynamic_cast<const NSSet*>(object.get())) {
      writeList(std::vector<id>(set->begin(), set->end()), kArchivedObjectsKey);
    } else if (const auto* date = dynamic_cast<const NSDate*>(object.get())) {
      put(box(date->timeIntervalSinceReferenceDate()), kArchivedTimeKey);
    } else if (!dynamic_cast<const NSNull*>(object.get())) {
      object->doesNotRecognizeSelector(kEncode);
    }
  }

  void writeEntries(const NSDictionary& dictionary) {
    std::vector<id> keys;
    std::vector<id> values;
    for (const auto& [key, value] : dictionary.entries()) {
      keys.push_back(key);
      values.push_back(value);
    }
    writeList(keys, kArchivedKeysKey);
    writeList(values, kArchivedObjectsKey);
  }

  /// The list is a copy, because whoever is asked may change the collection.
  void writeList(const std::vector<id>& objects, std::string_view key) {
    std::vector<id> references;
    references.reserve(objects.size());
    for (const id& object : objects)
      references.push_back(referenceTo(numberFor(object)));
    put(NSArray::arrayWithObjects(std::move(references)), key);
  }

  std::uint64_t numberOfClass(Class aClass) {
    const auto [known, isNew] = classes_.try_emplace(aClass, objects_.size());
    if (isNew) {
      std::vector<id> names;
      for (Class each = aClass; each; each = class_getSuperclass(each))
        names.push_back(box(class_getName(each)));
      const id name = names.front();
      objects_.push_back(NSDictionary::dictionaryWithEntries(
          {{kArchiveClassNameKey, name},
           {kArchiveClassesKey, NSArray::arrayWithObjects(std::move(names))}}));
    }
    return known->second;
  }

  Ref<NSData> finishedData() {
    for (const ConditionalReference& reference : conditional_) {
      const auto known = numbers_.find(reference.object);
      if (known == numbers_.end()) continue;
      reference.holder->setObject(referenceTo(known->second), reference.key);
    }
    const id root = NSDictionary::dictionaryWithEntries(
        {{kArchiveVersionKey, box(kArchiveVersion)},
         {kArchiveArchiverKey, box(kArchiver)},
         {kArchiveTopKey, top_},
         {kArchiveObjectsKey, NSArray::arrayWithObjects(std::move(objects_))}});
    std::string problem;
    const std::string bytes = writtenBinaryPropertyList(root, ArchiveReferences::allowed, problem);
    if (bytes.empty()) NSException::raise(NSInvalidArgumentException, problem);
    return NSData::dataWithBytes(bytes);
  }

  NSKeyedArchiver& archiver_;
  const Ref<NSMutableDictionary> top_ = NSMutableDictionary::dictionary();
  Ref<NSMutableDictionary> current_ = top_;  // the values of what is being encoded
  std::size_t depth_ = 0;
  std::size_t running_ = 0;  // steps within steps, because whoever is asked may encode
  std::vector<id> objects_ = {box(kArchiveNull)};
  std::unordered_map<id, id> answers_;  // what is encoded for what
  std::unordered_map<id, std::uint64_t> numbers_;
  std::unordered_map<Class, std::uint64_t> classes_;
  std::vector<ConditionalReference> conditional_;
  Ref<NSData> data_;
  bool isBroken_ = false;
};

Ref<NSData> NSKeyedArchiver::archivedDataWithRootObject(const id& object) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeObject(object, "root");
  return archiver->encodedData();
}

NSKeyedArchiver::NSKeyedArchiver() : graph_(std::make_unique<Graph>(*this)) {}
NSKeyedArchiver::~NSKeyedArchiver() = default;

Class NSKeyedArchiver::classObject() {
  static const Class kClass =
      ClassBuilder<NSKeyedArchiver>("NSKeyedArchiver", NSCoder::classObject())
          .method<&NSKeyedArchiver::encodedData>("encodedData")
          .registered();
  return kClass;
}

Class NSKeyedArchiver::isa() const {
  return classObject();
}

void NSKeyedArchiver::setDelegate(std::weak_ptr<NSKeyedArchiverDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void NSKeyedArchiver::encodeObject(const id& object, std::string_view forKey) {
  graph_->encode(object, forKey);
}

void NSKeyedArchiver::encodeConditionalObject(const id& object, std::string_view forKey) {
  graph_->encodeConditionally(object, forKey);
}

void NSKeyedArchiver::encodeBool(bool value, std::string_view forKey) {
  graph_->encodeValue(box(value), forKey);
}

void NSKeyedArchiver::encodeInteger(long value, std::string_view forKey) {
  graph_->encodeValue(box(value), forKey);
}

void NSKeyedArchiver::encodeDouble(double value, std::string_view forKey) {
  graph_->encodeValue(box(value), forKey);
}

Ref<NSData> NSKeyedArchiver::encodedData() {
  return graph_->data();
}

}  // namespace rvf
