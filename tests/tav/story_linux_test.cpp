// Stories: what a person types and what the program answers, one text file each in tests/tav/stories.
//
//     # what it is about
//     $ tav import --inn 1 --kpp 2 --folder ~/in
//     what it prints
//     ! what it says on standard error
//     = its exit status, unless that is 0
//
// "~" is the story's own folder, '...' holds spaces together; empty lines of an answer are left out. Besides
// `tav` and `make_samples` there are the few commands of the table below. With TAV_UPDATE_GOLDEN set the
// answers are written anew.
#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <thread>

#include "platform/locked_file.h"
#include "tav/cli_fixture.h"

namespace tav {
namespace {

using Words = std::vector<std::string>;

std::vector<std::string> StoryNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TAV_TEST_DIR "/tav/stories"))
        names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class Stories : public Cli, public testing::WithParamInterface<std::string> {
 protected:
    std::string Told(const std::string& story) {
        std::string told;
        std::istringstream lines(story);
        for (std::string line; std::getline(lines, line);) {
            if (line.empty() || line.front() == '#') told += line + "\n";
            if (line.starts_with("$ ")) told += line + "\n" + Answer(WordsOf(line.substr(2)));
        }
        return told;
    }

 private:
    Words WordsOf(const std::string& line) const {
        Words words;
        bool quoted = false;
        bool inside = false;
        for (const char c : line) {
            if (c == '\'') quoted = !quoted;
            const bool blank = c == ' ' && !quoted;
            if (!blank && !inside) words.emplace_back();
            inside = !blank;
            if (c == '~') words.back() += Home();
            if (!blank && c != '\'' && c != '~') words.back() += c;
        }
        return words;
    }

    std::string Answer(const Words& words) {
        const auto own = kCommands.find(words[0]);
        if (own != kCommands.end()) return (this->*own->second)(words);
        const Outcome outcome = test::RunProgram(words[0], Words(words.begin() + 1, words.end()));
        std::string answer = Shown(outcome.out, "") + Shown(outcome.err, "! ");
        return outcome.status == 0 ? answer : answer + "= " + std::to_string(outcome.status) + "\n";
    }

    std::string Shown(std::string text, const std::string& before) const {
        for (std::size_t at; (at = text.find(Home())) != text.npos;) text.replace(at, Home().size(), "~");
        if (kPathSeparator == u'\\') std::replace(text.begin(), text.end(), '\\', '/');
        std::string shown;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) shown += before + line + "\n";
        }
        return shown;
    }

    std::string Write(const Words& words) {
        WriteFileWhole(FromUtf8(words[1]), words[2]);
        return {};
    }
    std::string Copy(const Words& words) {
        WriteFileWhole(FromUtf8(words[2]), ReadFile(FromUtf8(words[1])));
        return {};
    }
    std::string Remove(const Words& words) {
        DeleteFile(FromUtf8(words[1]));
        return {};
    }
    std::string Files(const Words& words) {
        std::string names;
        for (const Text& name : ListFiles(FromUtf8(words[1]), {})) names += ToUtf8(name) + "\n";
        return names;
    }
    // Another program that has the file for so many seconds, or for the rest of the story.
    std::string Hold(const Words& words) {
        holder_.emplace(FromUtf8(words[1]), LockedFile::Access::Write);
        if (words.size() > 2) {
            release_ = std::jthread([this, seconds = std::stoi(words[2])] {
                std::this_thread::sleep_for(std::chrono::seconds(seconds));
                holder_.reset();
            });
        }
        return {};
    }

    std::string Home() const {
        const std::string path = Path(u"");
        return path.substr(0, path.size() - 1);
    }

    const std::map<std::string, std::string (Stories::*)(const Words&)> kCommands = {
        {"write", &Stories::Write}, {"copy", &Stories::Copy}, {"remove", &Stories::Remove},
        {"files", &Stories::Files}, {"hold", &Stories::Hold},
    };
    std::optional<LockedFile> holder_;
    std::jthread release_;
};

TEST_P(Stories, AreToldAsTheyWereWritten) {
    const std::string file = "tav/stories/" + GetParam() + ".txt";
    test::ExpectGolden(file, Told(test::TestFile(file)));
}

INSTANTIATE_TEST_SUITE_P(Tav, Stories, testing::ValuesIn(StoryNames()),
                         [](const auto& story) { return story.param; });

}  // namespace
}  // namespace tav
