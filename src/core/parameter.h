// The types of settings. Numbers and switches are atomics, texts are copied out under g_parameterLock: any
// thread may read and write each.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace skl {

class Parameter {
  public:
    explicit Parameter(std::string parameterName) : name(std::move(parameterName)) {}
    virtual ~Parameter() = default;
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;
    const std::string name;
};

/// What the panel knows of a control: its fixed id and place, and whether it can be used now.
class ControlParameter {
  public:
    ControlParameter(int id, int x, int y) : controlId(id), left(x), top(y) {}
    virtual ~ControlParameter() = default;
    const int controlId;
    const int left;
    const int top;
    std::atomic<bool> enabled{false};
    std::atomic<uint32_t> refreshes{0};  ///< counts up when the control is to show its value again
};

class BoolParameter : public Parameter {
  public:
    BoolParameter(std::string key, bool standard)
        : Parameter(std::move(key)), defaultValue(standard), value(standard) {}
    const bool defaultValue;
    std::atomic<bool> value;
};

class IntParameter : public Parameter {
  public:
    IntParameter(std::string key, int32_t standard, int32_t lowest, int32_t highest)
        : Parameter(std::move(key)), defaultValue(standard), min(lowest), max(highest), value(standard) {}
    int32_t clamp(int64_t wanted) const {
        return static_cast<int32_t>(wanted < min ? min : wanted > max ? max : wanted);
    }
    const int32_t defaultValue;
    const int32_t min;
    const int32_t max;
    std::atomic<int32_t> value;
};

class FloatParameter : public Parameter {
  public:
    FloatParameter(std::string key, float standard, float lowest, float highest)
        : Parameter(std::move(key)), defaultValue(standard), min(lowest), max(highest), value(standard) {}
    const float defaultValue;
    const float min;
    const float max;
    std::atomic<float> value;
};

class StringParameter : public Parameter {
  public:
    StringParameter(std::string key, std::string standard)
        : Parameter(std::move(key)), defaultValue(standard), value_(std::move(standard)) {}
    const std::string defaultValue;
    std::string get() const;  ///< a copy
    void set(std::string text);
    bool empty() const;
    bool operator==(const std::string& text) const;

  private:
    std::string value_;
};

class CheckParameter : public BoolParameter, public ControlParameter {
  public:
    CheckParameter(std::string key, bool standard, int id, int x, int y)
        : BoolParameter(std::move(key), standard), ControlParameter(id, x, y) {}
};

/// A number out of a list. Bounds are the first and the last entry; a value between two entries is allowed.
class ComboIntParameter : public IntParameter, public ControlParameter {
  public:
    ComboIntParameter(std::string key, int32_t standard, std::vector<int32_t> list, int id, int x, int y)
        : IntParameter(std::move(key), standard, list.front(), list.back()),
          ControlParameter(id, x, y),
          allowed(std::move(list)) {}
    const std::vector<int32_t> allowed;
};

class EditIntParameter : public IntParameter, public ControlParameter {
  public:
    EditIntParameter(std::string key, int32_t standard, int32_t lowest, int32_t highest, int id, int x, int y)
        : IntParameter(std::move(key), standard, lowest, highest), ControlParameter(id, x, y) {}
};

class EditFloatParameter : public FloatParameter, public ControlParameter {
  public:
    EditFloatParameter(std::string key, float standard, float lowest, float highest, int id, int x, int y)
        : FloatParameter(std::move(key), standard, lowest, highest), ControlParameter(id, x, y) {}
};

class EditStringParameter : public StringParameter, public ControlParameter {
  public:
    EditStringParameter(std::string key, std::string standard, int id, int x, int y)
        : StringParameter(std::move(key), std::move(standard)), ControlParameter(id, x, y) {}
};

class ComboStringParameter : public StringParameter, public ControlParameter {
  public:
    ComboStringParameter(std::string key, std::string standard, std::vector<std::string> list, int id, int x,
                         int y)
        : StringParameter(std::move(key), std::move(standard)),
          ControlParameter(id, x, y),
          allowed(std::move(list)) {}
    const std::vector<std::string> allowed;
};

/// A push button: a caption and no value.
class ButtonParameter : public ControlParameter {
  public:
    ButtonParameter(std::string text, int id, int x, int y)
        : ControlParameter(id, x, y), caption(std::move(text)) {}
    const std::string caption;
};

}  // namespace skl
