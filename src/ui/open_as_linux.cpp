#include <cstdio>
#include <memory>

#include "common/failure.h"
#include "pdf/pdf.h"
#include "settings/settings.h"
#include "ui/open_as.h"

namespace tav {
namespace {

// The desktop's entry of the program for ".doc", such as "libreoffice-writer.desktop"; empty when there is none.
Text WordProcessor() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> answer(
        ::popen("xdg-mime query default application/msword 2>/dev/null", "r"), ::pclose);
    char line[256] = {};
    if (answer == nullptr || std::fgets(line, sizeof line, answer.get()) == nullptr) return {};
    return LowerCase(FromUtf8(line));
}

// It prints the reports upright, without some of their rules.
bool SpoilsPages(const Text& program) {
    return program.empty() || program.find(u"libreoffice") != program.npos;
}

}  // namespace

bool OpensPaper() {
    const Text setting = SettingText(u"OpenAs");
    if (EqualNoCase(setting, u"doc")) return false;
    static const bool by_default = SpoilsPages(WordProcessor());
    return (by_default || EqualNoCase(setting, u"pdf")) && PdfAvailable();
}

}  // namespace tav
