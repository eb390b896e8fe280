#include "forms/win32/combo_box.h"

namespace tav {
namespace {

class ComboBox : public ControlWin {
 public:
    ComboBox(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST);
    }
    std::vector<ListRow> SetRows(std::vector<ListRow>&& rows) override {
        Send(WM_SETREDRAW, FALSE);
        Send(CB_RESETCONTENT);
        for (const ListRow& row : rows) {
            Send(CB_ADDSTRING, 0,
                 reinterpret_cast<LPARAM>(win32::Wide(ReplaceAll(row.text, u"\n", u" ")).c_str()));
        }
        Send(WM_SETREDRAW, TRUE);
        ::InvalidateRect(hwnd(), nullptr, TRUE);
        SelectRow(-1);
        return {};
    }
    int SelectedRow() const override { return static_cast<int>(Send(CB_GETCURSEL)); }
    void SelectRow(int row) override {
        Send(CB_SETCURSEL, static_cast<WPARAM>(row < Send(CB_GETCOUNT) ? row : -1));
        selected_ = SelectedRow();
    }
    // While the list is open, the choice is not made yet.
    void OnCommand(WORD code) override {
        if (code != CBN_SELCHANGE && code != CBN_SELENDOK && code != CBN_CLOSEUP) return;
        if (Send(CB_GETDROPPEDSTATE) != FALSE) return;
        const int row = SelectedRow();
        if (std::exchange(selected_, row) != row) Raise(Event::Click);
    }
    int MinWidth() const override { return 12 * metrics().character(); }
    int HeightFor(int) const override {
        RECT place{};
        ::GetWindowRect(hwnd(), &place);
        return static_cast<int>(place.bottom - place.top);
    }
    // The height is that of the field with its list open.
    void Put(const Box& box) override {
        constexpr int kRows = 12;
        ControlWin::Put({box.x, box.y, box.width, box.height + kRows * metrics().line()});
    }

 private:
    int selected_ = -1;  // as the form knows it
};

}  // namespace

MadeControl MakeComboBox(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<ComboBox>(plan, index, host);
}

}  // namespace tav
