#include "usage.h"

#include <string_view>

namespace tav::cli {
namespace {

// The parser's own words; "*" stands for what it speaks of.
struct Phrase {
    std::string_view english;
    std::string_view russian;
};
constexpr Phrase kPhrases[] = {
    {"* is required", "нужно указать *"},
    {"The following argument was not expected: *", "лишнее в командной строке: *"},
    {"The following arguments were not expected: *", "лишнее в командной строке: *"},
    {"*: 1 required ", "нет значения: *"},
    {"*: At Most ", "указано больше одного раза: *"},
    {"Could not convert: *", "неверное значение: *"},
};
constexpr std::string_view kNoCommand = "A subcommand is required";

std::string Said(std::string_view english) {
    for (const Phrase& phrase : kPhrases) {
        const std::size_t star = phrase.english.find('*');
        const std::string_view before = phrase.english.substr(0, star);
        const std::string_view after = phrase.english.substr(star + 1);
        const std::size_t end = after.empty() ? english.size() : english.find(after);
        if (!english.starts_with(before) || end == std::string_view::npos) continue;
        std::string said(phrase.russian);
        return said.replace(said.find('*'), 1, english.substr(before.size(), end - before.size()));
    }
    return std::string(english);
}

std::string AboutCommand(const CLI::App& app) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty()) return "нужна команда";
    return (unknown.front().starts_with('-') ? "нет такого параметра: " : "нет такой команды: ") +
           unknown.front();
}

// Bytes of UTF-8 that begin a character.
std::size_t Characters(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    return count;
}

std::string Row(std::string left, const std::string& right, std::size_t width) {
    left.insert(0, "  ");
    const std::size_t used = Characters(left);
    left += used < width ? std::string(width - used, ' ') : "\n" + std::string(width, ' ');
    return left + right + "\n";
}

}  // namespace

RussianHelp::RussianHelp() {
    for (const auto& [english, russian] :
         {std::pair{"Usage", "Вызов"}, std::pair{"OPTIONS", "ПАРАМЕТРЫ"}, std::pair{"SUBCOMMAND", "КОМАНДА"},
          std::pair{"Positionals", "Аргументы"}, std::pair{"Options", "Параметры"},
          std::pair{"REQUIRED", "(обязательно)"}}) {
        label(english, russian);
    }
}

std::string RussianHelp::make_group(std::string group, bool is_positional,
                                    std::vector<const CLI::Option*> options) const {
    return CLI::Formatter::make_group(get_label(group), is_positional, std::move(options));
}

std::string RussianHelp::make_option(const CLI::Option* option, bool is_positional) const {
    // The name of an argument says what it is; the parser would add the type of its variable.
    const std::string about = !is_positional           ? make_option_opts(option)
                              : option->get_required() ? " " + get_label("REQUIRED")
                                                       : "";
    return Row(make_option_name(option, is_positional) + about, make_option_desc(option), get_column_width());
}

std::string RussianHelp::make_subcommand(const CLI::App* command) const {
    return Row(command->get_display_name(), command->get_description(), get_column_width());
}

std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const std::string said = error.what() == kNoCommand ? AboutCommand(app) : Said(error.what());
    std::string command = "tav";
    for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        command += " " + at->get_name();
    }
    return "tav: " + said + "\nПодробнее: " + command + " --help\n";
}

}  // namespace tav::cli
