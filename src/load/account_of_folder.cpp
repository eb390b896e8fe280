#include "load/account_of_folder.h"

#include <algorithm>
#include <unordered_set>

#include "common/database_failure.h"
#include "convert/catalogue.h"
#include "convert/document_glance.h"
#include "load/document_loader.h"
#include "platform/files.h"

namespace tav {
namespace {

// What a document that the database does not have would come to. One that no scan has looked at is new.
void Rehearse(const Catalogue& catalogue, const Text& name, bool looked_at, TextView folder,
              DocumentLoader& loader, AccountMaker& found) {
    try {
        const CatalogueParts entries = catalogue.PartsOf(name);
        if (entries.parts.empty() && looked_at) {
            found.Add(name, {Finding::NotRecognised, GlanceAtDocument(Text(folder).append(name)).reason});
        }
        if (loader.Take(entries.parts, name).documents > 0) found.AddFirst(name, {Finding::New});
    } catch (const XmlFailure& failure) {
        found.Forget(name);
        found.Add(name, {Finding::Unreadable, failure.description()});
    } catch (...) {
        if (ConcernsDatabase()) throw;
        found.Forget(name);
        found.Add(name, {Finding::Failed, CurrentFailure().description()});
    }
}

}  // namespace

ImportAccount AccountOfFolder(TextView import_folder, TextView database, TextView inn, TextView kpp) {
    ImportAccount account;
    account.inn = Trim(inn);
    account.kpp = Trim(kpp);
    const Text folder = WithSeparator(import_folder);
    const std::vector<Text> names = ListFiles(folder, u".rtf");
    AccountMaker found;

    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    const HeldFiles held = ReadHeldFiles(connection);
    const bool all_held =
        std::ranges::all_of(names, [&](const Text& name) { return held.contains(UpperCase(name)); });
    const Text path = folder + Text(kCatalogueName);
    if (!all_held && FileExists(path)) {
        const Catalogue catalogue = Catalogue::Load(path);
        const std::unordered_set<Text> looked_at(catalogue.CurrentFiles().begin(),
                                                 catalogue.CurrentFiles().end());
        const Counter none{Value(Null{})};
        PartLoader parts(connection, PartLoader::Mode::Rehearse, {none, none});
        const bool everybody = account.inn.empty();
        DocumentLoader loader(everybody ? TaxpayerChoice::Everybody() : TaxpayerChoice(inn, kpp), parts,
                              found);
        for (const Text& name : names) {
            if (held.contains(UpperCase(name))) continue;
            Rehearse(catalogue, name, looked_at.contains(name), folder, loader, found);
            parts.GoOnFrom({none, none});  // no numbers are used up
        }
    }
    account.files = found.FilesOf(names, held);
    account.complete = true;
    return account;
}

}  // namespace tav
