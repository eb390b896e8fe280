// 32 bits: a thread's handlers are a list, whose records lie in the frames. Unwinding calls the handler of each record that
// goes.
#include <windows.h>

#include "platform/border_frame_windows.h"

namespace tav::win32 {
namespace {

struct Record {
    void* outer;
    EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, void* record, CONTEXT*, void*);
    Border* border;
};

EXCEPTION_DISPOSITION __cdecl OnException(EXCEPTION_RECORD* exception, void* record, CONTEXT*, void*) {
    constexpr DWORD kUnwinding = 2;
    constexpr DWORD kThreadEnds = 4;
    Border& border = *static_cast<Record*>(record)->border;
    if ((exception->ExceptionFlags & (kUnwinding | kThreadEnds)) != 0) border.left(border);
    return ExceptionContinueSearch;
}

// The first one is the first word of what describes the thread.
unsigned long FirstRecord() {
    return __readfsdword(0);
}
void SetFirstRecord(const volatile void* record) {
    __writefsdword(0, reinterpret_cast<unsigned long>(record));
}

}  // namespace

void CallNoticing(Border& border) {
    volatile Record record = {reinterpret_cast<void*>(FirstRecord()), OnException, &border};
    SetFirstRecord(&record);
    border.body(border.argument);
    SetFirstRecord(record.outer);
}

}  // namespace tav::win32
