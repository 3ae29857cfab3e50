// SPDX-License-Identifier: Apache-2.0
//
// A search over 100,000 products: a predicate of two words and a price, beside a loop that is
// written for this one question, and beside the same query in a database in memory with a folding
// function of the same ICU calls. All find the same.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Text/Utf8.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

constexpr int kProducts = 100'000;
constexpr double kPrice = 10;
constexpr std::string_view kQuery = "name CONTAINS[cd] $S AND price > 10";
constexpr const char* kSearch = "cafe rot";

struct Record {
  std::string name;
  double price;
};

/// An object of the client's with accessors.
class Product final : public NSObject {
 public:
  Product(const Ref<NSString>& name, double price) : name_(name), price_(price) {}

  static Class classObject() {
    static const Class kClass = ClassBuilder<Product>("BenchmarkProduct", NSObject::classObject())
                                    .method<&Product::name>("name")
                                    .method<&Product::price>("price")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  const Ref<NSString>& name() const { return name_; }
  double price() const { return price_; }

 private:
  Ref<NSString> name_;
  double price_;
};

/// Names of three to five words; in about one of three something is not ASCII.
const std::vector<Record>& records() {
  static const std::vector<Record> kList = [] {
    constexpr const char* kWords[] = {"Coffee", "Café",  "Rot",   "Schuh",   "Shoe", "Red",
                                      "Größe",  "Large", "Small", "Bottle",  "Cup",  "CAFE",
                                      "Green",  "Blue",  "Tea",   "Rotwein", "500g", "Box"};
    std::mt19937 random(7);
    std::vector<Record> list;
    for (int i = 0; i < kProducts; ++i) {
      std::string name = kWords[random() % std::size(kWords)];
      for (auto more = 2 + random() % 3; more > 0; --more)
        (name += ' ') += kWords[random() % std::size(kWords)];
      list.push_back({name, static_cast<double>(random() % 2000) / 100});
    }
    return list;
  }();
  return kList;
}

// By hand

bool foldASCII(std::string_view text, std::string& folded) {
  folded.resize(text.size());
  unsigned char all = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    all = static_cast<unsigned char>(all | c);
    folded[i] = static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
  }
  return all < 0x80;
}

void foldByICU(std::string_view text, std::string& folded) {
  static const icu::Normalizer2& nfd = [&]() -> const icu::Normalizer2& {
    UErrorCode status = U_ZERO_ERROR;
    return *icu::Normalizer2::getNFDInstance(status);
  }();
  UErrorCode status = U_ZERO_ERROR;
  std::string decomposed;
  icu::StringByteSink<std::string> sink(&decomposed);
  nfd.normalizeUTF8(0, {text.data(), static_cast<std::int32_t>(text.size())}, sink, nullptr,
                    status);
  std::string plain;
  for (std::string_view rest = decomposed; !rest.empty();) {
    const Utf8Unit unit = firstUtf8Unit(rest);
    if (u_charType(static_cast<UChar32>(unit.codePoint)) != U_NON_SPACING_MARK)
      plain.append(rest, 0, unit.length);
    rest.remove_prefix(unit.length);
  }
  folded.clear();
  icu::StringByteSink<std::string> foldedSink(&folded);
  icu::CaseMap::utf8Fold(0, {plain.data(), static_cast<std::int32_t>(plain.size())}, foldedSink,
                         nullptr, status);
}

void fold(std::string_view text, std::string& folded) {
  if (!foldASCII(text, folded)) foldByICU(text, folded);
}

std::size_t countByHand() {
  std::size_t count = 0;
  std::string folded;
  for (const Record& record : records()) {
    fold(record.name, folded);
    if (folded.find("cafe") != folded.npos && folded.find("rot") != folded.npos &&
        record.price > kPrice)
      ++count;
  }
  return count;
}

// By predicate

using Objects = std::vector<id>;

/// As a reader makes them that keeps each key once.
const Objects& dictionaries() {
  static const Objects kList = [] {
    const id nameKey = box("name");
    const id priceKey = box("price");
    Objects list;
    for (const Record& record : records()) {
      NSDictionary::Entries entries(2);
      entries.emplace(nameKey, box(record.name));
      entries.emplace(priceKey, box(record.price));
      list.push_back(std::make_shared<NSDictionary>(std::move(entries)));
    }
    return list;
  }();
  return kList;
}

const Objects& products() {
  static const Objects kList = [] {
    Objects list;
    for (const Record& record : records())
      list.push_back(std::make_shared<Product>(box(record.name), record.price));
    return list;
  }();
  return kList;
}

Ref<NSPredicate> search() {
  return RVF_predicateWithMultiWordSubstitutionVariables(
      NSPredicate::predicateWithFormat(kQuery),
      NSDictionary::dictionaryWithEntries({{"S", box(kSearch)}}));
}

std::size_t countByPredicate(const Objects& objects, const NSPredicate& predicate) {
  std::size_t count = 0;
  for (const id& object : objects)
    count += predicate.evaluateWithObject(object) ? 1 : 0;
  return count;
}

// By database

void foldFunction(sqlite3_context* context, int, sqlite3_value** values) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
  std::string folded;
  fold({text, static_cast<std::size_t>(sqlite3_value_bytes(values[0]))}, folded);
  sqlite3_result_text(context, folded.data(), static_cast<int>(folded.size()), SQLITE_TRANSIENT);
}

class Database final {
 public:
  Database() {
    sqlite3_open(":memory:", &database_);
    sqlite3_create_function(database_, "fold", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                            &foldFunction, nullptr, nullptr);
    sqlite3_exec(database_, "CREATE TABLE product(name TEXT, price REAL); BEGIN", nullptr, nullptr,
                 nullptr);
    sqlite3_stmt* insert = prepared("INSERT INTO product VALUES(?, ?)");
    for (const Record& record : records()) {
      sqlite3_bind_text(insert, 1, record.name.data(), static_cast<int>(record.name.size()),
                        SQLITE_STATIC);
      sqlite3_bind_double(insert, 2, record.price);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(database_, "COMMIT", nullptr, nullptr, nullptr);
    query_ = prepared(
        "SELECT count(*) FROM (SELECT fold(name) AS folded FROM product WHERE price > 10) "
        "WHERE instr(folded, 'cafe') AND instr(folded, 'rot')");
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() {
    sqlite3_finalize(query_);
    sqlite3_close(database_);
  }

  std::size_t count() const {
    sqlite3_step(query_);
    const auto count = static_cast<std::size_t>(sqlite3_column_int64(query_, 0));
    sqlite3_reset(query_);
    return count;
  }

 private:
  sqlite3_stmt* prepared(const char* statement) {
    sqlite3_stmt* result = nullptr;
    sqlite3_prepare_v2(database_, statement, -1, &result, nullptr);
    return result;
  }

  sqlite3* database_ = nullptr;
  sqlite3_stmt* query_ = nullptr;
};

/// The dictionaries' own question by hand.
std::size_t countInDictionaries() {
  std::size_t count = 0;
  std::string folded;
  for (const id& object : dictionaries()) {
    const auto& dictionary = static_cast<const NSDictionary&>(*object);
    const id name = dictionary.objectForKey("name");
    fold(static_cast<const NSString&>(*name).string(), folded);
    if (folded.find("cafe") == folded.npos || folded.find("rot") == folded.npos) continue;
    const id price = dictionary.objectForKey("price");
    if (static_cast<const NSNumber&>(*price).doubleValue() > kPrice) ++count;
  }
  return count;
}

/// Measures one record of a search that answers how many products it found.
template <class Search>
void measureSearch(benchmark::State& state, Search find) {
  static const std::size_t kExpected = countByHand();
  if (kExpected == 0 || find() != kExpected) state.SkipWithError("finds other products");
  measureResult(state, find, kProducts);
}

template <const Objects& (*objects)()>
void searchByPredicate(benchmark::State& state) {
  const auto predicate = search();
  measureSearch(state, [&] { return countByPredicate(objects(), *predicate); });
}

template <std::size_t (*count)()>
void searchByHand(benchmark::State& state) {
  measureSearch(state, count);
}

void searchByDatabase(benchmark::State& state) {
  static const Database kDatabase;
  measureSearch(state, [] { return kDatabase.count(); });
}

BENCHMARK(searchByPredicate<&dictionaries>)->Name("search dictionaries/ours");
BENCHMARK(searchByHand<&countInDictionaries>)
    ->Name("search dictionaries/limit: a loop over the dictionaries");
BENCHMARK(searchByDatabase)->Name("search dictionaries/peer: SQLite");
BENCHMARK(searchByPredicate<&products>)->Name("search objects/ours");
BENCHMARK(searchByHand<&countByHand>)->Name("search objects/limit: a loop over plain records");
BENCHMARK(searchByDatabase)->Name("search objects/peer: SQLite");

void parseFormat(benchmark::State& state) {
  measureResult(state, [] { return NSPredicate::predicateWithFormat(kQuery); });
}
BENCHMARK(parseFormat)->Name("read a predicate/ours");

void substituteTwoWords(benchmark::State& state) {
  const auto predicate = NSPredicate::predicateWithFormat(kQuery);
  const auto values = NSDictionary::dictionaryWithEntries({{"S", box(kSearch)}});
  measureResult(state,
                [&] { return RVF_predicateWithMultiWordSubstitutionVariables(predicate, values); });
}
BENCHMARK(substituteTwoWords)->Name("put two words into a predicate/ours");

}  // namespace
}  // namespace rvf
