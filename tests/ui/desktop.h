// A taxpayer, a folder of documents, a database, and the windows on the screen (support/screen.h).
#pragma once

#include <gmock/gmock.h>

#include "db/empty_database.h"
#include "host/open_class.h"
#include "platform/files.h"
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

    const OwnSettings settings_;
    const TempFolder folder_;
    const OpenedDocuments opened_{folder_};
    MessageList messages_;
    OpenClass host_;
};

}  // namespace tav::test
