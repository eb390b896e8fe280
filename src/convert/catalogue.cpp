#include "convert/catalogue.h"

#include <algorithm>

#include "common/get_next.h"
#include "common/progress.h"
#include "common/windows1251.h"
#include "convert/markup_scan.h"
#include "platform/files.h"
#include "platform/locked_file.h"
#include "xml/encoding.h"
#include "xml/events.h"

namespace tav {
namespace {

constexpr std::string_view kAllClosingLine = "</all>\r\n";

// Gathers the listed files and the names of the entries while the document is read.
class Contents : public XmlEvents {
 public:
    std::vector<Text> items;
    std::vector<Catalogue::Name> names;
    std::size_t entries = 0;

 private:
    void StartElement(std::string_view name) override {
        if (depth_ < kPath) path_[depth_] = name;
        ++depth_;
        if (depth_ == 2 && In("all", "file")) ++entries;
        if (depth_ == kPath && (IsItem() || IsName())) text_.clear();
    }

    void Characters(std::string_view text) override {
        if (depth_ >= kPath && (IsItem() || IsName())) text_.append(text);
    }

    void EndElement() override {
        if (depth_ == kPath && IsItem()) items.push_back(FromUtf8(text_));
        if (depth_ == kPath && IsName()) {
            names.push_back({FromUtf8(text_), entries - 1});
            CurrentProgress().ProcessEvents();  // a catalogue of 20,000 documents takes half a second
        }
        --depth_;
    }

    bool In(std::string_view root, std::string_view child) const {
        return path_[0] == root && path_[1] == child;
    }
    bool IsItem() const { return path_[2] == "item" && In("all", "actual"); }
    bool IsName() const { return path_[2] == "name" && In("all", "file"); }

    static constexpr std::size_t kPath = 3;
    std::string path_[kPath];
    std::size_t depth_ = 0;
    std::string text_;
};

// Whether the bytes have the very form in which the scan writes them.
bool IsAsWritten(std::string_view bytes) {
    return DeclaresWindows1251(bytes) && bytes.ends_with(kAllClosingLine) &&
           bytes.find(kActualClosing) != bytes.npos;
}

// Throws the reason why that text is no XML document; returns when it is one.
void CheckXmlText(const std::string& bytes) {
    Contents ignored;
    ReadXml(bytes, ignored);
}

// The first entry that is not well-formed by itself, told by its document's name.
[[noreturn]] void ThrowBroken(TextView path, std::string_view bytes, const XmlError& error) {
    constexpr std::string_view kFile = "<file>";
    constexpr std::string_view kFileClosing = "</file>";
    const std::string declaration(bytes.substr(0, bytes.starts_with("<?xml") ? bytes.find("?>") + 2 : 0));
    std::size_t next = 0;
    for (std::size_t at = bytes.find(kFile); at != bytes.npos; at = next) {
        next = bytes.find(kFile, at + 1);
        std::string_view entry = bytes.substr(at, next - at);
        if (const std::size_t end = entry.rfind(kFileClosing); end != entry.npos) {
            entry = entry.substr(0, end + kFileClosing.size());
        }
        try {
            CheckXmlText(declaration + std::string(entry));
            continue;
        } catch (const XmlFailure&) {
        }
        try {
            // Once more behind as many lines as stand before it, so that the reason's lines are the file's.
            const auto lines = std::count(bytes.data(), bytes.data() + at, '\n');
            CheckXmlText(declaration + std::string(static_cast<std::size_t>(lines), '\n') +
                         std::string(entry));
        } catch (const XmlFailure& failure) {
            GetNext(entry, "<name>");
            const std::string_view name = GetNext(entry, "</name>");
            const Text document = DeclaresWindows1251(bytes) ? FromWindows1251(name) : FromUtf8(name);
            throw XmlFailure(Text(path) + u": документ " + document + u", ", failure.error());
        }
    }
    throw XmlFailure(Text(path) + u": ", error);
}

}  // namespace

std::optional<std::vector<Text>> CurrentFilesOfHead(TextView path) {
    constexpr std::size_t kPiece = 256 * 1024;
    const LockedFile file(path, LockedFile::Access::Read);
    const std::uint64_t size = file.Size();
    std::string tail(kAllClosingLine.size(), '\0');
    if (size < tail.size()) return std::nullopt;
    file.ReadAt(size - tail.size(), tail.data(), tail.size());
    if (tail != kAllClosingLine) return std::nullopt;

    std::string head;
    std::size_t closing = head.npos;
    while (closing == head.npos && head.size() < size) {
        const std::size_t before = head.size();
        head.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, before + kPiece)));
        file.ReadAt(before, head.data() + before, head.size() - before);
        if (!head.starts_with(kCatalogueOpening)) return std::nullopt;
        closing = head.find(kActualClosing, before - std::min(before, kActualClosing.size()));
    }
    if (closing == head.npos) return std::nullopt;
    head.resize(closing + kActualClosing.size());
    head.append(kAllClosing);
    Contents contents;
    try {
        ReadXml(head, contents);
    } catch (const XmlFailure&) {
        return std::nullopt;
    }
    return std::move(contents.items);
}

Catalogue Catalogue::Load(TextView path) {
    Catalogue catalogue;
    catalogue.bytes_ = ReadFile(path);
    Contents contents;
    try {
        if (!IsAsWritten(catalogue.bytes_)) catalogue.bytes_ = Document::Parse(catalogue.bytes_).Save();
        ReadXml(catalogue.bytes_, contents);
    } catch (const XmlFailure& failure) {
        ThrowBroken(path, catalogue.bytes_, failure.error());
    }
    catalogue.current_files_ = std::move(contents.items);
    catalogue.names_ = std::move(contents.names);
    if (contents.entries > 0) {
        for (const ChildSpan& child : ChildrenOfRoot(catalogue.bytes_)) {
            if (child.name == "file") catalogue.entries_.push_back({child.begin, child.end});
        }
    }
    for (const Name& name : catalogue.names_) {
        std::vector<std::size_t>& entries = catalogue.entries_by_name_[name.text];
        if (entries.empty() || entries.back() != name.entry) entries.push_back(name.entry);
    }
    return catalogue;
}

const std::vector<std::size_t>& Catalogue::EntriesNamed(TextView name) const {
    static const std::vector<std::size_t> kNone;
    const auto found = entries_by_name_.find(Text(name));
    return found == entries_by_name_.end() ? kNone : found->second;
}

CatalogueParts Catalogue::PartsOf(TextView name) const {
    std::string bytes(kCatalogueOpening);
    for (const std::size_t entry : EntriesNamed(name)) {
        bytes.append(bytes_, entries_[entry].begin, entries_[entry].end - entries_[entry].begin);
    }
    bytes.append(kAllClosing);
    Document document = Document::Parse(bytes);
    std::vector<Node> parts = document.SelectNodes(u"/all/file/part");
    return {std::move(document), std::move(parts)};
}

void Catalogue::AppendEntries(std::string& text, const std::vector<bool>& departed) const {
    std::string_view rest = bytes_;
    GetNext(rest, kActualClosing);
    const std::string_view carried = GetNext(rest, kAllClosingLine);
    std::size_t at = static_cast<std::size_t>(carried.data() - bytes_.data());
    const std::size_t end = at + carried.size();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!departed[i] || entries_[i].begin < at || entries_[i].end > end) continue;
        text.append(bytes_, at, entries_[i].begin - at);
        at = entries_[i].end;
        if (std::string_view(bytes_).substr(at, 2) == "\r\n") at += 2;
    }
    text.append(bytes_, at, end - at);
}

}  // namespace tav
