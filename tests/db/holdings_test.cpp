#include "db/holdings.h"

#include <gtest/gtest.h>

#include "common/get_next.h"
#include "common/regional.h"
#include "support/support.h"

namespace tav {
namespace {

Value Day(TextView date) {
    return date == u"-" ? Value(Null{}) : Value(*ParseDate(date));
}

TEST(Holdings, AreCountedWithThoseWhosePeriodNoOtherMeets) {
    test::ExpectTranscript("db/holdings.txt", [](TextView lines) {
        std::vector<HeldDocument> documents;
        while (!lines.empty()) {
            TextView line = GetNext(lines, u"\n");
            HeldDocument document;
            document.act = GetNext(line, u" ") == u"акт";
            document.current = !document.act;
            for (Text* field : {&document.inn, &document.kpp, &document.code, &document.okato})
                *field = GetNext(line, u" ");
            document.begin = Day(GetNext(line, u" "));
            document.end = Day(line);
            documents.push_back(document);
        }
        const HoldingCounts counts = CountHoldings(documents);
        return Digits(counts.statements) + u" " + Digits(counts.acts) + u" " + Digits(counts.alone);
    });
}

}  // namespace
}  // namespace tav
