#include "settings/settings.h"

#include <array>

#include "common/concat.h"
#include "common/get_next.h"
#include "common/guard.h"
#include "common/regional.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace tav {
namespace {

constexpr TextView kOwnKey = u"SOFTWARE\\VELSKAR\\PLX\\TAV_OperationImport\\";
constexpr TextView kHostKey = u"SOFTWARE\\VELSKAR\\Kventa2\\General";

constexpr auto kUser = Hive::CurrentUser;
constexpr auto kExpand = RegistryType::ExpandString;

constexpr std::array<Setting, 14> kSettings = {{
    {u"ImportPath", kUser, kOwnKey, kExpand, SettingKind::Folder, u"папка, из которой читаются документы"},
    {u"ExportPath", kUser, kOwnKey, kExpand, SettingKind::Folder, u"папка справок; пусто — временная папка"},
    {u"OutPath", kUser, kOwnKey, kExpand, SettingKind::Folder,
     u"папка, куда переносятся загруженные документы; пусто — TEMP"},
    {u"ChkOut", kUser, kOwnKey, kExpand, SettingKind::Truth,
     u"переносить ли загруженные документы (True или False)"},
    {u"NameINNKPP", kUser, kOwnKey, kExpand, SettingKind::Any,
     u"налогоплательщик, показываемый в справках: наименование|ИНН|КПП"},
    {u"ChkFilter", kUser, kOwnKey, kExpand, SettingKind::Truth, u"состояние флажка в окне выбора периода"},
    {u"SpVupis", kUser, kOwnKey, kExpand, SettingKind::Number,
     u"1 — загружать и выписки, в которых все суммы нулевые"},
    {u"SpAct", kUser, kOwnKey, kExpand, SettingKind::Number,
     u"1 — загружать и акты, в которых все суммы нулевые"},
    {u"SpVupisOb", kUser, kOwnKey, kExpand, SettingKind::Number,
     u"1 — о нулевой выписке судить только по строкам с датой"},
    {u"SpActOb", kUser, kOwnKey, kExpand, SettingKind::Number,
     u"1 — о нулевом акте судить только по разделу 2"},
    {u"ActXml", kUser, kOwnKey, kExpand, SettingKind::Truth,
     u"1 — читать из папки и акты в формате XML (файлы *.xml)"},
    {u"MainWindow", kUser, kOwnKey, kExpand, SettingKind::Any, u"размер главного окна и ширина его столбцов"},
    {u"OpenAs", kUser, kOwnKey, kExpand, SettingKind::Any,
     u"что открывать из справок: doc или pdf; пусто — по программе для .doc (только Linux)"},
    {u"DataBasePath", Hive::LocalMachine, kHostKey, RegistryType::String, SettingKind::Folder,
     u"папка базы данных PlX_Base.mdb"},
}};

constexpr TextView kDatabaseName = u"PlX_Base.mdb";

Text& ChosenDatabase() {
    static Text path;
    return path;
}

// No path is longer, nor anything else that is meant here.
constexpr std::size_t kLongestText = 32767;

bool IsSwitch(std::int64_t number) {
    return number >= INT16_MIN && number <= INT16_MAX;
}

// No value when the text is no truth value.
std::optional<bool> TruthOf(TextView text) {
    if (text.empty() || EqualNoCase(text, u"False") || EqualNoCase(text, u"Ложь")) return false;
    if (EqualNoCase(text, u"True") || EqualNoCase(text, u"Истина")) return true;
    const auto number = ParseNumber(text);
    if (!number) return std::nullopt;
    return *number != 0;
}

}  // namespace

std::span<const Setting> Settings() {
    return kSettings;
}

const Setting* FindSetting(TextView name) {
    for (const Setting& setting : kSettings) {
        if (EqualNoCase(setting.name, name)) return &setting;
    }
    return nullptr;
}

std::optional<Text> ReadSetting(TextView name) {
    const Setting* setting = FindSetting(name);
    if (setting == nullptr) throw Failure(RunTimeError::InvalidProcedureCall, name);
    RegistryValue value;
    if (!ReadRegistry(setting->hive, setting->key, setting->name, value)) {
        if (LastRegistryResult() == kRegistryAbsent) return std::nullopt;
        throw Failure(LastRegistryFailure());
    }
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        return Digits(static_cast<std::int32_t>(*number));
    const Text* text = std::get_if<Text>(&value);
    if (text == nullptr) throw Failure(RunTimeError::TypeMismatch, setting->name);
    if (text->size() > kLongestText) throw Failure(RunTimeError::Overflow, setting->name);
    return *text;
}

Text SettingText(TextView name) {
    return ReadSetting(name).value_or(Text());
}

std::int16_t SettingSwitch(TextView name) {
    const Text text = SettingText(name);
    if (text.empty()) return 0;
    const auto number = ParseInteger(text);
    if (!number) throw Failure(RunTimeError::TypeMismatch, Concat(name, u" = ", text));
    if (!IsSwitch(*number)) throw Failure(RunTimeError::Overflow, name);
    return static_cast<std::int16_t>(*number);
}

bool SettingTruth(TextView name) {
    const Text text = SettingText(name);
    const auto truth = TruthOf(text);
    if (!truth) throw Failure(RunTimeError::TypeMismatch, Concat(name, u" = ", text));
    return *truth;
}

Text WhyUnfit(const Setting& setting, TextView value) {
    if (value.empty()) return u"пустое значение (убрать параметр: tav settings unset)";
    if (setting.kind == SettingKind::Truth && !TruthOf(value)) return u"нужно True или False";
    if (setting.kind != SettingKind::Number) return {};
    const auto number = ParseInteger(value);
    return number && IsSwitch(*number) ? Text() : Text(u"нужно целое число, 0 или 1");
}

bool WriteSetting(TextView name, TextView value) {
    const Setting* setting = FindSetting(name);
    if (setting == nullptr) throw Failure(RunTimeError::InvalidProcedureCall, name);
    return WriteRegistry(setting->hive, setting->key, setting->name, Text(value), setting->type);
}

bool RemoveSetting(const Setting& setting) {
    return RemoveFromRegistry(setting.hive, setting.key, setting.name);
}

NamedTaxpayer TaxpayerSetting() {
    const Text setting = SettingText(u"NameINNKPP");
    TextView rest = setting;
    NamedTaxpayer taxpayer;
    for (Text* field : {&taxpayer.name, &taxpayer.inn, &taxpayer.kpp}) *field = GetNext(rest, u"|");
    return taxpayer;
}

Text ExportFolder() {
    Text folder = SettingText(u"ExportPath");
    return folder.empty() ? ReportFolder() : folder;
}

Text getbase() {
    Text path;
    Guarded(u"Ошибка в функции getbase", [&] {
        if (!ChosenDatabase().empty()) {
            path = ChosenDatabase();
            return;
        }
        const std::optional<Text> folder = ReadSetting(u"DataBasePath");
        path = folder ? *folder : ComponentFolder();
        if (!path.ends_with(kPathSeparator)) path += kPathSeparator;
        path += kDatabaseName;
    });
    return path;
}

void UseDatabase(TextView path) {
    ChosenDatabase() = path;
}

}  // namespace tav
