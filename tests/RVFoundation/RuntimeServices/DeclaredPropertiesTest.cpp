// SPDX-License-Identifier: Apache-2.0
//
// What the library's classes declare of themselves to key-value coding, observers and predicates.

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "Platform/Runtime/Runtime.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

namespace rvf {
namespace {

struct DeclarationRow {
  std::string_view className;
  std::vector<Property> properties;  // in order
};

std::ostream& operator<<(std::ostream& stream, const DeclarationRow& row) {
  return stream << row.className;
}

std::vector<std::string> listed(const std::vector<Property>& properties) {
  std::vector<std::string> lines;
  for (const Property& property : properties)
    lines.push_back(property.name + " " + property.attributes);
  return lines;
}

class DeclaredProperties : public ::testing::TestWithParam<DeclarationRow> {};

TEST_P(DeclaredProperties, AreThoseOfTheClassInOrder) {
  const Class aClass = objc_getClass(GetParam().className);
  ASSERT_NE(aClass, nullptr);
  EXPECT_EQ(listed(class_copyPropertyList(aClass)), listed(GetParam().properties));
}

const std::vector<DeclarationRow>& declarations() {
  static const std::vector<DeclarationRow> kRows = {
      {"RVFRecoveryAttempterBlock", {{"handler", "T@?,C,N,V_handler"}}},
      {"RVFLogger", {{"client", "T^{SystemLogClient=},N,V_client"}}},
      {"RVFMagneticCardParser",
       {{"accountNumber", "T@\"NSString\",C,N,V_accountNumber"},
        {"cardholderName", "T@\"NSString\",C,N,V_cardholderName"},
        {"expirationYear", "Ti,N,V_expirationYear"},
        {"expirationMonth", "Ti,N,V_expirationMonth"},
        {"trackInfo", "TQ,N,V_trackInfo"},
        {"swipeData", "T@\"NSString\",C,N,V_swipeData"},
        {"encryptedTrackData", "T@\"RVFEncryptedTrackData\",&,N,V_encryptedTrackData"},
        {"displayCardholderName", "T@\"NSString\",R,C,N"}}},
      {"RVFCreditCardParser", {{"cardType", "Ti,R,N"}}},
      {"RVFEncryptedTrackData",
       {{"trackData", "T@\"NSString\",C,N,V_trackData"},
        {"dataBlock", "T@\"NSString\",C,N,V_dataBlock"},
        {"statusBlock", "T@\"NSString\",C,N,V_statusBlock"},
        {"keySerial", "T@\"NSString\",C,N,V_keySerial"}}},
      {"RVFStaticServer",
       {{"serverAddress", "T@\"NSString\",C,N,V_serverAddress"},
        {"serverDescription", "T@\"NSString\",C,N,V_serverDescription"},
        {"serverId", "T@\"NSString\",C,N,V_serverId"},
        {"completion", "T@?,C,N,V_completion"}}},
      {"RVFStaticServerList", {{"serverCount", "TQ,R,N"}}},
      {"RVFQMServerServiceBrowser",
       {{"serviceType", "T@\"NSString\",C,N,V_serviceType"},
        {"serviceListChangedHandler", "T@?,C,N,V_serviceListChangedHandler"},
        {"services", "T@\"NSArray\",R,N"}}},
      {"RVFQMServerService",
       {{"netServices", "T@\"NSArray\",R,N,V_netServices"},
        {"mainService", "T@\"NSNetService\",&,N,V_mainService"},
        {"isDemo", "Tc,N,V_isDemo"},
        {"isLoaded", "Tc,N,V_isLoaded"},
        {"serviceChangedHandler", "T@?,C,N,V_serviceChangedHandler"},
        {"isUsingBackToMyMac", "Tc,R,N"},
        {"name", "T@\"NSString\",R,N"}}},
      {"RVFNetServiceResolver",
       {{"privateCompletion", "T@?,C,N,V_privateCompletion"},
        {"privateService", "T@\"NSNetService\",&,N,V_privateService"}}},
      {"RVFQuantityFormatter",
       {{"quantityFormatter", "T@\"NSNumberFormatter\",&,N,VquantityFormatter"},
        {"locale", "T@\"NSLocale\",&,N"}}},
      {"RVFCurrencyFormatter", {{"locale", "T@\"NSLocale\",&,N,Vlocale"}}},
      {"RVFTimeFormatter", {{"locale", "T@\"NSLocale\",&,N,V_locale"}}},
      {"RVFSecondsToHoursFormatter",
       {{"decimalFormatter", "T@\"NSFormatter\",&,V_decimalFormatter"}}},
      {"RVFByteSizeFormatter", {{"includeUnits", "Tc,N,V_includeUnits"}}},
      {"RVFPhoneNumberFormatter", {}},
      {"RVFBooleanFormatter", {}},
      {"RVFUppercaseFormatter", {}},
      {"RVFStreamedDecompressor", {}},
      {"RVFStreamedSAXParser",
       {{"parserContext", "T^{_xmlParserCtxt},N,V_parserContext"},
        {"startElementHandler", "T@?,C,N,V_startElementHandler"},
        {"endElementHandler", "T@?,C,N,V_endElementHandler"},
        {"foundCharactersHandler", "T@?,C,N,V_foundCharactersHandler"},
        {"interupted", "Tc,N,V_interupted"}}},
      {"RVFBlockQueue", {{"completion", "T@?,C,N,V_completion"}}},
      {"RVFColumnWidthInfo",
       {{"defaultWidth", "Td,N,V_defaultWidth"},
        {"minimumWidth", "Td,N,V_minimumWidth"},
        {"autoresize", "Tc,N,V_autoresize"},
        {"listOrder", "Tq,N,V_listOrder"}}},
      {"RVFColumnWidthRegistry", {{"registry", "T@\"NSDictionary\",&,N,V_registry"}}},
      {"RVFHardwareInfo",
       {{"hardwareModel", "T@\"NSString\",R,N"},
        {"ramInMegabytes", "T@\"NSNumber\",R,N"},
        {"tcpSendSpace", "T@\"NSNumber\",R,N"}}},
      {"RVFClassPropertyDescriptor",
       {{"attributes", "T@\"NSMutableDictionary\",R,&,N,V_attributes"},
        {"name", "T@\"NSString\",R,&,N,V_name"},
        {"isCopy", "Tc,R,N"},
        {"isNonAtomic", "Tc,R,N"},
        {"isRetained", "Tc,R,N"},
        {"isAssigned", "Tc,R,N"},
        {"isDynamic", "Tc,R,N"},
        {"isReadonly", "Tc,R,N"},
        {"encodedType", "T@\"NSString\",R,N"},
        {"isObjCType", "Tc,R,N"},
        {"customGetter", "T:,R,N"},
        {"customSetter", "T:,R,N"},
        {"ivarName", "T@\"NSString\",R,N"}}},
      {"RVFClassIvarDescriptor",
       {{"name", "T@\"NSString\",&,V_name"},
        {"encodedType", "T@\"NSString\",R,&,N,V_encodedType"},
        {"isObjCType", "Tc,R,N"}}},
      {"RVFRetryingBlockExecutor",
       {{"retryInterval", "Td,N,V_retryInterval"},
        {"delayedRetryBlock", "T@?,C,N,V_delayedRetryBlock"}}},
      {"RVFKeyedArchiverFilter",
       {{"classesThatCantBeArchived", "T@\"NSSet\",R,N,V_classesThatCantBeArchived"}}},
      {"RVFRunLoopOperation",
       {{"state", "Tq,N,V_state"},
        {"executionBlock", "T@?,C,N,V_executionBlock"},
        {"error", "T@\"NSError\",&,N,V_error"}}},
      {"RVFRemoteNotificationCenter", {}},
      {"RVFDynamicPropertySynthesizer", {}},
      {"RVFBindingHelper", {}},
      {"RWFBindingHelperProxy", {}},
      {"RWFBindingHelperKVOInfo",
       {{"observer", "T@,V_observer"}, {"keyPath", "T@\"NSString\",C,V_keyPath"}}},
      {"RWFBindingHelperNotificationInfo",
       {{"observer", "T@,V_observer"},
        {"name", "T@\"NSString\",C,V_name"},
        {"object", "T@,V_object"}}},
      {"RVFTestingUserDefaults", {{"data", "T@\"NSMutableDictionary\",&,N,V_data"}}},
  };
  return kRows;
}

INSTANTIATE_TEST_SUITE_P(Classes, DeclaredProperties, ::testing::ValuesIn(declarations()),
                         [](const auto& row) { return std::string(row.param.className); });

/// Every class of the library, whether or not the table above has it.
std::vector<Class> libraryClasses() {
  std::vector<Class> classes;
  for (const Class aClass : objc_copyClassList()) {
    const std::string_view name = class_getName(aClass);
    if (name.starts_with("RVF") || name.starts_with("RWF")) classes.push_back(aClass);
  }
  return classes;
}

/// Runs `check` on every declared property; failures name it.
template <class Check>
void forEachProperty(Check check) {
  for (const Class aClass : libraryClasses()) {
    for (const Property& property : class_copyPropertyList(aClass)) {
      SCOPED_TRACE(std::string(class_getName(aClass)) + "." + property.name);
      check(aClass, property);
    }
  }
}

TEST(PropertiesOfTheLibrary, BeginWithTheirTypeAndEndWithTheirVariable) {
  forEachProperty([](Class, const Property& property) {
    EXPECT_TRUE(property.attributes.starts_with('T'));
    const std::size_t variable = property.attributes.find(",V");
    if (variable == std::string::npos) return;
    EXPECT_EQ(property.attributes.find(',', variable + 1), std::string::npos);
  });
}

TEST(PropertiesOfTheLibrary, HaveAccessorsOfTheirTypes) {
  forEachProperty([](Class aClass, const Property& property) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    const std::string type(1, info.type.front());
    const IMP getter = class_getMethodImplementation(aClass, SEL(info.getter));
    ASSERT_TRUE(getter) << "no getter";
    EXPECT_EQ(getter.typeEncoding().substr(0, 1), type);
    if (info.readonly) return;
    const IMP setter = class_getMethodImplementation(aClass, SEL(info.setter));
    ASSERT_TRUE(setter) << "no setter";
    EXPECT_EQ(setter.typeEncoding().substr(0, 4), "v@:" + type);
  });
}

TEST(PropertiesOfTheLibrary, NameVariablesThatTheirClassesHave) {
  forEachProperty([](Class aClass, const Property& property) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.ivar.empty()) return;
    const auto ivars = class_copyIvarList(aClass);
    const auto found = std::ranges::find(ivars, info.ivar.view(), &Ivar::name);
    ASSERT_NE(found, ivars.end()) << "no variable " << info.ivar.view();
    EXPECT_EQ(found->typeEncoding.substr(0, 1), info.type.view().substr(0, 1));
  });
}

TEST(PropertiesOfTheLibrary, OfObjectTypesNameClassesThatExist) {
  forEachProperty([](Class, const Property& property) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.type.view().starts_with("@\"")) {
      EXPECT_NE(RVFGetPropertyClassFromPropertyInfoType(info.type), nullptr);
    }
  });
}

TEST(PropertiesOfTheLibrary, EncodeFlagsAsCharacters) {
  forEachProperty([](Class, const Property& property) {
    EXPECT_NE(RVFParsePropertyAttributes(property).type.front(), 'B');
  });
}

}  // namespace
}  // namespace rvf
