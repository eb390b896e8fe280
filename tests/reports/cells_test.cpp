// The cells of reports, each call and what it answers in cells.txt; the mark ↵ is CR LF, "nothing" is no
// text.
#include "reports/cells.h"

#include <gtest/gtest.h>

#include "common/get_next.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

Text Answer(TextView line) {
    const TextView element = GetNext(line, u" ");
    Text answer;
    if (element == u"html") return HtmlText(line);
    if (element == u"shown") return ShownText(line);
    GetNext(line, u"| ");
    std::vector<TextView> cells;
    while (!line.empty()) {
        const TextView cell = GetNext(line, u" | ");
        cells.push_back(cell == u"nothing" ? TextView() : cell);
    }
    const std::string failure = test::FailureOf([&] { answer = GetHS(element, cells); });
    return failure.empty() ? ReplaceAll(answer, u"\r\n", u"↵\n") : u"! " + FromUtf8(failure);
}

TEST(Cells, AreMadeAsTheirTableSays) {
    GetHS(u"td", {u"#al", u"#b0", u"#u0"});
    test::ExpectTranscript("reports/cells.txt", [](TextView lines) {
        Text answers;
        while (!lines.empty()) {
            const Text answer = Answer(GetNext(lines, u"\n"));
            answers.append(answer.empty() ? u"nothing" : answer)
                .append(answer.ends_with(u'\n') ? u"" : u"\n");
        }
        return answers;
    });
}

}  // namespace
}  // namespace tav
