// The real registry, which other programs write too.
#include <gtest/gtest.h>

#include "platform/registry.h"
#include "platform/win32_windows.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav {
namespace {

// A key of the machine's hive in both of its halves, deleted at the end.
class MachineKey : public ::testing::Test {
 protected:
    void TearDown() override {
        for (const REGSAM view : {KEY_WOW64_32KEY, KEY_WOW64_64KEY}) {
            ::RegDeleteKeyExW(HKEY_LOCAL_MACHINE, win32::Wide(path_).c_str(), view, 0);
        }
    }
    void Put(REGSAM view, DWORD type, const void* data, std::size_t size) const {
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyExW(HKEY_LOCAL_MACHINE, win32::Wide(path_).c_str(), 0, nullptr, 0,
                                    KEY_SET_VALUE | view, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(
            ::RegSetValueExW(key, L"v", 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size)),
            ERROR_SUCCESS);
        ::RegCloseKey(key);
    }
    void Put(REGSAM view, TextView text) const { Put(view, REG_SZ, text.data(), text.size() * 2); }
    RegistryValue Value() const {
        RegistryValue slot;
        read_ = ReadRegistry(Hive::LocalMachine, path_, u"v", slot);
        return slot;
    }

    const test::TempFolder folder_;
    const Text path_ = u"SOFTWARE\\" + folder_.path().substr(folder_.path().find(u"tav-test-"));
    mutable bool read_ = false;
};

TEST_F(MachineKey, The32BitHalfComesFirst) {
    EXPECT_EQ(Value(), RegistryValue(Null()));
    EXPECT_EQ(LastRegistryResult(), ERROR_FILE_NOT_FOUND);
    Put(KEY_WOW64_64KEY, u"64");
    EXPECT_EQ(Value(), RegistryValue(Text(u"64")));
    EXPECT_EQ(LastRegistryResult(), ERROR_SUCCESS);
    EXPECT_TRUE(WriteRegistry(Hive::LocalMachine, path_, u"v", Text(u"32"), RegistryType::ExpandString));
    EXPECT_EQ(Value(), RegistryValue(Text(u"32")));
}

// Nor what cannot be read there: the other half is for what is not there.
TEST_F(MachineKey, AnUnreadable32BitHalfIsNoReasonToReadTheOther) {
    Put(KEY_WOW64_64KEY, u"64");
    Put(KEY_WOW64_32KEY, REG_QWORD, "12345678", 8);
    EXPECT_EQ(Value(), RegistryValue(Null()));
    EXPECT_FALSE(read_);
    EXPECT_EQ(LastRegistryResult(), ERROR_UNSUPPORTED_TYPE);
}

TEST(WindowsRegistry, AKeyThatMayNotBeReadIsNotAnEmptyOne) {
    const test::OwnSettings own;
    ASSERT_TRUE(WriteSetting(u"DataBasePath", u"C:\\"));
    const std::wstring path =
        win32::Wide(own.store() + u"\\HKEY_LOCAL_MACHINE\\" + Text(FindSetting(u"DataBasePath")->key));
    HKEY key = nullptr;
    ASSERT_EQ(::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, WRITE_DAC, &key), ERROR_SUCCESS);
    ACL nobody{};
    ASSERT_TRUE(::InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
    SECURITY_DESCRIPTOR rights{};
    ::InitializeSecurityDescriptor(&rights, SECURITY_DESCRIPTOR_REVISION);
    ::SetSecurityDescriptorDacl(&rights, TRUE, &nobody, FALSE);
    ASSERT_EQ(::RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &rights), ERROR_SUCCESS);
    test::MessageList shown;
    EXPECT_EQ(getbase(), u"");
    ASSERT_EQ(shown.messages.size(), 1U);
    EXPECT_NE(shown.messages[0].text.find(u"DataBasePath: "), Text::npos) << ToUtf8(shown.messages[0].text);
    ::SetSecurityDescriptorDacl(&rights, TRUE, nullptr, FALSE);  // for everybody
    ::RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &rights);
    ::RegCloseKey(key);
}

TEST_F(MachineKey, WhatOtherProgramsLeaveThere) {
    const auto text = [&](DWORD type, std::string_view bytes) {
        Put(KEY_WOW64_32KEY, type, bytes.data(), bytes.size());
        return Value();
    };
    using namespace std::literals;
    EXPECT_EQ(text(REG_SZ, "a\0b\0"sv), RegistryValue(Text(u"ab")));  // without its zero
    EXPECT_EQ(text(REG_SZ, "a\0\0\0b\0"sv), RegistryValue(Text(u"a")));
    EXPECT_EQ(text(REG_EXPAND_SZ, "%\0T\0%\0\0\0"sv), RegistryValue(Text(u"%T%")));  // as it stands
    EXPECT_EQ(text(REG_SZ, std::string(70000, 'x')), RegistryValue(Text(35000, u'\u7878')));
    EXPECT_EQ(text(REG_MULTI_SZ, "a\0\0\0\0\0"sv), RegistryValue(Binary{"a\0\0\0\0\0"s}));
    EXPECT_EQ(text(REG_BINARY, ""sv), RegistryValue(Binary{}));
    EXPECT_TRUE(read_);
    for (const DWORD type : {DWORD{REG_QWORD}, DWORD{REG_NONE}, DWORD{REG_DWORD_BIG_ENDIAN}}) {
        EXPECT_EQ(text(type, "12345678"sv), RegistryValue(Null()));
        EXPECT_FALSE(read_);
    }
    EXPECT_EQ(text(REG_DWORD, "123"sv), RegistryValue(Null()));
    EXPECT_EQ(text(REG_DWORD, "\1\0\0\0"sv), RegistryValue(std::uint32_t{1}));
}

TEST(WindowsRegistry, RefusalsAreWords) {
    const test::OwnSettings own;
    EXPECT_FALSE(WriteRegistry(Hive::CurrentUser, Text(300, u'k'), u"v", Text(), RegistryType::String));
    EXPECT_NE(LastRegistryResult(), ERROR_SUCCESS);
    EXPECT_TRUE(LastRegistryFailure().starts_with(Text(300, u'k'))) << ToUtf8(LastRegistryFailure());
}

}  // namespace
}  // namespace tav
