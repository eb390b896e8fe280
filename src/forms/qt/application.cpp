#include "forms/qt/application.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QThread>
#include <QTranslator>
#include <array>
#include <clocale>
#include <string>
#include <vector>

#include "forms/qt/qt_text.h"
#include "forms/qt/russian.h"

namespace tav {
namespace {

bool XServerAnswers() {
    xcb_connection_t* connection = ::xcb_connect(nullptr, nullptr);
    const bool answers = ::xcb_connection_has_error(connection) == 0;
    ::xcb_disconnect(connection);
    return answers;
}

bool WaylandAnswers() {
    const QString display = qEnvironmentVariable("WAYLAND_DISPLAY", QStringLiteral("wayland-0"));
    const QByteArray path =
        QFile::encodeName(QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(display));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
    path.toStdString().copy(address.sun_path, sizeof address.sun_path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) return false;
    const bool answers = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(socket);
    return answers;
}

bool NeedsNoAnswer() {
    return true;
}

// What can be asked for a screen, or works without one. Platforms that drive the hardware themselves are
// missing: they end the process when they cannot have it.
struct Platform {
    const char16_t* name;
    bool (*answers)();
};
constexpr std::array<Platform, 6> kPlatforms = {{
    {u"wayland", WaylandAnswers},
    {u"wayland-egl", WaylandAnswers},
    {u"xcb", XServerAnswers},
    {u"offscreen", NeedsNoAnswer},
    {u"minimal", NeedsNoAnswer},
    {u"vnc", NeedsNoAnswer},
}};

// Whether Qt's plugin of the platform is installed and loads.
bool HasPlugin(const QString& platform) {
    for (const QString& folder : QCoreApplication::libraryPaths()) {
        const QDir plugins(folder + QStringLiteral("/platforms"));
        for (const QString& file : plugins.entryList(QDir::Files)) {
            QPluginLoader loader(plugins.filePath(file));
            const QJsonObject about = loader.metaData().value(QStringLiteral("MetaData")).toObject();
            if (about.value(QStringLiteral("Keys")).toArray().contains(platform) && loader.load())
                return true;
        }
    }
    return false;
}

// Why the platform of this name, which may have options after a colon, cannot be used; empty when it can.
Text Obstacle(const QString& wish) {
    const QString name = wish.section(u':', 0, 0).toLower();
    for (const Platform& platform : kPlatforms) {
        if (name != QStringView(platform.name)) continue;
        if (!platform.answers()) return u"экран не отвечает (" + FromQt(wish) + u")";
        if (HasPlugin(name)) return {};
    }
    return u"нет такого модуля Qt для экрана (" + FromQt(wish) + u")";
}

// The platforms to try, as Qt would: what QT_QPA_PLATFORM names, else what the session offers.
QStringList Wishes() {
    const QString named = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!named.isEmpty()) return named.split(u';', Qt::SkipEmptyParts);
    QStringList wishes;
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) wishes << QStringLiteral("wayland");
    if (qEnvironmentVariableIsSet("DISPLAY")) wishes << QStringLiteral("xcb");
    return wishes;
}

// QApplication sets the process's locale to the user's. The characters' category is of use to it; by the
// others a host writes and reads its numbers and dates, and they stay what they were.
class SameLocale {
 public:
    SameLocale() {
        for (const int category : kCategories) before_.emplace_back(std::setlocale(category, nullptr));
    }
    ~SameLocale() {
        for (std::size_t i = 0; i < kCategories.size(); ++i)
            std::setlocale(kCategories[i], before_[i].c_str());
    }
    SameLocale(const SameLocale&) = delete;
    SameLocale& operator=(const SameLocale&) = delete;

 private:
    static constexpr std::array kCategories = {LC_NUMERIC, LC_TIME, LC_COLLATE, LC_MONETARY};
    std::vector<std::string> before_;
};

// Never destroyed, nor are its arguments: a host may end with windows open and with destructors of its own
// still to run, in an order nobody knows. The screen takes its windows back by itself.
void MakeApplication(const QString& platform) {
    static std::array<std::string, 3>& texts = *new std::array<std::string, 3>;
    texts = {"TAV_OperationImport", "-platform", platform.toStdString()};
    static char* arguments[] = {texts[0].data(), texts[1].data(), texts[2].data(), nullptr};
    static int count = 3;
    const SameLocale same_locale;
    static QApplication* application = new QApplication(count, arguments);
    application->setQuitOnLastWindowClosed(false);
    // The one installed last is asked first.
    QCoreApplication::installTranslator(new RussianQt(application));
    auto* full = new QTranslator(application);
    if (full->load(QStringLiteral("qtbase_ru"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(full);
    }
}

// Why there are no windows, in a process that only draws.
Text& NoScreen() {
    static Text& why = *new Text;
    return why;
}

}  // namespace

bool EnsureApplication(Text& why) {
    if (!NoScreen().empty()) {
        why = NoScreen();
        return false;
    }
    if (const QCoreApplication* host = QCoreApplication::instance(); host != nullptr) {
        if (qobject_cast<const QApplication*>(host) == nullptr) {
            why = u"приложение Qt этого процесса создано без окон";
        } else if (host->thread() != QThread::currentThread()) {
            why = u"окна этого процесса принадлежат другому потоку";
        }
        return why.empty();
    }
    for (const QString& wish : Wishes()) {
        const Text obstacle = Obstacle(wish);
        if (obstacle.empty()) {
            MakeApplication(wish);
            why.clear();
            return true;
        }
        why += (why.empty() ? u"" : u", ") + obstacle;
    }
    if (why.empty()) why = u"нет экрана (не заданы ни DISPLAY, ни WAYLAND_DISPLAY)";
    return false;
}

bool EnsureDrawing(Text& why) {
    if (const QCoreApplication* host = QCoreApplication::instance(); host != nullptr) {
        if (qobject_cast<const QGuiApplication*>(host) == nullptr) {
            why = u"приложение Qt этого процесса создано без шрифтов";
        }
        return why.empty();
    }
    // With a screen windows may follow.
    if (EnsureApplication(why)) return true;
    const QString offscreen = QStringLiteral("offscreen");
    if (!HasPlugin(offscreen)) {
        why = u"нет модуля Qt для работы без экрана (offscreen)";
        return false;
    }
    NoScreen() = why;
    why.clear();
    // What Qt says of a session that is missing tells nobody anything.
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    MakeApplication(offscreen);
    qInstallMessageHandler(before);
    return true;
}

}  // namespace tav
