// Sample documents as the tax service delivers them, and what a reader has to find in them.
//
// A document is made from a model (taxpayer, tax, period, operations) that is written twice: as the bytes of
// the file, and as `parts`, the fields the catalogue entry of that file must hold. Nothing in `parts` is read
// back from the bytes, so a test may compare the two.
//
// The same options give the same bytes on every machine: the generator has random numbers of its own.
// Organisations, their numbers and their amounts are invented.
//
// Texts are those of the catalogue: what Windows-1251 makes of them, the minus sign a "-",
// the spaces between thousands U+00A0. Money is in kopecks. Dates must exist, a period must
// not end before it begins, counts must not be negative: std::invalid_argument otherwise. A
// folder or file that cannot be written is a std::filesystem::filesystem_error that names it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/date.h"
#include "common/text.h"

namespace tav::samples {

// Elements in the order of the catalogue: name ("h01", "p13", "p0211", "perb") and text.
using Fields = std::vector<std::pair<std::string, Text>>;

// By kind of payment: tax, penalty interest, fine.
using Money = std::array<long long, 3>;

struct Sums {
    Money opening{};  // negative is a debt
    Money charged{};
    Money paid{};
    Money closing{};  // opening + paid - charged
};

struct Part {
    Text type;  // "выписка" or "акт"
    Fields head;
    // A statement's table lines; the numbering line under the column titles is an empty one. An act has one,
    // of all its amounts.
    std::vector<Fields> rows;
    Sums sums;
};

struct Document {
    Text name;  // without a folder
    std::string bytes;
    std::vector<Part> parts;
};

struct Taxpayer {
    Text inn;
    Text kpp;
    Text name;
};

struct Tax {
    Text kbk;
    Text name;
    Text budget;
};

struct Period {
    CivilDate begin;
    CivilDate end;
};

// How characters outside ASCII are written in RTF.
enum class Letters {
    LowerHex,    // \'e0
    UpperHex,    // \'E0
    Unicode,     // \u1072?
    UnicodeHex,  // \u1072\'e0
    Raw,         // the byte itself
};

// Where \page is put when a sheet is full.
enum class Cut {
    None,           // nowhere: one endless sheet
    BetweenGroups,  // outside every group
    InsideGroup,    // in a group that the next sheet closes
};

const Taxpayer& SampleTaxpayer();
// A division of the sample taxpayer: same INN, own KPP.
const Taxpayer& DivisionTaxpayer();
const Taxpayer& OtherTaxpayer();
// A sole trader: an INN of 12 digits.
const Taxpayer& SoleTrader();
// Taxes with their KBK codes, never fewer than six.
const std::vector<Tax>& Taxes();

struct StatementOptions {
    Text name = u"statement.rtf";
    Taxpayer taxpayer = SampleTaxpayer();
    Tax tax = Taxes()[0];
    Text okato = u"45280000000";
    Text status = u"налогоплательщик";
    Text currency = u"Российский рубль";
    Period period{{2010, 1, 1}, {2010, 12, 31}};
    int rows = 12;   // operations, besides the balance lines
    int layout = 1;  // 1 or 2: the two versions of the form, which differ in six column positions
    Cut cut = Cut::BetweenGroups;
    Letters letters = Letters::LowerHex;
    bool all_zero = false;          // every amount is 0.00
    bool repeat_numbering = false;  // the numbering line again on every sheet
    int second_line_every = 5;  // every so many operations the document's kind has a second line; 0: never
    int parts = 1;              // statements in the file, of this tax and the ones after it in Taxes()
    std::uint64_t seed = 1;
};

struct ActOptions {
    Text name = u"act.rtf";
    Taxpayer taxpayer = SampleTaxpayer();
    Tax tax = Taxes()[0];
    Text okato = u"45280000000";
    Text authority = u"0099";
    CivilDate drawn_up{2011, 1, 17};
    Period period{{2010, 1, 1}, {2010, 12, 31}};
    bool all_zero = false;
    Cut cut = Cut::BetweenGroups;         // RTF only
    Letters letters = Letters::LowerHex;  // RTF only
    bool utf8 = false;                    // XML only: UTF-8 instead of Windows-1251
    bool sparse = false;  // XML only: section 2 leaves out the lines that are zero, but for the last
    // Acts in an RTF file, one after the other; sections 2 of an XML file, of which the first one counts.
    int parts = 1;
    std::uint64_t seed = 1;
};

Document MakeStatement(const StatementOptions& options);
Document MakeActRtf(const ActOptions& options);
Document MakeActXml(const ActOptions& options);
// A sheet of plain text, which is neither a statement nor an act.
Document MakeLetter(const Text& name);

// About twenty files: documents of the sample taxpayer in both layouts, of several sheets, with a period that
// crosses the year end, two statements of one series of which the second supersedes the first, one without
// any amount, one of a tax whose name is longer than a column of the database, one whose taxpayer's name has
// "&" and apostrophes, files of which one's name ends with another's ("1.rtf" and "11.rtf"), acts as RTF and
// as XML, a division. Beside them a statement of another taxpayer, an act of a sole trader, a letter and an
// empty file.
std::vector<Document> SampleSet();

// What a reader has to return for the document, as the bytes of the catalogue, without indentation.
std::string CatalogueEntry(const Document& document);
// A whole catalogue of the documents; `actual` lists those whose names end in ".rtf".
std::string Catalogue(const std::vector<Document>& documents);

// Writes a document into a folder, which is made when it is missing.
void WriteDocument(TextView folder, const Document& document);
// SampleSet, written into the folder.
std::vector<Document> SampleFolder(TextView folder);
// `count` statements of so many operations of the sample taxpayer, with names of equal length, written into the
// folder. They are all of different series: no one supersedes another.
void ManyFiles(TextView folder, int count, int rows = 3, std::uint64_t seed = 1);

}  // namespace tav::samples
