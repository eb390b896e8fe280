// What many tests need: a folder of their own, a list of the messages shown, golden files.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/message_box.h"
#include "common/text.h"

namespace tav::test {

// A path for the standard library, which knows Text on Windows and bytes on Linux.
std::filesystem::path NativePath(TextView path);

// Makes a symbolic link; false where links cannot be made, and the test that needs one is skipped.
bool MakeLink(TextView target, TextView link);

// Names of documents that are hard to handle, as far as the platform has such names. The last one has
// characters that Windows-1251 lacks.
std::vector<Text> OddNames();

// A new empty folder, removed with everything in it at the end.
class TempFolder {
 public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // With its separator at the end.
    const Text& path() const { return path_; }
    // The full path of a file in it; "/" in the name is the platform's separator.
    Text operator/(TextView name) const;
    // Writes a file into it and returns its full path.
    Text Write(TextView name, std::string_view bytes) const;

 private:
    Text path_;
};

// Collects what would be shown, instead of showing it.
class MessageList : public MessageBox {
 public:
    MessageList() : scope_(*this) {}
    void Show(const Message& message) override { messages.push_back(message); }

    std::vector<Message> messages;

 private:
    ScopedMessageBox scope_;
};

// Points TAV_SETTINGS at an empty settings store of its own (a file, a key on Windows), and back at the end.
class OwnSettings {
 public:
    OwnSettings();
    ~OwnSettings();
    OwnSettings(const OwnSettings&) = delete;
    OwnSettings& operator=(const OwnSettings&) = delete;

    const Text& store() const { return store_; }

 private:
    TempFolder folder_;
    Text store_;
};

// A file of tests/, by its path below that folder.
std::string TestFile(std::string_view path);

// Compares with the golden file of that path below tests/; the test fails with the first line that differs.
// With TAV_UPDATE_GOLDEN set, the golden file is written instead.
void ExpectGolden(std::string_view path, std::string_view actual);

// A file of tests/ that says what goes in and what comes out, in blocks: lines "> IN", below them the answer,
// up to the next such line or an empty line. The other lines are comments. `answer` gets the input of a
// block, line by line separated by "\n"; all its answers are compared with the file as ExpectGolden does.
void ExpectTranscript(std::string_view path, const std::function<Text(TextView input)>& answer);

// Bytes and texts as such files show them: U+21B5 is CR LF, U+2400 and the following are control characters
// and, at the end of a line, the space, U+237D is a no-break space; in what goes in, a number in U+27E8 and
// U+27E9 says how often the character before it stands. Other characters are those of Windows-1251.
std::string Unpictured(TextView pictured);
Text Pictured(std::string_view bytes);

// The bytes of a Windows-1251 file for a text.
std::string Bytes(TextView text);

}  // namespace tav::test
