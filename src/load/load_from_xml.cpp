#include "load/load_from_xml.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

#include "common/concat.h"
#include "common/database_failure.h"
#include "common/guard.h"
#include "common/progress.h"
#include "convert/catalogue.h"
#include "convert/document_glance.h"
#include "db/connection.h"
#include "db/literals.h"
#include "load/account_maker.h"
#include "load/document_loader.h"
#include "load/known_files.h"
#include "load/rehearsals.h"
#include "platform/files.h"
#include "settings/session.h"
#include "xml/document.h"

namespace tav {
namespace {

// What reaches the disk together without a move folder: so many rows, or what comes in this time.
constexpr int kRowsPerUnit = 3000;
constexpr std::chrono::seconds kTimePerUnit(2);
// What a source file may need in the database, in bytes: a statement of 10,000 lines.
constexpr std::uint64_t kRoomForFile = 4 << 20;

// Rows above the highest number are what is left of headers that were deleted: their numbers are given
// again, and the rows of two documents must not mix.
void RemoveLeftovers(Connection& connection, std::int16_t highest_part) {
    for (const TextView table : {u"tav_operations", u"tav_acts"}) {
        SqlText sql(u"delete from ");
        connection.Execute(sql.Fixed(table).Fixed(u" where id>").Number(highest_part));
    }
}

// The headers of statements that another one of their series has superseded go with their rows once their
// file has left the folder. As long as it lies there the header says that it is known: also while it cannot
// be read, and is not listed for that. Other taxpayers' files lie in folders of their own.
void RemoveSuperseded(Connection& connection, const HeldFiles& held, const std::vector<TextView>& listed,
                      const ScanAccount* scan) {
    if (std::ranges::all_of(held, [](const auto& file) { return file.second.replaced.empty(); })) return;
    std::unordered_set<TextView, NameHash, SameName> there(listed.begin(), listed.end());
    if (scan != nullptr) {
        for (const ScannedFile& file : scan->files) there.insert(file.name);
    }
    std::vector<std::int16_t> departed;
    for (const auto& [name, file] : held) {
        if (!there.contains(name))
            departed.insert(departed.end(), file.replaced.begin(), file.replaced.end());
    }
    std::ranges::sort(departed);
    for (const std::int16_t id : departed) {
        SqlText header(u"delete * from tav_operations_header where isnull(vid) and not(isnull(h6)) and id=");
        connection.Execute(header.Number(id));
        for (const TextView table : {u"tav_operations", u"tav_acts"}) {
            SqlText sql(u"delete from ");
            connection.Execute(sql.Fixed(table).Fixed(u" where id=").Number(id));
        }
    }
}

// The first lines, and how many more there are.
Text FirstLines(const std::vector<Text>& lines) {
    constexpr std::size_t kShown = 10;
    Text text;
    for (std::size_t i = 0; i < std::min(kShown, lines.size()); ++i) {
        text.append(i > 0 ? u"\r\n" : u"").append(lines[i]);
    }
    if (lines.size() <= kShown) return text;
    return text.append(u"\r\n... и ещё ").append(Digits(static_cast<long long>(lines.size() - kShown)));
}

// The statements executed while this lives stay only when they are kept. The failure that ends it otherwise is what is
// shown; where the database cannot even go back, it does so as it is closed.
class Savepoint {
 public:
    explicit Savepoint(Connection& connection) : connection_(connection) { connection_.SetSavepoint(); }
    ~Savepoint() {
        if (!ended_) GuardedBy([&] { connection_.RollBackToSavepoint(); }, [](const Failure&) {});
    }
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;

    void Keep() {
        connection_.ReleaseSavepoint();
        ended_ = true;
    }
    void RollBack() {
        ended_ = true;
        connection_.RollBackToSavepoint();
    }

 private:
    Connection& connection_;
    bool ended_ = false;
};

class Load {
 public:
    Load(TextView catalogue, TextView inn, TextView kpp, TextView move_folder)
        : catalogue_(catalogue), taxpayer_(inn, kpp), move_folder_(WithSeparator(move_folder)) {
        account.inn = Trim(inn);
        account.kpp = Trim(kpp);
        account.imported = true;
    }

    void Run(TextView database);
    void Know(const ScanAccount* scan) { scan_ = scan; }

    ImportAccount account;
    Text unmovable;            // the file that could not be moved, if that ended the load
    std::vector<Text> failed;  // documents of which nothing was stored: "name: why"
    bool opened = false;       // the database

 private:
    void LoadNewFiles();
    const Catalogue& ReadCatalogue();
    std::vector<Text> NewFiles() const;
    void LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts);
    void TakeBack(const Text& name, Finding finding, const Failure& failure);
    void CheckRoom(const Text& name) const;
    void Move(const Text& name);
    void EndUnit();
    void TakeAccount();

    Text catalogue_;
    TaxpayerChoice taxpayer_;
    Text move_folder_;  // empty, or with its separator
    Connection connection_;
    std::vector<TextView> listed_;  // of the catalogue; in the end of the scan, if there was one
    const ScanAccount* scan_ = nullptr;
    const Catalogue* read_ = nullptr;
    std::optional<Catalogue> own_catalogue_;
    AccountMaker found_;
    // As the database is, but for files that have left the folder; none once a document has been stored.
    std::optional<HeldFiles> held_;

    // What has been stored and not yet reached the disk.
    using Clock = std::chrono::steady_clock;
    Clock::time_point unit_began_;
    std::vector<Text> unit_files_;
    int unit_documents_ = 0;
    int unit_rows_ = 0;
};

void Load::Run(TextView database) {
    if (!move_folder_.empty()) MakeFolders(move_folder_);
    connection_.CursorLocation = 3;
    connection_.Open(ConnectionString(database));
    opened = true;
    try {
        LoadNewFiles();
        EndUnit();
    } catch (...) {
        // What was loaded before stays.
        GuardedBy([&] { EndUnit(); }, [](const Failure&) {});
        held_.reset();
        TakeAccount();
        // A message that waits for somebody does not keep others from the database.
        GuardedBy([&] { connection_.Close(); }, [](const Failure&) {});
        throw;
    }
    TakeAccount();
    connection_.Close();
}

void Load::LoadNewFiles() {
    held_ = ReadHeldFiles(connection_, taxpayer_);
    const Recordset highest = connection_.Execute(u"select max(id), max(vid) from tav_operations_header");
    const PartLoader::Numbers numbers{Counter(highest.Field(0)), Counter(highest.Field(1))};
    PartLoader parts(connection_, numbers);

    const Catalogue& catalogue = ReadCatalogue();
    const std::vector<Text> names = NewFiles();

    RemoveLeftovers(connection_, numbers.part.value());
    RemoveSuperseded(connection_, *held_, listed_, scan_);
    // The import folder itself is no archive: what is in it stays there.
    if (SameFolder(move_folder_, FolderOf(catalogue_))) move_folder_.clear();
    int looked_at = 0;
    unit_began_ = Clock::now();
    for (const Text& name : names) {
        CurrentProgress().SetLoaded(looked_at++, static_cast<int>(names.size()));
        CurrentProgress().ProcessEvents();
        LoadFile(catalogue, name, parts);
        // A document has a row of its own.
        const bool is_long = unit_rows_ + unit_documents_ >= kRowsPerUnit;
        if (is_long || Clock::now() - unit_began_ >= kTimePerUnit) EndUnit();
    }
}

// The one that the scan has just read, if there is one.
const Catalogue& Load::ReadCatalogue() {
    if (scan_ != nullptr && scan_->read) {
        read_ = &*scan_->read;
    } else {
        read_ = &own_catalogue_.emplace(Catalogue::Load(catalogue_));
    }
    listed_.assign(read_->CurrentFiles().begin(), read_->CurrentFiles().end());
    return *read_;
}

std::vector<Text> Load::NewFiles() const {
    std::vector<Text> names;
    for (const TextView name : listed_) {
        if (!held_->contains(name)) names.emplace_back(name);
    }
    return names;
}

// Only what has reached the disk is said to be loaded.
void Load::EndUnit() {
    const auto clear = [&] {
        unit_files_.clear();
        unit_documents_ = unit_rows_ = 0;
        unit_began_ = Clock::now();
    };
    try {
        connection_.EndUnit();
    } catch (...) {
        for (const Text& name : unit_files_) found_.Forget(name);
        clear();
        throw;
    }
    account.documents += unit_documents_;
    account.rows += unit_rows_;
    clear();
}

// The database has the last word about what it holds, also after a failure; only when it cannot be asked any
// more it is passed over.
void Load::TakeAccount() {
    GuardedBy(
        [&] {
            if (!held_) held_ = ReadHeldFiles(connection_, taxpayer_);
            if (read_ != nullptr) Rehearsals(connection_, *read_, taxpayer_, found_).OfHeld(*held_);
        },
        [](const Failure&) {});
    const HeldFiles held = std::move(held_).value_or(HeldFiles());
    if (scan_ != nullptr) {
        listed_.clear();
        listed_.reserve(scan_->files.size());
        for (const ScannedFile& file : scan_->files) {
            listed_.emplace_back(file.name);
            found_.AddScanned(file, held);
        }
        account.notices = NoticesOf(*scan_);
    }
    account.files = found_.FilesOf(listed_, held);
}

// A failure of the document undoes the document; one of the database ends the load.
void Load::LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts) {
    CheckRoom(name);
    const PartLoader::Numbers before = parts.numbers();
    DocumentLoader::Taken taken;
    Savepoint savepoint(connection_);
    try {
        taken = DocumentLoader(taxpayer_, parts, found_).Take(catalogue, name);
        if (!taken.any) {
            const auto entries = catalogue.EntriesOf(name);
            const bool cut_off = !entries.empty() && entries.front()->Has(EntryNote::CutOff);
            found_.Add(name, {Finding::NotRecognised, WhyNothing(FolderOf(catalogue_) + name, cut_off)});
        }
        savepoint.Keep();
    } catch (const XmlFailure& failure) {
        savepoint.RollBack();
        return TakeBack(name, Finding::Unreadable, failure);
    } catch (...) {
        const Failure failure = CurrentFailure();
        if (ConcernsDatabase()) {
            found_.Forget(name);
            throw failure.In(name);
        }
        savepoint.RollBack();
        parts.GoOnFrom(before);
        return TakeBack(name, Finding::Failed, failure);
    }
    unit_documents_ += taken.documents;
    unit_rows_ += taken.rows;
    if (taken.documents > 0) {
        held_.reset();
        found_.Stored(name);
        unit_files_.push_back(name);
    }
    if (!taken.own || move_folder_.empty()) return;
    EndUnit();
    Move(name);
}

void Load::TakeBack(const Text& name, Finding finding, const Failure& failure) {
    found_.Forget(name);
    found_.Add(name, {finding, failure.description()});
    failed.push_back(Concat(name, u": ", failure.description()));
}

void Load::CheckRoom(const Text& name) const {
    if (connection_.RoomLeft() >= kRoomForFile) return;
    throw Failure(Concat(u"В файле базы данных не осталось места, импорт остановлен перед файлом ", name,
                         u". Очистите базу данных или сожмите её файл"));
}

// The file in the move folder is replaced by one rename. A source that is gone leaves it alone; a name that
// is not bare would lead out of the folders.
void Load::Move(const Text& name) {
    const Text source = FolderOf(catalogue_).append(name);
    if (NameOf(name) != name || !FileExists(source)) return;
    try {
        MoveFileOver(source, move_folder_ + name);
    } catch (const Failure& failure) {
        const RunTimeError error = failure.error();
        if (error == RunTimeError::PermissionDenied || error == RunTimeError::PathFileAccess)
            unmovable = name;
        throw;
    }
    ++account.moved;
}

}  // namespace

ImportAccount LoadFromXml(TextView catalogue, TextView database, TextView inn, TextView kpp,
                          TextView move_folder, const ScanAccount* scan) {
    constexpr TextView kTitle = u"Ошибка в функции LoadFromXml";
    Load load(catalogue, inn, kpp, move_folder);
    load.Know(scan);
    GuardedBy(
        [&] {
            load.Run(database);
            load.account.complete = true;
        },
        [&](const Failure& failure) {
            load.account.database_failed = load.unmovable.empty() && (!load.opened || ConcernsDatabase());
            if (load.unmovable.empty()) {
                ShowFailure(kTitle, failure);
            } else {
                ShowMessage(u"Запрет",
                            Concat(u"Файл ", load.unmovable, u" используется и не может быть перемещён"));
            }
        });
    if (!load.failed.empty()) ShowFailure(kTitle, Failure(FirstLines(load.failed)));
    return std::move(load.account);
}

}  // namespace tav
