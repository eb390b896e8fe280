// A host in short: a thread with COM, late binding, and the loop of every program with windows.
//
//     test_host [unmasked|single] [raising|catching] OPERATION TEXT...
//     test_host cycles INN KPP
//
// A host that raises divides by zero in a timer of its own while the component lets events through, and one that
// catches takes the first exception that the component throws on the host's thread. Both leave the operation by that, and
// call it again.
//
// The second line loads the library a thousand times, makes six thousand objects and opens the main window a
// hundred times, and prints a line for each that leaves the process larger.
//
// It ends when the component has no windows any more: with 0; with 1 when a call failed, 2 when something was
// thrown out of the component, 3 when a call or a message left other floating-point settings than the host's
// own: with exceptions for an invalid operation, a division by zero and an overflow, or
// with 24 bits of mantissa. With 4 when there was nothing to leave an operation by, 5 when windows were left behind.
#include <float.h>
#include <xmmintrin.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "component.h"
#include "open_class_object_windows.h"
// clang-format off
#include <psapi.h>  // after what it needs
// clang-format on

namespace tav {
namespace {

HRESULT Call(IDispatch& object, const char* operation, const std::vector<Text>& texts) {
    std::wstring name = win32::Wide(FromUtf8(operation));
    OLECHAR* names[] = {name.data()};
    DISPID method = 0;
    const HRESULT found = object.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &method);
    if (FAILED(found)) return found;
    std::vector<VARIANT> arguments;  // the last one first
    for (auto text = texts.rbegin(); text != texts.rend(); ++text) {
        VARIANT& argument = arguments.emplace_back();
        argument.vt = VT_BSTR;
        argument.bstrVal = ::SysAllocString(win32::Wide(*text).c_str());
    }
    DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    const HRESULT result = object.Invoke(method, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                         nullptr, nullptr, nullptr);
    for (VARIANT& argument : arguments) ::VariantClear(&argument);
    return result;
}

struct FloatingPoint {
    unsigned control;
    unsigned vectors;

    bool operator==(const FloatingPoint&) const = default;
};

FloatingPoint Present() {
    constexpr unsigned kFlags = 0x3F;
    return {_control87(0, 0) & (_MCW_EM | _MCW_PC | _MCW_RC), _mm_getcsr() & ~kFlags};
}

constexpr std::string_view kUnmasked = "unmasked";
constexpr std::string_view kSingle = "single";
// As compilers set them up whose programs want exceptions, and those that drew pictures once.
void Use(std::string_view kind) {
    constexpr unsigned kExceptions = _EM_INVALID | _EM_ZERODIVIDE | _EM_OVERFLOW;
    if (kind == kUnmasked) {
        _control87(_MCW_EM & ~kExceptions, _MCW_EM);
        _mm_setcsr(0x1900);
    } else if (kind == kSingle) {
        _control87(_PC_24, _MCW_PC);
        _mm_setcsr(0x9FC0);  // tiny numbers are zero
    }
}

constexpr std::string_view kRaising = "raising";
constexpr std::string_view kCatching = "catching";
std::string_view leaving;  // empty once it is done, and in a host that does not
DWORD leaving_thread = 0;
std::jmp_buf before_operation;

LONG CALLBACK OnException(EXCEPTION_POINTERS* what) {
    constexpr DWORD kOfCpp = 0x20474343;
    const DWORD code = what->ExceptionRecord->ExceptionCode;
    const bool own = leaving == kRaising ? code >> 28 == 0xC : leaving == kCatching && code == kOfCpp;
    if (!own || ::GetCurrentThreadId() != leaving_thread) return EXCEPTION_CONTINUE_SEARCH;
    leaving = {};
    std::longjmp(before_operation, 1);
}

void CALLBACK DivideByZero(HWND, UINT, UINT_PTR timer, DWORD) {
    ::KillTimer(nullptr, timer);
    Use(kUnmasked);
    volatile double nothing = 0;
    nothing = 1 / nothing;
}

// Whether the operation was left before its end.
bool IsLeft(IDispatch& object, const char* operation, const std::vector<Text>& texts) {
    leaving_thread = ::GetCurrentThreadId();
    ::AddVectoredExceptionHandler(1, OnException);
    if (leaving == kRaising) ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, DivideByZero);
    if (setjmp(before_operation) != 0) return true;
    Call(object, operation, texts);
    return false;
}

int Run(const char* operation, const std::vector<Text>& texts) {
    const test::Library library;
    const FloatingPoint own = Present();
    bool kept = true;
    HRESULT result = E_FAIL;
    try {
        if (!leaving.empty()) {
            if (!IsLeft(*library.Create<IDispatch>(IID_IDispatch), operation, texts)) return 4;
            kept = Present() == own;
            if (library.CanUnloadNow() == S_FALSE) return 5;
        }
        result = Call(*library.Create<IDispatch>(IID_IDispatch), operation, texts);
        kept = kept && Present() == own;
        MSG message;
        while (library.CanUnloadNow() == S_FALSE && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
            kept = kept && Present() == own;
        }
    } catch (...) {
        return 2;
    }
    if (FAILED(result)) std::fprintf(stderr, "%s: %08lx\n", operation, static_cast<unsigned long>(result));
    if (!kept) std::fprintf(stderr, "%08x %08x\n", Present().control, Present().vectors);
    return FAILED(result) ? 1 : kept ? 0 : 3;
}

// Numbers that are free are given again, so a new object's number grows with those that nobody gives back.
// (Wine counts neither the handles of a process nor what it draws with.)
struct Size {
    std::uintptr_t memory = 0;  // in bytes
    std::uintptr_t handle = 0;  // of the kernel
    std::uintptr_t brush = 0;   // of drawing
};

Size PresentSize() {
    constexpr std::uintptr_t kIndex = 0xFFFF;
    Size size;
    PROCESS_MEMORY_COUNTERS memory{};
    ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory);
    size.memory = memory.PagefileUsage;
    const win32::Handle handle(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    size.handle = reinterpret_cast<std::uintptr_t>(handle.get());
    const HBRUSH brush = ::CreateSolidBrush(RGB(1, 2, 3));
    size.brush = reinterpret_cast<std::uintptr_t>(brush) & kIndex;
    ::DeleteObject(brush);
    return size;
}

// What the first tenth allocates once is no growth, and what grows in one half of the others alone is a step of the
// system's; the slack is what the measure wavers by.
template <class Cycle>
void Repeat(const char* name, int times, Cycle cycle) {
    constexpr std::uintptr_t kSlack = 64 << 10;  // less than a block for each object
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) cycle();
        return PresentSize();
    };
    const int half = times * 9 / 20;
    const Size begin = run(times - 2 * half);
    const Size middle = run(half);
    const Size end = run(half);
    const auto report = [&](const char* what, std::uintptr_t Size::*number, std::uintptr_t slack) {
        const auto growth = [&](const Size& from, const Size& to) {
            return static_cast<long>(to.*number - from.*number);
        };
        const long least = std::min(growth(begin, middle), growth(middle, end));
        if (end.*number == 0 || least > static_cast<long>(slack))
            std::printf("%s: %s %ld\n", name, what, least);
    };
    report("memory", &Size::memory, kSlack);
    report("handles", &Size::handle, 0);
    report("brushes", &Size::brush, 0);
}

int RunCycles(const test::Bstr& inn, const test::Bstr& kpp) {
    // As in every program with windows: what these leave behind each time they go is not the library's.
    for (const wchar_t* system : {L"shell32.dll", L"comctl32.dll"}) ::LoadLibraryW(system);
    Repeat("load", 1000, [] {
        const HMODULE library = ::LoadLibraryW(test::ComponentPath().c_str());
        ::FreeLibrary(library);
        if (library == nullptr || ::GetModuleHandleW(L"TAV_OperationImport.dll") != nullptr) std::abort();
    });
    const test::Library library;
    Repeat("object", 6'000, [&] { library.Create<IDispatch>(IID_IDispatch); });
    Repeat("window", 100, [&] {
        library.Create<OpenClassInterface>(kInterfaceId)->start(inn.get(), kpp.get(), 72686);
        ::PostMessageW(::FindWindowW(L"TAV_OperationImport", nullptr), WM_CLOSE, 0, 0);
        for (MSG message; library.CanUnloadNow() == S_FALSE && ::GetMessageW(&message, nullptr, 0, 0) > 0;)
            ::DispatchMessageW(&message);
    });
    return 0;
}

}  // namespace
}  // namespace tav

int main(int count, char** words) {
    if (count < 2 || FAILED(::CoInitialize(nullptr))) return 1;
    int at = 1;
    for (const std::string_view kind : {tav::kUnmasked, tav::kSingle, tav::kRaising, tav::kCatching}) {
        if (words[at] != kind) continue;
        tav::Use(kind);
        if (kind == tav::kRaising || kind == tav::kCatching) tav::leaving = kind;
        ++at;
    }
    std::vector<tav::Text> texts;
    for (int i = at + 1; i < count; ++i) texts.push_back(tav::FromUtf8(words[i]));
    const bool cycles = words[at] == std::string_view("cycles") && texts.size() == 2;
    const int status = cycles ? tav::RunCycles(tav::test::Bstr(texts[0]), tav::test::Bstr(texts[1]))
                              : tav::Run(words[at], texts);
    ::CoUninitialize();
    return status;
}
