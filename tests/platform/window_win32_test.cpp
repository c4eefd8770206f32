// The window of Windows: what stands where, what a user's doing becomes, what is painted, and what the
// program carries for it.
#include <windows.h>
// Behind windows.h.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "platform/win32/controls_win32.h"
#include "platform/window.h"

namespace skl::platform {
namespace {

constexpr int combo = 32790, check = 32797, edit = 32839, button = 32838;
constexpr std::chrono::milliseconds noTime{0};

class WindowWin32Test : public ::testing::Test {
  protected:
    void SetUp() override {
        // Not in reading order.
        std::vector<ControlSpec> controls{{ControlKind::button, button, 758, 341, 90, 0, "Re-read", ""},
                                          {ControlKind::edit, edit, 217, 343, 50, 0, "", "A tip"},
                                          {ControlKind::check, check, 5, 147, 0, 0, "", ""},
                                          {ControlKind::combo, combo, 5, 119, 105, 80, "", ""}};
        WindowEvents events{
            [this](Canvas& canvas, const Rect& area) { paint(canvas, area); },
            [this](int id) { told_ += fmt::format("click {};", id); },
            [this](int id, int index) { told_ += fmt::format("select {} {};", id, index); },
            [this](int id, const std::string& text) { told_ += fmt::format("enter {} {};", id, text); },
            [this] { told_ += "close;"; },
            [this] { told_ += "session;"; },
            [this] { ++heldUp; }};
        window = openWindow("skl-window-test", 10, 20, controls, events);
        ASSERT_TRUE(window);
        handle = ::FindWindowW(L"skl-window-test", L"skl-window-test");
        ASSERT_TRUE(handle);
        states = {{combo, {true, false, "two", {"one", "two", "three"}}},
                  {check, {true, false, "", {}}},
                  {edit, {true, false, "EDDF", {}}},
                  {button, {true, false, "", {}}}};
        for (const auto& [id, state] : states) window->setControl(id, state);
        settle();
    }
    void settle() {
        for (int i = 0; i < 20; ++i) window->pump(noTime);
    }
    HWND item(int id) const { return ::GetDlgItem(handle, id); }
    std::string told() { return std::exchange(told_, {}); }
    void paint(Canvas& canvas, const Rect& area) {
        painted.push_back(area);
        canvas.fill(area, Colour{0, 0, 0});
        canvas.line(0, 28, 880, 28, Colour{255, 255, 255});
        canvas.text(3, 455, "Z\xC3\xBCrich \xE2\x9C\x88", Colour{255, 255, 0});
    }

    std::unique_ptr<Window> window;
    HWND handle = nullptr;
    std::map<int, ControlState> states;
    std::vector<Rect> painted;
    int heldUp = 0;

  private:
    std::string told_;
};

TEST_F(WindowWin32Test, ClassesStylesAndPlaces) {
    EXPECT_EQ(::GetWindowLongPtrW(handle, GWL_STYLE) & ~LONG_PTR{WS_CLIPSIBLINGS}, 0x12C80000)
        << "caption, system menu, visible, and WS_CLIPCHILDREN";
    EXPECT_EQ(::GetClassLongPtrW(handle, GCL_STYLE) & (CS_HREDRAW | CS_VREDRAW), CS_HREDRAW | CS_VREDRAW);
    EXPECT_EQ(::GetClassLongPtrW(handle, GCLP_HBRBACKGROUND),
              reinterpret_cast<ULONG_PTR>(::GetStockObject(BLACK_BRUSH)));
    const double scale = std::clamp(std::round(::GetDpiForSystem() / 24.0) / 4, 1.0, 3.0);
    RECT client{};
    ::GetClientRect(handle, &client);
    EXPECT_EQ(client.right, std::lround(880 * scale));
    EXPECT_EQ(client.bottom, std::lround(476 * scale));
    struct Expected {
        int id;
        const wchar_t* name;
        LONG_PTR style;
        int x, y, width, height;
    };
    // Tab needs WS_TABSTOP, a long text ES_AUTOHSCROLL.
    for (const auto& [id, name, style, x, y, width, height] :
         {Expected{combo, L"ComboBox", 0x50010003, 5, 114, 105, 24},
          Expected{check, L"Button", 0x50010002, 5, 149, 12, 12},
          Expected{edit, L"Edit", 0x50010080, 217, 343, 50, 16},
          Expected{button, L"Button", 0x50010001, 758, 341, 90, 20}}) {
        wchar_t found[32];
        ASSERT_GT(::GetClassNameW(item(id), found, 32), 0) << id;
        EXPECT_EQ(::lstrcmpiW(found, name), 0) << id;
        // The classes keep WS_BORDER and WS_VSCROLL to themselves, and combo boxes get bits of their own.
        constexpr LONG_PTR told = 0xFFFF00FF & ~LONG_PTR{WS_BORDER | WS_VSCROLL};
        const LONG_PTR bits = ::GetWindowLongPtrW(item(id), GWL_STYLE);
        EXPECT_EQ(bits & told, style) << std::hex << bits;
        RECT rect{};
        ::GetWindowRect(item(id), &rect);
        ::MapWindowPoints(nullptr, handle, reinterpret_cast<POINT*>(&rect), 2);
        EXPECT_EQ(rect.left, std::lround(x * scale)) << id;
        EXPECT_EQ(rect.top, std::lround(y * scale)) << id;
        EXPECT_NEAR(rect.right - rect.left, width * scale, 1) << id;
        EXPECT_NEAR(rect.bottom - rect.top, height * scale, 2) << id << ", by the font";
    }
    const HDC dc = ::GetDC(item(edit));
    for (const UINT message : {WM_CTLCOLOREDIT, WM_CTLCOLORSTATIC})
        EXPECT_EQ(::SendMessageW(handle, message, reinterpret_cast<WPARAM>(dc), 0),
                  reinterpret_cast<LRESULT>(::GetStockObject(DC_BRUSH)));
    EXPECT_EQ(::GetBkColor(dc), 0x00FFCC99u);
    EXPECT_EQ(::GetBkMode(dc), OPAQUE);
    ::ReleaseDC(item(edit), dc);
}

TEST_F(WindowWin32Test, WhatTheUserDoesIsTold) {
    ::SendMessageW(item(check), BM_CLICK, 0, 0);
    EXPECT_EQ(told(), "click 32797;");
    EXPECT_EQ(::SendMessageW(item(check), BM_GETCHECK, 0, 0), BST_UNCHECKED) << "the parameter decides";
    states[check].checked = true;
    window->setControl(check, states[check]);
    EXPECT_EQ(::SendMessageW(item(check), BM_GETCHECK, 0, 0), BST_CHECKED);
    ::SendMessageW(item(button), BM_CLICK, 0, 0);
    EXPECT_EQ(told(), "click 32838;");

    ::SendMessageW(item(combo), CB_SETCURSEL, 2, 0);
    ::SendMessageW(handle, WM_COMMAND, commandParameter(combo, CBN_SELCHANGE),
                   reinterpret_cast<LPARAM>(item(combo)));
    EXPECT_EQ(told(), "select 32790 2;");
    settle();
    EXPECT_EQ(::SendMessageW(item(combo), CB_GETCURSEL, 0, 0), 1) << "nothing has taken the choice over";

    ::SetWindowTextW(item(edit), L"Z\u00FCrich \u2708 \U0001F6E9");
    for (const WPARAM key : {L'\b', L'x'}) ::SendMessageW(item(edit), WM_CHAR, key, 0);
    settle();
    EXPECT_EQ(told(), "") << "a text counts with Enter";
    ::SetWindowTextW(item(edit), L"Z\u00FCrich \u2708 \U0001F6E9");
    EXPECT_EQ(::SendMessageW(item(edit), WM_CHAR, 13, 0), 0);
    EXPECT_EQ(told(), "enter 32839 Z\xC3\xBCrich \xE2\x9C\x88 \xF0\x9F\x9B\xA9;");
    ::SetWindowTextW(item(edit), L"\xD83D");
    ::SendMessageW(item(edit), WM_CHAR, 13, 0);
    EXPECT_EQ(told(), "enter 32839 ;") << "half a character is no text";
    window->setControl(edit, states[edit], true);
    wchar_t text[16];
    ::GetWindowTextW(item(edit), text, 16);
    EXPECT_STREQ(text, L"EDDF");
}

TEST_F(WindowWin32Test, TabGoesInReadingOrderPastWhatIsLocked) {
    states[check].enabled = false;
    window->setControl(check, states[check]);
    ::SetFocus(item(combo));
    settle();
    for (const int next : {edit, button, combo}) {
        ::PostMessageW(::GetFocus(), WM_KEYDOWN, VK_TAB, 0);
        settle();
        EXPECT_EQ(::GetFocus(), item(next));
    }
}

TEST_F(WindowWin32Test, TheWindowStaysUntilTheProgramEndsIt) {
    ::SendMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_EQ(told(), "close;");
    EXPECT_TRUE(::IsWindow(handle));
    EXPECT_TRUE(::SendMessageW(handle, WM_QUERYENDSESSION, 0, 0));
    ::SendMessageW(handle, WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(told(), "") << "another program has stopped it";
    ::SendMessageW(handle, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(told(), "session;");
    // A window that is dragged, or whose menu is open, goes on showing what changes.
    for (const auto& [begin, end] :
         {std::pair(WM_ENTERSIZEMOVE, WM_EXITSIZEMOVE), {WM_ENTERMENULOOP, WM_EXITMENULOOP}}) {
        heldUp = 0;
        ::SendMessageW(handle, static_cast<UINT>(begin), 0, 0);
        for (int i = 0; i < 200 && heldUp < 2; ++i) window->pump(std::chrono::milliseconds(50));
        EXPECT_GE(heldUp, 2);
        ::SendMessageW(handle, static_cast<UINT>(end), 0, 0);
        settle();
        heldUp = 0;
        for (int i = 0; i < 3; ++i) window->pump(std::chrono::milliseconds(50));
        EXPECT_EQ(heldUp, 0);
    }
    int x = 0, y = 0;
    window->position(x, y);
    EXPECT_EQ(x, 10);
    EXPECT_EQ(y, 20);
    window.reset();
    EXPECT_FALSE(::IsWindow(handle));
}

TEST_F(WindowWin32Test, PaintsWhatWasInvalidatedAndLeavesNothingBehind) {
    painted.clear();
    const uint64_t before = window->paints();
    const Rect band{0, 448, 880, 476};
    window->invalidate(band);
    settle();
    ASSERT_EQ(painted.size(), 1u);
    EXPECT_EQ(window->paints(), before + 1);
    // Nothing above it but what rounding adds.
    EXPECT_GE(painted[0].top, band.top - 1);
    EXPECT_LE(painted[0].bottom, band.bottom + 2);
    const HDC dc = ::GetDC(handle);
    EXPECT_EQ(::GetPixel(dc, 870, 470), 0u);
    ::ReleaseDC(handle, dc);

    const DWORD objects = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 100; ++i) {
        ::InvalidateRect(handle, nullptr, FALSE);
        ::InvalidateRect(item(check), nullptr, FALSE);
        settle();
    }
    EXPECT_EQ(painted.size(), 101u);
    // wine counts none.
    EXPECT_LE(::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS), objects + 2);
}

TEST(ProgramWin32, CarriesIconTitleAndManifest) {
    const HMODULE program = ::LoadLibraryExW(SKYLANTERN_PROGRAM, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(program) << ::GetLastError();
    for (const int size : {16, 32, 48, 256}) {
        const auto icon =
            static_cast<HICON>(::LoadImageW(program, resourceName(100), IMAGE_ICON, size, size, 0));
        ASSERT_TRUE(icon) << size;
        ICONINFO info{};
        ASSERT_TRUE(::GetIconInfo(icon, &info));
        BITMAP bitmap{};
        ::GetObjectW(info.hbmColor, sizeof bitmap, &bitmap);
        EXPECT_EQ(bitmap.bmWidth, size);
        EXPECT_EQ(bitmap.bmHeight, size);
    }
    wchar_t title[100];
    ASSERT_GT(::LoadStringW(program, 101, title, 100), 0);
    EXPECT_STREQ(title, L"Skylantern");
    const HRSRC found = ::FindResourceW(program, resourceName(1), resourceName(24));
    ASSERT_TRUE(found);
    const std::string manifest(static_cast<const char*>(::LockResource(::LoadResource(program, found))),
                               ::SizeofResource(program, found));
    for (const char* setting : {">UTF-8</activeCodePage>", ">true</longPathAware>", ">system</dpiAwareness>"})
        EXPECT_NE(manifest.find(setting), std::string::npos) << setting;
}

}  // namespace
}  // namespace skl::platform
