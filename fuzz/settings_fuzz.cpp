// Any bytes as the settings file: every setting is read; one that could be written reads back, and the rest stays.
#include "fuzz.h"
#include "settings/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tav::fuzz::Scratch file("settings");
    ::setenv("TAV_SETTINGS", tav::ToUtf8(file.path()).c_str(), 1);
    file.Write(tav::fuzz::Bytes(data, size));
    for (const tav::Setting& setting : tav::Settings())
        tav::fuzz::Try([&] { tav::ReadSetting(setting.name); });
    return tav::fuzz::Try([&] {
        const tav::Text before = tav::SettingText(u"ExportPath");
        const tav::Text value = tav::FromUtf8(tav::fuzz::Bytes(data, size));
        if (!tav::WriteSetting(u"ImportPath", value)) return;
        if (tav::SettingText(u"ImportPath") != value || tav::SettingText(u"ExportPath") != before)
            std::abort();
    });
}
