// The windows as a person at the screen has them: a taxpayer, a folder of documents, a database, and the real
// widgets, found by the names of their controls.
#pragma once

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QListView>
#include <QTest>

#include "db/empty_database.h"
#include "host/open_class.h"
#include "platform/files.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav::test {

inline constexpr TextView kInn = u"7701234567";
inline constexpr TextView kKpp = u"770101001";

// The window of that name on the screen, or nullptr.
inline QWidget* WindowNamed(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == name && window->isVisible()) return window;
    }
    return nullptr;
}

template <class Widget = QWidget>
Widget* In(const QString& window, const QString& control) {
    QWidget* form = WindowNamed(window);
    Widget* found = form == nullptr ? nullptr : form->findChild<Widget*>(control);
    EXPECT_NE(found, nullptr) << window.toStdString() << "." << control.toStdString();
    return found;
}

inline bool Wait(const std::function<bool()>& until) {
    constexpr int kMilliseconds = 20'000;
    return QTest::qWaitFor(until, kMilliseconds);
}
inline bool WaitShown(const QString& window) {
    return Wait([=] { return WindowNamed(window) != nullptr; });
}
inline bool WaitGone(const QString& window) {
    return Wait([=] { return WindowNamed(window) == nullptr; });
}

inline void Click(const QString& window, const QString& button) {
    auto* widget = In<QAbstractButton>(window, button);
    ASSERT_NE(widget, nullptr);
    ASSERT_TRUE(widget->isEnabled()) << button.toStdString();
    QTest::mouseClick(widget, Qt::LeftButton);
}

inline std::vector<std::string> RowsOf(const QString& window, const QString& list) {
    std::vector<std::string> rows;
    const QAbstractItemModel& model = *In<QListView>(window, list)->model();
    for (int i = 0; i < model.rowCount(); ++i) {
        rows.push_back(model.index(i, 0).data().toString().toStdString());
    }
    return rows;
}

class Desktop : public testing::Test {
 protected:
    Desktop() {
        CreateDatabase(folder_ / u"PlX_Base.mdb");
        MakeFolders(folder_ / u"in/");
        MakeFolders(folder_ / u"reports/");
        WriteSetting(u"DataBasePath", folder_.path());
        WriteSetting(u"ImportPath", folder_ / u"in");
        WriteSetting(u"ExportPath", folder_ / u"reports");
        // What the shell is asked to open is written down.
        folder_.Write(u"xdg-open", "#!/bin/sh\necho \"$1\" >> \"$(dirname \"$0\")/opened\"\n");
        std::filesystem::permissions(ToUtf8(folder_ / u"xdg-open"), std::filesystem::perms::owner_all);
        ::setenv("PATH", (ToUtf8(folder_.path()) + ":" + path_).c_str(), 1);
        CancelStamp() = 0;
    }
    ~Desktop() override {
        for (QWidget* window : QApplication::topLevelWidgets()) window->close();
        ::setenv("PATH", path_.c_str(), 1);
    }

    void Start() {
        host_.start(kInn, kKpp);
        ASSERT_TRUE(WaitShown("frmmain"));
    }
    // The documents the shell was asked to open.
    std::string Opened(const std::string& last) const {
        const Text record = folder_ / u"opened";
        Wait([&] { return FileExists(record) && ReadFile(record).find(last) != std::string::npos; });
        return FileExists(record) ? ReadFile(record) : std::string();
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
    MessageList messages_;
    OpenClass host_;

 private:
    const std::string path_ = std::getenv("PATH");
};

}  // namespace tav::test
