// tav list: what the database holds.

#include <memory>

#include "commands.h"
#include "common/guard.h"
#include "common/regional.h"
#include "db/holdings.h"
#include "json_text.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

struct ListOptions {
    std::string inn;
    std::string kpp;
    bool json = false;
};

JsonText JsonOf(const HeldDocument& document) {
    return JsonText::Object({{"id", document.id},
                             {"kind", document.act ? "act" : "statement"},
                             {"current", document.current},
                             {"superseded", document.Superseded()},
                             {"filename", ToUtf8(document.file_name)},
                             {"inn", ToUtf8(document.inn)},
                             {"kpp", ToUtf8(document.kpp)},
                             {"name", ToUtf8(document.name)},
                             {"kbk", ToUtf8(document.code)},
                             {"tax", ToUtf8(document.tax)},
                             {"okato", ToUtf8(document.okato)},
                             {"begin", ToUtf8(ValueText(document.begin))},
                             {"end", ToUtf8(ValueText(document.end))}});
}

void PrintJson(const std::vector<HeldDocument>& documents, const HoldingCounts& counts) {
    std::vector<JsonText> list;
    for (const HeldDocument& document : documents) list.push_back(JsonOf(document));
    const JsonText whole = JsonText::Object({{"statements", counts.statements},
                                             {"acts", counts.acts},
                                             {"alone", counts.alone},
                                             {"documents", JsonText::Array(list)}});
    Print(whole.text() + "\n");
}

void PrintText(const std::vector<HeldDocument>& documents, const HoldingCounts& counts) {
    for (const HeldDocument& document : documents) {
        const Text period = ValueText(document.begin) + u" - " + ValueText(document.end);
        PrintLine(Digits(document.id) + u"   " + document.code + u"   " + document.okato + u"   " + period +
                  u"   " + document.tax + (document.Superseded() ? u" (заменена)" : u"") +
                  (document.act ? u"   Акт" : u"   Выписка"));
    }
    PrintLine(u"Выписок в базе данных: " + Digits(counts.statements));
    PrintLine(u"Актов в базе данных: " + Digits(counts.acts));
    PrintLine(u"Не перекрываются интервалами: " + Digits(counts.alone));
}

void List(const ListOptions& options) {
    Guarded(u"Документы в базе данных", [&] {
        const std::vector<HeldDocument> documents =
            HeldDocuments(getbase(), FromUtf8(options.inn), FromUtf8(options.kpp));
        (options.json ? PrintJson : PrintText)(documents, CountHoldings(documents));
    });
}

}  // namespace

void AddListCommand(CLI::App& app, Context& context) {
    const auto options = std::make_shared<ListOptions>();
    CLI::App& list = *app.add_subcommand("list", "Документы в базе данных и их количества");
    AddTaxpayerOptions(list, options->inn, options->kpp, false);
    list.add_flag("--json", options->json, "В виде JSON");
    AddDatabaseOptions(list, context);
    list.callback([options] { List(*options); });
}

}  // namespace tav::cli
