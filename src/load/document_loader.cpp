#include "load/document_loader.h"

#include <optional>

#include "common/concat.h"
#include "common/windows1251.h"
#include "convert/balance_fault.h"

namespace tav {
namespace {

// The first value of that name in the part's head; none when it has none.
std::optional<Text> HeadValue(const CatalogueElement& part, std::string_view name) {
    for (const CatalogueElement& head : ElementsOf(part.content, "head")) {
        for (const CatalogueElement& value : ElementsOf(head.content, name)) return TextOf(value.content);
    }
    return std::nullopt;
}

}  // namespace

DocumentLoader::Taken DocumentLoader::Take(const Catalogue& catalogue, const Text& file) {
    return Take(catalogue.PartsOf(file, bytes_), file);
}

DocumentLoader::Taken DocumentLoader::Take(const std::vector<CatalogueElement>& parts, const Text& file) {
    Taken taken;
    std::vector<std::optional<PartOutcome>> outcomes;
    for (const CatalogueElement& part : parts) outcomes.push_back(TakePart(part, file, taken));
    if (taken.documents == 0) return taken;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto line = outcomes[i] ? outcomes[i]->balance_fault : BalanceFault(parts[i]);
        if (line) {
            account_.Add(file, {Finding::Arithmetic, Text(u"первая такая строка: ").append(Digits(*line))});
        }
    }
    return taken;
}

// A part without an INN or a KPP belongs to nobody; one of a kind that nobody knows is passed over.
std::optional<PartOutcome> DocumentLoader::TakePart(const CatalogueElement& part, const Text& file,
                                                    Taken& taken) {
    taken.any = true;
    const auto say = [&](const Remark& remark) {
        account_.Add(file, remark);
        return std::nullopt;
    };
    const std::optional<Text> inn = HeadValue(part, "h01");
    const std::optional<Text> kpp = HeadValue(part, "h02");
    if (!inn || !kpp) return say({Finding::NotRecognised, u"в документе нет ИНН или КПП"});
    if (!taxpayer_.Owns(*inn, *kpp)) return say(OtherTaxpayer(*inn, *kpp));
    taken.own = true;
    const Text kind = FromWindows1251(part.type);
    const bool statement = kind == u"выписка";
    if (!statement && kind != u"акт") {
        return say({Finding::NotRecognised, Text(u"вид документа: ").append(kind)});
    }
    PartOutcome outcome = statement ? parts_.LoadStatement(part, file) : parts_.LoadAct(part, file);
    taken.documents += outcome.stored;
    taken.rows += outcome.stored ? outcome.rows : 0;
    if (!outcome.stored) account_.Add(file, {Finding::AllZero});
    for (const Remark& remark : outcome.remarks) account_.Add(file, remark);
    return statement ? std::optional(std::move(outcome)) : std::nullopt;
}

}  // namespace tav
