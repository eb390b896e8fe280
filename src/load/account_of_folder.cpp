#include "load/account_of_folder.h"

#include <algorithm>

#include "common/database_failure.h"
#include "convert/catalogue.h"
#include "convert/document_glance.h"
#include "convert/folder_glance.h"
#include "load/document_loader.h"
#include "platform/files.h"

namespace tav {
namespace {

// What a document that the database does not have would come to.
void Rehearse(const Catalogue& catalogue, const Text& name, DocumentLoader& loader, AccountMaker& found) {
    try {
        if (loader.Take(catalogue.PartsOf(name).parts, name).documents > 0) {
            found.AddFirst(name, {Finding::New});
        }
    } catch (const XmlFailure& failure) {
        found.Forget(name);
        found.Add(name, {Finding::Unreadable, failure.description()});
    } catch (...) {
        if (ConcernsDatabase()) throw;
        found.Forget(name);
        found.Add(name, {Finding::Failed, CurrentFailure().description()});
    }
}

// A settled document in which nothing was found: why.
void Explain(ScannedFile& file, TextView folder) {
    if (file.found == ScannedFile::Found::Nothing && file.reason.empty()) {
        file.reason = WhyNothing(Text(folder).append(file.name), file.cut_off);
    }
}

}  // namespace

ImportAccount AccountOfFolder(TextView import_folder, TextView database, TextView inn, TextView kpp) {
    ImportAccount account;
    account.inn = Trim(inn);
    account.kpp = Trim(kpp);
    const Text folder = WithSeparator(import_folder);
    ScanAccount scan = GlanceAtFolder(folder);
    AccountMaker found;

    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    const HeldFiles held = ReadHeldFiles(connection);
    // Only what is settled has an entry that says what the next import finds.
    const auto is_to_load = [&](const ScannedFile& file) {
        return file.state == ScannedFile::State::Settled && file.found == ScannedFile::Found::Document &&
               !held.contains(UpperCase(file.name));
    };
    if (!scan.catalogue.empty() && std::ranges::any_of(scan.files, is_to_load)) {
        const Catalogue catalogue = Catalogue::Load(scan.catalogue);
        const Counter none{Value(Null{})};
        PartLoader parts(connection, PartLoader::Mode::Rehearse, {none, none});
        const bool everybody = account.inn.empty();
        DocumentLoader loader(everybody ? TaxpayerChoice::Everybody() : TaxpayerChoice(inn, kpp), parts,
                              found);
        for (const ScannedFile& file : scan.files) {
            if (is_to_load(file)) Rehearse(catalogue, file.name, loader, found);
            parts.GoOnFrom({none, none});  // no numbers are used up
        }
    }
    std::vector<Text> names;
    for (ScannedFile& file : scan.files) {
        Explain(file, folder);
        found.AddScanned(file, held.contains(UpperCase(file.name)));
        names.push_back(file.name);
    }
    account.notices = NoticesOf(scan);
    account.files = found.FilesOf(names, held);
    account.complete = true;
    return account;
}

}  // namespace tav
