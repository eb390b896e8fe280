// What a scan of the import folder knows of every document in it, for those who tell it to a person.
//
// The scan that converts gives this (check_xml.h); so does a look at the folder that changes nothing
// (folder_glance.h), where "converted" means that the next scan will do it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "common/text.h"
#include "convert/catalogue.h"

namespace tav {

struct ScannedFile {
    enum class State {
        New,         // converted; no scan had listed it before
        Again,       // converted again, with another result: the file was changed, or its entry was broken
        Settled,     // as it was when it was converted
        Unreadable,  // could not be opened or read: tried again by every scan
    };
    enum class Found {
        Document,  // a statement or an act, or several
        Nothing,   // neither
        Broken,    // an entry that cannot be read: nothing of it is loaded, every scan converts it again
    };

    Text name;
    State state = State::New;
    Found found = Found::Document;
    // For a person, in Russian: why nothing was found, what breaks the entry, why the file cannot be read.
    // Empty for a document, and for Nothing that is settled: WhyNothing (document_glance.h) looks it up.
    Text reason = {};
    // The text ends inside a group, as that of a file does which was not copied to its end: what is there is
    // converted, but for a row that was not finished.
    bool cut_off = false;
    // Some page hides visible text after its last closing brace; which pages, counted from 1, is known of
    // documents that this scan converted.
    bool dropped_text = false;
    std::vector<std::size_t> dropped_pages = {};
};

struct ScanAccount {
    // Full path of listfiles.xml; empty when the folder holds no document, after a cancel and after a failure
    // that was shown.
    Text catalogue;
    // The catalogue as it was read, where it stayed as it was.
    std::optional<Catalogue> read;
    std::vector<ScannedFile> files;  // in the order of the listing
    // Files that cannot be listed: Windows-1251, or one line, cannot hold their names.
    std::vector<Text> unnamable;
    // XML files that look like acts while acts delivered as XML are not listed.
    int unlisted_acts = 0;

    // Whether a document that was converted hides text; a message has named it.
    bool DropsText() const {
        return std::ranges::any_of(files,
                                   [](const ScannedFile& file) { return !file.dropped_pages.empty(); });
    }
};

}  // namespace tav
