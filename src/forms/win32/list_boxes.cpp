#include "forms/win32/list_boxes.h"

#include <limits>

#include "forms/win32/tool_tips.h"

namespace tav {
namespace {

// A row's text on one line.
std::wstring RowText(const ListRow& row) {
    std::wstring text = win32::Wide(row.text);
    std::replace(text.begin(), text.end(), L'\n', L' ');
    return text;
}

// The width of the widest row. Every character is measured once, not every row.
int Widest(HFONT font, const std::vector<ListRow>& rows) {
    const ScreenDC screen(font);
    std::vector<int> widths(std::numeric_limits<char16_t>::max() + 1U, -1);
    int widest = 0;
    for (const ListRow& row : rows) {
        int width = 0;
        for (const char16_t c : row.text) {
            if (widths[c] < 0) {
                const auto letter = static_cast<wchar_t>(c);
                SIZE size{};
                ::GetTextExtentPoint32W(screen.get(), &letter, 1, &size);
                widths[c] = static_cast<int>(size.cx);
            }
            width += widths[c];
        }
        widest = std::max(widest, width);
    }
    return widest;
}

// Fills a list of a window, undrawn meanwhile.
void Fill(HWND window, const std::vector<ListRow>& rows, UINT clear, UINT reserve, UINT add) {
    ::SendMessageW(window, WM_SETREDRAW, FALSE, 0);
    ::SendMessageW(window, clear, 0, 0);
    std::size_t characters = 0;
    for (const ListRow& row : rows) characters += row.text.size() + 1;
    ::SendMessageW(window, reserve, rows.size(), static_cast<LPARAM>(characters * sizeof(wchar_t)));
    for (const ListRow& row : rows) {
        ::SendMessageW(window, add, 0, reinterpret_cast<LPARAM>(RowText(row).c_str()));
    }
    ::SendMessageW(window, WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(window, nullptr, TRUE);
}

// -1 for a row that does not exist.
int RowInside(int row, LRESULT count) {
    return row >= 0 && row < count ? row : -1;
}

class ListBox : public ControlWin {
 public:
    ListBox(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"LISTBOX", WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
                   WS_EX_CLIENTEDGE);
        AddPartTips(host.tool_tips(), hwnd());
    }
    void SetRows(std::vector<ListRow>&& rows) override {
        rows_ = std::move(rows);
        PointAt(-1);
        Fill(hwnd(), rows_, LB_RESETCONTENT, LB_INITSTORAGE, LB_ADDSTRING);
        Measure();
    }
    int SelectedRow() const override { return static_cast<int>(Send(LB_GETCURSEL)); }
    void SelectRow(int row) override {
        Send(LB_SETCURSEL, static_cast<WPARAM>(RowInside(row, Send(LB_GETCOUNT))));
    }
    void OnCommand(WORD code) override {
        if (code == LBN_DBLCLK) OnEnter();
    }
    bool OnEnter() override {
        if (SelectedRow() < 0) return false;
        Raise(Event::DblClick);
        return true;
    }
    void OnMetrics() override {
        ControlWin::OnMetrics();
        Send(LB_SETITEMHEIGHT, 0, metrics().line());
        Measure();
    }
    LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override {
        TellTips(host().tool_tips(), hwnd(), message, wparam, lparam);
        switch (message) {
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                // Below the last row there is nothing to select or to open.
                if (RowAt(lparam) >= 0) break;
                ::SetFocus(hwnd());
                return 0;
            case WM_MOUSEMOVE:
                PointAt(RowAt(lparam));
                break;
            case WM_NOTIFY:
                if (ShowTip(*reinterpret_cast<NMHDR*>(lparam))) return 0;
                break;
            default:
                break;
        }
        return ControlWin::OnMessage(message, wparam, lparam);
    }
    int MinWidth() const override { return 20 * metrics().character(); }
    int HeightFor(int) const override { return 4 * metrics().line(); }

 private:
    void Measure() {
        const int margins = 2 * metrics().character();
        Send(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(Widest(metrics().font(), rows_) + margins));
    }
    // At a point as messages of the mouse give it.
    int RowAt(LPARAM point) const {
        const int y = static_cast<short>(HIWORD(point));
        const LRESULT answer = Send(LB_ITEMFROMPOINT, 0, point);
        const int row = RowInside(static_cast<int>(LOWORD(answer)), Send(LB_GETCOUNT));
        RECT place{};
        if (row < 0 || Send(LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place)) < 0) {
            return -1;
        }
        return y >= place.top && y < place.bottom ? row : -1;
    }
    void PointAt(int row) {
        if (std::exchange(pointed_, row) == row) return;
        RECT place{};
        if (row >= 0) Send(LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place));
        SetTipPart(host().tool_tips(), hwnd(), place);
    }
    bool ShowTip(const NMHDR& asked) {
        if (asked.hwndFrom != host().tool_tips() || asked.code != TTN_GETDISPINFOW) return false;
        tip_.clear();
        if (const auto row = static_cast<std::size_t>(pointed_); pointed_ >= 0 && row < rows_.size()) {
            tip_ = win32::Wide(rows_[row].tool_tip);
        }
        const_cast<NMTTDISPINFOW&>(reinterpret_cast<const NMTTDISPINFOW&>(asked)).lpszText = tip_.data();
        return true;
    }

    std::vector<ListRow> rows_;
    int pointed_ = -1;  // the row under the pointer
    std::wstring tip_;  // the one that is shown
};

class ComboBox : public ControlWin {
 public:
    ComboBox(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST);
    }
    void SetRows(std::vector<ListRow>&& rows) override {
        Fill(hwnd(), rows, CB_RESETCONTENT, CB_INITSTORAGE, CB_ADDSTRING);
        SelectRow(-1);
    }
    int SelectedRow() const override { return static_cast<int>(Send(CB_GETCURSEL)); }
    void SelectRow(int row) override {
        Send(CB_SETCURSEL, static_cast<WPARAM>(RowInside(row, Send(CB_GETCOUNT))));
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

MadeControl MakeListBox(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<ListBox>(plan, index, host);
}
MadeControl MakeComboBox(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<ComboBox>(plan, index, host);
}

}  // namespace tav
