// JSON put together as text. A tree of nlohmann's asks for memory when it is let go, and ends the program
// when there is none; here the library writes only what has no parts.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tav::cli {

class JsonText {
 public:
    // In one line, or with each part on a line of its own, a space deeper for every level.
    enum class Layout { Line, Lines };
    using Members = std::vector<std::pair<std::string_view, JsonText>>;

    // Of a text in UTF-8 (other bytes become U+FFFD), a number, a truth value or nullptr.
    template <class Leaf>
    JsonText(const Leaf& leaf)
        : text_(nlohmann::json(leaf).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)) {}

    static JsonText Object(const Members& members, Layout layout = Layout::Lines);
    static JsonText Array(const std::vector<JsonText>& items);

    const std::string& text() const { return text_; }

 private:
    JsonText() = default;

    std::string text_;
};

}  // namespace tav::cli
