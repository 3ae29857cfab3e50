// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"

#include <gtest/gtest.h>

#include "Platform/Locale/NSLocale.h"
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"

namespace rvf {
namespace {

class RVFLibraryBundleTest : public testing::Test {
 protected:
  RVFLibraryBundleTest() { RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER); }
  ~RVFLibraryBundleTest() override {
    RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }

  static std::string localized(const char* locale, std::string_view key,
                               std::string_view table = {}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    return RVFLibraryBundle()->localizedStringForKey(key, table);
  }
};

constexpr std::string_view kAdvice =
    "Please check your network connection, or select another server.";

TEST_F(RVFLibraryBundleTest, TranslatesTheTextsOfTheDefaultTable) {
  EXPECT_EQ(localized("de_DE", "An error occurred while receiving data."),
            "Beim Empfangen von Daten ist ein Fehler aufgetreten.");
  EXPECT_EQ(localized("fr_CA", "%@ (Back to My Mac)"), "%@ (réseau étendu)");
}

TEST_F(RVFLibraryBundleTest, TranslatesTheTextsOfANamedTable) {
  EXPECT_EQ(localized("de_AT", kAdvice, "RVFStaticServer"),
            "Bitte überprüfen Sie Ihre Netzwerkverbindung oder wählen Sie einen anderen Server "
            "aus.");
  EXPECT_EQ(localized("fr", kAdvice, "RVFStaticServer"),
            "Veuillez vérifier votre connexion réseau ou sélectionner un autre serveur.");
}

TEST_F(RVFLibraryBundleTest, ATextOfAnotherTableStandsForItself) {
  EXPECT_EQ(localized("de", kAdvice), kAdvice);
  EXPECT_EQ(localized("de", kAdvice, "NoSuchTable"), kAdvice);
}

TEST_F(RVFLibraryBundleTest, TheEnglishTextStandsWithoutCatalogue) {
  EXPECT_EQ(localized("en_US_POSIX", kAdvice, "RVFStaticServer"), kAdvice);
  EXPECT_EQ(localized("ja_JP", kAdvice, "RVFStaticServer"), kAdvice);
}

TEST_F(RVFLibraryBundleTest, TheEmptyKeyAnswersEmptyTextAndNotTheCataloguesHeader) {
  EXPECT_EQ(localized("de", ""), "");
  EXPECT_EQ(localized("de", "", "RVFStaticServer"), "");
}

TEST_F(RVFLibraryBundleTest, IsTheBundleOfTheLibrarysClasses) {
  EXPECT_EQ(NSBundle::bundleForClass(RVFRecoveryAttempterBlock::classObject()), RVFLibraryBundle());
  EXPECT_EQ(NSBundle::bundleForClass(NSObject::classObject()), NSBundle::mainBundle());
}

TEST_F(RVFLibraryBundleTest, KnowsTheLibrarysVersion) {
  EXPECT_EQ(RVFLibraryBundle()->infoDictionary()->textForKey("CFBundleVersion"), RVF_VERSION);
}

}  // namespace
}  // namespace rvf
