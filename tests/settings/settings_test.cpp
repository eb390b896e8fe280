#include "settings/settings.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "settings/session.h"
#include "support/support.h"

namespace tav {
namespace {

using test::OwnSettings;

constexpr TextView kKey = u"SOFTWARE\\X\\Y";

TEST(Registry, KeepsTypesAndValues) {
    const OwnSettings own;
    RegistryValue slot = Text(u"old");
    EXPECT_FALSE(ReadRegistry(Hive::CurrentUser, kKey, u"none", slot));
    EXPECT_EQ(slot, RegistryValue(Null()));
    EXPECT_NE(LastRegistryResult(), 0);

    const Text odd = u"C:\\a \"b\"\r\n = [x] ё \\n";
    EXPECT_TRUE(WriteRegistry(Hive::CurrentUser, kKey, u"Text", odd, RegistryType::String));
    EXPECT_TRUE(WriteRegistry(Hive::CurrentUser, u"SOFTWARE\\X\\Y\\", u"Number", std::uint32_t{4000000000U},
                              RegistryType::DoubleWord));
    EXPECT_TRUE(
        WriteRegistry(Hive::LocalMachine, kKey, u"Text", Text(u"machine"), RegistryType::ExpandString));
    EXPECT_TRUE(WriteRegistry(Hive::CurrentUser, u"Other", u"Raw", Binary{std::string("\0\xFFz", 3)},
                              RegistryType::Binary));
    EXPECT_TRUE(WriteRegistry(Hive::CurrentUser, kKey, u"text", odd + u"2", RegistryType::String));

    EXPECT_TRUE(ReadRegistry(Hive::CurrentUser, u"software\\x\\y\\", u"TEXT", slot));
    EXPECT_EQ(slot, RegistryValue(odd + u"2"));
    EXPECT_EQ(LastRegistryResult(), 0);
    EXPECT_TRUE(ReadRegistry(Hive::CurrentUser, kKey, u"Number", slot));
    EXPECT_EQ(slot, RegistryValue(std::uint32_t{4000000000U}));
    EXPECT_TRUE(ReadRegistry(Hive::LocalMachine, kKey, u"Text", slot));
    EXPECT_EQ(slot, RegistryValue(Text(u"machine")));
    EXPECT_TRUE(ReadRegistry(Hive::CurrentUser, u"Other", u"Raw", slot));
    EXPECT_EQ(slot, RegistryValue(Binary{std::string("\0\xFFz", 3)}));
}

TEST(SettingsTable, TypedAccess) {
    const OwnSettings own;
    EXPECT_EQ(SettingText(u"ImportPath"), u"");
    EXPECT_EQ(SettingSwitch(u"SpAct"), 0);
    EXPECT_FALSE(SettingTruth(u"ChkOut"));
    WriteSetting(u"SpAct", u"1");
    WriteSetting(u"ChkOut", u"True");
    EXPECT_EQ(SettingSwitch(u"spact"), 1);
    EXPECT_TRUE(SettingTruth(u"ChkOut"));
    for (const auto& [text, error] :
         {std::pair{u"x", RunTimeError::TypeMismatch}, std::pair{u"40000", RunTimeError::Overflow}}) {
        WriteSetting(u"SpAct", text);
        try {
            SettingSwitch(u"SpAct");
            ADD_FAILURE();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.error(), error);
        }
    }
    EXPECT_THROW(ReadSetting(u"Unknown"), Failure);
}

// A value of another kind than meant is neither absent nor an empty text.
TEST(SettingsTable, WhatIsNoTextIsRefusedByItsName) {
    const OwnSettings own;
    const auto refusal = [](TextView name, const RegistryValue& value, RegistryType type) -> Text {
        const Setting& setting = *FindSetting(name);
        WriteRegistry(setting.hive, setting.key, setting.name, value, type);
        try {
            return u"= " + SettingText(name);
        } catch (const Failure& failure) {
            return failure.description();
        }
    };
    EXPECT_EQ(refusal(u"ImportPath", Binary{"abc"}, RegistryType::Binary), u"Type mismatch: ImportPath");
    EXPECT_EQ(refusal(u"ChkOut", Binary{}, RegistryType::MultiString), u"Type mismatch: ChkOut");
    EXPECT_EQ(refusal(u"SpVupis", std::uint32_t{1}, RegistryType::DoubleWord), u"= 1");
    EXPECT_EQ(refusal(u"SpVupis", ~std::uint32_t{0}, RegistryType::DoubleWord), u"= -1");
    EXPECT_EQ(refusal(u"OutPath", Text(32768, u'x'), RegistryType::String), u"Overflow: OutPath");
    EXPECT_EQ(refusal(u"DataBasePath", Binary{"x"}, RegistryType::Binary), u"Type mismatch: DataBasePath");
    test::MessageList shown;
    EXPECT_EQ(getbase(), u"");
    ASSERT_EQ(shown.messages.size(), 1U);
    EXPECT_EQ(shown.messages[0].title, u"Ошибка в функции getbase");
}

TEST(Getbase, FolderOfTheHostWithOneSeparator) {
    const OwnSettings own;
    EXPECT_EQ(getbase(), ComponentFolder() + u"PlX_Base.mdb");
    const Text base = Text(u"data") + kPathSeparator;
    for (const TextView folder : {TextView(u"data"), TextView(base)}) {
        WriteSetting(u"DataBasePath", folder);
        EXPECT_EQ(getbase(), base + u"PlX_Base.mdb");
    }
    UseDatabase(u"/x.mdb");
    EXPECT_EQ(getbase(), u"/x.mdb");
    UseDatabase(u"");
}

TEST(ExportFolderTest, EmptyAndAbsentAreTheTemporaryFolder) {
    const OwnSettings own;
    EXPECT_EQ(ExportFolder(), ReportFolder());
    WriteSetting(u"ExportPath", u"");
    EXPECT_EQ(ExportFolder(), ReportFolder());
    WriteSetting(u"ExportPath", u"/out");
    EXPECT_EQ(ExportFolder(), u"/out");
}

LocalTime AfternoonClock() {
    return {{2011, 2, 1}, {14, 30, 5}};
}
LocalTime NextSecondClock() {
    return {{2011, 2, 1}, {14, 30, 6}};
}

TEST(CancelStampTest, StopsAnImportOfTheSameSecondOnly) {
    SetClock(AfternoonClock);
    RequestCancel();
    EXPECT_EQ(CancelStamp(), 143005);
    EXPECT_FALSE(PassCancelGuard());
    SetClock(NextSecondClock);
    EXPECT_TRUE(PassCancelGuard());
    EXPECT_EQ(CancelStamp(), 0);
    EXPECT_TRUE(PassCancelGuard());
    SetClock(nullptr);
}

}  // namespace
}  // namespace tav
