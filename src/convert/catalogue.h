// The catalogue: `listfiles.xml` in the import folder, the only hand-over from conversion to the database.
//
//   <?xml version="1.0" encoding="windows-1251" ?><all>
//   <actual>
//       <item>a.rtf</item>               one per file that the last scan listed and could read
//   </actual>
//   <file>                               one per converted document
//       <name>a.rtf</name>
//       <part type="выписка"> or <part type="акт">, with head and body
//   </file>
//   </all>
//
// Windows-1251, CR LF, values raw (catalogue_markup.h), names without any mark-up. It grows to hundreds of
// megabytes, so it is read entry by entry (catalogue_entry.h) in one pass, and what an entry holds is read once
// more when it is asked for (catalogue_elements.h). An entry that cannot be read harms no other.
//
// A catalogue that somebody edited may have another encoding or other line ends: as long as it is XML,
// it is brought to the form above first. One without a readable frame (no <all>, neither XML nor
// Windows-1251) is an XmlFailure that names the file and the reason.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/name_hash.h"
#include "common/text.h"
#include "convert/catalogue_bytes.h"
#include "convert/catalogue_elements.h"
#include "convert/catalogue_entry.h"

namespace tav {

inline constexpr TextView kCatalogueName = u"listfiles.xml";

// Its framing texts, as bytes.
inline constexpr std::string_view kCatalogueOpening =
    "<?xml version=\"1.0\" encoding=\"windows-1251\" ?><all>\r\n";
inline constexpr std::string_view kActualOpening = "<actual>\r\n";
inline constexpr std::string_view kActualClosing = "</actual>\r\n";
inline constexpr std::string_view kAllClosing = "</all>";

class Catalogue {
 public:
    static Catalogue Load(TextView path);
    Catalogue(Catalogue&&) = default;
    Catalogue& operator=(Catalogue&&) = default;

    // The items of `actual`, in order.
    const std::vector<Text>& CurrentFiles() const { return current_files_; }
    const std::vector<CatalogueEntry>& entries() const { return entries_; }
    // The entries of a document, in order: those that have this very name, else those that have it in other
    // letters' case.
    std::vector<const CatalogueEntry*> EntriesNamed(TextView name) const;
    // The same without those of another item of `actual`.
    std::vector<const CatalogueEntry*> EntriesOf(TextView name) const;
    // Their parts, found in `bytes`, which becomes those of the entries. An entry that cannot be read is an
    // XmlFailure that names the file, the document, the line and the reason.
    std::vector<CatalogueElement> PartsOf(TextView name, std::string& bytes) const;

    std::string BytesOf(const CatalogueEntry& entry) const;

 private:
    Catalogue(TextView path, CatalogueBytes bytes) : path_(path), bytes_(std::move(bytes)) {}
    void Read(CatalogueWindow& window, NameForm names);

    Text path_;
    CatalogueBytes bytes_;
    std::vector<Text> current_files_;
    mutable std::unordered_set<TextView> listed_;  // these, once somebody has asked
    std::vector<CatalogueEntry> entries_;
    std::unordered_multimap<TextView, std::size_t, NameHash, SameName> by_name_;  // places in entries_
};

}  // namespace tav
