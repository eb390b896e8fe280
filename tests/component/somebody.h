// Answers message boxes while nobody sits at the screen,
// those of other processes as well, and remembers them.
#pragma once

#include <windows.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>

#include "common/text.h"
#include "platform/win32_windows.h"

namespace tav::test {

class Somebody {
 public:
    ~Somebody() { Leave(); }

    // Title and text of every box, and below it the forms that were on the screen with it; but not the
    // progress window, which stays a moment longer than the import.
    std::string Leave() {
        leaving_ = true;
        if (thread_.joinable()) thread_.join();
        return seen_;
    }

 private:
    static std::string TextOf(HWND window) {
        wchar_t text[1024] = {};
        ::SendMessageTimeoutW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text), 0, 1000,
                              nullptr);
        return ToUtf8(ReplaceAll(win32::FromWide(text), u"\r\n", u"\n"));
    }
    static BOOL CALLBACK NoteForm(HWND window, LPARAM titles) {
        if (win32::ClassOf(window) == L"TAV_OperationImport" && ::IsWindowVisible(window))
            reinterpret_cast<std::set<std::string>*>(titles)->insert(TextOf(window));
        return TRUE;
    }
    static BOOL CALLBACK AnswerBox(HWND window, LPARAM self) {
        auto& somebody = *reinterpret_cast<Somebody*>(self);
        const HWND text = ::GetDlgItem(window, 0xFFFF);
        if (win32::ClassOf(window) != L"#32770" || window == somebody.last_ || text == nullptr ||
            !::IsWindowVisible(window))
            return TRUE;
        const std::string words = TextOf(text);
        if (words.empty()) return TRUE;  // not filled yet
        somebody.last_ = window;
        somebody.seen_ += TextOf(window) + ": " + words + "\n";
        std::set<std::string> forms;
        ::EnumWindows(NoteForm, reinterpret_cast<LPARAM>(&forms));
        forms.erase("Импорт файлов, полученных из ТАВ");
        forms.erase("");  // the same, going
        for (const std::string& title : forms) somebody.seen_ += "    " + title + "\n";
        ::PostMessageW(window, WM_COMMAND, IDOK, 0);
        return TRUE;
    }

    std::atomic<bool> leaving_ = false;
    HWND last_ = nullptr;
    std::string seen_;
    std::thread thread_{[this] {
        while (!leaving_) {
            ::EnumWindows(AnswerBox, reinterpret_cast<LPARAM>(this));
            ::Sleep(20);
        }
    }};
};

}  // namespace tav::test
