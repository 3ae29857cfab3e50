// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSBundle.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Entries = std::map<std::string, std::string>;  // in order of the keys, as the format asks

constexpr const char* kHeader = "Content-Type: text/plain; charset=UTF-8\n";

/// The bytes of a catalogue without hash table (GNU gettext manual, "The Format of GNU MO Files").
std::string catalogueOf(const Entries& entries) {
  constexpr std::uint32_t kHeaderSize = 28;
  const auto count = static_cast<std::uint32_t>(entries.size());
  std::string table(kHeaderSize + 16 * count, '\0');
  const auto put = [&table](std::size_t offset, std::size_t value) {
    const auto word = static_cast<std::uint32_t>(value);
    std::memcpy(table.data() + offset, &word, sizeof word);
  };
  put(0, 0x950412DE);
  put(8, count);
  put(12, kHeaderSize);
  put(16, kHeaderSize + 8 * count);
  std::size_t at = kHeaderSize;
  for (const auto& [key, text] : entries) {
    for (const auto& [offset, part] : {std::pair(at, key), std::pair(at + 8 * count, text)}) {
      put(offset, part.size());
      put(offset + 4, table.size());
      table += part + '\0';
    }
    at += 8;
  }
  return table;
}

class NSBundleTest : public testing::Test {
 protected:
  NSBundleTest() {
    std::string folder = std::filesystem::temp_directory_path() / "NSBundleTest.XXXXXX";
    folder_ = mkdtemp(folder.data());
    bundle_->setCatalogueFolder(folder_);
    NSLocale::setCurrentLocaleIdentifier("de_AT");
  }
  ~NSBundleTest() override {
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
    std::filesystem::remove_all(folder_);
  }

  void write(const std::string& locale, const std::string& table, const std::string& bytes) const {
    const auto folder = std::filesystem::path(folder_) / locale / "LC_MESSAGES";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / (table + ".mo"), std::ios::binary) << bytes;
  }

  std::string folder_;
  const Ref<NSBundle> bundle_ = std::make_shared<NSBundle>("Texts", nullptr);
};

TEST_F(NSBundleTest, LooksUpInTheDefaultAndInANamedTable) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  write("de", "Other", catalogueOf({{"", kHeader}, {"Yes", "Jawohl"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "Other"), "Jawohl");
}

TEST_F(NSBundleTest, AnswersTheKeyWithoutCatalogueOrEntry) {
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "NoSuchTable"), "Yes");
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("No"), "No");
}

TEST_F(NSBundleTest, AnswersTheKeyForAnEmptyEntry) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", ""}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, AnswersEmptyTextForTheEmptyKey) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey(""), "");
}

TEST_F(NSBundleTest, PrefersTheCatalogueOfTheCountry) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"January", "Januar"}}));
  write("de_AT", "Texts", catalogueOf({{"", kHeader}, {"January", "Jänner"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("January"), "Jänner");
}

TEST_F(NSBundleTest, FollowsTheCurrentLocale) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  write("fr", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Oui"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Oui");
  NSLocale::setCurrentLocaleIdentifier("en_US_POSIX");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, FindsNothingMoreInAFolderThatWasTakenBack) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  bundle_->setCatalogueFolder(std::nullopt);
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, AnswersTheKeyForADamagedCatalogue) {
  const std::string whole = catalogueOf({{"", kHeader}, {"Yes", "Ja"}});
  for (std::size_t length = 0; length < 28; ++length) {
    write("de", "Cut", whole.substr(0, length));
    const NSBundle bundle("Cut", nullptr);
    EXPECT_EQ(bundle.localizedStringForKey("Yes"), "Yes") << length;
  }
  write("de", "Junk", "this is no catalogue at all, but it is long enough for one");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "Junk"), "Yes");
}

TEST_F(NSBundleTest, NeverLeavesTheCatalogueFolder) {
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "../LC_MESSAGES/Texts"), "Yes");
  NSLocale::setCurrentLocaleIdentifier("../de");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, KeysOfAnyBytesStandForThemselves) {
  using namespace std::string_literals;
  write("de", "Texts", catalogueOf({{"", kHeader}, {"Yes", "Ja"}}));
  for (const std::string& key : {"Yes\0"s, "\0"s, "\xFF"s, "Yes\xC3"s})
    EXPECT_EQ(bundle_->localizedStringForKey(key), key);
}

TEST_F(NSBundleTest, HoldsAnInformationDictionary) {
  EXPECT_EQ(bundle_->infoDictionary()->count(), 0U);
  bundle_->setInfoDictionary(NSDictionary::dictionaryWithEntries({{"CFBundleVersion", box("7")}}));
  EXPECT_EQ(bundle_->infoDictionary()->textForKey("CFBundleVersion"), "7");
  bundle_->setInfoDictionary(nullptr);
  EXPECT_EQ(bundle_->infoDictionary()->count(), 0U);
}

TEST_F(NSBundleTest, TheMainBundleIsOneObject) {
  EXPECT_EQ(NSBundle::mainBundle(), NSBundle::mainBundle());
  EXPECT_EQ(NSBundle::bundleForClass(NSBundle::classObject()), NSBundle::mainBundle());
  EXPECT_EQ(NSBundle::bundleForClass(nullptr), NSBundle::mainBundle());
}

}  // namespace
}  // namespace rvf
