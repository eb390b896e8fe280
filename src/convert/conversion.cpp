#include "convert/conversion.h"

#include <algorithm>
#include <iterator>

namespace tav {

bool IsAboutFile(const Failure& failure) {
    constexpr RunTimeError kErrors[] = {RunTimeError::PermissionDenied, RunTimeError::FileNotFound,
                                        RunTimeError::PathNotFound, RunTimeError::PathFileAccess};
    return std::ranges::find(kErrors, failure.error()) != std::end(kErrors);
}

Text WhyUnreadable(const Failure& failure) {
    switch (failure.error()) {
        case RunTimeError::PermissionDenied:
            return u"Файл занят другой программой, или нет прав на его чтение";
        case RunTimeError::FileNotFound:
        case RunTimeError::PathNotFound:
            return u"Файла больше нет";
        default:
            return u"Файл не читается: " + failure.description();
    }
}

Text DroppedTextLine(TextView file_name, const std::vector<std::size_t>& pages) {
    constexpr std::size_t kNamed = 10;
    if (pages.empty()) return {};
    Text line = Text(file_name).append(pages.size() == 1 ? u", страница" : u", страницы");
    for (std::size_t i = 0; i < std::min(pages.size(), kNamed); ++i) {
        line.append(i == 0 ? u" " : u", ").append(Digits(static_cast<long long>(pages[i])));
    }
    if (pages.size() > kNamed) line += u" и ещё " + Digits(static_cast<long long>(pages.size() - kNamed));
    return line.append(u": текст за последней закрывающей скобкой не показан");
}

}  // namespace tav
