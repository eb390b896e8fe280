// Where the controls of a small form go, in rooms of several sizes.
#include "forms/form_grid.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace tav {
namespace {

// Lists, boxes and buttons of one size; a label has ten letters of 10 pixels, which it breaks to the width.
class Item : public GridItem {
 public:
    explicit Item(const ControlPlan& plan) : plan_(plan) {}
    int MinWidth() const override { return plan_.kind == ControlKind::Label ? 100 : 40; }
    int BrokenWidth() const override { return 10; }
    int HeightFor(int width) const override {
        return plan_.kind == ControlKind::Label ? (100 + width - 1) / width * 10 : 20;
    }
    void Put(const Box& box) override { box_ = box; }
    std::string Drawn() const {
        return ToUtf8(plan_.name) + " " + std::to_string(box_.x) + "," + std::to_string(box_.y) + " " +
               std::to_string(box_.width) + "x" + std::to_string(box_.height) + "\n";
    }

 private:
    const ControlPlan& plan_;
    Box box_;
};

struct Laid {
    explicit Laid(const std::vector<ControlPlan>& plans) {
        grid.SetStretch(StretchOf(plans).at({}));
        grid.SetGap(5);
        for (const ControlPlan& plan : plans) {
            if (plan.kind != ControlKind::Timer) grid.Add(items.emplace_back(plan), plan);
        }
    }
    std::string In(const Box& room) {
        grid.Arrange(room);
        std::string drawn;
        for (const Item& item : items) drawn += item.Drawn();
        return drawn;
    }
    std::deque<Item> items;
    Grid grid;
};

const std::vector<ControlPlan> kDialog = {
    {u"Ask", ControlKind::Label, u"буквы", {}, {0, 0}},
    {u"Box", ControlKind::TextBox, {}, {}, {0, 1}},
    {u"List", ControlKind::ListBox, {}, {}, {1, 0, 2}},
    {u"Note", ControlKind::Label, u"буквы", {}, {2, 0, 2}},
    {u"Ok", ControlKind::Button, {}, {}, {3, 0}},
    {u"Cancel", ControlKind::Button, {}, {}, {3, 1}},
    {u"Tick", ControlKind::Timer},
};

TEST(FormGrid, GivesTheRoomThatIsOverToWhatGrows) {
    Laid laid(kDialog);
    EXPECT_EQ(laid.grid.MinWidth(), 145);
    EXPECT_EQ(laid.grid.HeightFor(145), 85);
    EXPECT_EQ(laid.In({10, 10, 205, 185}),
              "Ask 10,15 100x10\nBox 115,10 100x20\nList 10,35 205x120\nNote 10,160 205x10\n"
              "Ok 10,175 100x20\nCancel 115,175 40x20\n");
    // Too small: what does not fit is cut off at the edges.
    EXPECT_EQ(laid.In({0, 0, 50, 50}),
              "Ask 0,5 100x10\nBox 105,0 40x20\nList 0,25 145x20\nNote 0,50 145x10\n"
              "Ok 0,65 100x20\nCancel 105,65 40x20\n");
}

TEST(FormGrid, BreaksALabelOnlyWhereAColumnGrows) {
    const std::vector<ControlPlan> plans = {{u"Box", ControlKind::TextBox, {}, {}, {0, 0}},
                                            {u"Note", ControlKind::Label, u"буквы", {}, {1, 0}}};
    Laid laid(plans);
    EXPECT_EQ(laid.grid.MinWidth(), 40);
    EXPECT_EQ(laid.In({0, 0, 40, 200}), "Box 0,0 40x20\nNote 0,25 40x30\n");
    const std::vector<ControlPlan> narrow = {{u"Note", ControlKind::Label, u"буквы", {}, {0, 0, 3}},
                                             {u"Yes", ControlKind::Button, {}, {}, {1, 0}},
                                             {u"No", ControlKind::Button, {}, {}, {1, 2}}};
    EXPECT_EQ(Laid(narrow).In({0, 0, 500, 500}), "Note 0,0 100x10\nYes 0,15 40x20\nNo 60,15 40x20\n");
}

TEST(FormGrid, AFrameGrowsWithWhatIsInIt) {
    const std::vector<ControlPlan> plans = {
        {u"Flat", ControlKind::Frame, {}, {}, {0, 0}},
        {u"Box", ControlKind::TextBox, {}, {}, {0, 0, 1, u"Flat"}},
        {u"High", ControlKind::Frame, {}, {}, {1, 0}},
        {u"Tree", ControlKind::TreeView, {}, {}, {2, 1, 1, u"High"}},
    };
    const auto stretches = StretchOf(plans);
    EXPECT_EQ(stretches.at({}).rows, (std::vector<bool>{false, true}));
    EXPECT_EQ(stretches.at({}).columns, std::vector<bool>{true});
    EXPECT_EQ(stretches.at(u"Flat").rows, std::vector<bool>{false});
    EXPECT_EQ(stretches.at(u"High").rows, (std::vector<bool>{false, false, true}));
    EXPECT_EQ(stretches.at(u"High").columns, (std::vector<bool>{false, true}));
}

}  // namespace
}  // namespace tav
