#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "samples/generator.h"
#include "samples/model.h"

namespace tav::samples {
namespace {

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::filesystem::filesystem_error("cannot be written", path,
                                                std::make_error_code(std::errc::io_error));
}

constexpr Period kHalfYear{{2010, 1, 1}, {2010, 6, 30}};
constexpr Period kYear{{2010, 1, 1}, {2010, 12, 31}};
constexpr Period kNextYear{{2011, 1, 1}, {2011, 9, 30}};
constexpr Period kWinter{{2010, 10, 1}, {2011, 3, 31}};

// A name of 300 characters: the columns of a new database take 255.
const Tax& TaxOfLongName() {
    static const Tax tax{
        u"18210102010011000110",
        u"Налог на доходы физических лиц с доходов, источником которых является налоговый агент, за исключением доходов, в отношении которых исчисление и уплата налога осуществляются в соответствии со статьями 227, 227.1 и 228 Налогового кодекса РФ (суммы платежей, перерасчёты, недоимка, задолженность и пени)",
        u"Бюджет субъекта РФ"};
    return tax;
}

// The sample taxpayer under another name.
Taxpayer NameWithMarks() {
    Taxpayer taxpayer = SampleTaxpayer();
    taxpayer.name = u"ООО \"Д'Арк & О'Нил\"";
    return taxpayer;
}

std::vector<StatementOptions> SampleStatements() {
    const auto& taxes = Taxes();
    return {
        {.name = u"1.rtf", .tax = taxes[6], .period = kYear, .rows = 6, .seed = 21},
        {.name = u"11.rtf", .tax = taxes[6], .period = kNextYear, .rows = 6, .seed = 22},
        {.name = u"Выписка 01 прибыль ФБ 1 полугодие 2010.rtf",
         .tax = taxes[0],
         .period = kHalfYear,
         .rows = 8},
        {.name = u"Выписка 02 прибыль ФБ 2010.rtf", .tax = taxes[0], .period = kYear, .rows = 16, .seed = 2},
        {.name = u"Выписка 03 прибыль РФ 2010.rtf",
         .tax = taxes[1],
         .period = kYear,
         .layout = 2,
         .letters = Letters::UpperHex,
         .seed = 3},
        {.name = u"Выписка 04 НДС 2010.rtf",
         .tax = taxes[2],
         .period = kYear,
         .rows = 60,
         .layout = 2,
         .cut = Cut::InsideGroup,
         .letters = Letters::UnicodeHex,
         .seed = 4},
        {.name = u"Выписка 05 имущество 2010.rtf",
         .tax = taxes[3],
         .period = kYear,
         .rows = 45,
         .letters = Letters::Raw,
         .seed = 5},
        {.name = u"Выписка 06 транспорт 2010-2011.rtf",
         .tax = taxes[4],
         .period = kWinter,
         .letters = Letters::Unicode,
         .seed = 6},
        {.name = u"Выписка 07 земля 2010.rtf", .tax = taxes[5], .period = kYear, .all_zero = true, .seed = 7},
        {.name = u"Выписка 08 НДС 2011.rtf", .tax = taxes[2], .period = kNextYear, .seed = 8},
        {.name = u"Выписка 09 отделение имущество 2010.rtf",
         .taxpayer = DivisionTaxpayer(),
         .tax = taxes[3],
         .okato = u"45290000000",
         .period = kYear,
         .seed = 9},
        {.name = u"Выписка 10 другой плательщик.rtf",
         .taxpayer = OtherTaxpayer(),
         .tax = taxes[2],
         .period = kYear,
         .seed = 10},
        {.name = u"Выписка 11 НДФЛ 2010.rtf",
         .tax = TaxOfLongName(),
         .okato = u"45286000000",
         .period = kYear,
         .rows = 6,
         .seed = 23},
        {.name = u"Выписка 12 имя со знаками 2010.rtf",
         .taxpayer = NameWithMarks(),
         .tax = taxes[4],
         .okato = u"45286000000",
         .period = kYear,
         .rows = 6,
         .seed = 25},
    };
}

}  // namespace

std::vector<Document> SampleSet() {
    const auto& taxes = Taxes();
    std::vector<Document> documents;
    documents.push_back(
        MakeActXml({.name = u"Акт 01 прибыль ФБ 2010.xml", .tax = taxes[0], .parts = 2, .seed = 11}));
    documents.push_back(MakeActRtf({.name = u"Акт 02 НДС 2010.rtf", .tax = taxes[2], .seed = 12}));
    documents.push_back(MakeActRtf({.name = u"Акт 03 имущество и транспорт 2010.rtf",
                                    .tax = taxes[3],
                                    .cut = Cut::InsideGroup,
                                    .letters = Letters::UnicodeHex,
                                    .parts = 2,
                                    .seed = 13}));
    documents.push_back(MakeActRtf(
        {.name = u"Акт 04 предприниматель 2010.rtf", .taxpayer = SoleTrader(), .tax = taxes[6], .seed = 14}));
    for (const StatementOptions& options : SampleStatements()) documents.push_back(MakeStatement(options));
    documents.push_back(MakeLetter(u"Письмо.rtf"));
    documents.push_back({u"Пустой.rtf", {}, {}});
    std::ranges::sort(documents, {}, [](const Document& document) { return UpperCase(document.name); });
    return documents;
}

void WriteDocument(TextView folder, const Document& document) {
    const std::filesystem::path path(folder);
    std::filesystem::create_directories(path);
    Write(path / document.name, document.bytes);
}

std::vector<Document> SampleFolder(TextView folder) {
    std::vector<Document> documents = SampleSet();
    for (const Document& document : documents) WriteDocument(folder, document);
    return documents;
}

void ManyFiles(TextView folder, int count, int rows, std::uint64_t seed) {
    CheckCount(count, "files");
    const std::filesystem::path path(folder);
    std::filesystem::create_directories(path);
    for (int i = 0; i < count; ++i) {
        StatementOptions options{.name = u"statement" + Digits(i, 7) + u".rtf",
                                 .okato = u"0" + Digits(i, 10),
                                 .rows = rows,
                                 .seed = seed + static_cast<std::uint64_t>(i)};
        options.tax = Taxes()[static_cast<std::size_t>(i) % Taxes().size()];
        Write(path / options.name, MakeStatement(options).bytes);
    }
}

}  // namespace tav::samples
