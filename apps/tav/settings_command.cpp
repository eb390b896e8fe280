// tav settings: get, set, list.

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

void Set(const std::string& name, const std::string& value) {
    const Setting& setting = Known(name);
    // Both kinds of separators are understood in what a person types.
    const Text text = setting.name.ends_with(u"Path") ? UserPath(FromUtf8(value)) : FromUtf8(value);
    if (!WriteSetting(setting.name, text)) {
        ShowMessage(u"Параметры",
                    u"Параметр не записан: " + Text(setting.name) + u" (" + LastRegistryFailure() + u")");
    }
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
    get.add_option("NAME", *name, "Имя параметра")->required();
    get.callback([name] { PrintLine(SettingText(Known(*name).name)); });
    CLI::App& set = *settings.add_subcommand("set", "Записать параметр");
    set.add_option("NAME", *name, "Имя параметра")->required();
    set.add_option("VALUE", *value, "Значение")->required();
    set.callback([name, value] { Set(*name, *value); });
}

}  // namespace tav::cli
