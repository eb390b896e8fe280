#include "load/load_from_xml.h"

#include <optional>
#include <unordered_set>
#include <vector>

#include "common/guard.h"
#include "common/progress.h"
#include "convert/catalogue.h"
#include "convert/document_glance.h"
#include "db/connection.h"
#include "db/literals.h"
#include "load/account_maker.h"
#include "load/known_files.h"
#include "load/part_loader.h"
#include "load/taxpayer_choice.h"
#include "platform/files.h"
#include "settings/session.h"

namespace tav {
namespace {

// Without a move folder, several files reach the disk together: so many, or fewer with so many lines.
constexpr int kFilesPerUnit = 64;
constexpr int kRowsPerUnit = 20000;
// What a source file may need in the database, in bytes: a statement of 10,000 lines.
constexpr std::uint64_t kRoomForFile = 4 << 20;

Remark OtherTaxpayer(const Text& inn, const Text& kpp) {
    return {Finding::OtherTaxpayer, Text(u"ИНН ").append(inn).append(u", КПП ").append(kpp), inn, kpp};
}

// Rows above the highest number are what headers that were deleted left behind: their numbers are given
// again, and the rows of two documents must not mix.
void RemoveLeftovers(Connection& connection, std::int16_t highest_part) {
    for (const TextView table : {u"tav_operations", u"tav_acts"}) {
        SqlText sql(u"delete from ");
        connection.Execute(sql.Fixed(table).Fixed(u" where id>").Number(highest_part));
    }
}

// The headers of statements that another one of their series has superseded go with their rows once their
// file has left the folder. As long as it lies there the header says that it is known.
void RemoveSuperseded(Connection& connection, const std::vector<Text>& listed) {
    Recordset superseded = connection.Execute(
        u"select id, filename from tav_operations_header where isnull(vid) and not(isnull(h6))");
    if (superseded.Eof()) return;
    std::unordered_set<Text> there;
    for (const Text& name : listed) there.insert(UpperCase(name));
    for (; !superseded.Eof(); superseded.MoveNext()) {
        if (there.contains(UpperCase(isns(superseded.Field(1))))) continue;
        const std::int16_t id = Counter(superseded.Field(0)).value();
        SqlText header(u"delete * from tav_operations_header where isnull(vid) and not(isnull(h6)) and id=");
        connection.Execute(header.Number(id));
        for (const TextView table : {u"tav_operations", u"tav_acts"}) {
            SqlText sql(u"delete from ");
            connection.Execute(sql.Fixed(table).Fixed(u" where id=").Number(id));
        }
    }
}

class Load {
 public:
    Load(TextView catalogue, TextView inn, TextView kpp, TextView move_folder)
        : catalogue_(catalogue), taxpayer_(inn, kpp), move_folder_(WithSeparator(move_folder)) {
        account.inn = Trim(inn);
        account.kpp = Trim(kpp);
        account.imported = true;
    }

    void Run(TextView database);

    ImportAccount account;
    Text unmovable;  // the file that could not be moved, if that ended the load

 private:
    void LoadNewFiles();
    std::vector<Text> NewFiles(const KnownFiles& known) const;
    void LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts);
    bool LoadParts(const Catalogue& catalogue, const Text& name, PartLoader& parts);
    void CheckRoom(const Text& name) const;
    void Move(const Text& name);
    void TakeAccount();

    Text catalogue_;
    TaxpayerChoice taxpayer_;
    Text move_folder_;  // empty, or with its separator
    Connection connection_;
    std::vector<Text> listed_;
    AccountMaker found_;
};

void Load::Run(TextView database) {
    if (!move_folder_.empty()) MakeFolders(move_folder_);
    connection_.CursorLocation = 3;
    connection_.Open(ConnectionString(database));
    try {
        LoadNewFiles();
    } catch (...) {
        TakeAccount();
        throw;
    }
    TakeAccount();
    connection_.Close();
}

void Load::LoadNewFiles() {
    const LoadSwitches switches = ReadLoadSwitches();
    const KnownFiles known = ReadKnownFiles(connection_);
    const Recordset highest = connection_.Execute(u"select max(id), max(vid) from tav_operations_header");
    PartLoader parts(connection_, switches, highest.Field(0), highest.Field(1), account);

    // When the database knows every current file, the head of the catalogue is all that is read.
    std::vector<Text> names;
    std::optional<Catalogue> catalogue;
    auto listed = CurrentFilesOfHead(catalogue_);
    if (listed) {
        listed_ = std::move(*listed);
        names = NewFiles(known);
    }
    if (!listed || !names.empty()) {
        catalogue = Catalogue::Load(catalogue_);
        listed_ = catalogue->CurrentFiles();
        names = NewFiles(known);
    }

    RemoveLeftovers(connection_, Counter(highest.Field(0)).value());
    RemoveSuperseded(connection_, listed_);
    // The import folder itself is no archive: what is in it stays there.
    if (SameFolder(move_folder_, FolderOf(catalogue_))) move_folder_.clear();
    int looked_at = 0;
    int files = 0;
    int rows = account.rows;
    for (const Text& name : names) {
        CurrentProgress().SetLoaded(looked_at++, static_cast<int>(names.size()));
        CurrentProgress().ProcessEvents();
        LoadFile(*catalogue, name, parts);
        if (++files < kFilesPerUnit && account.rows - rows < kRowsPerUnit) continue;
        connection_.EndUnit();
        files = 0;
        rows = account.rows;
    }
    connection_.EndUnit();
}

std::vector<Text> Load::NewFiles(const KnownFiles& known) const {
    std::vector<Text> names;
    for (const Text& name : listed_) {
        if (!known.contains(UpperCase(name))) names.push_back(name);
    }
    return names;
}

// The database has the last word about what it holds, also after a failure; only when it cannot be asked any
// more it is passed over.
void Load::TakeAccount() {
    HeldFiles held;
    GuardedBy([&] { held = ReadHeldFiles(connection_); }, [](const Failure&) {});
    account.files = found_.FilesOf(listed_, held);
}

void Load::LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts) {
    CheckRoom(name);
    bool loaded = false;
    try {
        loaded = LoadParts(catalogue, name, parts);
    } catch (...) {
        throw CurrentFailure().In(name);
    }
    if (!loaded || move_folder_.empty()) return;
    connection_.EndUnit();
    Move(name);
}

// Whether the file has a part of the taxpayer.
bool Load::LoadParts(const Catalogue& catalogue, const Text& name, PartLoader& parts) {
    bool loaded = false;
    const CatalogueParts entries = catalogue.PartsOf(name);
    for (const Node& part : entries.parts) {
        const Node inn = part.SelectSingleNode(u"head/h01");
        const Node kpp = part.SelectSingleNode(u"head/h02");
        if (!inn || !kpp) {
            found_.Add(name, {Finding::NotRecognised, u"в документе нет ИНН или КПП"});
            continue;
        }
        if (!taxpayer_.Owns(inn.Content(), kpp.Content())) {
            found_.Add(name, OtherTaxpayer(inn.Content(), kpp.Content()));
            continue;
        }
        loaded = true;
        const Node type = part.FirstAttribute();
        const Text kind = type ? type.Content() : Text();
        bool stored = false;
        if (kind == u"выписка") {
            stored = parts.LoadStatement(part, name);
        } else if (kind == u"акт") {
            stored = parts.LoadAct(part, name);
        } else {
            found_.Add(name, {Finding::NotRecognised, u"вид документа: " + kind});
            continue;
        }
        if (stored) {
            found_.Stored(name);
        } else {
            found_.Add(name, {Finding::AllZero});
        }
    }
    if (entries.parts.empty()) {
        found_.Add(name, {Finding::NotRecognised, GlanceAtDocument(FolderOf(catalogue_) + name).reason});
    }
    return loaded;
}

void Load::CheckRoom(const Text& name) const {
    if (connection_.RoomLeft() >= kRoomForFile) return;
    throw Failure(Text(u"В файле базы данных не осталось места, импорт остановлен перед файлом ")
                      .append(name)
                      .append(u". Очистите базу данных или сожмите её файл"));
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
                          TextView move_folder) {
    Load load(catalogue, inn, kpp, move_folder);
    GuardedBy(
        [&] {
            load.Run(database);
            load.account.complete = true;
        },
        [&](const Failure& failure) {
            if (load.unmovable.empty()) {
                ShowFailure(u"Ошибка в функции LoadFromXml", failure);
            } else {
                ShowMessage(
                    u"Запрет",
                    Text(u"Файл ").append(load.unmovable).append(u" используется и не может быть перемещён"));
            }
        });
    return std::move(load.account);
}

}  // namespace tav
