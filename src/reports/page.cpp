#include "reports/page.h"

#include <memory>

#include "common/aside.h"
#include "common/concat.h"
#include "common/guard.h"
#include "common/on_left.h"
#include "common/windows1251.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/work_folder.h"
#include "settings/session.h"

namespace tav {
namespace {

constexpr TextView kPageStart =
    u"<html><meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1251\">"
    u"<style>td { font-size: 12px; }"
    u"@page Section1{size:841.9pt 595.3pt; mso-page-orientation:landscape; margin:1.0cm 1.0cm 1.0cm 1.0cm;} "
    u"div.Section1{page:Section1;}</style>"
    u"<div class=Section1><table border=0 width=100%>";
constexpr TextView kTableStart =
    u"</table><br><table border=2 style=\"border-collapse: collapse;\" cellspacing=0 cellpadding=0>";
constexpr TextView kPageEnd = u"</table>\r\n";

constexpr TextView kExtension = u".doc";

// There is one at a time: the state of cells and sums is the report's.
class RunningReport {
 public:
    explicit RunningReport(TextView database) {
        if (running) {
            throw Failure(Concat(u"Could not use '", database, u"'; file already in use."));
        }
        running = true;
    }
    ~RunningReport() { running = false; }
    RunningReport(const RunningReport&) = delete;
    RunningReport& operator=(const RunningReport&) = delete;

 private:
    static inline bool running = false;
    const OnLeft left_{[] { running = false; }};
};

}  // namespace

Text Page(TextView heading, TextView rows) {
    Text page;
    page.reserve(kPageStart.size() + heading.size() + kTableStart.size() + rows.size() + kPageEnd.size());
    return page.append(kPageStart).append(heading).append(kTableStart).append(rows);
}

Text ReportPath(TextView folder, TextView name) {
    Text path = WithSeparator(folder).append(name);
    if (!FileExists(path)) return path;
    path.resize(path.size() - kExtension.size());
    return path.append(Digits(Now().time.second, 2)).append(kExtension);
}

// A summary writes thousands into one folder.
void WriteReport(TextView path, TextView page) {
    if (!FolderExists(FolderOf(path))) MakeFolders(path);
    WriteFileWhole(path, ToWindows1251(page).append(ToWindows1251(kPageEnd)), {}, OnDisk::Later);
}

Text GuardedReport(TextView title, TextView database, const std::function<Text(Text& file)>& body) {
    struct Report {
        Text database;
        Text file;
        Text written;
    };
    const auto report = std::make_shared<Report>(Report{Text(database), Text(database), {}});
    GuardedBy(
        [&] {
            FinishAside();
            CancelStamp() = 0;  // of what ran before
            const OnLeft left([] { CancelStamp() = 0; });
            RunAside(
                [report, body] {
                    const RunningReport this_one(report->database);
                    report->written = body(report->file);
                    RemoveLeftovers(FolderOf(report->written));
                },
                RequestCancel);
        },
        [&](const Failure& failure) {
            if (failure.error() == RunTimeError::PermissionDenied) {
                ShowFileInUse(report->file);
            } else {
                ShowFailure(title, failure);
            }
        });
    return report->written;
}

}  // namespace tav
