// A host in short: a thread with COM, late binding, and the loop of every program with windows.
//
//     test_host OPERATION TEXT...
//
// It ends when the component has no windows any more: with 0, or with 1 when a call failed.
#include <cstdio>
#include <vector>

#include "component.h"

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

int Run(const char* operation, const std::vector<Text>& texts) {
    const test::Library library;
    const HRESULT result = Call(*library.Create<IDispatch>(IID_IDispatch), operation, texts);
    if (FAILED(result)) std::fprintf(stderr, "%s: %08lx\n", operation, static_cast<unsigned long>(result));
    MSG message;
    while (library.CanUnloadNow() == S_FALSE && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return SUCCEEDED(result) ? 0 : 1;
}

}  // namespace
}  // namespace tav

int main(int count, char** words) {
    if (count < 2 || FAILED(::CoInitialize(nullptr))) return 1;
    std::vector<tav::Text> texts;
    for (int i = 2; i < count; ++i) texts.push_back(tav::FromUtf8(words[i]));
    const int status = tav::Run(words[1], texts);
    ::CoUninitialize();
    return status;
}
