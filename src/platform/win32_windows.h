// What the Windows platform files share: the system's header without the macros that hide our names, handles
// that close themselves, texts and paths for the wide calls, system errors as Failures.
#pragma once

#include <objbase.h>
#include <shellapi.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#undef DeleteFile
#undef MessageBox

#include <commctrl.h>

#include "common/failure.h"

namespace tav::win32 {

// An open file. INVALID_HANDLE_VALUE is none.
class Handle {
 public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() { Close(); }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }

    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    void Close() {
        if (*this) ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
    }

 private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

inline std::wstring Wide(TextView text) {
    return std::wstring(text.begin(), text.end());
}
inline Text FromWide(std::wstring_view wide) {
    return Text(wide.begin(), wide.end());
}

// Fills a buffer by `call(buffer, size)`, which returns the length written, or how much room it needs; empty
// when it returns 0.
template <class Call>
std::wstring Filled(Call call) {
    std::wstring buffer(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(buffer.data(), static_cast<DWORD>(buffer.size()));
        const bool whole = length < buffer.size();
        buffer.resize(whole ? length : std::max<std::size_t>(length, buffer.size() * 2));
        if (whole) return buffer;
    }
}

// The library that holds this code, or the program; and its file.
HINSTANCE ThisModule();
std::wstring ModulePath();

// The windows of a thread that are no children.
std::vector<HWND> ThreadWindows(DWORD thread = ::GetCurrentThreadId());
std::wstring ClassOf(HWND window);

// The environment variable, or empty text.
Text Variable(const wchar_t* name);

// From the root on; empty text is the present folder.
std::wstring FullPath(TextView path);

// The full path in the form that may be longer than MAX_PATH, without a separator at its end.
std::wstring NativePath(TextView path);

// What the system says about an error.
Text ErrorWords(DWORD error);

// The failure that `error` (a system error code) means for this path.
[[noreturn]] void Refuse(DWORD error, TextView path);

// Opens an existing file, or refuses. `share` says what others may do meanwhile.
Handle OpenFile(TextView path, DWORD access, DWORD share);

// Reads the rest of the file, up to the buffer's size, or refuses.
std::size_t ReadInto(const Handle& file, TextView path, char* buffer, std::size_t size);

// A name in the folder of `target` that nobody uses.
Text TemporaryName(TextView target);

}  // namespace tav::win32
