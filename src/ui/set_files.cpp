#include "ui/set_files.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "common/aside.h"
#include "common/concat.h"
#include "common/guard.h"
#include "db/holdings.h"
#include "db/literals.h"
#include "load/account_of_folder.h"
#include "load/known_files.h"
#include "platform/files.h"
#include "reports/page_names.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/folder_rows.h"

namespace tav {
namespace {

constexpr TextView kGap = u"   ";
constexpr TextView kTo = u" - ";

Text shown_failure;
ImportAccount folder_account;
Text folder_counts;

// "18210101011011000110   45286552000   201101 - 201103 (01.01.2011 - 31.03.2011) Налог на прибыль Выписка".
// Up to the months the row, its gaps turned into "_", is how the name of its page ends in the folder of
// reports.
Text RowOf(const HeldDocument& document) {
    return Concat(document.code, kGap, document.okato, kGap, YearAndMonth(document.begin), kTo,
                  YearAndMonth(document.end), u" (", isns(document.begin), kTo, isns(document.end), u") ",
                  document.tax, document.Superseded() ? u" (заменена)" : u"",
                  document.act ? u" Акт" : u" Выписка");
}

ListRow ListRowOf(const HeldDocument& document) {
    const Text row = RowOf(document);
    const Finding state = document.Superseded() ? Finding::Superseded : Finding::Loaded;
    return {row,
            Concat(row, u"\nКПП: ", document.kpp, u"\nФайл: ", document.file_name),
            {document.code, document.okato, Concat(isns(document.begin), kTo, isns(document.end)),
             document.tax, document.act ? u"Акт" : u"Выписка", Text(TextOf(state).state), document.kpp},
            PictureOf(state)};
}

std::vector<HeldDocument> DocumentsOf(Connection& connection, TextView inn, TextView kpp) {
    std::vector<HeldDocument> documents;
    const Recordset highest = connection.Execute(u"select max(id), max(vid) from tav_operations_header");
    if (IsNull(highest.Field(0))) return documents;

    const bool any_kpp = kpp.empty() || TakesEveryKpp(inn, kpp);
    for (const Text& one : InnsOf(inn)) {
        SqlText sql(
            u"select filename, vid, perb, pere, h2, h3, h6, h7,h8, h10  from tav_operations_header where "
            u"h1='");
        sql.Value(one);
        if (!any_kpp) sql.Fixed(u"' and h2='").Value(kpp);
        sql.Fixed(u"' order by h7, h10, perb");
        for (Recordset rows = connection.Execute(sql); !rows.Eof(); rows.MoveNext()) {
            HeldDocument document = HeldDocumentOf(rows);
            document.inn = one;
            documents.push_back(std::move(document));
        }
    }
    return documents;
}

Text TaxpayerName(const std::vector<HeldDocument>& documents) {
    Text name = TaxpayerSetting().name;
    for (const HeldDocument& document : documents) {
        if (!name.empty()) break;
        name = document.name;
    }
    return ReplaceAll(name, u"*", u" ");  // an asterisk ends the part
}

Text CountsOf(const std::vector<HeldDocument>& documents) {
    const HoldingCounts counts = CountHoldings(documents);
    return Concat(u"Выписок в базе данных: ", Digits(counts.statements), u"\r\nАктов в базе данных: ",
                  Digits(counts.acts), u"\r\nНе перекрываются интервалами: ", Digits(counts.alone));
}

Text FolderCounts(TextView folder, std::size_t files) {
    Text counts = Concat(u"Файлов в папке: ", Digits(static_cast<long long>(files)));
    const bool missing = !Trim(folder).empty() && !FolderExists(folder);
    return missing ? Concat(counts, u" (папка не найдена)") : counts;
}

Text LeftToLoad(const std::vector<FolderRow>& files, const KnownFiles& known) {
    long long to_load = 0;
    for (const FolderRow& row : files) to_load += known.contains(UpperCase(row.name)) ? 0 : 1;
    return Concat(u"\r\nПодлежат загрузке: ", Digits(to_load));
}

void ShowOnce(const Failure& failure, TextView database) {
    if (failure.description() == shown_failure) return;
    shown_failure = failure.description();
    if (failure.error() == RunTimeError::PermissionDenied) {
        ShowFileInUse(failure.detail().empty() ? database : TextView(failure.detail()));
    } else {
        ShowFailure(u"Ошибка в функции SetFiles", failure);
    }
}

// What is read for a list, before anything is shown of it.
struct Reading {
    Text name;
    Text base_counts;
    Text file_counts;
    FolderListing listing;
    ImportAccount account;
    std::vector<ListRow> rows;  // of the database; then those that were shown before
};

std::vector<HeldDocument> ReadDocuments(Connection& connection, TextView database, TextView inn, TextView kpp,
                                        Reading& reading) {
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    std::vector<HeldDocument> documents = DocumentsOf(connection, inn, kpp);
    reading.name = TaxpayerName(documents);
    reading.base_counts = CountsOf(documents);
    return documents;
}

void ReadStates(TextView folder, TextView database, TextView inn, TextView kpp, Reading& reading) {
    const std::vector<FolderRow>& files = reading.listing.files;
    Connection connection;
    ReadDocuments(connection, database, inn, kpp, reading);
    if (!reading.file_counts.empty()) reading.file_counts += LeftToLoad(files, ReadKnownFiles(connection));
    connection.Close();
    if (!files.empty()) reading.account = AccountOfFolder(folder, database, inn, kpp);
}

bool IsAsBefore(const Reading& reading) {
    return !reading.file_counts.empty() && folder_counts.starts_with(reading.file_counts) &&
           std::ranges::equal(reading.listing.files, FolderRows(), {}, &FolderRow::path, &FolderRow::path);
}

// Neither has to do with what befalls the other: of a folder and the database, one may be out of reach.
void ReadFolder(TextView folder, TextView database, TextView inn, TextView kpp,
                const std::function<bool()>& go_on, Reading& reading) {
    std::optional<Failure> failure;
    const auto keep = [&](const Failure& last) { failure = last; };
    GuardedBy(
        [&] {
            reading.listing = ListFolder(folder, go_on);
            reading.file_counts = FolderCounts(folder, reading.listing.files.size());
        },
        keep);
    GuardedBy([&] { ReadStates(folder, database, inn, kpp, reading); }, keep);
    if (failure && failure->error() == RunTimeError::FileInUse && IsAsBefore(reading)) {
        reading.account = folder_account;
        reading.file_counts = folder_counts;
    }
    AddStates(reading.listing, reading.account);
    if (failure) throw *failure;
}

void ReadDatabase(TextView database, TextView inn, TextView kpp, Reading& reading) {
    Connection connection;
    const std::vector<HeldDocument> documents = ReadDocuments(connection, database, inn, kpp, reading);
    reading.rows.reserve(documents.size());
    for (const HeldDocument& document : documents) reading.rows.push_back(ListRowOf(document));
}

}  // namespace

Text SetFiles(ListBox& list, FilesOf source, TextView path, TextView inn, TextView kpp, bool& busy,
              const std::function<bool()>& go_on) {
    const auto shared = std::make_shared<Reading>();
    Reading& reading = *shared;
    const Text database = source == FilesOf::Database ? Text(path) : getbase();
    const auto read = [shared, source, folder = Text(path), database, inn = Text(inn), kpp = Text(kpp),
                       go_on] {
        if (source == FilesOf::Folder) {
            ReadFolder(folder, database, inn, kpp, go_on, *shared);
        } else {
            ReadDatabase(database, inn, kpp, *shared);
        }
    };
    busy = false;
    GuardedBy(
        [&] {
            RunAside(read);
            shown_failure.clear();
        },
        [&](const Failure& failure) {
            busy = failure.error() == RunTimeError::FileInUse;
            if (!busy) ShowOnce(failure, database);
        });
    if (source == FilesOf::Folder) {
        reading.rows = list.SetRows(std::move(reading.listing.shown));
        std::swap(folder_account, reading.account);
        folder_counts = reading.file_counts;
        SwapListing(reading.listing);
    } else if (!busy) {
        reading.rows = list.SetRows(std::move(reading.rows));  // none after a failure
    }
    const Text information = Concat(reading.name, u"*", reading.base_counts, u"*", reading.file_counts);
    RunAside([shared] { *shared = {}; });  // many thousand rows take a while to go
    return information;
}

const ImportAccount& FolderAccount() {
    return folder_account;
}

Text FileOfRow(int row) {
    const std::vector<FolderRow>& rows = FolderRows();
    return row < 0 || static_cast<std::size_t>(row) >= rows.size() ? Text()
                                                                   : rows[static_cast<std::size_t>(row)].path;
}

void ShowFailuresAgain() {
    shown_failure.clear();
}

}  // namespace tav
