#include "load/account_of_folder.h"

#include "convert/document_glance.h"
#include "convert/folder_glance.h"
#include "load/rehearsals.h"
#include "platform/files.h"

namespace tav {
namespace {

using State = ScannedFile::State;
using Found = ScannedFile::Found;

// A settled document in which nothing was found: why.
void Explain(ScannedFile& file, TextView folder) {
    if (file.found == Found::Nothing && file.reason.empty()) {
        file.reason = WhyNothing(Text(folder).append(file.name), file.cut_off);
    }
}

}  // namespace

ImportAccount AccountOfFolder(TextView import_folder, TextView database, TextView inn, TextView kpp,
                              std::optional<bool> acts_as_xml) {
    ImportAccount account;
    account.inn = Trim(inn);
    account.kpp = Trim(kpp);
    const Text folder = WithSeparator(import_folder);
    ScanAccount scan = GlanceAtFolder(folder, acts_as_xml);
    AccountMaker found;

    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    const bool everybody = account.inn.empty();
    const TaxpayerChoice taxpayer = everybody ? TaxpayerChoice::Everybody() : TaxpayerChoice(inn, kpp);
    const HeldFiles held = ReadHeldFiles(connection, taxpayer);
    const auto is_held = [&](const ScannedFile& file) { return held.contains(file.name); };
    if (scan.read) {
        Rehearsals rehearsals(connection, *scan.read, taxpayer, found);
        // Only what is settled has an entry that says what the next import finds.
        for (const ScannedFile& file : scan.files) {
            const bool settled = file.state == State::Settled && file.found == Found::Document;
            if (settled && !is_held(file)) rehearsals.OfNew(file.name);
        }
        rehearsals.OfHeld(held);
    }
    std::vector<TextView> names;
    names.reserve(scan.files.size());
    for (ScannedFile& file : scan.files) {
        Explain(file, folder);
        if (file.state != State::Settled) found.Forget(file.name);  // its entry is another document's
        found.AddScanned(file, held);
        if (file.state == State::Again && is_held(file)) found.Add(file.name, {Finding::Changed});
        names.emplace_back(file.name);
    }
    account.notices = NoticesOf(scan);
    account.files = found.FilesOf(names, held);
    account.complete = true;
    return account;
}

}  // namespace tav
