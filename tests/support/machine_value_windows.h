// A value of the machine's registry for as long as a test needs it.
#pragma once

#include <string>

#include "platform/win32_windows.h"

namespace tav::test {

// A key's own text. What stood there before comes back, or the key has none again.
class MachineValue {
 public:
    MachineValue(std::wstring key, const std::wstring& text) : key_(std::move(key)) {
        DWORD size = sizeof before_;
        ::RegGetValueW(HKEY_LOCAL_MACHINE, key_.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, before_, &size);
        if (text == before_) *before_ = L'\0';  // what a run left behind that was ended
        Set(text);
    }
    ~MachineValue() {
        if (*before_ != L'\0') {
            Set(before_);
        } else {
            ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), nullptr);
        }
    }
    MachineValue(const MachineValue&) = delete;
    MachineValue& operator=(const MachineValue&) = delete;

 private:
    void Set(const std::wstring& text) const {
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), nullptr, REG_SZ, text.c_str(),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }

    const std::wstring key_;
    wchar_t before_[256] = L"";
};

}  // namespace tav::test
