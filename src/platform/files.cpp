// The rules of paths that are the same on every platform.

#include "platform/files.h"

#include <algorithm>

namespace tav {

Text WithSeparator(TextView folder) {
    Text text(folder);
    if (!text.empty() && text.back() != kPathSeparator) text += kPathSeparator;
    return text;
}

Text FolderOf(TextView path) {
    const std::size_t last = path.rfind(kPathSeparator);
    return last == TextView::npos ? Text() : Text(path.substr(0, last + 1));
}

Text NameOf(TextView path) {
    const std::size_t last = path.rfind(kPathSeparator);
    return Text(last == TextView::npos ? path : path.substr(last + 1));
}

Text UserPath(TextView typed) {
    Text path(typed);
    if (FileExists(path) || FolderExists(path)) return path;
    std::replace_if(
        path.begin(), path.end(), [](char16_t c) { return c == u'/' || c == u'\\'; }, kPathSeparator);
    return path;
}

}  // namespace tav
