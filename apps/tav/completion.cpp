// Shell completion. Both scripts walk the words before the one that is typed, as far as they name a command, and look
// up in one `case` what may follow it, in another what may follow an option.

#include "command_model.h"

namespace tav::cli {
namespace {

std::string Quoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

// " db check", as the scripts collect it; empty for the program.
std::string Chosen(const Command& command) {
    return command.path.empty() ? "" : " " + command.Name();
}

// The patterns of the words that lead from a command to the next.
std::string CommandPatterns(const std::vector<Command>& commands) {
    std::string patterns;
    for (const Command& command : commands) {
        if (command.path.empty()) continue;
        patterns += (patterns.empty() ? "" : "|") + Quoted(Chosen(command));
    }
    return patterns;
}

// How one shell says things.
struct Dialect {
    std::string (*words)(const std::vector<std::pair<std::string, std::string>>& words);
    const char* files;    // offers files
    const char* folders;  // offers folders
};

std::string BashWords(const std::vector<std::pair<std::string, std::string>>& words) {
    std::string list;
    for (const auto& [word, meaning] : words) list += (list.empty() ? "" : " ") + word;
    return list.empty() ? "" : "words+=" + Quoted(" " + list) + "; ";
}

std::string ZshWords(const std::vector<std::pair<std::string, std::string>>& words) {
    std::string list;
    for (const auto& [word, meaning] : words) {
        std::string entry = word;
        if (!meaning.empty()) entry += ":" + CLI::detail::find_and_replace(meaning, ":", "\\:");
        list += (list.empty() ? "" : " ") + Quoted(entry);
    }
    return list.empty() ? "" : "choices+=(" + list + "); ";
}

constexpr Dialect kBash = {BashWords, "compopt -o default; ", "compopt -o dirnames; "};
constexpr Dialect kZsh = {ZshWords, "_files; ", "_files -/; "};

std::string ValueIn(const Dialect& dialect, ValueKind kind) {
    if (kind == ValueKind::File) return dialect.files;
    if (kind == ValueKind::Folder) return dialect.folders;
    std::vector<std::pair<std::string, std::string>> words;
    for (const std::string& word : WordsOf(kind)) words.emplace_back(word, "");
    return dialect.words(words);
}

// Lines of `case`: what follows a command.
std::string AfterCommands(const std::vector<Command>& commands, const Dialect& dialect) {
    std::string lines;
    for (const Command& command : commands) {
        std::vector<std::pair<std::string, std::string>> words = command.commands;
        for (const CommandOption& option : command.options) {
            for (const std::string& name : option.names) words.emplace_back(name, option.meaning);
        }
        lines += "    " + Quoted(Chosen(command)) + ") " + dialect.words(words);
        for (const CommandOption& argument : command.arguments) lines += ValueIn(dialect, argument.kind);
        lines += ";;\n";
    }
    return lines;
}

// Lines of `case`: what follows an option that has a value. They end the function.
std::string AfterOptions(const std::vector<Command>& commands, const Dialect& dialect,
                         const std::string& end) {
    std::string lines;
    for (const Command& command : commands) {
        for (const CommandOption& option : command.options) {
            if (option.value.empty()) continue;
            for (const std::string& name : option.names) {
                lines.append("    ").append(Quoted(Chosen(command) + " " + name)).append(") ");
                lines.append(ValueIn(dialect, option.kind)).append(end).append(" ;;\n");
            }
        }
    }
    return lines;
}

}  // namespace

std::string BashCompletion(const std::vector<Command>& commands) {
    return "# Completion of tav for bash, as \"tav completion bash\" writes it.\n"
           "_tav() {\n"
           "    local chosen= words= word\n"
           "    COMPREPLY=()\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \"$chosen $word\" in\n"
           "        " +
           CommandPatterns(commands) +
           ") chosen+=\" $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$chosen ${COMP_WORDS[COMP_CWORD-1]}\" in\n" +
           AfterOptions(commands, kBash, "return") +
           "    esac\n"
           "    case \"$chosen\" in\n" +
           AfterCommands(commands, kBash) +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
           "}\n"
           "complete -F _tav tav\n";
}

std::string ZshCompletion(const std::vector<Command>& commands) {
    return "#compdef tav\n"
           "# Completion of tav for zsh, as \"tav completion zsh\" writes it.\n"
           "_tav() {\n"
           "    local chosen= word\n"
           "    local -a choices\n"
           "    for word in \"${(@)words[2,CURRENT-1]}\"; do\n"
           "        case \"$chosen $word\" in\n"
           "        (" +
           CommandPatterns(commands) +
           ") chosen+=\" $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$chosen $words[CURRENT-1]\" in\n" +
           AfterOptions(commands, kZsh, "return") +
           "    esac\n"
           "    case \"$chosen\" in\n" +
           AfterCommands(commands, kZsh) +
           "    esac\n"
           "    _describe -t tav tav choices\n"
           "}\n"
           "_tav \"$@\"\n";
}

}  // namespace tav::cli
