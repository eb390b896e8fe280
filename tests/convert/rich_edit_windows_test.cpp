// The page converter beside the system's rich-edit control, an independent reader of the same documents.
#include <gtest/gtest.h>
#include <richedit.h>

#include <string>
#include <vector>

#include "common/get_next.h"
#include "common/windows1251.h"
#include "convert/every_make.h"
#include "convert/page_reader.h"
#include "platform/win32_windows.h"
#include "support/support.h"

namespace tav {
namespace {

class RichEdit {
 public:
    RichEdit() : library_(::LoadLibraryW(L"riched20.dll")) {
        window_ = ::CreateWindowExW(0, L"RichEdit20W", L"", WS_POPUP | ES_MULTILINE, 0, 0, 600, 400,
                                    HWND_MESSAGE, nullptr, nullptr, nullptr);
        ::SendMessageW(window_, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    }
    ~RichEdit() {
        ::DestroyWindow(window_);
        ::FreeLibrary(library_);
    }
    RichEdit(const RichEdit&) = delete;
    RichEdit& operator=(const RichEdit&) = delete;

    // What the control shows of the document, in the bytes of our files.
    std::string Read(std::string_view document) {
        ::SetWindowTextW(window_, L"");
        EDITSTREAM stream{reinterpret_cast<DWORD_PTR>(&document), 0, Give};
        ::SendMessageW(window_, EM_STREAMIN, SF_RTF, reinterpret_cast<LPARAM>(&stream));
        GETTEXTLENGTHEX asked{GTL_USECRLF | GTL_PRECISE | GTL_NUMCHARS, kUtf16};
        const auto length = ::SendMessageW(window_, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&asked), 0);
        std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
        GETTEXTEX wanted{static_cast<DWORD>(text.size() * 2), GT_USECRLF, kUtf16, nullptr, nullptr};
        text.resize(
            static_cast<std::size_t>(::SendMessageW(window_, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&wanted),
                                                    reinterpret_cast<LPARAM>(text.data()))));
        return test::Bytes(win32::FromWide(text));
    }

 private:
    static constexpr UINT kUtf16 = 1200;

    static DWORD CALLBACK Give(DWORD_PTR cookie, LPBYTE buffer, LONG size, LONG* given) {
        auto& rest = *reinterpret_cast<std::string_view*>(cookie);
        *given =
            static_cast<LONG>(rest.copy(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(size)));
        rest.remove_prefix(static_cast<std::size_t>(*given));
        return 0;
    }

    HMODULE library_;
    HWND window_;
};

const std::string kOpening = "{\\rtf1\\ansi\\ansicpg1251 ";

// In a form that a failure shows line by line.
std::string Readable(std::string_view bytes) {
    return ToUtf8(FromWindows1251(bytes));
}

// A page as the control has to get it, for which a frame's position is no text.
std::string WithPositions(std::string_view page) {
    std::string shown(page);
    for (std::size_t at = 0; (at = shown.find("\\posx", at)) != shown.npos;) shown[at] = ' ';
    return shown;
}

void ExpectSamePages(RichEdit& control, const std::string& name, const std::string& document) {
    PageReader reader;
    reader.Open(document);
    for (int page = 1; reader.More(); ++page) {
        const std::string ours = Readable(reader.Next());
        ASSERT_EQ(ours, Readable(control.Read(WithPositions(reader.page())))) << name << ", page " << page;
    }
}

TEST(RichEdit, ShowsTheSamplesLineForLineAsWeDo) {
    RichEdit control;
    for (const auto& documents : {samples::SampleSet(), samples::EveryMake()})
        for (const samples::Document& document : documents)
            if (document.name.ends_with(u".rtf"))
                ExpectSamePages(control, ToUtf8(document.name), document.bytes);
    for (const std::string name : {"act.rtf", "no_part.rtf", "statement.rtf", "statement_second_layout.rtf"})
        ExpectSamePages(control, name, test::TestFile("convert/golden/" + name));
}

TEST(RichEdit, ShowsEveryConstructAsWeDo) {
    RichEdit control;
    RichText converter;
    const Text cases = FromUtf8(test::TestFile("convert/data/rich-text.txt"));
    std::vector<std::string> documents = {
        "",           "abc",         " {\\rtf1 abc}",
        "{\\rt abc}", "{\\rtf abc}", "{\\rtf1 a\r\nb\\\r\nc\\\nd\\\re\\u1105\r\n?f\\par\r\n}"};
    for (TextView rest = TextView(cases).substr(cases.find(u"# As a rich-edit control")); !rest.empty();) {
        const TextView line = GetNext(rest, u"\n");
        if (line.starts_with(u"> ")) documents.push_back(kOpening + test::Unpictured(line.substr(2)));
    }
    EXPECT_GT(documents.size(), 35U);
    for (const std::string& document : documents)
        EXPECT_EQ(Readable(converter.Read(document)), Readable(control.Read(document))) << document;
}

// Where we differ from the control, which is Wine's, on purpose: no text gets lost, and none is made up.
TEST(RichEdit, ShowsKnownConstructsOtherwise) {
    const std::string fonts = "{\\fonttbl{\\f0\\fcharset204 A;}{\\f1\\fcharset0 B;}}\\deff1";
    const std::string row = "\\trowd\\cellx100\\cellx200\\pard\\intbl ";
    const struct {
        std::string body;
        Text control;
        Text ours;
        const char* why;
    } cases[] = {
        {"a\\bin5 {\\}}}b}", u"a}", u"ab", "raw bytes are no text, whatever they are"},
        {"{\\pict\\bin3 a}b}c}", u"b", u"c", "nor do their braces close a group"},
        {"a\\'zzb}", u"a", u"azzb", "one bad escape does not end the document"},
        {"a\\'01b\\u13?c}", u"a\u0001b\r\nc", u"abc", "control characters are no text"},
        {"a\\cell b\\cell\\row}", u"ab", u"\r\na\tb\t\r\n", "cells outside of \\intbl stay apart"},
        {row + "a\\cell\\row\\pard y}", u"\r\na\t\t\r\ny", u"\r\na\t\r\ny", "no cell that is not written"},
        {row + "a\\cell\\itap2 x\\nestcell y\\nestcell{\\*\\nesttableprops\\nestrow}\\itap1\\cell\\row}",
         u"\r\na\t\r\nx\ty\t\t\r\n\t\r\n", u"\r\na\tx\ty\t\t\r\n",
         "a table in a cell stays in the cell's line"},
        {"\\u1105\\tab b}", u"ё\tb", u"ёb", "a control word may be a character's fallback"},
        {fonts + "\\f1\\'c0\\f9\\'c0}", u"??", u"?А", "a font not listed has the document's code page"},
        {fonts + "\\f0\\'c0\\plain\\'c0}", u"АА", u"А?", "\\plain goes back to the default font"},
        {"a{\\field{\\*\\fldinst x}{\\fldrslt b}}c}", u"ac", u"abc", "a field's result is text"},
        {"a{\\object{\\result b}}c}", u"ab", u"abc", "so is what follows an object"},
        {"a{\\annotation b}c}", u"ac", u"abc", "a group is text unless it is known to be none"},
        {"a{\\sp{\\sn n}{\\sv v}}b}", u"anvb", u"ab", "a drawing's properties are none"},
        {"a\\qmspace b}", u"ab", u"a b", "a quarter blank is a blank"},
    };
    RichEdit control;
    RichText converter;
    for (const auto& c : cases) {
        const std::string document = kOpening + c.body;
        EXPECT_EQ(Readable(control.Read(document)), ToUtf8(c.control)) << c.body << ": " << c.why;
        EXPECT_EQ(Readable(converter.Read(document)), ToUtf8(c.ours)) << c.body << ": " << c.why;
    }
}

}  // namespace
}  // namespace tav
