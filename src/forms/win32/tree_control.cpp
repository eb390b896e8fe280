#include "forms/win32/tree_control.h"

#include <unordered_map>

#include "forms/win32/pictures.h"

namespace tav {
namespace {

class TreeView : public ControlWin {
 public:
    TreeView(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(WC_TREEVIEWW,
                   WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS |
                       TVS_DISABLEDRAGDROP,
                   WS_EX_CLIENTEDGE);
        ShowPictures();
    }
    ~TreeView() override { ::ImageList_Destroy(pictures_); }

    void SetNodes(std::vector<TreeNode>&& nodes) override {
        if (SameTree(nodes_, nodes)) {
            for (std::size_t i = 0; i < nodes_.size(); ++i) nodes_[i].dimmed = nodes[i].dimmed;
            ::InvalidateRect(hwnd(), nullptr, TRUE);
            return;
        }
        Send(WM_SETREDRAW, FALSE);
        Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
        nodes_ = std::move(nodes);
        Insert();
        Send(WM_SETREDRAW, TRUE);
        ::InvalidateRect(hwnd(), nullptr, TRUE);
    }
    Text SelectedNode() const override {
        TVITEMW item{};
        item.mask = TVIF_PARAM;
        item.hItem = Selected();
        if (item.hItem == nullptr || !Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
        const auto node = static_cast<std::size_t>(item.lParam);
        return node < nodes_.size() ? nodes_[node].key : Text();
    }
    void SelectNode(TextView key) override {
        const auto found = by_key_.find(key);
        const HTREEITEM item = found == by_key_.end() ? nullptr : found->second;
        Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
    }
    LRESULT OnNotify(NMHDR& notice) override {
        if (notice.code == NM_DBLCLK && on_node_) OnEnter();
        if (notice.code == NM_CUSTOMDRAW) return Dim(reinterpret_cast<NMTVCUSTOMDRAW&>(notice));
        return notice.code == TVN_SELCHANGINGW && focusing_ ? TRUE : FALSE;
    }
    LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override {
        if (message == WM_LBUTTONDBLCLK) on_node_ = OnNode(lparam);
        if (message != WM_SETFOCUS) return ControlWin::OnMessage(message, wparam, lparam);
        // A tree that gets the focus would select its first node by itself.
        focusing_ = true;
        const LRESULT result = ControlWin::OnMessage(message, wparam, lparam);
        focusing_ = false;
        return result;
    }
    bool OnEnter() override {
        if (Selected() == nullptr) return false;
        Raise(Event::DblClick);
        return true;
    }
    void OnMetrics() override {
        ControlWin::OnMetrics();
        ShowPictures();
    }
    int MinWidth() const override { return 20 * metrics().character(); }
    int HeightFor(int) const override { return 4 * metrics().line(); }

 private:
    LRESULT Dim(NMTVCUSTOMDRAW& drawn) const {
        if (drawn.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
        const auto node = static_cast<std::size_t>(drawn.nmcd.lItemlParam);
        const bool selected = (drawn.nmcd.uItemState & CDIS_SELECTED) != 0;
        if (node < nodes_.size() && nodes_[node].dimmed && !selected)
            drawn.clrText = ::GetSysColor(COLOR_GRAYTEXT);
        return CDRF_DODEFAULT;
    }
    HTREEITEM Selected() const { return reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, TVGN_CARET)); }
    // At a point as messages of the mouse give it.
    bool OnNode(LPARAM point) const {
        TVHITTESTINFO hit{};
        hit.pt = {static_cast<short>(LOWORD(point)), static_cast<short>(HIWORD(point))};
        return Send(TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) != 0 && (hit.flags & TVHT_ONITEM) != 0;
    }
    void ShowPictures() {
        const HIMAGELIST pictures = PictureList(metrics().Scaled(16));
        Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(pictures));
        ::ImageList_Destroy(std::exchange(pictures_, pictures));
    }

    // Each node is inserted after its elder brother, which the tree need not look for.
    void Insert() {
        std::unordered_map<HTREEITEM, HTREEITEM> last_of;
        by_key_.clear();
        by_key_[TextView()] = TVI_ROOT;
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            const TreeNode& node = nodes_[i];
            std::wstring text = win32::Wide(node.text);
            std::replace(text.begin(), text.end(), L'\n', L' ');
            const auto parent = by_key_.find(node.parent);
            TVINSERTSTRUCTW insert{};
            insert.hParent = parent == by_key_.end() ? TVI_ROOT : parent->second;
            HTREEITEM& elder = last_of.try_emplace(insert.hParent, TVI_FIRST).first->second;
            insert.hInsertAfter = elder;
            insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
            insert.item.pszText = text.data();
            insert.item.lParam = static_cast<LPARAM>(i);
            insert.item.iImage = insert.item.iSelectedImage = static_cast<int>(node.picture);
            elder = reinterpret_cast<HTREEITEM>(Send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
            by_key_.emplace(node.key, elder);
        }
        for (const TreeNode& node : nodes_) {
            if (!node.expanded) continue;
            Send(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(by_key_.at(node.key)));
        }
        by_key_.erase(TextView());
    }

    std::vector<TreeNode> nodes_;
    std::unordered_map<TextView, HTREEITEM> by_key_;
    HIMAGELIST pictures_ = nullptr;
    bool focusing_ = false;
    bool on_node_ = false;  // the last double click
};

}  // namespace

MadeControl MakeTreeView(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<TreeView>(plan, index, host);
}

}  // namespace tav
