// The rules of paths that are the same on every platform.

#include "platform/files.h"

#include <algorithm>

namespace tav {

Text WithSeparator(TextView folder) {
    Text text(folder);
    if (!text.empty() && kPathSeparators.find(text.back()) == TextView::npos) text += kPathSeparator;
    return text;
}

Text FolderOf(TextView path) {
    const std::size_t last = path.find_last_of(kPathSeparators);
    return last == TextView::npos ? Text() : Text(path.substr(0, last + 1));
}

Text NameOf(TextView path) {
    const std::size_t last = path.find_last_of(kPathSeparators);
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
