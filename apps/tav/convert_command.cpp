// tav convert: catalogue entries of single files, as the folder scan would make them.

#include <cstdio>
#include <memory>
#include <utility>

#include "commands.h"
#include "common/concat.h"
#include "common/guard.h"
#include "convert/document_glance.h"
#include "convert/load_rtf_file.h"
#include "convert/load_xml_file.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

std::string ConvertXml(const Text& folder, const Text& name) {
    const Conversion act = LoadXMLFile(folder, name);
    if (!act.unreadable && !act.reason.empty()) throw Failure(Concat(name, u": ", act.reason));
    return act.entry;
}

std::string ConvertRtf(Context& context, const Text& folder, const Text& name) {
    Conversion form = LoadRtfFile(folder, name);
    const Text dropped = DroppedTextLine(name, form.dropped_pages);
    if (!dropped.empty()) std::fputs(ToUtf8(dropped + u"\n").c_str(), stderr);
    context.incomplete = context.incomplete || !dropped.empty();
    return std::move(form.entry);
}

Text WhyNoPart(const Text& path) {
    const Text reason = GlanceAtDocument(path).reason;
    return reason.empty() ? Text(u"не выписка и не акт") : reason;
}

std::string ConvertFile(Context& context, const Text& path) {
    const Text folder = FolderOf(path);
    const Text name = NameOf(path);
    const TextView ending = Right(name, 3);
    if (EqualNoCase(ending, u"rtf")) return ConvertRtf(context, folder, name);
    if (EqualNoCase(ending, u"xml")) return ConvertXml(folder, name);
    throw Failure(Text(u"Не rtf и не xml: ") + path);
}

// An entry without a part would be taken for a document that was read.
void PrintEntry(Context& context, const Text& path) {
    const std::string entry = ConvertFile(context, path);
    if (entry.empty()) return;  // a message has told
    if (entry.find("<part") == entry.npos) throw Failure(NameOf(path) + u": " + WhyNoPart(path));
    Print(entry);
}

}  // namespace

void AddConvertCommand(CLI::App& app, Context& context) {
    const auto files = std::make_shared<std::vector<std::string>>();
    CLI::App& convert = *app.add_subcommand(
        "convert", "Записи каталога для файлов rtf и xml — на стандартный вывод (Windows-1251)");
    convert.add_option("ФАЙЛ", *files, "Документы")->required();
    convert.callback([&context, files] {
        for (const std::string& file : *files) {
            Guarded(u"Преобразование", [&] { PrintEntry(context, PathArgument(file)); });
        }
    });
}

}  // namespace tav::cli
