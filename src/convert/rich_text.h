// The page converter: rich text to plain text, as a rich-text control shows it.
//
// In: the bytes of a document that begins with "{\rtf"; anything else is no rich text and gives empty text.
// Out: Windows-1251 text; a paragraph, section, page or table row end is CR LF, \line a blank, \tab and
// \cell TAB. The first cell of a row puts a line break before the row's first paragraph. As the very last of
// the text, such an end is none (the text's last paragraph ends with it), but for a row's. The result is
// never longer than the document.
//
// A frame's position is the first visible text of its line: every "\posx", also inside of another construct, is read
// as if " posx" stood there. The space ends a control word before it.
//
// Bytes and \'xx are read by the charset of the run's font, else by the document's code page (code_pages.h);
// what Windows-1251 lacks becomes the best fit (common/windows1251.h). Control characters, byte 0 among them,
// are no text. Text after the outermost closing brace is dropped; a group never closed keeps its text.
//
// Any bytes will do: every byte is read once, groups may nest to any depth (below kDeepest they keep the
// format of that depth), and a number of any length is cut to 32 bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "convert/code_pages.h"
#include "convert/rtf_words.h"

namespace tav {

class RichText {
 public:
    static constexpr std::size_t kDeepest = 65536;

    // The plain text of a document; valid until the next call.
    std::string_view Read(std::string_view document);
    // Whether the last document had visible text after its outermost closing brace.
    bool dropped_text() const { return dropped_text_; }
    // How many groups the last document opened without closing them; below 0 when it closed more than it
    // opened.
    std::ptrdiff_t open_groups() const { return open_groups_; }

 private:
    struct Format {
        std::int32_t font = 0;
        std::int32_t unicode_skip = 1;
    };
    struct Word {
        const RtfWord* known;
        std::int32_t value;  // 0 without a number
        bool has_value;
    };

    void Begin(std::string_view document);
    void ReadAll();
    char* EndOfText() const;
    std::string_view Finish();

    void ReadPlain();
    bool AtFrame(const char* at) const;
    void ReadFrame();
    void ReadEscape();
    void ReadHexBytes();
    void ReadSymbol();
    void ReadLineEnd();
    Word TakeWord(const char*& at) const;
    Word ReadWord();
    void ReadWords();
    void Apply(Word word);

    void OpenGroup();
    void CloseGroup();
    // Passes over the rest of the group, up to its closing brace, and shows each of its control words to
    // `on_word(const Word&)`.
    template <class OnWord>
    void PassGroup(OnWord&& on_word);
    void ReadFontTable();
    void PassUnicodeFallback();
    void PassBinary(std::int32_t size);

    void Put(char byte);
    void PutBreak();
    void PutUnicode(std::int32_t number);
    void EndCell();
    void EndRow();

    // Whether the format may change: at a depth whose format is not kept it may not.
    bool FormatIsKept() const { return depth_ == outer_formats_.size(); }
    void SetFont(std::int32_t font);
    void SetDocumentMap(std::int32_t code_page);
    void ChooseMap();

    const char* at_ = nullptr;
    const char* end_ = nullptr;

    // Raw storage for the result: it needs no initial value and never grows within a document.
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    char* out_ = nullptr;

    std::size_t depth_ = 0;
    Format format_;
    std::vector<Format> outer_formats_;

    const ByteMap* map_ = nullptr;
    const ByteMap* document_map_ = nullptr;
    std::int32_t default_font_ = 0;
    // By font number, as far as one was set; nullptr where the font leaves the code page to the document.
    std::vector<const ByteMap*> font_maps_;

    const char* group_start_ = nullptr;  // just after an opening brace
    char* paragraph_ = nullptr;          // where the present paragraph's text begins
    char* after_break_ = nullptr;        // just after the last line break that no row ended
    char* row_ = nullptr;                // where the present row's text begins; none before \intbl
    char* document_end_ = nullptr;       // where the text ended when the outermost brace closed
    bool in_row_ = false;
    bool dropped_text_ = false;
    std::ptrdiff_t open_groups_ = 0;
};

}  // namespace tav
