#include "command_model.h"

#include <algorithm>

#include "settings/settings.h"

namespace tav::cli {
namespace {

// By the word that the help has for the value.
struct KindOfWord {
    std::string_view word;
    ValueKind kind;
};
constexpr KindOfWord kKinds[] = {{"ФАЙЛ", ValueKind::File},
                                 {"КАТАЛОГ", ValueKind::File},
                                 {"ПАПКА", ValueKind::Folder},
                                 {"ИМЯ", ValueKind::Setting},
                                 {"ОБОЛОЧКА", ValueKind::Shell}};

ValueKind KindOf(std::string_view word) {
    if (word.empty()) return ValueKind::None;
    const auto* const known = std::find_if(std::begin(kKinds), std::end(kKinds),
                                           [&](const KindOfWord& kind) { return kind.word == word; });
    return known == std::end(kKinds) ? ValueKind::Anything : known->kind;
}

CommandOption ModelOf(const CLI::Option& option) {
    CommandOption model;
    if (option.get_positional()) {
        model.names = {option.get_name(true)};
        model.value = model.names.front();
    } else {
        for (const std::string& letter : option.get_snames()) model.names.push_back("-" + letter);
        for (const std::string& word : option.get_lnames()) model.names.push_back("--" + word);
        if (option.get_items_expected_max() > 0) model.value = option.get_type_name();
    }
    model.meaning = option.get_description();
    model.kind = KindOf(model.value);
    model.required = option.get_required();
    model.repeats = option.get_items_expected_max() > 1;
    return model;
}

void Add(const CLI::App& app, std::vector<std::string> path, std::vector<Command>& commands) {
    Command command{std::move(path), app.get_description(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options())
        (option->get_positional() ? command.arguments : command.options).push_back(ModelOf(*option));
    const auto below = app.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* sub : below) command.commands.emplace_back(sub->get_name(), sub->get_description());
    commands.push_back(command);
    for (const CLI::App* sub : below) {
        std::vector<std::string> longer = command.path;
        longer.push_back(sub->get_name());
        Add(*sub, std::move(longer), commands);
    }
}

}  // namespace

std::string Command::Name() const {
    return CLI::detail::join(path, " ");
}

std::vector<Command> CommandsOf(const CLI::App& program) {
    std::vector<Command> commands;
    Add(program, {}, commands);
    return commands;
}

std::vector<std::string> WordsOf(ValueKind kind) {
    std::vector<std::string> words;
    if (kind == ValueKind::Setting) {
        for (const Setting& setting : Settings()) words.push_back(ToUtf8(setting.name));
    }
    if (kind == ValueKind::Shell) {
        for (const Shell& shell : Shells()) words.emplace_back(shell.name);
    }
    return words;
}

const std::vector<Shell>& Shells() {
    static const std::vector<Shell> kShells = {{"bash", BashCompletion}, {"zsh", ZshCompletion}};
    return kShells;
}

}  // namespace tav::cli
