#include "reports/page.h"

#include <gmock/gmock.h>

#include "common/failure.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "reports/taxpayer_shown.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav {
namespace {

using test::MessageList;
using test::TempFolder;

class ReportFile : public testing::Test {
 protected:
    ReportFile() {
        SetClock([] { return LocalTime{{2011, 5, 9}, {14, 30, 7}}; });
    }
    ~ReportFile() override { SetClock(nullptr); }

    TempFolder folder_;
    MessageList shown_;
};

TEST(Page, HasTheFrameInItsOrder) {
    EXPECT_EQ(
        Page(u"HEAD", u"ROWS"),
        u"<html><meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1251\"><style>td { "
        u"font-size: 12px; }@page Section1{size:841.9pt 595.3pt; mso-page-orientation:landscape; "
        u"margin:1.0cm 1.0cm 1.0cm 1.0cm;} div.Section1{page:Section1;}</style><div "
        u"class=Section1><table border=0 width=100%>HEAD</table><br><table border=2 "
        u"style=\"border-collapse: collapse;\" cellspacing=0 cellpadding=0>ROWS");
}

TEST_F(ReportFile, TakesTheSecondsWhenTheNameIsTaken) {
    EXPECT_EQ(ReportPath(folder_.path(), u"vipis.doc"), folder_ / u"vipis.doc");
    const Text without_separator = folder_.path().substr(0, folder_.path().size() - 1);
    EXPECT_EQ(ReportPath(without_separator, u"vipis.doc"), folder_ / u"vipis.doc");
    folder_.Write(u"vipis.doc", "old");
    folder_.Write(u"vipis07.doc", "older");
    EXPECT_EQ(ReportPath(folder_.path(), u"vipis.doc"), folder_ / u"vipis07.doc");
}

TEST_F(ReportFile, IsWrittenWholeWithItsFolders) {
    const Text path = folder_ / u"новая/папка/vipis.doc";
    WriteReport(path, u"Сальдо");
    EXPECT_EQ(ReadFile(path), test::Bytes(u"Сальдо</table>\r\n"));
    WriteReport(path, u"№");
    EXPECT_EQ(ReadFile(path), test::Bytes(u"№</table>\r\n"));
    EXPECT_THAT(ListFiles(FolderOf(path), u""), testing::ElementsAre(u"vipis.doc"));
}

TEST_F(ReportFile, SaysWhichFileToClose) {
    EXPECT_EQ(GuardedReport(u"Ошибка в функции GetVipis", u"/base.mdb",
                            [](Text& file) -> Text {
                                file = u"/out/vipis.doc";
                                throw Failure(RunTimeError::PermissionDenied, file);
                            }),
              u"");
    EXPECT_EQ(
        GuardedReport(u"Ошибка в функции GetVipis", u"/base.mdb",
                      [](Text&) -> Text { throw Failure(RunTimeError::PermissionDenied, u"/base.mdb"); }),
        u"");
    EXPECT_EQ(GuardedReport(u"Ошибка в функции GetVipis", u"/base.mdb",
                            [](Text&) -> Text { throw Failure(RunTimeError::Overflow); }),
              u"");
    EXPECT_THAT(shown_.messages,
                testing::ElementsAre(Message{u"Запрет", u"Закройте файл /out/vipis.doc и повторите попытку"},
                                     Message{u"Запрет", u"Закройте файл /base.mdb и повторите попытку"},
                                     Message{u"Ошибка в функции GetVipis", u"Overflow\r\n"}));
}

TEST(TaxpayerShown, ComesFromTheSetting) {
    const test::OwnSettings own;
    EXPECT_FALSE(ChosenTaxpayer());
    struct Case {
        TextView setting, inn, kpp, name;
    };
    for (const Case& c :
         {Case{u"ООО Ромашка|7701234567|770101001", u"7701234567", u"770101001", u"ООО Ромашка"},
          Case{u"ООО Ромашка|7701234567", u"7701234567", u"ООО Ромашка", u""}, Case{u"||", u"", u"", u""}}) {
        ASSERT_TRUE(WriteSetting(u"NameINNKPP", c.setting));
        const auto taxpayer = ChosenTaxpayer();
        ASSERT_TRUE(taxpayer);
        EXPECT_EQ(taxpayer->inn, c.inn);
        EXPECT_EQ(taxpayer->kpp, c.kpp);
        EXPECT_EQ(taxpayer->name, c.name);
    }
}

}  // namespace
}  // namespace tav
