// A taxpayer, a folder of documents, a database, and the windows on the screen (support/screen.h).
#pragma once

#include <gmock/gmock.h>

#include "db/empty_database.h"
#include "host/open_class.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "support/opened.h"
#include "support/screen.h"
#include "support/support.h"

namespace tav::test {

inline constexpr TextView kInn = u"7701234567";
inline constexpr TextView kKpp = u"770101001";

class Desktop : public testing::Test {
 protected:
    Desktop() {
        CreateDatabase(folder_ / u"PlX_Base.mdb");
        MakeFolders(folder_ / u"in/");
        MakeFolders(folder_ / u"reports/");
        WriteSetting(u"DataBasePath", folder_.path());
        WriteSetting(u"ImportPath", folder_ / u"in");
        WriteSetting(u"ExportPath", folder_ / u"reports");
        WriteSetting(u"OpenAs", u"doc");
        CancelStamp() = 0;
    }
    ~Desktop() override {
        for (const char* window : {"frmDialog", "frmFilter", "frmShortImport", "frmmain"}) {
            if (OnScreen(window)) CloseWindow(window);
        }
        WaitFor(1);
    }

    void Start() {
        host_.start(kInn, kKpp);
        ASSERT_TRUE(WaitShown("frmmain"));
    }
    // The documents the shell was asked to open.
    std::string Opened(const std::string& last) const {
        Wait([&] { return opened_.Paths().find(last) != std::string::npos; });
        return opened_.Paths();
    }
    std::vector<std::string> Shown() const {
        std::vector<std::string> shown;
        for (const Message& message : messages_.messages) {
            shown.push_back(ToUtf8(message.title + u": " + message.text));
        }
        return shown;
    }

    // Documents of the sample taxpayer: `files` statements of successive quarters from 2009 on. The second quarter of a
    // year supersedes the first.
    void WriteStatements(int files) const {
        for (int i = 0; i < files; ++i) {
            samples::StatementOptions options;
            const int month = i % 4 * 3 + 1;
            options.name = Text(u"v").append(Digits(i, 4)).append(u".rtf");
            options.tax = samples::Taxes()[static_cast<std::size_t>(i / 4 % 2)];
            options.period = {{2009 + i / 8, month, 1}, {2009 + i / 8, month + 2, 28}};
            samples::WriteDocument(folder_ / u"in", samples::MakeStatement(options));
        }
    }
    void WriteAct() const {
        samples::ActOptions options;
        options.name = u"акт.rtf";
        samples::WriteDocument(folder_ / u"in", samples::MakeActRtf(options));
    }
    void Import(TextView kpp = kKpp) {
        host_.import(kInn, kpp);
        ASSERT_TRUE(WaitGone("frmShortImport"));
    }
    static Spot Main(const std::string& control) { return {"frmmain", control}; }
    static bool WaitCounts(const std::string& label, const std::string& text) {
        return Wait([=] { return TextOf(Main(label)).find(text) != std::string::npos; });
    }

    const OwnSettings settings_;
    const TempFolder folder_;
    const OpenedDocuments opened_{folder_};
    MessageList messages_;
    OpenClass host_;
};

}  // namespace tav::test
