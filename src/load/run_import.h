// One unattended import, from a folder of documents to the database.
#pragma once

#include <optional>

#include "common/text.h"
#include "load/load_from_xml.h"

namespace tav {

struct ImportFolders {
    Text import;                           // scanned; empty: there is nothing to import
    Text move_to;                          // loaded documents are moved there; empty: they stay
    std::optional<bool> acts_as_xml = {};  // whether acts as XML are listed; none: as the setting says
};

// The folders as the settings have them: ImportPath, and OutPath when ChkOut is true (TEMP when OutPath is
// empty; without either, a Failure: documents are never moved to a place nobody named).
ImportFolders ChooseFolders(TextView import_folder, TextView move_folder);

enum class ImportOutcome {
    Nothing,  // no folder, a second import while one runs, or one asked for in the very second of the last
              // cancel
    NoCatalogue,  // no document in the folder, or a failure that was shown
    Cancelled,
    Done
};

struct ImportResult {
    ImportOutcome outcome = ImportOutcome::Nothing;
    ImportAccount account;
    bool drops_text = false;  // the scan converted a document that hides text
};

// Events are processed while an import runs, so anything can be asked for meanwhile.
bool ImportRunning();
// Whose documents the import that runs loads; empty when none runs.
Text RunningInn();
// An import has ended in the middle, with its thread or by a host's handler of exceptions; whoever comes next is not to
// wait for it.
void ForgetImport();
// Whatever changes or reads the database is refused meanwhile: throws "Could not use '...'; file already in
// use." when an import runs.
void RefuseDuringImport();

// Scans a folder (CheckXml), in which a file may have come back that is not what the database holds of it.
ScanAccount ScanFolder(TextView folder, std::optional<bool> acts_as_xml);

// Loads a catalogue (LoadFromXml) and numbers the new operation types, but where the database itself stopped
// the load before anything was stored: what it has to say has been shown by then. `scan`: what the scan that wrote the
// catalogue has said; none when the catalogue is all there is.
ImportAccount LoadCatalogue(TextView catalogue, TextView inn, TextView kpp, TextView move_folder,
                            const ScanAccount* scan = nullptr);

// Scans the folder, loads the catalogue for the taxpayer, numbers the new operation types. What fails is
// shown by the procedures themselves.
ImportResult RunImport(const ImportFolders& folders, TextView inn, TextView kpp);

}  // namespace tav
