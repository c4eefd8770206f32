// The panel's window by the Windows API.
#include <windows.h>
// Behind windows.h.
#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>
#include <optional>
#include <utility>

#include "platform/win32/canvas_win32.h"
#include "platform/win32/controls_win32.h"
#include "platform/window.h"

namespace skl::platform {

namespace {

constexpr int clientWidth = 880, clientHeight = 476;
constexpr double normalDpi = 96;
constexpr int rowHeight = 28;  // of the options; controls of one row differ by less than half of it
constexpr int tipWidth = 400;  // a longer tip has several lines
constexpr unsigned iconId = 100, applicationIcon = 32512, arrowCursor = 32512;
// The children are left out of the paint: nothing of theirs flickers.
constexpr DWORD windowStyle = WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
constexpr UINT_PTR heldUpTimer = 1;
constexpr UINT heldUpMs = 50;

/// One factor for everything, in quarters, so that lines stay crisp.
Scale chooseScale() {
    return Scale{std::clamp(std::round(::GetDpiForSystem() / normalDpi * 4) / 4, 1.0, 3.0)};
}

/// Not shared: what the system keeps under the name may be of the other size.
HICON loadIcon(int size) {
    const auto icon =
        ::LoadImageW(::GetModuleHandleW(nullptr), resourceName(iconId), IMAGE_ICON, size, size, 0);
    return icon ? static_cast<HICON>(icon) : ::LoadIconW(nullptr, resourceName(applicationIcon));
}

/// Also true for a class that stands already.
bool registerClass(const std::wstring& name, WNDPROC procedure) {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = procedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.hIcon = loadIcon(::GetSystemMetrics(SM_CXICON));
    description.hIconSm = loadIcon(::GetSystemMetrics(SM_CXSMICON));
    description.hCursor = ::LoadCursorW(nullptr, resourceName(arrowCursor));
    description.hbrBackground = static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH));
    description.lpszClassName = name.c_str();
    return ::RegisterClassExW(&description) != 0 || ::GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

void fillWithBand(HDC dc) {
    RECT clip{};
    ::GetClipBox(dc, &clip);
    ::SetDCBrushColor(dc, colorRef(bandColour));
    ::FillRect(dc, &clip, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

class WindowWin32 : public Window {
  public:
    WindowWin32(const std::string& title, int x, int y, std::vector<ControlSpec> controls,
                WindowEvents events)
        : events_(std::move(events)),
          scale_(chooseScale()),
          font_(makeFont(scale_, textSize)),
          editFont_(makeFont(scale_, editTextSize)) {
        const std::wstring name = wideText(title);
        if (!registerClass(name, &WindowWin32::procedure)) return;
        RECT frame{0, 0, scale_.of(clientWidth), scale_.of(clientHeight)};
        ::AdjustWindowRectExForDpi(&frame, windowStyle, FALSE, 0, ::GetDpiForSystem());
        window_ =
            ::CreateWindowExW(0, name.c_str(), name.c_str(), windowStyle, x, y, frame.right - frame.left,
                              frame.bottom - frame.top, nullptr, nullptr, ::GetModuleHandleW(nullptr), this);
        if (!window_) return;
        makeControls(std::move(controls));
        ::ShowWindow(window_, SW_SHOWNORMAL);
    }
    ~WindowWin32() override {
        if (window_) ::DestroyWindow(window_);  // and its controls, which still speak to their objects
    }
    WindowWin32(const WindowWin32&) = delete;
    WindowWin32& operator=(const WindowWin32&) = delete;
    bool open() const { return window_ != nullptr; }

    void pump(std::chrono::milliseconds patience) override {
        for (const auto& [id, control] : controls_) control->settle();
        if (handleWaiting()) return;
        ::MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(patience.count()), QS_ALLINPUT,
                                      MWMO_INPUTAVAILABLE);
        handleWaiting();
    }
    void invalidate(const Rect& area) override {
        const RECT rect = scale_.of(area);
        ::InvalidateRect(window_, &rect, FALSE);
    }
    void setControl(int id, const ControlState& state, bool refresh) override {
        if (const auto found = controls_.find(id); found != controls_.end())
            found->second->show(state, refresh);
    }
    void setTopmost(bool topmost) override {
        const auto place = reinterpret_cast<HWND>(INT_PTR{topmost ? -1 : -2});  // in front of all, or not
        ::SetWindowPos(window_, place, 0, 0, 0, 0,
                       UINT{SWP_NOMOVE} | UINT{SWP_NOSIZE} | UINT{SWP_NOACTIVATE});
    }
    void position(int& x, int& y) const override {
        // A window that "show desktop" has put away stands far outside: that is no place to come back to.
        RECT rect{};
        if (::IsIconic(window_)) {
            WINDOWPLACEMENT placement{};
            placement.length = sizeof placement;
            ::GetWindowPlacement(window_, &placement);
            rect = placement.rcNormalPosition;
        } else {
            ::GetWindowRect(window_, &rect);
        }
        x = rect.left;
        y = rect.top;
    }
    uint64_t paints() const override { return paints_; }

  private:
    void makeControls(std::vector<ControlSpec> controls) {
        INITCOMMONCONTROLSEX classes{};
        classes.dwSize = sizeof classes;
        classes.dwICC = DWORD{ICC_STANDARD_CLASSES} | DWORD{ICC_BAR_CLASSES};
        ::InitCommonControlsEx(&classes);
        const HWND tips = ::CreateWindowExW(WS_EX_TOPMOST, L"tooltips_class32", nullptr,
                                            DWORD{WS_POPUP} | DWORD{TTS_ALWAYSTIP} | DWORD{TTS_NOPREFIX}, 0,
                                            0, 0, 0, window_, nullptr, ::GetModuleHandleW(nullptr), nullptr);
        ::SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, scale_.of(tipWidth));
        const auto row = [](const ControlSpec& spec) { return (spec.y + rowHeight / 2) / rowHeight; };
        std::stable_sort(controls.begin(), controls.end(), [&](const ControlSpec& a, const ControlSpec& b) {
            return std::pair(row(a), a.x) < std::pair(row(b), b.x);
        });
        const ControlParent parent{window_, tips, scale_, font_.get(), editFont_.get()};
        for (const ControlSpec& spec : controls) controls_[spec.id] = makeControl(spec, parent, events_);
    }

    /// Whether there was anything.
    bool handleWaiting() {
        bool any = false;
        MSG message{};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            any = true;
            if (!takeOver(message)) {
                ::TranslateMessage(&message);
                ::DispatchMessageW(&message);
            }
            if (const HWND focus = ::GetFocus(); focus && ::IsChild(window_, focus)) lastFocus_ = focus;
        }
        // No exception may cross the system's own frames: it waits here.
        if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
        return any;
    }
    /// What no control is to see.
    bool takeOver(const MSG& message) {
        if (message.hwnd != window_ && !::IsChild(window_, message.hwnd)) return false;
        if (message.message == WM_KEYDOWN && message.wParam == VK_TAB && ::GetKeyState(VK_CONTROL) >= 0) {
            moveFocus(::GetKeyState(VK_SHIFT) < 0);
            return true;
        }
        // A turn of the wheel meant for something else would choose another entry, another simulator even.
        return message.message == WM_MOUSEWHEEL && !::SendMessageW(message.hwnd, CB_GETDROPPEDSTATE, 0, 0);
    }
    void moveFocus(bool back) {
        const HWND next = ::GetNextDlgTabItem(window_, lastFocus_, back);
        if (!next) return;
        ::SendMessageW(window_, WM_CHANGEUISTATE, commandParameter(UIS_CLEAR, UISF_HIDEFOCUS), 0);
        ::SetFocus(next);
        if (::SendMessageW(next, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL)
            ::SendMessageW(next, EM_SETSEL, 0, -1);
    }

    static LRESULT CALLBACK procedure(HWND window, UINT number, WPARAM first, LPARAM second) {
        if (number == WM_NCCREATE) {
            auto* self = static_cast<WindowWin32*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
            ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
            self->window_ = window;
        }
        if (auto* self = reinterpret_cast<WindowWin32*>(::GetWindowLongPtrW(window, GWLP_USERDATA))) {
            try {
                if (const auto result = self->handle(number, first, second)) return *result;
            } catch (...) {
                self->failure_ = std::current_exception();
            }
        }
        return ::DefWindowProcW(window, number, first, second);
    }
    /// nullopt: the system's own way.
    std::optional<LRESULT> handle(UINT number, WPARAM first, LPARAM second) {
        switch (number) {
            case WM_PAINT:
                paint();
                return 0;
            case WM_ERASEBKGND:
                return 1;
            case WM_PRINTCLIENT:  // a button asks for what shows at its corners
                fillWithBand(reinterpret_cast<HDC>(first));
                return 0;
            case WM_CTLCOLOREDIT:
            case WM_CTLCOLORSTATIC:
            case WM_CTLCOLORBTN: {
                const auto dc = reinterpret_cast<HDC>(first);
                ::SetBkMode(dc, OPAQUE);
                ::SetBkColor(dc, colorRef(bandColour));
                ::SetDCBrushColor(dc, colorRef(bandColour));
                return reinterpret_cast<LRESULT>(::GetStockObject(DC_BRUSH));
            }
            case WM_COMMAND:
                return command(first, second);
            case WM_SETFOCUS:
                if (lastFocus_ && ::IsWindowEnabled(lastFocus_)) ::SetFocus(lastFocus_);
                return 0;
            case WM_CLOSE:
                events_.closed();
                return 0;
            case WM_ENTERSIZEMOVE:
            case WM_ENTERMENULOOP:
                ::SetTimer(window_, heldUpTimer, heldUpMs, nullptr);
                return std::nullopt;
            case WM_EXITSIZEMOVE:
            case WM_EXITMENULOOP:
                ::KillTimer(window_, heldUpTimer);
                return std::nullopt;
            case WM_TIMER:
                events_.heldUp();
                return 0;
            case WM_ENDSESSION:
                if (first) events_.sessionEnds();
                return 0;
            default:
                return std::nullopt;
        }
    }
    std::optional<LRESULT> command(WPARAM first, LPARAM source) {
        const auto found = controls_.find(static_cast<int>(lowWord(first)));
        if (!source || found == controls_.end()) return std::nullopt;
        found->second->command(highWord(first));
        return 0;
    }
    void paint() {
        ++paints_;
        const PaintCycle cycle(window_);
        CanvasWin32 canvas(cycle.dc(), font_.get(), scale_);
        const auto back = [this](LONG pixels) {
            return static_cast<int>(std::floor(pixels / scale_.factor));
        };
        const RECT& area = cycle.area();
        events_.paint(canvas, {back(area.left), back(area.top), back(area.right) + 1, back(area.bottom) + 1});
    }

    WindowEvents events_;
    Scale scale_;
    GdiObject font_, editFont_;
    std::map<int, std::unique_ptr<ControlWin32>> controls_;
    HWND window_ = nullptr;
    HWND lastFocus_ = nullptr;  ///< where the keys went, and go again when the window is activated
    std::exception_ptr failure_;
    uint64_t paints_ = 0;
};

}  // namespace

bool displayAvailable() {
    // A service has a station of windows that nobody sees.
    USEROBJECTFLAGS flags{};
    return ::GetUserObjectInformationW(::GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags,
                                       nullptr) &&
           (flags.dwFlags & DWORD{WSF_VISIBLE}) != 0;
}

std::unique_ptr<Window> openWindow(const std::string& title, int x, int y, std::vector<ControlSpec> controls,
                                   WindowEvents events) {
    if (!displayAvailable()) return nullptr;
    auto window = std::make_unique<WindowWin32>(title, x, y, std::move(controls), std::move(events));
    if (!window->open()) return nullptr;
    return window;
}

}  // namespace skl::platform
