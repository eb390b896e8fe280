// Sessions at the screen, one file of ui/sessions each: what a person does and sees, in order, whatever
// toolkit shows the windows and whatever moves the mouse.
//
//     statements N    many    act    division    database    documents (ui/desktop.h), a new database
//     text FILE WORDS    remove FILE
//     set NAME VALUE    is NAME VALUE    true NAME           a setting before, and after
//     start    import [KPP]    view_v [KPP]    view_a        calls of the host
//     click SPOT    double SPOT ROW    type SPOT WORDS       a spot is WINDOW.CONTROL
//     choose SPOT NODE    focus SPOT    press KEY    close WINDOW    drop PATH
//     when WINDOW CONTROL                                    a click as soon as that window is shown
//     shown WINDOW    active WINDOW    gone WINDOW           "gone" also waits for the click above
//     has SPOT WORDS    lacks SPOT WORDS    row SPOT WORDS   a text, a row of a list
//     selected SPOT WORDS                                    the selected row of a list
//     rows SPOT N    nodes SPOT N WORDS                      how many rows, nodes that begin so
//     on SPOT    off SPOT                                    whether it can be used
//     opened PATH    page N WORDS                            the document opened last, how often it has these
//     said WORDS                                             the next message
//     file FILE WORDS    files N    keep N                   what a file has; RTF files of the folder "in"
//     hold    release    pause MILLISECONDS                  another program has the database
//
// "~/" begins a path in the session's folder, to the end of the line; MANY is the number of documents that
// "many" writes. What is seen is waited for; every message has its line. Empty lines and those that begin
// with "#" say nothing.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "common/get_next.h"
#include "platform/locked_file.h"
#include "ui/desktop.h"
#include "ui/frmmain.h"

namespace tav::test {

class Session : public Desktop {
 protected:
    void Play(const std::string& name) {
        const Text script = FromUtf8(TestFile("ui/sessions/" + name + ".txt"));
        for (TextView rest = script; !rest.empty();) {
            Text line(GetNext(rest, u"\n"));
            if (line.empty() || line.starts_with(u'#')) continue;
            SCOPED_TRACE(name + ": " + ToUtf8(line));
            const std::size_t path = line.find(u"~/");
            if (path != line.npos) line.replace(path, line.npos, folder_ / TextView(line).substr(path + 2));
            Do(ReplaceAll(line, u"MANY", Digits(many_)));
            if (HasFailure()) return;
        }
        EXPECT_THAT(Shown(), testing::SizeIs(said_)) << "a message that the session does not expect";
    }

    // The person's hands.
    virtual void ClickOn(const Spot& spot) {
        ASSERT_TRUE(Wait([&] { return IsEnabled(spot); }));
        Click(spot);
    }
    virtual void TypeInto(const Spot& spot, TextView words) { Type(spot, words); }
    virtual void PressKey(TextView key) {
        const std::map<TextView, Key> keys = {{u"Tab", Key::Tab},       {u"Enter", Key::Enter},
                                              {u"Escape", Key::Escape}, {u"Up", Key::Up},
                                              {u"Down", Key::Down},     {u"F5", Key::F5}};
        key.starts_with(u"Alt+") ? PressAlt(key.back()) : Press(keys.at(key));
    }
    virtual void Begin() { Start(); }

    int many_ = 3000;  // enough for something to happen while they are read

 private:
    void Do(TextView line) {
        const std::string verb = ToUtf8(GetNext(line, u" "));
        const std::string all = ToUtf8(line);
        const Text name(GetNext(line, u" "));
        const std::string first = ToUtf8(name);
        const std::string words = ToUtf8(line);
        const Spot spot = {first.substr(0, first.find('.')), first.substr(first.find('.') + 1)};
        const auto expect = [](auto until) { EXPECT_TRUE(Wait(until)); };
        const auto has = [&] { return TextOf(spot).find(words) != std::string::npos; };
        const auto rtf = [&] { return ListFiles(folder_ / u"in", u".rtf"); };
        const auto number = [](const std::string& digits) { return std::stoul(digits); };
        const std::map<std::string, std::function<void()>> verbs = {
            {"statements", [&] { WriteStatements(std::stoi(first)); }},
            {"many", [&] { WriteStatements(many_); }},
            {"act", [&] { WriteAct(); }},
            {"division", [&] { WriteDivision(); }},
            {"text", [&] { folder_.Write(name, words); }},
            {"remove", [&] { DeleteFile(folder_ / name); }},
            {"database", [&] { CreateDatabase(folder_ / u"PlX_Base.mdb"); }},
            {"set", [&] { EXPECT_TRUE(WriteSetting(name, line)); }},
            {"is", [&] { EXPECT_EQ(SettingText(name), line); }},
            {"true", [&] { EXPECT_TRUE(SettingTruth(name)); }},
            {"start", [&] { Begin(); }},
            {"import", [&] { Import(name.empty() ? Text(kKpp) : name); }},
            {"view_v", [&] { host_.view_v(kInn, name.empty() ? Text(kKpp) : name); }},
            {"view_a", [&] { host_.view_a(kInn, kKpp); }},
            {"click", [&] { ClickOn(spot); }},
            {"double", [&] { DoubleClickRow(spot, std::stoi(words)); }},
            {"type", [&] { TypeInto(spot, line); }},
            {"choose", [&] { ChooseNode(spot, line); }},
            {"focus", [&] { Focus(spot); }},
            {"press", [&] { PressKey(name); }},
            {"close", [&] { CloseWindow(first); }},
            {"drop", [&] { static_cast<FormEvents&>(Shared<frmmain>()).OnDrop({name}); }},
            {"when",
             [&] {
                 ClickWhenShown(first, {first, words});
             }},
            {"shown", [&] { expect([&] { return OnScreen(first); }); }},
            {"active", [&] { EXPECT_TRUE(WaitActive(first)); }},
            {"gone", [&] { expect([&] { return !*clicks_ && !OnScreen(first); }); }},
            {"has", [&] { EXPECT_TRUE(Wait(has)) << TextOf(spot); }},
            {"lacks", [&] { EXPECT_FALSE(has()) << TextOf(spot); }},
            {"row", [&] { EXPECT_THAT(RowsOf(spot), testing::Contains(testing::HasSubstr(words))); }},
            {"selected", [&] { EXPECT_EQ(SelectedOf(spot), words); }},
            {"rows", [&] { expect([&] { return RowsOf(spot).size() == number(words); }); }},
            {"nodes",
             [&] { EXPECT_EQ(NodesThatBegin(spot, words.substr(words.find(' ') + 1)), std::stoi(words)); }},
            {"on", [&] { expect([&] { return IsEnabled(spot); }); }},
            {"off", [&] { expect([&] { return !IsEnabled(spot); }); }},
            {"opened", [&] { expect([&] { return LastOpened().starts_with(all); }); }},
            {"page", [&] { EXPECT_EQ(OnPage(line), std::stoi(first)); }},
            {"said",
             [&] {
                 ASSERT_GT(Shown().size(), said_);
                 EXPECT_THAT(Shown()[said_++], testing::HasSubstr(all));
             }},
            {"file", [&] { EXPECT_EQ(ReadFile(folder_ / name), words); }},
            {"files", [&] { EXPECT_EQ(rtf().size(), number(first)); }},
            {"hold", [&] { holder_.emplace(folder_ / u"PlX_Base.mdb", LockedFile::Access::Write); }},
            {"release", [&] { holder_.reset(); }},
            {"pause", [&] { WaitFor(std::stoi(first)); }},
            {"keep",
             [&] {
                 const std::vector<Text> names = rtf();
                 for (std::size_t i = number(first); i < names.size(); ++i)
                     DeleteFile(folder_ / Text(u"in/").append(names[i]));
             }},
        };
        const auto known = verbs.find(verb);
        ASSERT_NE(known, verbs.end());
        known->second();
    }

    // Unless the session is over by then.
    void ClickWhenShown(const std::string& window, const Spot& spot) {
        *clicks_ = true;
        WhenShown(window, [this, spot, session = std::weak_ptr(clicks_)] {
            if (session.expired()) return;
            ClickOn(spot);
            *clicks_ = false;
        });
    }
    void WriteDivision() const {
        samples::StatementOptions options;
        options.name = u"division.rtf";
        options.taxpayer = samples::DivisionTaxpayer();
        samples::WriteDocument(folder_ / u"in", samples::MakeStatement(options));
    }
    static int NodesThatBegin(const Spot& tree, const std::string& words) {
        const std::vector<std::string> nodes = NodesOf(tree);
        return static_cast<int>(std::ranges::count_if(nodes, [&](const std::string& node) {
            return node.substr(node.find_first_not_of(' ')).starts_with(words);
        }));
    }
    std::string LastOpened() const {
        std::string paths = opened_.Paths();
        if (!paths.empty()) paths.pop_back();
        return paths.substr(paths.rfind('\n') + 1);
    }
    int OnPage(TextView words) const {
        const std::string page = ReadFile(FromUtf8(LastOpened()));
        const std::string bytes = Bytes(words);
        int count = 0;
        for (std::size_t at = 0; (at = page.find(bytes, at)) != page.npos; ++at) ++count;
        return count;
    }

    const std::shared_ptr<bool> clicks_ = std::make_shared<bool>(false);  // there is a click to come
    std::size_t said_ = 0;                                                // messages that had their line
    std::optional<LockedFile> holder_;
};

}  // namespace tav::test
