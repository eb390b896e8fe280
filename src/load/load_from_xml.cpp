#include "load/load_from_xml.h"

#include <optional>
#include <vector>

#include "common/guard.h"
#include "common/progress.h"
#include "convert/catalogue.h"
#include "db/connection.h"
#include "db/literals.h"
#include "load/known_files.h"
#include "load/part_loader.h"
#include "platform/files.h"
#include "settings/session.h"

namespace tav {
namespace {

// Without a move folder, several files reach the disk together: so many, or fewer with so many lines.
constexpr int kFilesPerUnit = 64;
constexpr int kRowsPerUnit = 20000;
// What a source file may need in the database, in bytes: a statement of 10,000 lines.
constexpr std::uint64_t kRoomForFile = 4 << 20;

// Whose parts are loaded.
class Taxpayer {
 public:
    Taxpayer(TextView inn, TextView kpp) : inn_(inn), kpp_(kpp) {
        if (inn_.find(u'|') == inn_.npos) return;
        if (!inn_.starts_with(u'|')) inn_.insert(0, u"|");
        if (!inn_.ends_with(u'|')) inn_ += u'|';
        inn_ = UpperCase(inn_);
        kpp_ = kAllSubdivisions;
    }

    // A part without an INN or a KPP belongs to nobody.
    bool Owns(Node part) const {
        const Node inn = part.SelectSingleNode(u"head/h01");
        const Node kpp = part.SelectSingleNode(u"head/h02");
        return inn && kpp && HasInn(inn.Content()) && HasKpp(kpp.Content());
    }

 private:
    bool HasInn(TextView inn) const {
        return inn == inn_ || inn_.find(Text(u"|").append(UpperCase(inn)).append(u"|")) != inn_.npos;
    }
    bool HasKpp(TextView kpp) const { return kpp == kpp_ || IsEverySubdivision(kpp_); }

    Text inn_;
    Text kpp_;
};

// Rows above the highest number are what headers that were deleted left behind: their numbers are given
// again, and the rows of two documents must not mix.
void RemoveLeftovers(Connection& connection, std::int16_t highest_part) {
    for (const TextView table : {u"tav_operations", u"tav_acts"}) {
        SqlText sql(u"delete from ");
        connection.Execute(sql.Fixed(table).Fixed(u" where id>").Number(highest_part));
    }
}

class Load {
 public:
    Load(TextView catalogue, TextView inn, TextView kpp, TextView move_folder)
        : catalogue_(catalogue), taxpayer_(inn, kpp), move_folder_(WithSeparator(move_folder)) {}

    void Run(TextView database);

    LoadResult result;
    Text unmovable;  // the file that could not be moved, if that ended the load

 private:
    std::vector<Text> NewFiles(const std::vector<Text>& current, const KnownFiles& known);
    void LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts);
    bool LoadParts(const Catalogue& catalogue, const Text& name, PartLoader& parts);
    void CheckRoom(const Text& name) const;
    void Move(const Text& name);

    Text catalogue_;
    Taxpayer taxpayer_;
    Text move_folder_;  // empty, or with its separator
    Connection connection_;
};

void Load::Run(TextView database) {
    const LoadSwitches switches = ReadLoadSwitches();
    if (!move_folder_.empty()) MakeFolders(move_folder_);
    connection_.CursorLocation = 3;
    connection_.Open(ConnectionString(database));
    const KnownFiles known = ReadKnownFiles(connection_);
    const Recordset highest = connection_.Execute(u"select max(id), max(vid) from tav_operations_header");
    PartLoader parts(connection_, switches, highest.Field(0), highest.Field(1), result);

    // When the database knows every current file, the head of the catalogue is all that is read.
    std::vector<Text> names;
    std::optional<Catalogue> catalogue;
    const auto listed = CurrentFilesOfHead(catalogue_);
    if (listed) names = NewFiles(*listed, known);
    if (!listed || !names.empty()) {
        catalogue = Catalogue::Load(catalogue_);
        names = NewFiles(catalogue->CurrentFiles(), known);
    }

    RemoveLeftovers(connection_, Counter(highest.Field(0)).value());
    connection_.Execute(u"delete * from tav_operations_header where isnull(vid) and not(isnull(h6))");
    // The import folder itself is no archive: what is in it stays there.
    if (SameFolder(move_folder_, FolderOf(catalogue_))) move_folder_.clear();
    int looked_at = 0;
    int files = 0;
    int rows = result.rows;
    for (const Text& name : names) {
        CurrentProgress().SetLoaded(looked_at++, static_cast<int>(names.size()));
        CurrentProgress().ProcessEvents();
        LoadFile(*catalogue, name, parts);
        if (++files < kFilesPerUnit && result.rows - rows < kRowsPerUnit) continue;
        connection_.EndUnit();
        files = 0;
        rows = result.rows;
    }
    connection_.Close();
}

std::vector<Text> Load::NewFiles(const std::vector<Text>& current, const KnownFiles& known) {
    std::vector<Text> names;
    for (const Text& name : current) {
        if (!known.contains(UpperCase(name))) names.push_back(name);
    }
    result.known = static_cast<int>(current.size() - names.size());
    return names;
}

void Load::LoadFile(const Catalogue& catalogue, const Text& name, PartLoader& parts) {
    CheckRoom(name);
    bool loaded = false;
    try {
        loaded = LoadParts(catalogue, name, parts);
    } catch (...) {
        throw CurrentFailure().In(name);
    }
    if (!loaded) return;
    ++result.files;
    if (move_folder_.empty()) return;
    connection_.EndUnit();
    Move(name);
}

// Whether the file has a part of the taxpayer.
bool Load::LoadParts(const Catalogue& catalogue, const Text& name, PartLoader& parts) {
    bool loaded = false;
    for (const CatalogueParts entries = catalogue.PartsOf(name); const Node& part : entries.parts) {
        if (!taxpayer_.Owns(part)) continue;
        loaded = true;
        const Node type = part.FirstAttribute();
        const Text kind = type ? type.Content() : Text();
        if (kind == u"выписка") parts.LoadStatement(part, name);
        if (kind == u"акт") parts.LoadAct(part, name);
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
    ++result.moved;
}

}  // namespace

LoadResult LoadFromXml(TextView catalogue, TextView database, TextView inn, TextView kpp,
                       TextView move_folder) {
    Load load(catalogue, inn, kpp, move_folder);
    GuardedBy(
        [&] {
            load.Run(database);
            load.result.complete = true;
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
    return load.result;
}

}  // namespace tav
