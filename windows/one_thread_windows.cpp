#include "one_thread_windows.h"

#include <mutex>
#include <utility>
#include <vector>

#include "common/concat.h"
#include "forms/win32/shown_forms.h"
#include "load/run_import.h"

namespace tav {
namespace {

std::mutex guard;
// The last thread that was let in. A handle, because the number of a thread that has ended is given again.
DWORD owner = 0;
win32::Handle owner_thread;
std::vector<TextView> operations;  // of it, that run now, one inside another

bool OwnerEnded() {
    return owner_thread && ::WaitForSingleObject(owner_thread.get(), 0) == WAIT_OBJECT_0;
}

bool Enter(TextView operation) {
    const std::lock_guard lock(guard);
    const DWORD present = ::GetCurrentThreadId();
    const bool ended = OwnerEnded();
    if (ended) {  // perhaps in the middle of something
        operations.clear();
        ForgetImport();
    } else if (owner != 0 && owner != present && (!operations.empty() || HasForms(owner))) {
        return false;
    }
    if (owner != present || ended) {
        owner_thread = win32::Handle(::OpenThread(SYNCHRONIZE, FALSE, present));
        owner = present;
    }
    operations.push_back(operation);
    return true;
}

// "поток 1234: открыто окно «...», выполняется import". A window that is closed goes once its work has ended.
Text WhatIsOpen() {
    const std::lock_guard lock(guard);
    Text what = Concat(u"поток ", Digits(owner));
    TextView before = u": ";
    const auto add = [&](TextView words, TextView name, TextView end) {
        what += Concat(std::exchange(before, u", "), words, name, end);
    };
    for (const Text& caption : FormCaptions(owner, true)) add(u"открыто окно «", caption, u"»");
    if (!operations.empty()) {
        add(u"выполняется ", operations.front(), {});
    } else {
        for (const Text& caption : FormCaptions(owner, false)) add(u"закрывается окно «", caption, u"»");
    }
    return what;
}

}  // namespace

OneThread::OneThread(TextView operation) : entered_(Enter(operation)) {}

OneThread::~OneThread() {
    End();
}

void OneThread::End() const {
    const std::lock_guard lock(guard);
    if (entered_ && !operations.empty()) operations.pop_back();
}

void ShowWrongThread(TextView title) {
    const Text words = Concat(u"Компонентом пользуется другой поток этой программы (", WhatIsOpen(),
                              u"). Закройте окна компонента и повторите; вызывать его нужно из того потока, "
                              u"где открыты его окна.");
    ::MessageBoxW(nullptr, win32::Wide(words).c_str(), win32::Wide(title).c_str(),
                  MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND);
}

}  // namespace tav
