#include "load/document_loader.h"

#include "common/concat.h"
#include "convert/balance_faults.h"

namespace tav {
DocumentLoader::Taken DocumentLoader::Take(const Catalogue& catalogue, const Text& file) {
    Taken taken;
    const CatalogueParts entries = catalogue.PartsOf(file);
    for (const Node& part : entries.parts) TakePart(part, file, taken);
    if (taken.documents == 0) return taken;
    for (const CatalogueEntry* const entry : catalogue.EntriesNamed(file)) {
        for (const int line : BalanceFaults(catalogue.BytesOf(*entry))) {
            account_.Add(file, {Finding::Arithmetic, Text(u"первая такая строка: ").append(Digits(line))});
        }
    }
    return taken;
}

// A part without an INN or a KPP belongs to nobody; one of a kind that nobody knows is passed over.
void DocumentLoader::TakePart(Node part, const Text& file, Taken& taken) {
    taken.any = true;
    const Node inn = part.SelectSingleNode(u"head/h01");
    const Node kpp = part.SelectSingleNode(u"head/h02");
    if (!inn || !kpp) return account_.Add(file, {Finding::NotRecognised, u"в документе нет ИНН или КПП"});
    if (!taxpayer_.Owns(inn.Content(), kpp.Content())) {
        return account_.Add(file, OtherTaxpayer(inn.Content(), kpp.Content()));
    }
    taken.own = true;
    const Node type = part.FirstAttribute();
    const Text kind = type ? type.Content() : Text();
    const bool statement = kind == u"выписка";
    if (!statement && kind != u"акт") {
        return account_.Add(file, {Finding::NotRecognised, Text(u"вид документа: ").append(kind)});
    }
    const PartOutcome outcome = statement ? parts_.LoadStatement(part, file) : parts_.LoadAct(part, file);
    if (!outcome.stored) return account_.Add(file, {Finding::AllZero});
    ++taken.documents;
    taken.rows += outcome.rows;
    for (const Remark& remark : outcome.remarks) account_.Add(file, remark);
}

}  // namespace tav
