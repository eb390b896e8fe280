#include "convert/statement_lines.h"

#include <gtest/gtest.h>

#include <string>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "support/support.h"

namespace tav {
namespace {

// What the lines give, elements alone; or the words of the failure.
Text Parts(TextView lines) {
    StatementLines reader;
    try {
        for (TextView rest = lines; !rest.empty();) {
            const TextView line = GetNext(rest, u"\n");
            const std::size_t times = line.starts_with(u'*') ? line.find(u' ') : 0;  // "*13 line" is 13 lines
            const std::string bytes = test::Unpictured(line.substr(times == 0 ? 0 : times + 1));
            for (std::int64_t i = times == 0 ? 1 : *ParseInteger(line.substr(1, times - 1)); i > 0; --i)
                reader.Add(bytes);
        }
    } catch (const Failure& failure) {
        return u"! " + failure.description();
    }
    std::string output = reader.TakeOutput();
    std::erase_if(output, [](char c) { return c == '\t' || c == '\r' || c == '\n'; });
    return test::Pictured(output);
}

TEST(StatementLines, BecomeParts) {
    // A statement whose head and column titles are complete, as most of the cases begin.
    const Text opening = u"*13 ##v<h@@>\n*4 ##<p01>title";
    const Text opened = Parts(opening);
    test::ExpectTranscript("convert/data/statement-lines.txt", [&](TextView lines) {
        return ReplaceAll(Parts(ReplaceAll(lines, u"(statement)", opening)), opened + u"<", u"(statement)<");
    });
}

TEST(StatementLines, EndAnActAfterItsRows) {
    EXPECT_TRUE(Parts(u"*13 ##a<h@@>\n*103 ##a<p@@@@>")
                    .ends_with(u"<p0044>0.00</p0044><p0045>0.00</p0045></body></part>"));
}

}  // namespace
}  // namespace tav
