// The component as other programs have it: the installed library under a host in C, and the operations of the
// command line that show windows.

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>

#include "common/windows1251.h"
#include "tav/cli_fixture.h"

namespace tav {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Not;
using testing::SizeIs;

Outcome RunAny(const std::string& program, const std::vector<std::string>& arguments,
               const std::function<void()>& in_child = {}) {
    return test::Process(program, arguments, in_child).Wait();
}

// No screen anywhere.
void WithoutScreen() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) ::unsetenv(name);
}

class Outside : public Cli {
 protected:
    Outside() {
        samples::SampleFolder(folder_ / u"in");
        EXPECT_EQ(Tav({"settings", "set", "DataBasePath", Path(u"")}).status, 0);
        EXPECT_EQ(Tav({"settings", "set", "ImportPath", Path(u"in")}).status, 0);
        EXPECT_EQ(Tav({"settings", "set", "ExportPath", Path(u"reports")}).status, 0);
        EXPECT_EQ(Tav({"db", "create"}).status, 0);
    }
    Outcome Tav(const std::vector<std::string>& arguments,
                const std::function<void()>& in_child = WithoutScreen) const {
        return Cli::Tav(arguments, in_child);
    }
    Outcome Ask(const std::string& operation, const std::function<void()>& in_child = WithoutScreen) const {
        return Tav({operation, "--inn", kInn, "--kpp", kKpp}, in_child);
    }
};

TEST_F(Outside, AHostInCBuildsAgainstTheInstalledLibraryAndImports) {
    const std::string prefix = Path(u"установка с пробелом");
    ASSERT_EQ(RunAny("cmake", {"--install", TAV_BINARY_DIR, "--prefix", prefix}).status, 0);
    const auto flags = RunAny("pkg-config", {"--cflags", "--libs", "TAV_OperationImport"},
                              [&] { ::setenv("PKG_CONFIG_PATH", (prefix + "/lib/pkgconfig").c_str(), 1); });
    ASSERT_EQ(flags.status, 0) << flags.err;
    const std::string build = std::string(TAV_HOST_CC) +
                              " -std=c11 -Wall -Wextra -Werror '" TAV_SOURCE_DIR "/examples/host.c' " +
                              flags.out.substr(0, flags.out.find('\n')) + " -o '" + Path(u"host") + "'";
    const Outcome built = RunAny("sh", {"-c", build});
    ASSERT_EQ(built.status, 0) << built.err;
    const auto with_library = [&] {
        WithoutScreen();
        ::setenv("LD_LIBRARY_PATH", (prefix + "/lib").c_str(), 1);
    };
    const Outcome import = RunAny(Path(u"host"), {kInn, kKpp, "import"}, with_library);
    EXPECT_EQ(import.status, 0);
    EXPECT_THAT(import.err, IsEmpty());
    EXPECT_THAT(Tav({"list", "--inn", kInn}).out, HasSubstr("Выписка"));
    const Outcome statements = RunAny(Path(u"host"), {kInn, kKpp, "statements"}, with_library);
    EXPECT_THAT(statements.err, AllOf(HasSubstr("Ошибка в функции View_V: "), HasSubstr("index.doc")));
    const Outcome main_window = RunAny(Path(u"host"), {kInn, kKpp}, [&] {
        with_library();
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::alarm(3);  // nobody closes the window
    });
    EXPECT_EQ(main_window.status, 128 + SIGALRM) << main_window.err;

    const Outcome exported =
        RunAny("nm", {"-D", "--defined-only", prefix + "/lib/libTAV_OperationImport.so"});
    EXPECT_EQ(std::count(exported.out.begin(), exported.out.end(), '\n'), 7) << exported.out;
}

TEST_F(Outside, ImportsWithoutEverLoadingTheToolkit) {
    const auto loads = [&](const std::string& command) {
        const std::string log = Path(u"loaded." + FromUtf8(command));
        Ask(command, [&] {
            ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
            ::setenv("LD_DEBUG", "files", 1);
            ::setenv("LD_DEBUG_OUTPUT", log.c_str(), 1);
            ::alarm(2);
        });
        std::string all;
        for (const Text& name : ListFiles(folder_.path(), {})) {
            if (name.starts_with(u"loaded." + FromUtf8(command))) all += ReadFile(folder_ / name);
        }
        return all;
    };
    EXPECT_THAT(loads("import"), AllOf(HasSubstr("libsqlite3"), Not(HasSubstr("Qt6"))));
    EXPECT_THAT(loads("start"), HasSubstr("Qt6"));
}

TEST_F(Outside, WithoutAScreenReportsAreWrittenAndWindowsAreAFailure) {
    ASSERT_EQ(Ask("import").status, 0);
    const Outcome start = Ask("start");
    EXPECT_EQ(start.status, 1);
    EXPECT_THAT(start.err, HasSubstr("Ошибка в функции Start: "));
    for (const auto& [operation, file] : {std::pair{"view_v", "index.doc"}, {"view_a", "acts.doc"}}) {
        const Outcome view = Ask(operation);
        EXPECT_EQ(view.status, 1);
        EXPECT_EQ(view.out, Path(u"reports/") + file + "\n") << view.err;
        EXPECT_THAT(view.err, HasSubstr("Ошибка в функции View_"));
    }
    EXPECT_EQ(Tav({"start", "--inn", "1", "--kpp", "2", "--date", "32.01.2011"}).status, 2);
    EXPECT_THAT(Tav({"start"}).err, HasSubstr("NameINNKPP"));
}

TEST_F(Outside, ViewOpensTheStatementOfANumber) {
    ASSERT_EQ(Ask("import").status, 0);
    folder_.Write(u"xdg-open", "#!/bin/sh\necho \"$1\" > \"$(dirname \"$0\")/opened\"\n");
    ASSERT_EQ(RunAny("chmod", {"+x", Path(u"xdg-open")}).status, 0);
    const auto with_opener = [&] {
        WithoutScreen();
        ::setenv("PATH", (Path(u"") + ":" + std::getenv("PATH")).c_str(), 1);
    };
    EXPECT_THAT(Tav({"view_v_id", "999"}, with_opener).err, HasSubstr("GetVipis"));
    EXPECT_EQ(Tav({"view_v_id", "1"}, with_opener).err, "");
    for (int i = 0; i < 100 && !FileExists(folder_ / u"opened"); ++i) RunAny("sleep", {"0.1"});
    // Nothing is there for ".doc", so the copy on paper is opened.
    EXPECT_EQ(ReadFile(folder_ / u"opened"), Path(u"reports/vipis.pdf") + "\n");
    EXPECT_TRUE(FileExists(folder_ / u"reports/vipis.doc"));
    // One that starts and fails.
    folder_.Write(u"xdg-open", "exit 4");
    EXPECT_THAT(Tav({"view_v_id", "1"}, with_opener).err, HasSubstr(".pdf (xdg-open: 4)"));
}

// "1 234 567,89": from each comma to the left, groups of three digits.
std::multiset<std::string> AmountsIn(const std::string& text) {
    const auto digit = [&](std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    std::multiset<std::string> amounts;
    std::size_t last = 0;  // the end of the amount before
    for (std::size_t comma = text.find(','); comma != text.npos; comma = text.find(',', comma + 1)) {
        if (!digit(comma - 1) || !digit(comma + 1) || !digit(comma + 2)) continue;
        std::size_t begin = comma;
        for (std::size_t end = comma;; end = --begin) {
            while (end - begin < 3 && begin > last && digit(begin - 1)) --begin;
            if (end - begin < 3 || begin < last + 2 || text[begin - 1] != ' ' || !digit(begin - 2)) break;
        }
        last = comma + 3;
        amounts.insert(text.substr(begin, last - begin));
    }
    return amounts;
}

// Each amount in one piece, with plain spaces as pdftotext has it; pictures have some more numbers.
TEST_F(Outside, ReportsOnPaperHaveTheSameAmountsAndLinks) {
    ASSERT_EQ(Ask("import").status, 0);
    const Outcome made = Tav({"report", "statements", "--inn", kInn, "--kpp", kKpp, "--pdf"}, WithoutScreen);
    EXPECT_EQ(made.out, Path(u"reports/index.doc") + "\n" + Path(u"reports/index.pdf") + "\n");
    std::string html;
    for (const Text& name : ListFiles(folder_ / u"reports", u".doc")) {
        html += ToUtf8(ReplaceAll(FromWindows1251(ReadFile(folder_ / u"reports/" + name)), u"\u00A0", u" "));
    }
    const std::multiset<std::string> expected = AmountsIn(html);
    EXPECT_GT(expected.size(), 100U);
    const Outcome text = RunAny("pdftotext", {"-layout", Path(u"reports/index.pdf"), "-"});
    const std::multiset<std::string> shown = AmountsIn(text.out);
    EXPECT_TRUE(std::includes(shown.begin(), shown.end(), expected.begin(), expected.end())) << text.out;
    EXPECT_THAT(text.out, AllOf(HasSubstr("Страница 2 из 2"), Not(HasSubstr("&nbsp;"))));
    const std::string pdf = ReadFile(folder_ / u"reports/index.pdf");
    EXPECT_THAT(pdf, AllOf(HasSubstr("/S /GoTo\n/D ["), Not(HasSubstr("/S /URI"))));
}

// With nobody at the screen: the window opens, imports and goes.
TEST_F(Outside, StartImportsAndCloses) {
    const Outcome outcome = Tav({"start", "--import", "--inn", kInn, "--kpp", kKpp}, [] {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::alarm(60);
    });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(Tav({"list", "--inn", kInn}).out, HasSubstr("Выписка"));
}

}  // namespace
}  // namespace tav
