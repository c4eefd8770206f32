// The meta section and the writing of XML files.
#include "core/xml_file.h"

#include <fmt/format.h>

#include <array>
#include <sstream>
#include <utility>

#include "core/folders.h"
#include "core/log.h"
#include "core/run_state.h"
#include "core/text.h"
#include "core/time_text.h"
#include "core/version.h"
#include "platform/system.h"

namespace skl {

namespace {

constexpr const char* copyright = "Copyright (c) 2026 The Skylantern developers";

bool appendInfo(pugi::xml_node meta, const char* name, const std::string& value) {
    pugi::xml_node info = meta.append_child("info");
    return info.append_attribute("name").set_value(name) &&
           info.append_attribute("value").set_value(value.c_str());
}

}  // namespace

int gf_writeMeta(pugi::xml_document& document) {
    const std::array<std::pair<const char*, std::string>, 5> rows{{{"author", std::string(programName)},
                                                                   {"version", programVersion.text()},
                                                                   {"date", gf_dateString()},
                                                                   {"copyright", copyright},
                                                                   {"MSFS", sim2020 ? "2020" : "2024"}}};
    pugi::xml_node meta = document.append_child("meta");
    for (const auto& [name, value] : rows)
        if (!appendInfo(meta, name, value)) return 0;
    return 1;
}

bool gf_readMeta(const pugi::xml_document& document, const std::string& name, std::string& value) {
    value.clear();
    try {
        const auto row = document.select_node(fmt::format("/meta/info[@name='{}']", name).c_str());
        if (!row) return false;
        value = row.node().attribute("value").value();
        return true;
    } catch (const pugi::xpath_exception& error) {
        gf_log(error.what());
        return false;
    }
}

std::string lf_xmlText(const pugi::xml_document& document) {
    std::ostringstream text;
    document.save(text, "\t", pugi::format_default, pugi::encoding_utf8);
    return std::move(text).str();
}

bool gf_saveXml(const pugi::xml_document& document, const std::filesystem::path& path) {
    std::string error;
    const bool saved = platform::replaceFile(path, lf_xmlText(document), error);
    gf_log(fmt::format(fmt::runtime(saved ? "'{}' saved" : "could not save to '{}'"), gf_pathText(path)));
    return saved;
}

}  // namespace skl
