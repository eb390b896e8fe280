#include "support/support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "common/get_next.h"
#include "common/windows1251.h"
#include "platform/files.h"

namespace tav::test {
namespace fs = std::filesystem;

namespace {

std::string ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) ADD_FAILURE() << "cannot read " << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAll(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

TempFolder::TempFolder() {
    std::random_device random;
    fs::path folder;
    do {
        folder = fs::temp_directory_path() / ("tav-test-" + std::to_string(random()));
    } while (!fs::create_directory(folder));
    path_ = folder.u16string() + kPathSeparator;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(NativePath(path_), ignored);
}

Text TempFolder::operator/(TextView name) const {
    return path_ + ReplaceAll(name, u"/", TextView(&kPathSeparator, 1));
}

Text TempFolder::Write(TextView name, std::string_view bytes) const {
    const Text path = *this / name;
    WriteAll(NativePath(path), bytes);
    return path;
}

std::string TestFile(std::string_view path) {
    return ReadAll(fs::path(TAV_TEST_DIR) / path);
}

void ExpectGolden(std::string_view path, std::string_view actual) {
    const fs::path file = fs::path(TAV_TEST_DIR) / path;
    if (std::getenv("TAV_UPDATE_GOLDEN") != nullptr) {
        fs::create_directories(file.parent_path());
        WriteAll(file, actual);
        return;
    }
    const std::string expected = ReadAll(file);
    if (expected == actual) return;
    const auto differs = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    const auto line = 1 + std::count(expected.begin(), differs.first, '\n');
    ADD_FAILURE() << path << " differs from line " << line << " on; actual there: "
                  << std::string(differs.second, differs.second + std::min<std::ptrdiff_t>(
                                                                      120, actual.end() - differs.second));
}

void ExpectTranscript(std::string_view path, const std::function<Text(TextView input)>& answer) {
    const Text file = FromUtf8(TestFile(path));
    Text made;
    Text input;
    bool answered = false;
    const auto end_block = [&] {
        if (input.empty()) return;
        const Text said = answer(TextView(input).substr(1));
        made += said.empty() || said.ends_with(u'\n') ? said : said + u'\n';
        input.clear();
        answered = true;
    };
    for (TextView rest = file; !rest.empty();) {
        const TextView line = GetNext(rest, u"\n");
        if (line.starts_with(u'>')) {
            answered = false;
            input.append(u"\n").append(line.substr(std::min<std::size_t>(2, line.size())));
        } else {
            end_block();
            answered = answered && !line.empty();
            if (answered) continue;
        }
        made.append(line).append(u"\n");
    }
    end_block();
    ExpectGolden(path, ToUtf8(made));
}

std::string Unpictured(TextView pictured) {
    Text text;
    for (std::size_t i = 0; i < pictured.size(); ++i) {
        const char16_t c = pictured[i];
        if (c >= u'\u2400' && c <= u'\u2420') {
            text += static_cast<char16_t>(c - u'\u2400');
        } else if (c == u'\u27E8') {
            std::size_t count = 0;
            for (++i; pictured[i] != u'\u27E9'; ++i) count = count * 10 + (pictured[i] - u'0');
            text.append(count - 1, text.back());
        } else {
            text += c;
        }
    }
    return Bytes(ReplaceAll(ReplaceAll(text, u"\u21B5", u"\r\n"), u"\u237D", u"\u00A0"));
}

Text Pictured(std::string_view bytes) {
    Text text = ReplaceAll(FromWindows1251(bytes), u"\r\n", u"\u21B5");
    for (char16_t& c : text) {
        if (c < u' ') c = static_cast<char16_t>(c + u'\u2400');
    }
    if (text.ends_with(u' ')) text.back() = u'\u2420';
    return ReplaceAll(text, u"\u00A0", u"\u237D");
}

std::string Bytes(TextView text) {
    return ToWindows1251(text);
}

}  // namespace tav::test
