#include "forms/win32/form_window.h"

#include <map>

#include "forms/reader_names.h"
#include "forms/win32/controls.h"
#include "forms/win32/message_loop.h"
#include "forms/win32/shown_forms.h"
#include "forms/win32/theme.h"
#include "forms/win32/tool_tips.h"
#include "forms/win32/window_size.h"
#include "platform/border_windows.h"

namespace tav {
namespace {

constexpr DWORD kStyle = WS_OVERLAPPEDWINDOW;
constexpr int kTenths = 10;

void SetOwner(HWND window, HWND owner) {
    ::SetWindowLongPtrW(window, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
}

void RegisterFormClass(WNDPROC procedure) {
    static const ATOM registered = [&] {
        WNDCLASSEXW form{};
        form.cbSize = sizeof form;
        form.lpfnWndProc = procedure;
        form.hInstance = win32::ThisModule();
        form.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
        form.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
        form.hbrBackground = ::GetSysColorBrush(COLOR_3DFACE);
        form.lpszClassName = kFormClass;
        return ::RegisterClassExW(&form);
    }();
    static_cast<void>(registered);  // a class that is missing shows when its window is created
}

}  // namespace

FormWindowWin::FormWindowWin(const FormPlan& plan, FormEvents& events)
    : plan_(plan), events_(&events), metrics_(DpiOf(nullptr)) {
    FormMade(this);
}

// The forms and the message boxes that this one owns would go with it, unread.
FormWindowWin::~FormWindowWin() {
    Enter();
    constexpr ULONG_PTR kDialogClass = 32770;
    for (HWND other : win32::ThreadWindows()) {
        const bool outlives = FormOf(other) != nullptr || ::GetClassLongPtrW(other, GCW_ATOM) == kDialogClass;
        if (hwnd_ != nullptr && outlives && ::GetWindow(other, GW_OWNER) == hwnd_) SetOwner(other, nullptr);
    }
    if (hwnd_ != nullptr) ::DestroyWindow(hwnd_);
    FormGone(this);
}

void FormWindowWin::Make() {
    const ScopedTheme theme;
    RegisterFormClass(&Procedure);
    ::CreateWindowExW(WS_EX_CONTROLPARENT, kFormClass, win32::Wide(plan_.caption).c_str(), kStyle,
                      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                      win32::ThisModule(), this);
    if (hwnd_ == nullptr) throw Failure(u"Окна показать нельзя: " + win32::ErrorWords(::GetLastError()));
    ::SetPropW(hwnd_, win32::Wide(plan_.name).c_str(), hwnd_);
    metrics_ = Metrics(DpiOf(hwnd_));
    tool_tips_ = MakeToolTips(hwnd_);
    ::DragAcceptFiles(hwnd_, TRUE);
    MakeControls();
    ::SendMessageW(hwnd_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_INITIALIZE, 0), 0);
    SetInside(hwnd_, {plan_.width * metrics_.character(), plan_.height * metrics_.line()});
    Arrange();
}

void FormWindowWin::MakeControls() {
    const auto stretches = StretchOf(plan_.controls);
    const std::vector<TextView> names = NamesForReaders(plan_.controls);
    std::map<TextView, ControlWin*> frames = {{TextView(), nullptr}};
    grid_.SetStretch(stretches.at({}));
    grids_ = {&grid_};
    for (std::size_t i = 0; i < plan_.controls.size(); ++i) {
        const ControlPlan& plan = plan_.controls[i];
        controls_.push_back(MakeControl(plan, i, *this));
        ControlWin& control = *controls_.back();
        if (Grid* inside = control.grid(); inside != nullptr) {
            inside->SetStretch(stretches.at(plan.name));
            grids_.push_back(inside);
            frames[plan.name] = &control;
        }
        if (control.hwnd() == nullptr) continue;
        ControlWin* frame = frames.at(plan.place.parent);
        control.SetFrame(frame);
        if (plan.hidden) {
            ::ShowWindow(control.hwnd(), SW_HIDE);
            continue;
        }
        (frame == nullptr ? grid_ : *frame->grid()).Add(control, plan);
        if (!names[i].empty()) reader_names_.emplace_back(control.hwnd(), names[i]);
        if (!plan.tool_tip.empty()) AddToolTip(tool_tips_, control.hwnd(), plan.tool_tip);
        if (plan.name == plan_.first) focus_ = control.hwnd();
        if (plan.name == plan_.default_button)
            ::SendMessageW(control.hwnd(), BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    }
    for (Grid* grid : grids_) grid->SetGap(metrics_.Across(4));
    TellReaders(reader_names_);
}

LRESULT CALLBACK FormWindowWin::Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* form = static_cast<FormWindowWin*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        form->hwnd_ = hwnd;
        ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(form));
    }
    auto* form = reinterpret_cast<FormWindowWin*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (form == nullptr) return ::DefWindowProcW(hwnd, message, wparam, lparam);
    return win32::AtBorder([&]() -> LRESULT {
        const Running running(*form);
        // No exception may cross the system's code between two of our procedures. Only memory can be short here.
        try {
            const ScopedTheme theme;
            return form->OnMessage(message, wparam, lparam);
        } catch (...) {
            return 0;
        }
    });
}

LRESULT FormWindowWin::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CLOSE:  // the form decides
            if (events_ != nullptr) events_->OnCloseRequest();
            return 0;
        case WM_COMMAND:
            if (ControlWin* control = ControlOf(reinterpret_cast<HWND>(lparam)); control != nullptr) {
                control->OnCommand(HIWORD(wparam));
            }
            return 0;
        case WM_NOTIFY: {
            auto& notice = *reinterpret_cast<NMHDR*>(lparam);
            ControlWin* control = ControlOf(notice.hwndFrom);
            return control == nullptr ? 0 : control->OnNotify(notice);
        }
        case WM_TIMER:
            if (wparam < controls_.size()) controls_[wparam]->OnTimer();
            return 0;
        case DM_GETDEFID: {
            const ControlWin* button = ButtonNamed(plan_.default_button);
            return button == nullptr ? 0 : MAKELRESULT(::GetDlgCtrlID(button->hwnd()), DC_HASDEFID);
        }
        case WM_NEXTDLGCTL: {  // the dialog manager moves the keyboard: to a window, else on or back
            const bool to_window = LOWORD(lparam) != 0;
            ::SetFocus(to_window ? reinterpret_cast<HWND>(wparam)
                                 : ::GetNextDlgTabItem(hwnd_, ::GetFocus(), wparam != 0));
            return 0;
        }
        case WM_ACTIVATE:
            if (LOWORD(wparam) == WA_INACTIVE && ::IsChild(hwnd_, ::GetFocus())) focus_ = ::GetFocus();
            break;
        case WM_SETFOCUS:
            TakeFocus();
            return 0;
        case WM_VSCROLL:
        case WM_HSCROLL:
        case WM_MOUSEWHEEL:
            if (scroll_.OnMessage(hwnd_, message, wparam, metrics_.line())) Arrange();
            return 0;
        case WM_DROPFILES:
            TakeDrop(reinterpret_cast<HDROP>(wparam));
            return 0;
        case WM_SIZE:
            Arrange();
            return 0;
        case WM_GETMINMAXINFO: {
            RECT client{};
            ::GetClientRect(hwnd_, &client);
            const SIZE least = WithBorder(hwnd_, SmallestInside(static_cast<int>(client.right)));
            const RECT screen = WorkArea(hwnd_);
            reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {
                std::min(least.cx, screen.right - screen.left),
                std::min(least.cy, screen.bottom - screen.top)};
            return 0;
        }
        case WM_DPICHANGED: {
            const Metrics before = std::exchange(metrics_, Metrics(HIWORD(wparam)));
            ShowMetrics();
            const auto& place = *reinterpret_cast<const RECT*>(lparam);
            ::SetWindowPos(hwnd_, nullptr, place.left, place.top, place.right - place.left,
                           place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_SYSCOLORCHANGE:
            for (const MadeControl& control : controls_) {
                if (control->hwnd() != nullptr) ::SendMessageW(control->hwnd(), message, wparam, lparam);
            }
            ShowMetrics();
            break;
        case WM_DESTROY:
            ForgetReaders(reader_names_);
            ::RemovePropW(hwnd_, win32::Wide(plan_.name).c_str());
            break;
        case WM_NCDESTROY:
            ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
            Gone();
            break;
        default:
            break;
    }
    return ::DefWindowProcW(hwnd_, message, wparam, lparam);
}

void FormWindowWin::TakeDrop(HDROP drop) {
    std::vector<Text> paths;
    const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(::DragQueryFileW(drop, i, nullptr, 0), L'\0');
        ::DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size()) + 1);
        paths.push_back(win32::FromWide(path));
    }
    ::DragFinish(drop);
    if (events_ != nullptr) events_->OnDrop(paths);
}

void FormWindowWin::Leave() {
    if (--procedures_ == 0 && events_ == nullptr) delete this;
}

void FormWindowWin::Discard() {
    const Running running(*this);
    Hide();
    events_ = nullptr;
}

bool FormWindowWin::Exists() const {
    return hwnd_ != nullptr && ::GetWindowLongPtrW(hwnd_, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(this);
}

// The loops of a thread that has ended are no more, either.
void FormWindowWin::ForgetIfLost() {
    if (hwnd_ == nullptr || Exists()) return;
    modal_done_ = nullptr;
    disabled_.clear();
    hwnd_ = nullptr;  // may be another program's by now
    Gone();
}

// The window is gone, whoever destroyed it; the form may still ask.
void FormWindowWin::Gone() {
    Hide();
    hwnd_ = nullptr;
}

void FormWindowWin::Raise(std::size_t control, Event event) {
    const Running running(*this);
    if (events_ != nullptr) events_->OnEvent(control, event);
}

void FormWindowWin::Enable(std::size_t control, bool enabled) {
    At(control).Enable(enabled);
    for (const MadeControl& each : controls_) each->ShowEnabled();
}

ControlWin* FormWindowWin::ControlOf(HWND window) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const MadeControl& control) {
        return window != nullptr && control->hwnd() == window;
    });
    return found == controls_.end() ? nullptr : found->get();
}

ControlWin* FormWindowWin::ButtonNamed(TextView name) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const MadeControl& control) {
        return !name.empty() && control->plan().name == name;
    });
    return found == controls_.end() ? nullptr : found->get();
}

SIZE FormWindowWin::SmallestInside(int width) const {
    const int least = std::max(width - 2 * Margin(), grid_.MinWidth());
    return {grid_.MinWidth() + 2 * Margin(), grid_.HeightFor(least) + 2 * Margin()};
}

// A caption that has become longer widens the window, as far as the screen goes.
void FormWindowWin::MakeLargeEnough() {
    RECT client{};
    ::GetClientRect(hwnd_, &client);
    const SIZE least = SmallestInside(static_cast<int>(client.right));
    if (least.cx <= client.right && least.cy <= client.bottom) return;
    SetInside(hwnd_, {std::max(least.cx, client.right), std::max(least.cy, client.bottom)});
}

void FormWindowWin::Arrange() {
    if (hwnd_ == nullptr || controls_.size() < plan_.controls.size() || ::IsIconic(hwnd_)) return;
    if (std::exchange(arranging_, true)) return;  // a new size, or a scroll bar, brings us here again
    MakeLargeEnough();
    RECT client{};
    ::GetClientRect(hwnd_, &client);
    scroll_.Fit(hwnd_, SmallestInside(static_cast<int>(client.right)));
    ::GetClientRect(hwnd_, &client);
    const SIZE least = SmallestInside(static_cast<int>(client.right));
    grid_.Arrange({Margin() - static_cast<int>(scroll_.at().x), Margin() - static_cast<int>(scroll_.at().y),
                   static_cast<int>(std::max(client.right, least.cx)) - 2 * Margin(),
                   static_cast<int>(std::max(client.bottom, least.cy)) - 2 * Margin()});
    arranging_ = false;
    // Frames and the controls in them are siblings, and overlap.
    ::RedrawWindow(hwnd_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void FormWindowWin::Reveal(HWND control) {
    RECT box{};
    ::GetWindowRect(control, &box);
    ::MapWindowPoints(nullptr, hwnd_, reinterpret_cast<POINT*>(&box), 2);
    if (!arranging_ && scroll_.Reveal(hwnd_, box)) Arrange();
}

FormSize FormWindowWin::Size() const {
    RECT client{};
    ::GetClientRect(hwnd_, &client);
    return {::MulDiv(static_cast<int>(client.right), kTenths, metrics_.character()),
            ::MulDiv(static_cast<int>(client.bottom), kTenths, metrics_.line())};
}

void FormWindowWin::Resize(const FormSize& size) {
    SetInside(hwnd_, {::MulDiv(size.width, metrics_.character(), kTenths),
                      ::MulDiv(size.height, metrics_.line(), kTenths)});
}

void FormWindowWin::ShowMetrics() {
    for (Grid* grid : grids_) grid->SetGap(metrics_.Across(4));
    for (const MadeControl& control : controls_) control->OnMetrics();
    Arrange();
}

void FormWindowWin::TakeFocus() {
    const bool stays = ::IsChild(hwnd_, focus_) && ::IsWindowEnabled(focus_);
    ::SetFocus(stays ? focus_ : ::GetNextDlgTabItem(hwnd_, nullptr, FALSE));
}

void FormWindowWin::Appear() {
    FormShown(this);
    ::ShowWindow(hwnd_, ::IsIconic(hwnd_) ? SW_RESTORE : SW_SHOW);
    ::SetForegroundWindow(hwnd_);
    if (!::IsChild(hwnd_, ::GetFocus())) TakeFocus();
}

void FormWindowWin::Show(FormWindow* owner) {
    if (hwnd_ == nullptr) return;
    if (modal_done_ == nullptr) SetOwner(hwnd_, WindowOf(owner));
    if (WindowOf(owner) != nullptr && !::IsWindowVisible(hwnd_)) Centre(hwnd_, WindowOf(owner));
    Appear();
}

void FormWindowWin::SetCaption(TextView caption) {
    ::SetWindowTextW(hwnd_, win32::Wide(caption).c_str());
}

void FormWindowWin::DisableOthers() {
    for (HWND other : win32::ThreadWindows()) {
        if (other != hwnd_ && ::IsWindowVisible(other) && ::IsWindowEnabled(other))
            disabled_.push_back(other);
    }
    for (HWND other : disabled_) ::EnableWindow(other, FALSE);
}

void FormWindowWin::ShowModal(FormWindow* owner) {
    const Running running(*this);
    Hide();
    if (hwnd_ == nullptr) return;
    const HWND owner_window = WindowOf(owner);
    SetOwner(hwnd_, owner_window);
    // Minimised, it would have no button on the task bar, and hold up the others unseen.
    ::SetWindowLongPtrW(hwnd_, GWL_STYLE, kStyle & ~(WS_MINIMIZEBOX | WS_MAXIMIZEBOX));
    if (owner_window != nullptr) Centre(hwnd_, owner_window);
    bool done = false;
    modal_done_ = &done;
    const OnLeft left([this] { Hide(); });
    DisableOthers();
    Appear();
    RunLoopUntil([&] { return done; });
    if (!done) Hide();
}

// The others take input again before this one goes: else the system would activate another program's window.
void FormWindowWin::Hide() {
    for (HWND other : std::exchange(disabled_, {})) ::EnableWindow(other, TRUE);
    ::ShowWindow(hwnd_, SW_HIDE);
    FormHidden(this);
    if (bool* done = std::exchange(modal_done_, nullptr); done != nullptr) {
        *done = true;
        WakeLoop();
    }
}

bool FormWindowWin::TakeKey(MSG& message) {
    const Running running(*this);
    try {
        return TakeButtonKey(message) || ::IsDialogMessageW(hwnd_, &message) != FALSE;
    } catch (...) {
        return true;
    }
}

// The dialog manager would know of the default button, but not of rows that Enter opens.
bool FormWindowWin::TakeButtonKey(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    const std::pair<WPARAM, TextView> keys[] = {
        {VK_RETURN, plan_.default_button}, {VK_ESCAPE, plan_.cancel_button}, {VK_F5, plan_.refresh_button}};
    const auto* key = std::ranges::find(keys, message.wParam, &std::pair<WPARAM, TextView>::first);
    if (key == std::end(keys)) return false;
    const LRESULT wishes =
        ::SendMessageW(message.hwnd, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message));
    if ((wishes & DLGC_WANTMESSAGE) != 0) return false;  // an open list of a combo box
    const bool enter = key->first == VK_RETURN;
    if (ControlWin* control = ControlOf(message.hwnd); enter && control != nullptr && control->OnEnter()) {
        return true;
    }
    ControlWin* button = ButtonNamed(key->second);
    if (button != nullptr) button->Press();
    return true;
}

}  // namespace tav
