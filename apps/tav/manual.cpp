// The page tav(1): what the parser knows of every command, between what it does not know.

#include "command_model.h"

namespace tav::cli {
namespace {

// A line of text as troff prints it unchanged.
std::string Plain(const std::string& text) {
    std::string out = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else
            out += c;
    }
    return out;
}

std::string Bold(const std::string& text) {
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Plain(text) + "\\fR";
}

std::string Joined(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + Bold(name);
    return joined;
}

std::string Entry(const std::string& term, const std::string& meaning) {
    return ".TP\n" + term + "\n" + Plain(meaning) + "\n";
}

std::string Call(const Command& command) {
    std::string call = Bold("tav " + command.Name());
    for (const CommandOption& option : command.options) {
        if (option.required) call += " " + Bold(option.names.back()) + " " + Italic(option.value);
    }
    for (const CommandOption& argument : command.arguments) {
        const std::string word = Italic(argument.value) + (argument.repeats ? "..." : "");
        call += argument.required ? " " + word : " [" + word + "]";
    }
    return call;
}

bool IsHelp(const CommandOption& option) {
    return option.names.back() == "--help";
}

std::string AboutCommand(const Command& command) {
    std::string text = ".SS " + Call(command) + "\n" + Plain(command.meaning) + ".\n";
    for (const CommandOption& argument : command.arguments)
        text += Entry(Italic(argument.value), argument.meaning);
    for (const CommandOption& option : command.options) {
        if (IsHelp(option)) continue;  // every command has it: told once
        const std::string value = option.value.empty() ? "" : " " + Italic(option.value);
        text += Entry(Joined(option.names) + value, option.meaning);
    }
    return text;
}

constexpr std::string_view kAfterCommands =
    ".SH КОДЫ ВОЗВРАТА\n"
    ".TP\n\\fB0\\fR\nсделано, в том числе когда нового не нашлось\n"
    ".TP\n\\fB1\\fR\nсообщение об ошибке — в стандартном потоке ошибок\n"
    ".TP\n\\fB2\\fR\nневерный вызов: ничего не сделано\n"
    ".TP\n\\fB130\\fR\nпрервано с клавиатуры; загруженное до того остаётся\n"
    ".SH ОКРУЖЕНИЕ\n"
    ".TP\n\\fBTAV_SETTINGS\\fR\nфайл параметров вместо \\fI~/.config/tav/settings\\fR\n"
    ".SH ФАЙЛЫ\n"
    ".TP\n\\fIPlX_Base.mdb\\fR\nбаза данных в папке \\fBDataBasePath\\fR\n"
    ".TP\n\\fIPlX_Base.mdb\\-journal\\fR\n"
    "журнал незаконченного изменения: возвращает базу данных в целое состояние; не удалять\n"
    ".TP\n\\fIlistfiles.xml\\fR\nкаталог прочитанных документов в их папке (Windows\\-1251)\n"
    ".TP\n\\fI/etc/tav/\\fR\\fIПОЛЬЗОВАТЕЛЬ\\fR\\fI.conf\\fR\n"
    "ИНН и КПП импорта по расписанию: \\fBtav\\-import@\\fR\\fIПОЛЬЗОВАТЕЛЬ\\fR\\fB.timer\\fR\n";

}  // namespace

std::string ManualPage(const std::vector<Command>& commands) {
    const Command& program = commands.front();
    std::string page = ".\\\" Written by \"tav manual\".\n.TH TAV 1 \"\" \"tav " TAV_VERSION "\"\n.nh\n";
    page += ".SH ИМЯ\ntav \\- " + Plain(program.meaning) + "\n";
    page += ".SH ВЫЗОВ\n" + Bold("tav") + " " + Italic("КОМАНДА") + " [" + Italic("ПАРАМЕТРЫ") + "]\n";
    page += ".SH ПАРАМЕТРЫ\n";
    for (const CommandOption& option : program.options) page += Entry(Joined(option.names), option.meaning);
    page += ".PP\n" + Bold("-h") + " есть и у каждой команды.\n.SH КОМАНДЫ\n";
    for (const Command& command : commands) {
        if (!command.path.empty() && command.commands.empty()) page += AboutCommand(command);
    }
    return page.append(kAfterCommands);
}

}  // namespace tav::cli
