#include "platform/win32/controls_win32.h"

#include <windows.h>
// Behind windows.h.
#include <commctrl.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

#include "platform/text_conversion.h"

namespace skl::platform {

namespace {

constexpr int longestText = 1023;
constexpr int clientWidth = 880;
constexpr int checkSize = 12, buttonHeight = 20, editHeight = 16, comboHeight = 24;
constexpr auto closedField = static_cast<WPARAM>(-1);  ///< in the place of an entry
constexpr unsigned enterPressed = 0x1000;  ///< a code of this program's own, beside those of the edit box
constexpr WPARAM enterKey = 13, controlA = 1;

/// Empty for a text that is no UTF-8: a control then shows nothing in its place.
std::wstring shownText(const std::string& utf8) {
    try {
        return wideText(utf8);
    } catch (const win32::Utf8ConversionException&) {
        return {};
    }
}

/// What all kinds share: the child window, and when to set what.
class Control : public ControlWin32 {
  public:
    struct Shape {
        const wchar_t* className;
        DWORD style;
        int x, y, width, height;  ///< in pixels of the screen
    };

    Control(const ControlSpec& spec, const ControlParent& parent, const WindowEvents& events, HGDIOBJ font,
            const Shape& shape)
        : id_(spec.id), events_(events) {
        handle_ = ::CreateWindowExW(0, shape.className, shownText(spec.caption).c_str(),
                                    shape.style | WS_CHILD | WS_VISIBLE | WS_TABSTOP, shape.x, shape.y,
                                    shape.width, shape.height, parent.window,
                                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(spec.id)),
                                    ::GetModuleHandleW(nullptr), nullptr);
        ::SendMessageW(handle_, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        if (!spec.tip.empty()) addTip(parent, spec.tip);
    }
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    void show(const ControlState& state, bool refresh) override {
        if (!shown_ || state.enabled != last_.enabled) enable(state.enabled);
        put(state, last_, refresh || !shown_);
        last_ = state;
        shown_ = true;
    }
    void settle() override {
        if (std::exchange(unsettled_, false) && shown_) put(last_, last_, true);
    }

  protected:
    virtual void put(const ControlState& state, const ControlState& before, bool all) = 0;
    /// The parameter decides what is shown: where the handler leaves it, the control goes back.
    void settleLater() { unsettled_ = true; }

    /// From now on the window's messages come to `message`.
    void subclass() {
        if (!handle_) return;
        ::SetWindowLongPtrW(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        classProcedure_ = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(handle_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Control::procedure)));
    }
    virtual LRESULT message(UINT number, WPARAM first, LPARAM second) {
        return passOn(number, first, second);
    }
    LRESULT passOn(UINT number, WPARAM first, LPARAM second) {
        return ::CallWindowProcW(classProcedure_, handle_, number, first, second);
    }
    LRESULT send(UINT number, WPARAM first = 0, LPARAM second = 0) const {
        return ::SendMessageW(handle_, number, first, second);
    }

    HWND handle_ = nullptr;
    const int id_;
    const WindowEvents& events_;

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT number, WPARAM first, LPARAM second) {
        return reinterpret_cast<Control*>(::GetWindowLongPtrW(window, GWLP_USERDATA))
            ->message(number, first, second);
    }
    void enable(bool enabled) {
        const bool typedInto = handle_ && ::GetFocus() == handle_;
        ::EnableWindow(handle_, enabled);
        // The keys would go nowhere.
        if (typedInto && !enabled) ::SetFocus(::GetParent(handle_));
    }
    void addTip(const ControlParent& parent, const std::string& text) {
        std::wstring wide = shownText(text);
        TTTOOLINFOW tool{};
        tool.cbSize = offsetof(TTTOOLINFOW, lpReserved);  // what every version of the class knows
        tool.uFlags = UINT{TTF_IDISHWND} | UINT{TTF_SUBCLASS};
        tool.hwnd = parent.window;
        tool.uId = reinterpret_cast<UINT_PTR>(handle_);
        tool.lpszText = wide.data();
        ::SendMessageW(parent.tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }

    WNDPROC classProcedure_ = nullptr;
    ControlState last_;
    bool shown_ = false, unsettled_ = false;
};

/// A square with a tick, drawn here: the system's has a size of its own, and this panel paints the labels.
class Check : public Control {
  public:
    Check(const ControlSpec& spec, const ControlParent& parent, const WindowEvents& events)
        : Control(spec, parent, events, parent.font,
                  {L"button", DWORD{BS_CHECKBOX}, parent.scale.of(spec.x), parent.scale.of(spec.y + 2),
                   parent.scale.of(checkSize), parent.scale.of(checkSize)}) {
        subclass();
    }
    void command(unsigned code) override {
        if (code == BN_CLICKED) events_.clicked(id_);
    }

  private:
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (all || state.checked != before.checked)
            send(BM_SETCHECK, state.checked ? WPARAM{BST_CHECKED} : WPARAM{BST_UNCHECKED});
    }
    LRESULT message(UINT number, WPARAM first, LPARAM second) override {
        switch (number) {
            case WM_ERASEBKGND:
                return 1;
            case WM_PAINT:
                draw();
                return 0;
            case BM_SETCHECK:
            case BM_SETSTATE:
            case WM_ENABLE:
            case WM_SETFOCUS:
            case WM_KILLFOCUS: {
                // The class would draw its own square at once, to be seen until the next WM_PAINT.
                ::DefWindowProcW(handle_, WM_SETREDRAW, FALSE, 0);
                const LRESULT result = passOn(number, first, second);
                ::DefWindowProcW(handle_, WM_SETREDRAW, TRUE, 0);
                ::InvalidateRect(handle_, nullptr, FALSE);
                return result;
            }
            default:
                return passOn(number, first, second);
        }
    }
    void draw() {
        const PaintCycle cycle(handle_);
        const HDC dc = cycle.dc();
        const bool usable = ::IsWindowEnabled(handle_) != FALSE;
        const auto brush = static_cast<HBRUSH>(::GetStockObject(DC_BRUSH));
        RECT rect{};
        ::GetClientRect(handle_, &rect);
        ::SetDCBrushColor(dc, colorRef(usable ? Colour{255, 255, 255} : Colour{215, 225, 235}));
        ::FillRect(dc, &rect, brush);
        constexpr Colour focused{0, 0, 255}, free{}, locked{130, 140, 150}, lockedTick{110, 120, 130};
        ::SetDCBrushColor(dc, colorRef(::GetFocus() == handle_ ? focused : usable ? free : locked));
        ::FrameRect(dc, &rect, brush);
        if (send(BM_GETCHECK) != BST_CHECKED) return;
        ::SelectObject(dc, ::GetStockObject(DC_PEN));
        ::SetDCPenColor(dc, colorRef(usable ? free : lockedTick));
        const LONG w = rect.right, h = rect.bottom;
        for (LONG down = 0; down < std::max(w / 6, LONG{1}); ++down) {
            const POINT tick[] = {
                {w / 4, h / 2 + down}, {w * 5 / 12, h * 3 / 4 - 1 + down}, {w * 3 / 4 + 1, h / 4 - 1 + down}};
            ::Polyline(dc, tick, 3);
        }
    }
};

class Button : public Control {
  public:
    Button(const ControlSpec& spec, const ControlParent& parent, const WindowEvents& events)
        : Control(spec, parent, events, parent.font,
                  {L"button", DWORD{BS_DEFPUSHBUTTON}, parent.scale.of(spec.x), parent.scale.of(spec.y),
                   parent.scale.of(spec.width), parent.scale.of(buttonHeight)}) {}
    void command(unsigned code) override {
        if (code == BN_CLICKED) events_.clicked(id_);
    }

  private:
    void put(const ControlState&, const ControlState&, bool) override {}
};

class Edit : public Control {
  public:
    Edit(const ControlSpec& spec, const ControlParent& parent, const WindowEvents& events)
        : Control(spec, parent, events, parent.editFont,
                  {L"Edit", DWORD{WS_BORDER} | DWORD{ES_AUTOHSCROLL}, parent.scale.of(spec.x),
                   parent.scale.of(spec.y),
                   // The path's box runs past the window's edge: its text must scroll at the edge.
                   std::min(parent.scale.of(spec.width), parent.scale.of(clientWidth - spec.x - 2)),
                   parent.scale.of(editHeight)}) {
        send(EM_SETLIMITTEXT, longestText);
        subclass();
    }
    void command(unsigned code) override {
        if (code == enterPressed) events_.entered(id_, typedText());
    }

  private:
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (!all && state.text == before.text) return;
        try {
            ::SetWindowTextW(handle_, wideText(state.text).c_str());
        } catch (const win32::Utf8ConversionException&) {
            // What the box showed stays: the value itself is no worse for it.
        }
    }
    LRESULT message(UINT number, WPARAM first, LPARAM second) override {
        if (number == WM_CHAR && first == enterKey) {
            ::SendMessageW(::GetParent(handle_), WM_COMMAND,
                           commandParameter(static_cast<unsigned>(id_), enterPressed),
                           reinterpret_cast<LPARAM>(handle_));
            return 0;
        }
        if (number == WM_CHAR && first == controlA) {  // older systems only beep
            send(EM_SETSEL, 0, -1);
            return 0;
        }
        return passOn(number, first, second);
    }
    /// Empty where half a character was typed.
    std::string typedText() const {
        wchar_t buffer[longestText + 1];
        const int length = ::GetWindowTextW(handle_, buffer, longestText + 1);
        try {
            return win32::utf16ToUtf8(std::u16string(buffer, buffer + length));
        } catch (const win32::Utf8ConversionException&) {
            return {};
        }
    }
};

class Combo : public Control {
  public:
    Combo(const ControlSpec& spec, const ControlParent& parent, const WindowEvents& events)
        : Control(
              spec, parent, events, parent.font,
              {L"ComboBox", DWORD{WS_VSCROLL} | DWORD{CBS_DROPDOWNLIST}, parent.scale.of(spec.x),
               parent.scale.of(spec.y - 5), parent.scale.of(spec.width), parent.scale.of(spec.dropHeight)}) {
        // The class goes by the font alone, which grows less than the rows of the panel.
        const LRESULT higher = parent.scale.of(comboHeight) - closedHeight();
        send(CB_SETITEMHEIGHT, closedField, send(CB_GETITEMHEIGHT, closedField) + higher);
        // The newer class shows 30 entries else, whatever the height.
        const LRESULT room = parent.scale.of(spec.dropHeight) - closedHeight();
        const LRESULT entries = room / std::max<LRESULT>(send(CB_GETITEMHEIGHT), 1);
        send(CB_SETMINVISIBLE, static_cast<WPARAM>(std::max<LRESULT>(entries, 1)));
    }
    void command(unsigned code) override {
        // Closed by Escape, the list may have gone back by itself.
        if (code == CBN_SELCHANGE || code == CBN_CLOSEUP) settleLater();
        if (code != CBN_SELCHANGE) return;
        if (const LRESULT index = send(CB_GETCURSEL); index >= 0)
            events_.selected(id_, static_cast<int>(index));
    }

  private:
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (state.items != before.items || send(CB_GETCOUNT) != static_cast<LRESULT>(state.items.size())) {
            fillList(state.items);
            all = true;
        }
        if (!all && state == before) return;
        const auto found = std::find(state.items.begin(), state.items.end(), state.text);
        const LRESULT wanted = found == state.items.end() ? -1 : found - state.items.begin();
        if (send(CB_GETCURSEL) != wanted) send(CB_SETCURSEL, static_cast<WPARAM>(wanted));
    }
    LONG closedHeight() const {
        RECT rect{};
        ::GetWindowRect(handle_, &rect);
        return rect.bottom - rect.top;
    }
    void fillList(const std::vector<std::string>& items) {
        send(CB_RESETCONTENT);
        for (const std::string& item : items)
            send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(shownText(item).c_str()));
    }
};

}  // namespace

const wchar_t* resourceName(unsigned number) {
    return reinterpret_cast<const wchar_t*>(static_cast<UINT_PTR>(number));
}

WPARAM commandParameter(unsigned low, unsigned high) {
    return WPARAM{low} | WPARAM{high} << 16;
}

unsigned lowWord(WPARAM parameter) {
    return static_cast<unsigned>(parameter & 0xFFFF);
}

unsigned highWord(WPARAM parameter) {
    return static_cast<unsigned>(parameter >> 16 & 0xFFFF);
}

std::unique_ptr<ControlWin32> makeControl(const ControlSpec& spec, const ControlParent& parent,
                                          const WindowEvents& events) {
    switch (spec.kind) {
        case ControlKind::check:
            return std::make_unique<Check>(spec, parent, events);
        case ControlKind::button:
            return std::make_unique<Button>(spec, parent, events);
        case ControlKind::edit:
            return std::make_unique<Edit>(spec, parent, events);
        case ControlKind::combo:
            return std::make_unique<Combo>(spec, parent, events);
    }
    return nullptr;
}

}  // namespace skl::platform
