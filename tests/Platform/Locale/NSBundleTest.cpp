// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSBundle.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Locale/CatalogueBytes.h"

namespace rvf {
namespace {

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
    writeCatalogue(folder_, locale, table, bytes);
  }

  std::string folder_;
  const Ref<NSBundle> bundle_ = std::make_shared<NSBundle>("Texts", nullptr);
};

TEST_F(NSBundleTest, LooksUpInTheDefaultAndInANamedTable) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  write("de", "Other", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Jawohl"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "Other"), "Jawohl");
}

TEST_F(NSBundleTest, AnswersTheKeyWithoutCatalogueOrEntry) {
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "NoSuchTable"), "Yes");
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("No"), "No");
}

TEST_F(NSBundleTest, AnswersTheKeyForAnEmptyEntry) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", ""}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, AnswersEmptyTextForTheEmptyKey) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey(""), "");
}

TEST_F(NSBundleTest, PrefersTheCatalogueOfTheCountry) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"January", "Januar"}}));
  write("de_AT", "Texts", catalogueOf({{"", kCatalogueHeader}, {"January", "Jänner"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("January"), "Jänner");
}

TEST_F(NSBundleTest, FollowsTheCurrentLocale) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  write("fr", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Oui"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Oui");
  NSLocale::setCurrentLocaleIdentifier("en_US_POSIX");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, FindsNothingMoreInAFolderThatWasTakenBack) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Ja");
  bundle_->setCatalogueFolder(std::nullopt);
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, AnswersTheKeyForADamagedCatalogue) {
  const std::string whole = catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}});
  for (std::size_t length = 0; length < 28; ++length) {
    write("de", "Cut", whole.substr(0, length));
    const NSBundle bundle("Cut", nullptr);
    EXPECT_EQ(bundle.localizedStringForKey("Yes"), "Yes") << length;
  }
  write("de", "Junk", "this is no catalogue at all, but it is long enough for one");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "Junk"), "Yes");
}

TEST_F(NSBundleTest, NeverLeavesTheCatalogueFolder) {
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
  EXPECT_EQ(bundle_->localizedStringForKey("Yes", "../LC_MESSAGES/Texts"), "Yes");
  NSLocale::setCurrentLocaleIdentifier("../de");
  EXPECT_EQ(bundle_->localizedStringForKey("Yes"), "Yes");
}

TEST_F(NSBundleTest, KeysOfAnyBytesStandForThemselves) {
  using namespace std::string_literals;
  write("de", "Texts", catalogueOf({{"", kCatalogueHeader}, {"Yes", "Ja"}}));
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
