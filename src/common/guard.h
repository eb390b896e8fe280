// The guard around every public procedure: nothing that fails inside leaves it.
#pragma once

#include <utility>

#include "common/concat.h"
#include "common/failure.h"
#include "common/message_box.h"

namespace tav {

// The standard message of a failure: the procedure's title, the failure's description and a line break.
inline void ShowFailure(TextView title, const Failure& failure) {
    ShowMessage(title, Concat(failure.description(), u"\r\n"));
}

// A file that another program holds: "Запрет".
inline void ShowFileInUse(TextView path) {
    ShowMessage(u"Запрет", Concat(u"Закройте файл ", path, u" и повторите попытку"));
}

// Runs `body`; a failure inside is given to `on_failure(const Failure&)`. The procedure keeps what it has to
// return in a variable of its own, so that it returns what it had when the failure came.
template <class Body, class OnFailure>
void GuardedBy(Body&& body, OnFailure&& on_failure) {
    try {
        std::forward<Body>(body)();
    } catch (...) {
        std::forward<OnFailure>(on_failure)(CurrentFailure());
    }
}

// The same with the standard message under `title`, for example u"Ошибка в функции getbase".
template <class Body>
void Guarded(TextView title, Body&& body) {
    GuardedBy(std::forward<Body>(body), [&](const Failure& failure) { ShowFailure(title, failure); });
}

}  // namespace tav
