// The component's settings and where its database lies.
#pragma once

#include <optional>
#include <span>

#include "common/text.h"
#include "platform/registry.h"

namespace tav {

enum class SettingKind { Any, Folder, Truth, Number };

struct Setting {
    TextView name;
    Hive hive;
    TextView key;
    RegistryType type;
    SettingKind kind;
    TextView meaning;  // for a person, in Russian
};

// Every setting there is: the component's own under the current
// user, the host's DataBasePath under the local machine.
std::span<const Setting> Settings();
// The setting of that name in any letter case, or nullptr.
const Setting* FindSetting(TextView name);

// A value as text, no value when it is absent. One that exists and cannot be read,
// or is no text, is a Failure that names it. `name` must be one of Settings().
std::optional<Text> ReadSetting(TextView name);
// The text of a value, empty when it is absent.
Text SettingText(TextView name);
// A switch as a 16-bit whole number, 0 when absent. Text that
// is no number is "Type mismatch", one too large "Overflow".
std::int16_t SettingSwitch(TextView name);
// "True", "-1", "1" and "Истина" are true, "False", "0",
// "Ложь" and an absent value false; else "Type mismatch".
bool SettingTruth(TextView name);
// Why a value cannot be what the setting means, for a person, in Russian; empty when it can.
Text WhyUnfit(const Setting& setting, TextView value);
// Writes with the setting's registry type; false when it could not be written.
bool WriteSetting(TextView name, TextView value);
// The setting is absent then; false when it could not be removed.
bool RemoveSetting(const Setting& setting);

// The fields of NameINNKPP ("name|INN|KPP"), which the host
// writes for the windows; empty where they are missing.
struct NamedTaxpayer {
    Text name;
    Text inn;
    Text kpp;
};
NamedTaxpayer TaxpayerSetting();

// The folder reports are written to: ExportPath, else the temporary folder.
Text ExportFolder();

// The full path of the database: the file set with UseDatabase, else PlX_Base.mdb in the host's DataBasePath,
// else beside the component. Not checked, not cached. On an unexpected failure: a message and empty text.
Text getbase();
// A database file that wins over the settings ("--database FILE"); with empty text the settings count again.
void UseDatabase(TextView path);

}  // namespace tav
