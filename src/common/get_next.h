// Walking a separated list.
#pragma once

#include <string_view>
#include <type_traits>

namespace tav {

// Returns the text of `rest` before the first `separator` and leaves in `rest`
// what comes after it. Without a separator the whole is returned and `rest`
// becomes empty. An empty `rest` returns empty text. Letter case counts.
//
// `rest` is a view into the list, so that walking a list of any length costs its length once. One function
// for both kinds of text: characters (u16string_view) and Windows-1251 bytes (string_view).
template <class Char>
std::basic_string_view<Char> GetNext(std::basic_string_view<Char>& rest,
                                     std::type_identity_t<std::basic_string_view<Char>> separator) {
    const std::size_t at = rest.find(separator);
    const std::basic_string_view<Char> item = rest.substr(0, at);
    rest.remove_prefix(at == rest.npos ? rest.size() : at + separator.size());
    return item;
}

}  // namespace tav
