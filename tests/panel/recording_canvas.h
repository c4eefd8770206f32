// A canvas that keeps what is painted on it. A text that is no UTF-8 throws, as on a real one.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/canvas.h"
#include "platform/text_conversion.h"

namespace skl::test {

class RecordingCanvas : public platform::Canvas {
  public:
    struct Text {
        int x, y;
        std::string text;
        platform::Colour colour;
    };
    void fill(const platform::Rect& area, platform::Colour colour) override {
        fills.push_back({area, colour});
    }
    void line(int x1, int y1, int x2, int y2, platform::Colour) override {
        lines.push_back({x1, y1, x2, y2});
    }
    void text(int x, int y, std::string_view utf8, platform::Colour colour) override {
        win32::utf8ToUtf16(utf8);
        texts.push_back({x, y, std::string(utf8), colour});
    }
    /// The text at a place, nullptr if there is none.
    const Text* at(int x, int y) const {
        const auto found =
            std::find_if(texts.begin(), texts.end(), [&](const Text& t) { return t.x == x && t.y == y; });
        return found == texts.end() ? nullptr : &*found;
    }
    /// The last fill of exactly this rectangle.
    const platform::Colour* filled(const platform::Rect& area) const {
        const auto found =
            std::find_if(fills.rbegin(), fills.rend(), [&](const auto& fill) { return fill.first == area; });
        return found == fills.rend() ? nullptr : &found->second;
    }

    std::vector<std::pair<platform::Rect, platform::Colour>> fills;
    std::vector<platform::Rect> lines;
    std::vector<Text> texts;
};

}  // namespace skl::test
