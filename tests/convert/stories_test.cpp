// Stories of a folder: each file of stories/ puts documents in and takes them out, scans the folder or
// glances at it, and has beneath each "scan" and "glance", indented, what became of every document.
// TAV_UPDATE_GOLDEN writes that anew.
//
//   put NAME: KIND       a document of that kind (Documents below), or of the text after the word "text"
//   remove NAME, rename NAME > NAME, link NAME > TARGET
//   catalogue            its text: the lines that follow and begin with "|"
//   break OLD > NEW      replaces a text in the catalogue
//   scan, scan with acts, scan cancelled at NAME, glance

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "common/get_next.h"
#include "common/progress.h"
#include "convert/catalogue.h"
#include "convert/check_xml.h"
#include "convert/folder_glance.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "settings/session.h"
#include "support/support.h"

namespace tav {
namespace {

namespace fs = std::filesystem;

// Writes down which documents are converted; cancels at one when told to.
class Converted : public Progress {
 public:
    explicit Converted(TextView cancel_at) : cancel_at_(cancel_at), scope_(*this) { CancelStamp() = 0; }
    ~Converted() override { CancelStamp() = 0; }
    void Show(int files) override { told += u"  of " + Digits(files) + u":"; }
    void SetLabel(TextView file) override { told += u" " + Text(label_ = file); }
    void Close() override { told += u"\n"; }
    void ProcessEvents() override {
        if (!cancel_at_.empty() && label_ == cancel_at_) CancelStamp() = 143005;
    }

    Text told;

 private:
    Text cancel_at_;
    Text label_;
    ScopedProgress scope_;
};

const std::map<Text, std::string>& Documents() {
    static const std::map<Text, std::string> documents = [] {
        const std::string statement = test::TestFile("convert/golden/statement.rtf");
        const std::string act = samples::MakeActXml({.name = u"a.xml"}).bytes;
        return std::map<Text, std::string>{
            {u"letter", "{\\rtf1 }"},
            {u"statement", statement},
            {u"statement cut off", statement.substr(0, statement.size() * 3 / 4)},
            {u"statement without its end", statement.substr(0, statement.rfind('}'))},
            {u"rejected", "{\\rtf1\\posx5457 12}"},
            {u"with dropped text", "{\\rtf1{\\b a}}} lost\\page } lost"},
            {u"act", act},
            {u"act without its end", act.substr(0, act.find(test::Bytes(u"<ДенСрСп"))) +
                                         act.substr(act.find(test::Bytes(u"</Раздел2>")))},
        };
    }();
    return documents;
}

class Story {
 public:
    std::string Run(std::string_view text) {
        const Text story = FromUtf8(text);
        TextView rest = story;
        Text told;
        while (!rest.empty()) {
            const TextView line = GetNext(rest, u"\n");
            if (line.starts_with(u"  ")) continue;
            told.append(line).append(u"\n");
            TextView words = line;
            const TextView verb = GetNext(words, u" ");
            if (line.starts_with(u"| "))
                folder_.Write(kCatalogueName, written_ += test::Bytes(Text(words) + u"\r\n"));
            if (line == u"catalogue") written_.clear();
            Change(verb, words);
            if (verb == u"scan") told += Scan(words);
            if (verb == u"glance") told += Told(GlanceAtFolder(folder_.path(), words == u"with acts"));
        }
        return ToUtf8(told);
    }

 private:
    void Change(TextView verb, TextView words) {
        TextView second = words;
        const Text first = folder_ / GetNext(second, verb == u"put" ? u": " : u" > ");
        if (verb == u"remove") DeleteFile(first);
        if (verb == u"rename") MoveFileOver(first, folder_ / second);
        if (verb == u"link") test::MakeLink(second, first);
        if (verb == u"put") {
            const bool text = second.starts_with(u"text ");
            folder_.Write(NameOf(first), text ? ToUtf8(second.substr(5)) : Documents().at(Text(second)));
        }
        if (verb != u"break") return;
        std::string bytes = Catalogue();
        const std::string old = test::Bytes(GetNext(words, u" > "));
        ASSERT_NE(bytes.find(old), bytes.npos) << old;
        folder_.Write(kCatalogueName, bytes.replace(bytes.find(old), old.size(), test::Bytes(words)));
    }

    Text Scan(TextView words) {
        const Text cancel = words.starts_with(u"cancelled at ") ? Text(words.substr(13)) : Text();
        const test::MessageList messages;
        const std::string before = Catalogue();
        const auto stamp = StampOf(folder_ / kCatalogueName);
        Converted converted(cancel);
        Text told = Told(CheckXml(folder_.path(), words == u"with acts"));
        told.insert(0, converted.told);
        for (const Message& message : messages.messages) {
            const Text text = ReplaceAll(ReplaceAll(message.text, u"\r\n", u" / "), folder_.path(), u"");
            told += u"  " + message.title + u": " + text + u"\n";
        }
        if (stamp == StampOf(folder_ / kCatalogueName)) {
            EXPECT_EQ(before, Catalogue());
            return told;
        }
        const auto catalogue = tav::Catalogue::Load(folder_ / kCatalogueName);
        told += u"  written:";
        for (const Text& name : catalogue.CurrentFiles()) told += u" " + name;
        told += u"; entries:";
        for (const CatalogueEntry& entry : catalogue.entries()) told += u" " + entry.name;
        return told + u"\n";
    }

    Text Told(const ScanAccount& account) const {
        static constexpr TextView kStates[] = {u"new", u"again", u"settled", u"unreadable"};
        static constexpr TextView kFound[] = {u"document", u"nothing", u"broken"};
        Text told;
        for (const ScannedFile& file : account.files) {
            told.append(u"  ").append(file.name).append(u": ").append(kStates[static_cast<int>(file.state)]);
            told.append(u", ").append(kFound[static_cast<int>(file.found)]);
            if (!file.reason.empty()) told += u" (" + ReplaceAll(file.reason, folder_.path(), u"") + u")";
            if (file.cut_off) told += u", cut off";
            if (file.dropped_text) told += u", dropped text";
            for (const std::size_t page : file.dropped_pages) told += u" " + Digits(static_cast<int>(page));
            told += u"\n";
        }
        if (!account.unnamable.empty())
            told += u"  unnamable: " + Digits(static_cast<int>(account.unnamable.size())) + u"\n";
        if (account.unlisted_acts > 0) told += u"  unlisted acts: " + Digits(account.unlisted_acts) + u"\n";
        if (account.catalogue.empty()) told += u"  no catalogue\n";
        return told;
    }

    std::string Catalogue() const {
        const Text path = folder_ / kCatalogueName;
        return FileExists(path) ? ReadFile(path) : std::string();
    }

    test::TempFolder folder_;
    std::string written_;
};

TEST(Stories, OfAFolder) {
    for (const auto& file : fs::directory_iterator(TAV_TEST_DIR "/convert/stories")) {
        const std::string name = file.path().filename().string();
        if (name.find("_linux") != name.npos && kPathSeparator != u'/') continue;
        SCOPED_TRACE(name);
        test::ExpectGolden("convert/stories/" + name, Story().Run(test::TestFile("convert/stories/" + name)));
    }
}

}  // namespace
}  // namespace tav
