#include "forms/win32/list_box.h"

#include <cstring>

#include "forms/list_table.h"
#include "forms/win32/pictures.h"
#include "forms/win32/tool_tips.h"

namespace tav {
namespace {

void CopyToClipboard(HWND owner, TextView text) {
    const std::wstring wide = win32::Wide(text);
    const std::size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes);
    if (memory == nullptr) return;
    std::memcpy(::GlobalLock(memory), wide.c_str(), bytes);
    ::GlobalUnlock(memory);
    bool taken = false;
    if (::OpenClipboard(owner)) {
        ::EmptyClipboard();
        taken = ::SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
        ::CloseClipboard();
    }
    if (!taken) ::GlobalFree(memory);
}

class ListBox : public ControlWin {
 public:
    ListBox(const ControlPlan& plan, std::size_t index, FormHost& host)
        : ControlWin(plan, index, host), table_(plan.columns) {
        MakeWindow(
            WC_LISTVIEWW,
            WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_OWNERDATA | LVS_SHAREIMAGELISTS,
            WS_EX_CLIENTEDGE);
        constexpr LPARAM kStyles = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
        Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, kStyles);
        for (std::size_t i = 0; i < plan.columns.size(); ++i) {
            std::wstring title = win32::Wide(plan.columns[i].title);
            LVCOLUMNW column{};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.pszText = title.data();
            column.cx = plan.columns[i].width * Digit();
            Send(LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
        }
        widths_.assign(plan.columns.size(), 0);
        digit_ = Digit();
        ShowPictures();
        AddPartTips(host.tool_tips(), hwnd());
    }
    ~ListBox() override { ::ImageList_Destroy(pictures_); }

    Text GetText() const override {
        const int place = SelectedPlace();
        return place < 0 ? Text() : table_.At(place).text;
    }
    std::vector<ListRow> SetRows(std::vector<ListRow>&& rows) override {
        std::vector<ListRow> before = table_.SetRows(std::move(rows));
        PointAt(-1);
        Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(table_.size()));
        SelectPlace(-1);
        return before;
    }
    int SelectedRow() const override { return table_.RowAt(SelectedPlace()); }
    void SelectRow(int row) override { SelectPlace(table_.PlaceOf(row)); }
    void ShowColumn(int column, bool shown) override {
        int& hidden_width = widths_.at(static_cast<std::size_t>(column));
        const auto number = static_cast<WPARAM>(column);
        const int width = WidthOf(column);
        if (shown == (width > 0)) return;
        if (!shown) hidden_width = width;
        Send(LVM_SETCOLUMNWIDTH, number, shown ? hidden_width : 0);
        FitLastColumn();
    }
    std::vector<int> ColumnWidths() const override {
        std::vector<int> widths;
        for (std::size_t i = 0; i < widths_.size(); ++i) {
            const int width = WidthOf(static_cast<int>(i));
            widths.push_back(::MulDiv(width > 0 ? width : widths_[i], kTenths, Digit()));
        }
        return widths;
    }
    void SetColumnWidths(const std::vector<int>& widths) override {
        for (std::size_t i = 0; i < std::min(widths.size(), widths_.size()); ++i) {
            const int width = ::MulDiv(widths[i], Digit(), kTenths);
            if (width <= 0) continue;
            if (WidthOf(static_cast<int>(i)) > 0) {
                Send(LVM_SETCOLUMNWIDTH, i, width);
            } else {
                widths_[i] = width;
            }
        }
    }
    LRESULT OnNotify(NMHDR& notice) override {
        switch (notice.code) {
            case LVN_GETDISPINFOW:
                ShowCell(reinterpret_cast<NMLVDISPINFOW&>(notice).item);
                return 0;
            case LVN_COLUMNCLICK:
                SortBy(reinterpret_cast<NMLISTVIEW&>(notice).iSubItem);
                return 0;
            case LVN_ODFINDITEMW:
                return Find(reinterpret_cast<NMLVFINDITEMW&>(notice));
            case NM_DBLCLK:
                if (reinterpret_cast<NMITEMACTIVATE&>(notice).iItem >= 0) OnEnter();
                return 0;
            default:
                return 0;
        }
    }
    bool OnEnter() override {
        if (SelectedRow() < 0) return false;
        Raise(Event::DblClick);
        return true;
    }
    // The columns keep their widths in digits.
    void OnMetrics() override {
        ControlWin::OnMetrics();
        ShowPictures();
        const int before = std::exchange(digit_, Digit());
        for (WPARAM i = 0; i < widths_.size(); ++i) {
            const int width = static_cast<int>(Send(LVM_GETCOLUMNWIDTH, i));
            Send(LVM_SETCOLUMNWIDTH, i, ::MulDiv(width, digit_, before));
            widths_[i] = ::MulDiv(widths_[i], digit_, before);
        }
    }
    LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override {
        TellTips(host().tool_tips(), hwnd(), message, wparam, lparam);
        switch (message) {
            case WM_MOUSEMOVE:
                PointAt(PlaceAt(lparam));
                break;
            case WM_SIZE: {
                const LRESULT result = ControlWin::OnMessage(message, wparam, lparam);
                if (std::exchange(fitted_, LOWORD(lparam)) != LOWORD(lparam)) FitLastColumn();
                return result;
            }
            case WM_NOTIFY:
                if (ShowTip(*reinterpret_cast<NMHDR*>(lparam))) return 0;
                break;
            case WM_KEYDOWN:
                if (wparam == 'C' && ::GetKeyState(VK_CONTROL) < 0) Copy();
                break;
            case WM_COPY:
                Copy();
                return 0;
            case LB_GETCOUNT:
                return table_.size();
            case LB_GETCURSEL:
                return SelectedPlace();
            case LB_SETCURSEL:
                SelectPlace(static_cast<int>(wparam));
                return SelectedPlace();
            case LB_GETTEXTLEN:
            case LB_GETTEXT:
                return GiveText(static_cast<int>(wparam),
                                message == LB_GETTEXT ? reinterpret_cast<wchar_t*>(lparam) : nullptr);
            case LB_GETITEMRECT:
                *reinterpret_cast<RECT*>(lparam) = PlaceOnScreen(static_cast<int>(wparam));
                return 0;
            default:
                break;
        }
        return ControlWin::OnMessage(message, wparam, lparam);
    }
    int MinWidth() const override { return 20 * metrics().character(); }
    int HeightFor(int) const override { return 5 * metrics().line(); }

 private:
    static constexpr int kTenths = 10;

    int WidthOf(int column) const {
        return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
    }
    // It takes what the others leave beside a scroll bar, if it is seen.
    void FitLastColumn() {
        const int last = static_cast<int>(widths_.size()) - 1;
        if (last < 0 || WidthOf(last) == 0) return;
        Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(last), LVSCW_AUTOSIZE_USEHEADER);
    }
    int Digit() const { return static_cast<int>(metrics().TextSize(u"0", 0, DT_SINGLELINE).cx); }
    int SelectedPlace() const {
        return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    void SelectPlace(int place) {
        LVITEMW item{};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        if (place < 0 || place >= table_.size()) return;
        item.state = item.stateMask;
        Send(LVM_SETITEMSTATE, static_cast<WPARAM>(place), reinterpret_cast<LPARAM>(&item));
        Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(place), FALSE);
    }
    void ShowPictures() {
        const HIMAGELIST pictures = PictureList(metrics().Scaled(16));
        Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(pictures));
        ::ImageList_Destroy(std::exchange(pictures_, pictures));
    }
    void ShowCell(LVITEMW& item) const {
        if (item.iItem < 0 || item.iItem >= table_.size()) return;
        if ((item.mask & LVIF_IMAGE) != 0) item.iImage = static_cast<int>(table_.At(item.iItem).picture);
        if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0) return;
        ::lstrcpynW(item.pszText, win32::Wide(table_.Cell(item.iItem, item.iSubItem)).c_str(),
                    item.cchTextMax);
    }
    void SortBy(int column) {
        const int selected = SelectedRow();
        table_.SortBy(column);
        const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
        for (WPARAM i = 0; i < widths_.size(); ++i) {
            HDITEMW item{};
            item.mask = HDI_FORMAT;
            ::SendMessageW(header, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
            item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
            if (static_cast<int>(i) == table_.sorted_by()) {
                item.fmt |= table_.downwards() ? HDF_SORTDOWN : HDF_SORTUP;
            }
            ::SendMessageW(header, HDM_SETITEMW, i, reinterpret_cast<LPARAM>(&item));
        }
        SelectRow(selected);
        ::InvalidateRect(hwnd(), nullptr, TRUE);
    }
    // The next row that begins with the letters typed, from that place on and around.
    LRESULT Find(const NMLVFINDITEMW& asked) const {
        if ((asked.lvfi.flags & LVFI_STRING) == 0) return -1;
        const Text typed = UpperCase(win32::FromWide(asked.lvfi.psz));
        for (int i = 0; i < table_.size(); ++i) {
            const int place = (asked.iStart + i) % table_.size();
            if (UpperCase(table_.At(place).text).starts_with(typed)) return place;
        }
        return -1;
    }
    void Copy() const {
        if (const int place = SelectedPlace(); place >= 0) CopyToClipboard(hwnd(), table_.At(place).text);
    }
    LRESULT GiveText(int place, wchar_t* buffer) const {
        if (place < 0 || place >= table_.size()) return LB_ERR;
        const std::wstring text = win32::Wide(table_.At(place).text);
        if (buffer != nullptr) std::copy_n(text.c_str(), text.size() + 1, buffer);
        return static_cast<LRESULT>(text.size());
    }
    // Empty for no place.
    RECT PlaceOnScreen(int place) const {
        RECT box{LVIR_BOUNDS, 0, 0, 0};
        const bool seen =
            Send(LVM_GETITEMRECT, static_cast<WPARAM>(place), reinterpret_cast<LPARAM>(&box)) != FALSE;
        return seen ? box : RECT{};
    }
    // At a point as messages of the mouse give it.
    int PlaceAt(LPARAM point) const {
        LVHITTESTINFO hit{};
        hit.pt = {static_cast<short>(LOWORD(point)), static_cast<short>(HIWORD(point))};
        return static_cast<int>(Send(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    }
    void PointAt(int place) {
        if (std::exchange(pointed_, place) == place) return;
        SetTipPart(host().tool_tips(), hwnd(), PlaceOnScreen(place));
    }
    bool ShowTip(const NMHDR& asked) {
        if (asked.hwndFrom != host().tool_tips() || asked.code != TTN_GETDISPINFOW) return false;
        tip_.clear();
        if (pointed_ >= 0 && pointed_ < table_.size()) tip_ = win32::Wide(table_.At(pointed_).tool_tip);
        const_cast<NMTTDISPINFOW&>(reinterpret_cast<const NMTTDISPINFOW&>(asked)).lpszText = tip_.data();
        return true;
    }

    ListTable table_;
    HIMAGELIST pictures_ = nullptr;
    std::vector<int> widths_;  // of the hidden columns, when they were seen
    int digit_ = 0;            // the width by which the columns have theirs
    int fitted_ = -1;          // the width of the list that the last column was fitted to
    int pointed_ = -1;         // the place under the pointer
    std::wstring tip_;         // the one that is shown
};

}  // namespace

MadeControl MakeListBox(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<ListBox>(plan, index, host);
}

}  // namespace tav
