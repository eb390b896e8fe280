// The catalogue: `listfiles.xml` in the import folder, the only hand-over from conversion to the database.
//
//   <?xml version="1.0" encoding="windows-1251" ?><all>
//   <actual>
//       <item>a.rtf</item>               one per file that the folder held at the last scan
//   </actual>
//   <file>                               one per converted document
//       <name>a.rtf</name>
//       <part type="выписка"> or <part type="акт">, with head and body
//   </file>
//   </all>
//
// Windows-1251, CR LF. It grows to hundreds of megabytes (20,000 documents), so it is kept as its bytes,
// checked in one pass without a tree; only the entry asked for becomes a tree.
//
// A catalogue that somebody edited may have another encoding or other line ends: it is then brought to the
// form above. One that is no XML document (a value with a bare "&" or "<", a part that was never closed) is
// an XmlFailure whose text names the file, the document whose entry breaks it, the line and the reason.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/text.h"
#include "xml/document.h"

namespace tav {

inline constexpr TextView kCatalogueName = u"listfiles.xml";

// Its framing texts, as bytes.
inline constexpr std::string_view kCatalogueOpening =
    "<?xml version=\"1.0\" encoding=\"windows-1251\" ?><all>\r\n";
inline constexpr std::string_view kActualOpening = "<actual>\r\n";
inline constexpr std::string_view kActualClosing = "</actual>\r\n";
inline constexpr std::string_view kAllClosing = "</all>";

// The files listed at the head, read from the head alone. No value when the file cannot be trusted that far:
// it does not end as a whole catalogue does, or its head is not as written here.
std::optional<std::vector<Text>> CurrentFilesOfHead(TextView path);

// Parts and the tree they stand in.
struct CatalogueParts {
    Document document;
    std::vector<Node> parts;
};

class Catalogue {
 public:
    // A `name` element and the entry it stands in.
    struct Name {
        Text text;
        std::size_t entry = 0;
    };

    static Catalogue Load(TextView path);

    // "//all/actual/item", in document order.
    const std::vector<Text>& CurrentFiles() const { return current_files_; }
    // "//all/file/name", in document order.
    const std::vector<Name>& Names() const { return names_; }
    // The entries that have this very name, in document order.
    const std::vector<std::size_t>& EntriesNamed(TextView name) const;
    // "//all/file[name=...]/part": the parts of those entries.
    CatalogueParts PartsOf(TextView name) const;

    // Appends what stands behind "</actual>" up to "</all>" to `text`, without the entries that `departed`
    // marks.
    void AppendEntries(std::string& text, const std::vector<bool>& departed) const;
    std::size_t EntryCount() const { return entries_.size(); }

 private:
    struct Span {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    Catalogue() = default;

    std::string bytes_;
    std::vector<Text> current_files_;
    std::vector<Name> names_;
    std::vector<Span> entries_;  // the `file` elements in bytes_
    std::unordered_map<Text, std::vector<std::size_t>> entries_by_name_;
};

}  // namespace tav
