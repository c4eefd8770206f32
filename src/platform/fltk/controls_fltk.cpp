#include "platform/fltk/controls_fltk.h"

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Input.H>
#include <FL/fl_draw.H>

#include <algorithm>

namespace skl::platform {

namespace {

constexpr int longestText = 1023;  // bytes
constexpr int checkSize = 12, buttonHeight = 20, editHeight = 16, comboHeight = 20;

Fl_Color bandColour() {
    return fl_rgb_color(153, 204, 255);
}

/// A square with a tick: FLTK's own leaves room for a label that this panel paints itself.
class CheckBox : public Fl_Check_Button {
  public:
    using Fl_Check_Button::Fl_Check_Button;

  private:
    void draw() override {
        const bool usable = active_r() != 0;
        fl_rectf(x(), y(), w(), h(), usable ? FL_WHITE : fl_rgb_color(215, 225, 235));
        fl_color(Fl::focus() == this ? FL_BLUE : usable ? FL_BLACK : fl_rgb_color(130, 140, 150));
        fl_rect(x(), y(), w(), h());
        if (!value()) return;
        fl_color(usable ? FL_BLACK : fl_rgb_color(110, 120, 130));
        fl_line_style(FL_SOLID, w() / 6);
        fl_line(x() + w() / 4, y() + h() / 2, x() + w() * 5 / 12, y() + h() * 3 / 4 - 1, x() + w() * 3 / 4,
                y() + h() / 4);
        fl_line_style(0);
    }
};

/// What all kinds share: when to set what.
class Control : public ControlFltk {
  public:
    Control(const ControlSpec& spec, const WindowEvents& events) : id_(spec.id), events_(events) {}
    void show(const ControlState& state, bool refresh) override {
        if (!shown_ || state.enabled != last_.enabled) {
            if (state.enabled)
                widget().activate();
            else
                widget().deactivate();
        }
        put(state, last_, refresh || !shown_);
        last_ = state;
        shown_ = true;
    }

  protected:
    virtual Fl_Widget& widget() = 0;
    virtual void put(const ControlState& state, const ControlState& before, bool all) = 0;
    /// The parameter decides what is shown: after the handler the widget may have to go back.
    void showAgain() {
        if (shown_) put(last_, last_, true);
    }
    const int id_;
    const WindowEvents& events_;

    template <class Owner, void (Owner::*Act)()>
    void listen(Fl_Widget& source) {
        source.callback([](Fl_Widget*, void* owner) { (static_cast<Owner*>(owner)->*Act)(); },
                        static_cast<Owner*>(this));
    }

  private:
    ControlState last_;
    bool shown_ = false;
};

class Check : public Control {
  public:
    Check(const ControlSpec& spec, Scale scale, const WindowEvents& events)
        : Control(spec, events),
          box_(new CheckBox(scale.of(spec.x), scale.of(spec.y + 2), scale.of(checkSize),
                            scale.of(checkSize))) {
        box_->copy_tooltip(spec.tip.c_str());
        listen<Check, &Check::clicked>(*box_);
    }
    void clicked() {
        showAgain();
        events_.clicked(id_);
    }

  private:
    Fl_Widget& widget() override { return *box_; }
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (all || state.checked != before.checked) box_->value(state.checked);
    }
    CheckBox* box_;
};

class Button : public Control {
  public:
    Button(const ControlSpec& spec, Scale scale, const WindowEvents& events)
        : Control(spec, events),
          button_(new Fl_Button(scale.of(spec.x), scale.of(spec.y), scale.of(spec.width),
                                scale.of(buttonHeight))) {
        button_->copy_label(spec.caption.c_str());
        button_->labelsize(scale.of(textSize));
        button_->box(FL_THIN_UP_BOX);
        button_->copy_tooltip(spec.tip.c_str());
        listen<Button, &Button::clicked>(*button_);
    }
    void clicked() { events_.clicked(id_); }

  private:
    Fl_Widget& widget() override { return *button_; }
    void put(const ControlState&, const ControlState&, bool) override {}
    Fl_Button* button_;
};

class Edit : public Control {
  public:
    Edit(const ControlSpec& spec, Scale scale, int windowWidth, const WindowEvents& events)
        : Control(spec, events),
          input_(new Fl_Input(scale.of(spec.x), scale.of(spec.y),
                              // The path's box runs past the window's edge: its text must scroll at the edge.
                              std::min(scale.of(spec.width), windowWidth - scale.of(spec.x) - scale.of(2)),
                              scale.of(editHeight))) {
        input_->box(FL_BORDER_BOX);
        input_->color(bandColour());
        input_->textsize(scale.of(textSize));
        input_->maximum_size(longestText);
        input_->copy_tooltip(spec.tip.c_str());
        input_->when(FL_WHEN_ENTER_KEY_ALWAYS);
        listen<Edit, &Edit::entered>(*input_);
    }
    void entered() { events_.entered(id_, input_->value()); }

  private:
    Fl_Widget& widget() override { return *input_; }
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (all || state.text != before.text) input_->value(state.text.c_str());
    }
    Fl_Input* input_;
};

class Combo : public Control {
  public:
    Combo(const ControlSpec& spec, Scale scale, const WindowEvents& events)
        : Control(spec, events),
          choice_(new Fl_Choice(scale.of(spec.x), scale.of(spec.y - 5) + scale.of(1), scale.of(spec.width),
                                scale.of(comboHeight))) {
        choice_->textsize(scale.of(textSize));
        choice_->box(FL_THIN_UP_BOX);
        choice_->copy_tooltip(spec.tip.c_str());
        choice_->when(FL_WHEN_RELEASE_ALWAYS);
        listen<Combo, &Combo::chosen>(*choice_);
    }
    void chosen() {
        const int index = choice_->value();
        showAgain();
        if (index >= 0) events_.selected(id_, index);
    }

  private:
    Fl_Widget& widget() override { return *choice_; }
    void put(const ControlState& state, const ControlState& before, bool all) override {
        if (state.items != before.items || choice_->size() == 0) fillList(state.items);
        if (!all && state == before) return;
        const auto found = std::find(state.items.begin(), state.items.end(), state.text);
        choice_->value(found == state.items.end() ? -1 : static_cast<int>(found - state.items.begin()));
        choice_->redraw();
    }
    void fillList(const std::vector<std::string>& items) {
        choice_->clear();
        for (const std::string& item : items) {
            std::string name;  // a slash would open a submenu, an ampersand a shortcut
            for (const char c : item) {
                if (c == '/' || c == '\\') name += '\\';
                if (c == '&') name += '&';
                name += c;
            }
            choice_->add(name.c_str(), 0, nullptr);
        }
    }
    Fl_Choice* choice_;
};

}  // namespace

std::unique_ptr<ControlFltk> makeControl(const ControlSpec& spec, Scale scale, const WindowEvents& events) {
    switch (spec.kind) {
        case ControlKind::check:
            return std::make_unique<Check>(spec, scale, events);
        case ControlKind::button:
            return std::make_unique<Button>(spec, scale, events);
        case ControlKind::edit:
            return std::make_unique<Edit>(spec, scale, Fl_Group::current()->w(), events);
        case ControlKind::combo:
            return std::make_unique<Combo>(spec, scale, events);
    }
    return nullptr;
}

}  // namespace skl::platform
