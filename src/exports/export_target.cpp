#include "exports/export_target.h"

#include "common/concat.h"
#include "common/failure.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace tav {

Text NewTarget(TextView path) {
    Text target = AbsolutePath(path);
    while (target.size() > 1 && kPathSeparators.find(target.back()) != TextView::npos) target.pop_back();
    if (FileExists(target)) throw Failure(Concat(u"Файл уже существует: ", target));
    if (FolderExists(target)) throw Failure(Concat(u"Папка уже существует: ", target));
    return target;
}

void StopIfInterrupted() {
    if (InterruptWatch::Interrupted()) throw Failure(u"Прервано пользователем.");
}

}  // namespace tav
