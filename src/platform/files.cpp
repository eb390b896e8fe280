// The rules of paths that are the same on every platform.

#include "platform/files.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/environment.h"

namespace tav {
namespace {

TextView WithoutQuotes(TextView path) {
    path = Trim(path);
    for (const char16_t quote : {u'"', u'\''}) {
        if (path.size() > 1 && path.front() == quote && path.back() == quote) {
            return path.substr(1, path.size() - 2);
        }
    }
    return path;
}

std::optional<char> HexByte(std::string_view digits) {
    const auto value = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        const char small = static_cast<char>(c | 0x20);
        return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
    };
    if (digits.size() < 2 || value(digits[0]) < 0 || value(digits[1]) < 0) return std::nullopt;
    return static_cast<char>(value(digits[0]) * 16 + value(digits[1]));
}

// An address writes what a path may not hold as "%" and two digits, byte by byte of UTF-8.
Text WithoutPercents(TextView address) {
    const std::string bytes = ToUtf8(address);
    std::string path;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = bytes[i] == '%' ? HexByte(std::string_view(bytes).substr(i + 1)) : std::nullopt;
        path += byte.value_or(bytes[i]);
        if (byte) i += 2;
    }
    return FromUtf8(path);
}

// Before a drive's letter an address has a "/" of its own: "file:///C:/a".
Text OfAddress(TextView path) {
    constexpr TextView kScheme = u"file://";
    if (!EqualNoCase(path.substr(0, kScheme.size()), kScheme)) return Text(path);
    path.remove_prefix(kScheme.size());
    if (path.size() > 2 && path[0] == u'/' && path[2] == u':') path.remove_prefix(1);
    return WithoutPercents(path);
}

}  // namespace

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
    const auto exists = [](TextView path) { return FileExists(path) || FolderExists(path); };
    if (exists(typed)) return Text(typed);
    Text path = OfAddress(WithoutQuotes(typed));
    if (exists(path)) return path;
    const bool of_home = path == u"~" || path.starts_with(u"~/") || path.starts_with(u"~\\");
    if (of_home && !HomeFolder().empty()) path.replace(0, 1, HomeFolder());
    std::ranges::replace_if(
        path, [](char16_t c) { return c == u'/' || c == u'\\'; }, kPathSeparator);
    return path;
}

}  // namespace tav
