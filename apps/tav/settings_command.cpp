// tav settings: get, set, unset, list.

#include <memory>

#include "commands.h"
#include "common/guard.h"
#include "platform/files.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

const Setting& Known(const std::string& name) {
    const Setting* setting = FindSetting(FromUtf8(name));
    if (setting == nullptr) throw WrongUsage("нет такого параметра: " + name + " (см. tav settings list)");
    return *setting;
}

void List() {
    for (const Setting& setting : Settings()) {
        Text value;
        Guarded(u"Параметры", [&] { value = SettingText(setting.name); });
        PrintLine(Text(setting.name) + u" = " + value);
        PrintLine(u"    " + Text(setting.meaning));
    }
}

void ShowUnwritten(const Setting& setting) {
    ShowMessage(u"Параметры",
                u"Параметр не записан: " + Text(setting.name) + u" (" + LastRegistryFailure() + u")");
}

void Set(const std::string& name, const std::string& value) {
    const Setting& setting = Known(name);
    Text text = FromUtf8(value);
    const Text why = WhyUnfit(setting, text);
    if (!why.empty()) throw WrongUsage(ToUtf8(setting.name) + " = " + value + ": " + ToUtf8(why));
    // Both kinds of separators are understood in what a person types, from wherever it is typed.
    if (setting.kind == SettingKind::Folder) text = AbsolutePath(UserPath(text));
    if (!WriteSetting(setting.name, text)) ShowUnwritten(setting);
}

void Unset(const std::string& name) {
    const Setting& setting = Known(name);
    if (!RemoveSetting(setting)) ShowUnwritten(setting);
}

}  // namespace

void AddSettingsCommand(CLI::App& app, Context&) {
    CLI::App& settings = *app.add_subcommand("settings", "Параметры компонента");
    settings.require_subcommand(0, 1);
    settings.callback([&settings] {
        if (settings.get_subcommands().empty()) List();
    });
    settings.add_subcommand("list", "Показать все параметры")->callback(List);

    const auto name = std::make_shared<std::string>();
    const auto value = std::make_shared<std::string>();
    CLI::App& get = *settings.add_subcommand("get", "Показать один параметр");
    get.add_option("ИМЯ", *name, "Имя параметра")->required();
    get.callback([name] { PrintLine(SettingText(Known(*name).name)); });
    CLI::App& set = *settings.add_subcommand("set", "Записать параметр");
    set.add_option("ИМЯ", *name, "Имя параметра")->required();
    set.add_option("ЗНАЧЕНИЕ", *value, "Значение")->required();
    set.callback([name, value] { Set(*name, *value); });
    CLI::App& unset = *settings.add_subcommand("unset", "Убрать параметр: действует то, что без него");
    unset.add_option("ИМЯ", *name, "Имя параметра")->required();
    unset.callback([name] { Unset(*name); });
}

}  // namespace tav::cli
