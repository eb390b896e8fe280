// Forms: windows described as data, and what a toolkit has to offer to show them.
//
// A form is a FormPlan: its controls by their names, captions and tool-tips, placed in the rows and
// columns of the window or of a frame in it. The handlers of its events (ui/form.h) see the controls
// through FormWindow and never learn which toolkit it is. On Linux the toolkit is a module of its
// own, loaded when the first form is needed; a process that never shows a form never loads it.
//
// Everything here belongs to one thread, the user interface's.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "common/message_box.h"
#include "common/text.h"

namespace tav {

enum class ControlKind {
    Frame,          // a titled box that other controls are placed in; without a caption only a place
    Label,          // text; a mnemonic in it leads to the next control
    TextBox,        // one line
    Memo,           // lines to read, not to change; Click, unless a part of them is selected
    Button,         // Click
    PictureButton,  // a Button with a picture for its caption
    CheckBox,       // Click
    ListBox,        // a table of rows, one selected; DblClick, also by Enter
    ComboBox,       // a drop-down list of rows, one selected; Click when the user chose another
    TreeView,       // nodes with pictures, one selected; DblClick, also by Enter
    ProgressBar,
    Picture,
    Timer,  // not seen
};

enum class Picture {
    None,
    Refresh,
    Erase,
    Warning,
    All,
    Year,
    Part,
    Quarter,
    Month,
    // What became of a document, the more it needs a person the later.
    Waiting,
    Done,
    Passed,
    Attention
};
inline constexpr int kPictures = static_cast<int>(Picture::Attention) + 1;

// A row and a column, counted from 0, of the window's grid or of the frame named `parent`. Lists and
// trees take the spare room in both directions; text boxes, memos, combo boxes, bars and labels without a
// caption, which get their text later, in width: the first of their columns, unless another already does.
struct Place {
    int row = 0;
    int column = 0;
    int column_span = 1;
    TextView parent = {};
};

// By what a click on a column's title sorts the rows: as text without regard to letter case, or by the dates
// (dd.mm.yyyy) in it.
enum class ColumnOrder { Letters, Dates };

struct ListColumn {
    TextView title;
    int width;  // at first, in digits of the form's font
    ColumnOrder order = ColumnOrder::Letters;
};

struct ControlPlan {
    TextView name;
    ControlKind kind;
    TextView caption = {};
    TextView tool_tip = {};
    Place place = {};
    char16_t mnemonic = 0;  // a letter of the caption that, with Alt, presses the control
    Picture picture = Picture::None;
    std::span<const ListColumn> columns = {};  // of a ListBox
    bool hidden = false;                       // known by its name alone
};

// The tab key goes through the controls in the plan's order; a frame comes before what is placed in it.
struct FormPlan {
    TextView name;
    TextView caption;
    std::span<const ControlPlan> controls;
    int width = 0;                 // at first, in average characters of the form's font
    int height = 0;                // at first, in lines
    TextView default_button = {};  // pressed by Enter, unless the focused control has a use for it
    TextView cancel_button = {};   // pressed by Esc
    TextView refresh_button = {};  // pressed by F5
    TextView first = {};           // has the keyboard at first; else the first control that takes it
};

enum class Event { Click, DblClick, Change, Timer };

// What a window tells its form, which throws nothing back. Where a handler waits, in a modal window or a
// message box, events of the other windows and timers go on.
class FormEvents {
 public:
    virtual ~FormEvents() = default;
    // Change comes whoever changed the text of a TextBox, when it really differs; Click comes from the user
    // alone; Timer comes every interval until the interval is set to 0.
    virtual void OnEvent(std::size_t control, Event event) = 0;
    // The user asks to close the window; it closes only by FormWindow's end.
    virtual void OnCloseRequest() = 0;
    // Files and folders were dropped on the window.
    virtual void OnDrop(const std::vector<Text>&) {}
};

// A row of a list or of a combo box. Handlers know a list's row by its text, which is also what is copied from
// it; what is seen of it are its cells.
struct ListRow {
    Text text;
    Text tool_tip;
    std::vector<Text> cells = {};
    Picture picture = Picture::None;  // before the first cell
};

struct TreeNode {
    Text key;     // unique
    Text parent;  // the key of a node before this one; empty at the top
    Text text;
    Picture picture = Picture::None;
    bool expanded = false;  // at first
    bool dimmed = false;
};

// The inside of a window, in tenths of an average character and of a line of its font: the same on every screen.
struct FormSize {
    int width = 0;
    int height = 0;
};

// A window that a toolkit has made. Controls are named by their index in the plan; asking a control for what
// its kind does not have is an error of the program. Texts are plain: nothing in them is mark-up.
class FormWindow {
 public:
    // Removes the window from the screen, ends its modal loop and tells its form nothing
    // any more. Allowed at any time, also while one of its events is handled; the object
    // goes when that has ended. A window that is left when main has ended is simply left.
    virtual void Discard() = 0;
    // Whether it is still there: a host may destroy windows that are not its own, or end their thread.
    virtual bool Exists() const { return true; }

    // Modeless, in front, with the input focus; it stays in front of its owner, if it has one.
    virtual void Show(FormWindow* owner = nullptr) = 0;
    // Returns when the window has been hidden. While it is shown, the other windows take no input.
    virtual void ShowModal(FormWindow* owner) = 0;
    virtual void Hide() = 0;

    // The size that the user has given it. One that the screen has no room for, or the controls, is changed to fit.
    virtual FormSize Size() const = 0;
    virtual void Resize(const FormSize& size) = 0;

    // The window's own, in place of the plan's.
    virtual void SetCaption(TextView caption) = 0;

    // A caption, a TextBox's, Memo's text, or that of the row which is selected in a ListBox.
    virtual Text GetText(std::size_t control) const = 0;
    virtual void SetText(std::size_t control, TextView text) = 0;
    virtual bool Enabled(std::size_t control) const = 0;
    virtual void Enable(std::size_t control, bool enabled) = 0;
    virtual bool Checked(std::size_t control) const = 0;
    virtual void Check(std::size_t control, bool checked) = 0;

    // ListBox, ComboBox. New rows keep no selection; rows count from 0 as they came, whatever column the user
    // has sorted them by; -1 is none. What a ListBox showed before is given back: many thousand rows take a while to go.
    virtual std::vector<ListRow> SetRows(std::size_t control, std::vector<ListRow> rows) = 0;
    virtual int SelectedRow(std::size_t control) const = 0;
    virtual void SelectRow(std::size_t control, int row) = 0;
    // ListBox: whether a column is seen.
    virtual void ShowColumn(std::size_t control, int column, bool shown) = 0;
    // ListBox: in tenths of a digit; one that is 0 stays as it is.
    virtual std::vector<int> ColumnWidths(std::size_t control) const = 0;
    virtual void SetColumnWidths(std::size_t control, const std::vector<int>& widths) = 0;

    // TreeView. The same nodes, dimmed differently, stay expanded and selected as they are. The key of the selected
    // node, empty for none.
    virtual void SetNodes(std::size_t control, std::vector<TreeNode> nodes) = 0;
    virtual Text SelectedNode(std::size_t control) const = 0;
    virtual void SelectNode(std::size_t control, TextView key) = 0;

    // ProgressBar: from 0 to 1.
    virtual void SetBar(std::size_t control, double part) = 0;
    // Timer: milliseconds, 0 stops it.
    virtual void SetInterval(std::size_t control, int milliseconds) = 0;

 protected:
    ~FormWindow() = default;
};

struct DiscardWindow {
    void operator()(FormWindow* window) const { window->Discard(); }
};
using OwnedWindow = std::unique_ptr<FormWindow, DiscardWindow>;

class Toolkit {
 public:
    virtual ~Toolkit() = default;
    // The window is not shown yet. The plan and the events outlive it.
    virtual OwnedWindow Create(const FormPlan& plan, FormEvents& events) = 0;
    // Returns when the user has closed the box.
    virtual void ShowMessage(const Message& message) = 0;
    // The system's dialog for choosing a folder, owned by the window
    // and starting at `start`; empty text when the user cancelled.
    virtual Text BrowseFolder(TextView title, TextView start, FormWindow* owner) = 0;
    // Handles what is waiting: input, timers, drawing. False when the thread is asked to quit, which its
    // outer loop then learns, too; until that has come, nothing more is handled.
    virtual bool ProcessEvents() = 0;
    // The event loop, until no form is shown.
    virtual void RunUntilClosed() = 0;
};

// The toolkit, loaded at first use. Without one, or without a screen, a Failure that says which.
Toolkit& CurrentToolkit();
// Whether it has been loaded already.
bool ToolkitLoaded();

}  // namespace tav
