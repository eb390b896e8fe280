#include "forms/reader_names.h"

#include <gtest/gtest.h>

namespace tav {
namespace {

TEST(ReaderNames, EveryControlIsCalledSomething) {
    using Kind = ControlKind;
    constexpr Place kInner = {0, 0, 1, u"Inner"};
    constexpr Place kBox = {0, 0, 1, u"Box"};
    const std::pair<ControlPlan, TextView> cases[] = {
        {{u"list", Kind::ListBox}, u""},
        {{u"Box", Kind::Frame, u"Ящик"}, u""},
        {{u"label", Kind::Label, u"Папка:", u"подсказка", kBox}, u""},
        {{u"text", Kind::TextBox, {}, u"подсказка", kBox}, u"Папка:"},
        {{u"browse", Kind::Button, u"...", u"Выбор", kBox}, u"Выбор"},
        {{u"ok", Kind::Button, u"Да", u"Согласие", kBox}, u""},
        {{u"erase", Kind::PictureButton, u"Стереть", u"Очистить", kBox}, u"Очистить"},
        {{u"check", Kind::CheckBox, u"Переносить:", {}, kBox}, u""},
        {{u"out", Kind::TextBox, {}, {}, kBox}, u"Переносить:"},
        {{u"look", Kind::PictureButton, u"Обновить", {}, kBox}, u"Обновить"},
        {{u"later", Kind::Label, {}, {}, kBox}, u""},
        {{u"Inner", Kind::Frame, {}, {}, kBox}, u""},
        {{u"bar", Kind::ProgressBar, {}, {}, kInner}, u"Ящик"},
        {{u"note", Kind::Memo, u"строка", {}, kBox}, u""},
        {{u"tree", Kind::TreeView, {}, {}, kBox}, u"Ящик"},
        {{u"tick", Kind::Timer}, u""},
    };
    std::vector<ControlPlan> plans;
    for (const auto& [plan, name] : cases) plans.push_back(plan);
    const auto names = NamesForReaders(plans);
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(ToUtf8(names[i]), ToUtf8(cases[i].second)) << ToUtf8(plans[i].name);
}

}  // namespace
}  // namespace tav
