// Reading and writing of parameters.xml:
//   <parameters> <parameter name="RANGE" value="40" /> ... </parameters>
// Each change reads the file anew, so that rows of a newer or older version stay in it.
#include "core/parameter_store.h"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <type_traits>

#include "core/folders.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/text.h"
#include "core/time_text.h"
#include "core/xml_file.h"
#include "panel/panel_state.h"
#include "platform/system.h"

namespace skl {

namespace {

constexpr const char* rootName = "parameters";
constexpr const char* rowName = "parameter";

fs::path filePath() {
    return gf_programDataPath() / "parameters.xml";
}

class ParameterFile {
  public:
    ParameterFile() : path_(filePath()) {}

    const fs::path& path() const { return path_; }
    /// True when the whole file could be read and has the root.
    bool load() { return read() && root(); }
    /// Takes what can be read of the file; false only if it cannot be opened.
    bool loadAnyhow() {
        read();
        const bool opened = status_ != pugi::status_file_not_found && status_ != pugi::status_io_error;
        if (opened && !root()) reset();
        return opened;
    }
    /// Starts with an empty root.
    void reset() {
        document_.reset();
        document_.append_child(rootName);
    }
    pugi::xml_node find(const Parameter& parameter) const {
        return root().find_child_by_attribute(rowName, "name", parameter.name.c_str());
    }
    bool append(const Parameter& parameter, const std::string& value) {
        pugi::xml_node row = root().append_child(rowName);
        return row.append_attribute("name").set_value(parameter.name.c_str()) &&
               row.append_attribute("value").set_value(value.c_str());
    }
    bool change(const Parameter& parameter, const std::string& value) {
        pugi::xml_node row = find(parameter);
        if (!row) return append(parameter, value);
        pugi::xml_attribute attribute = row.attribute("value");
        if (!attribute) attribute = row.append_attribute("value");
        return attribute.set_value(value.c_str());
    }
    bool remove(const Parameter& parameter) {
        const pugi::xml_node row = find(parameter);
        return row && root().remove_child(row);
    }
    bool save() const {
        std::string error;
        return platform::replaceFile(path_, lf_xmlText(document_), error);
    }
    void saveLogged() const { gf_saveXml(document_, path_); }

  private:
    pugi::xml_node root() const { return document_.child(rootName); }
    bool read() {
        status_ = document_.load_file(path_.c_str()).status;
        return status_ == pugi::status_ok;
    }
    fs::path path_;
    pugi::xml_document document_;
    pugi::xml_parse_status status_ = pugi::status_ok;
};

bool isLiveryFolder(const Parameter& parameter) {
    return parameter.name.find("lfolder") != std::string::npos;
}

// Value and text of each kind of parameter. `take` stores what the file holds, `takeDefault` what it lacks.
std::string textOf(const BoolParameter& parameter) {
    return parameter.value ? "true" : "false";
}
std::string textOf(const IntParameter& parameter) {
    return fmt::format("{}", parameter.value.load());
}
std::string textOf(const StringParameter& parameter) {
    return parameter.get();
}

void take(BoolParameter& parameter, std::string_view text) {
    parameter.value = gf_parseBool(text);
}

void take(IntParameter& parameter, std::string_view text) {
    const std::string digits = gf_trim(text);
    int64_t value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        value =
            digits.front() == '-' ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    parameter.value = parameter.clamp(value);
}

void take(StringParameter& parameter, std::string_view text) {
    parameter.set(std::string(text));
}

void takeDefault(BoolParameter& parameter) {
    parameter.value = parameter.defaultValue;
}
void takeDefault(IntParameter& parameter) {
    parameter.value = parameter.defaultValue;
}
void takeDefault(StringParameter& parameter) {
    parameter.set(parameter.defaultValue);
}

void readLiveryFolder(ParameterFile& file, StringParameter& folder) {
    const pugi::xml_node row = file.find(folder);
    if (row)
        take(folder, row.attribute("value").value());
    else
        takeDefault(folder);
    if (folder.empty() && file.remove(folder)) gf_log(fmt::format("Parameter '{}' removed", folder.name));
}

template <class SomeParameter>
void readOne(ParameterFile& file, SomeParameter& parameter) {
    if constexpr (std::is_same_v<SomeParameter, StringParameter>)
        if (isLiveryFolder(parameter)) return readLiveryFolder(file, parameter);
    if (const pugi::xml_node row = file.find(parameter)) {
        take(parameter, row.attribute("value").value());
    } else {
        takeDefault(parameter);
        file.append(parameter, textOf(parameter));
    }
    gf_logRunning(fmt::format("{}={}", parameter.name, textOf(parameter)));
}

template <class List>
void readList(ParameterFile& file, const List& list) {
    for (auto* parameter : list) readOne(file, *parameter);
}

template <class List>
void addList(ParameterFile& file, const List& list) {
    for (auto* parameter : list) {
        if (isLiveryFolder(*parameter)) continue;
        const std::string value = textOf(*parameter);
        if (!file.append(*parameter, value))
            gf_log(fmt::format("{}Adding Init XML parameter '{}' with value '{}' failed!", "===> ",
                               parameter->name, value));
    }
}

template <class SomeParameter>
void saveOne(const SomeParameter& parameter) {
    LockGuard guard(g_parameterLock);
    ParameterFile file;
    if (!file.loadAnyhow() || !file.change(parameter, textOf(parameter)) || !file.save())
        gf_log(fmt::format("Saving '{}' failed", parameter.name));
}

}  // namespace

void gf_readParameters(const BoolList& list1, const BoolList& list2, const IntList& list3,
                       const IntList& list4, const StringList& list5, const StringList& list6) {
    LockGuard guard(g_parameterLock);
    gf_log(gf_starLine(70, 0, false, false, "Parameters"));
    const auto forAll = [&](auto treat) {
        treat(list1);
        treat(list2);
        treat(list3);
        treat(list4);
        treat(list5);
        treat(list6);
    };
    ParameterFile file;
    if (file.load()) {
        gf_log(fmt::format("from '{}'", gf_pathText(file.path())));
        forAll([&file](const auto& list) { readList(file, list); });
    } else {
        gf_log(fmt::format("{} not found, default values taken:", gf_pathText(file.path())));
        PROGRAM_VERSION.set(programVersion.text());
        file.reset();
        forAll([&file](const auto& list) { addList(file, list); });
    }
    MAX_FIT_FL.value = static_cast<float>(MAX_FIT.value) * 0.5f + 0.5f;
    gf_invalidate(Band::options);
    file.saveLogged();
    gf_log(gf_starLine(80, 0, false, true, ""));
}

void gf_saveParameter(const BoolParameter& parameter) {
    saveOne(parameter);
}
void gf_saveParameter(const IntParameter& parameter) {
    saveOne(parameter);
}
void gf_saveParameter(const StringParameter& parameter) {
    saveOne(parameter);
}

void gf_removeParameter(const Parameter& parameter) {
    LockGuard guard(g_parameterLock);
    ParameterFile file;
    if (!file.loadAnyhow()) {
        gf_log(fmt::format("Saving '{}' failed", parameter.name));
        return;
    }
    file.remove(parameter);
    const char* outcome = file.save() ? "Parameter '{}' removed" : "Saving '{}' failed";
    gf_log(fmt::format(fmt::runtime(outcome), parameter.name));
}

void gf_readWindowPlace() {
    LockGuard guard(g_parameterLock);
    ParameterFile file;
    if (!file.load()) return;
    for (IntParameter* edge : {&MAIN_WINDOW_X, &MAIN_WINDOW_Y})
        if (const pugi::xml_node row = file.find(*edge)) take(*edge, row.attribute("value").value());
}

}  // namespace skl
