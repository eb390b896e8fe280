// What the windows of all toolkits have in common: controls, each of its own kind, to which a window passes
// on what is asked of it.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "forms/forms.h"

namespace tav {

// Whether two trees are the same but for what is dimmed.
inline bool SameTree(const std::vector<TreeNode>& one, const std::vector<TreeNode>& other) {
    return std::ranges::equal(one, other, [](const TreeNode& a, const TreeNode& b) {
        return a.key == b.key && a.parent == b.parent && a.text == b.text && a.picture == b.picture;
    });
}

// One control as its toolkit has it. The operations are those of
// FormWindow; what a kind does not have throws std::logic_error.
class FormControl {
 public:
    explicit FormControl(const ControlPlan& plan) : plan_(plan) {}
    virtual ~FormControl() = default;
    FormControl(const FormControl&) = delete;
    FormControl& operator=(const FormControl&) = delete;

    const ControlPlan& plan() const { return plan_; }

    virtual Text GetText() const { Refuse(); }
    virtual void SetText(TextView) { Refuse(); }
    virtual bool Enabled() const = 0;
    virtual void Enable(bool enabled) = 0;
    virtual bool Checked() const { Refuse(); }
    virtual void Check(bool) { Refuse(); }
    virtual std::vector<ListRow> SetRows(std::vector<ListRow>&&) { Refuse(); }
    virtual int SelectedRow() const { Refuse(); }
    virtual void SelectRow(int) { Refuse(); }
    virtual void ShowColumn(int, bool) { Refuse(); }
    virtual std::vector<int> ColumnWidths() const { Refuse(); }
    virtual void SetColumnWidths(const std::vector<int>&) { Refuse(); }
    virtual void SetNodes(std::vector<TreeNode>&&) { Refuse(); }
    virtual Text SelectedNode() const { Refuse(); }
    virtual void SelectNode(TextView) { Refuse(); }
    virtual void SetBar(double) { Refuse(); }
    virtual void SetInterval(int) { Refuse(); }

 protected:
    [[noreturn]] void Refuse() const {
        std::string name;
        for (const char16_t c : plan_.name) name += static_cast<char>(c);  // names are ASCII
        throw std::logic_error("the control " + name + " cannot do that");
    }

 private:
    const ControlPlan& plan_;
};

class WindowOfControls : public FormWindow {
 public:
    Text GetText(std::size_t control) const override { return At(control).GetText(); }
    void SetText(std::size_t control, TextView text) override { At(control).SetText(text); }
    bool Enabled(std::size_t control) const override { return At(control).Enabled(); }
    void Enable(std::size_t control, bool enabled) override { At(control).Enable(enabled); }
    bool Checked(std::size_t control) const override { return At(control).Checked(); }
    void Check(std::size_t control, bool checked) override { At(control).Check(checked); }
    std::vector<ListRow> SetRows(std::size_t control, std::vector<ListRow> rows) override {
        return At(control).SetRows(std::move(rows));
    }
    int SelectedRow(std::size_t control) const override { return At(control).SelectedRow(); }
    void SelectRow(std::size_t control, int row) override { At(control).SelectRow(row); }
    void ShowColumn(std::size_t control, int column, bool shown) override {
        At(control).ShowColumn(column, shown);
    }
    std::vector<int> ColumnWidths(std::size_t control) const override { return At(control).ColumnWidths(); }
    void SetColumnWidths(std::size_t control, const std::vector<int>& widths) override {
        At(control).SetColumnWidths(widths);
    }
    void SetNodes(std::size_t control, std::vector<TreeNode> nodes) override {
        At(control).SetNodes(std::move(nodes));
    }
    Text SelectedNode(std::size_t control) const override { return At(control).SelectedNode(); }
    void SelectNode(std::size_t control, TextView key) override { At(control).SelectNode(key); }
    void SetBar(std::size_t control, double part) override { At(control).SetBar(part); }
    void SetInterval(std::size_t control, int milliseconds) override {
        At(control).SetInterval(milliseconds);
    }

 protected:
    ~WindowOfControls() = default;
    virtual FormControl& At(std::size_t control) const = 0;
};

}  // namespace tav
