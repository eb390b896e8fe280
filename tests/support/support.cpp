#include "support/support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

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

std::string Bytes(TextView text) {
    return ToWindows1251(text);
}

}  // namespace tav::test
