// Names of sections and keys in any case. A file that is there but unusable is an error: a silent way round
// it would look for the simulator where the user has not put it.
#include "platform/simconnect/config.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include "core/text.h"
#include "platform/system.h"

namespace skl {

namespace {

using Section = std::map<std::string, std::string, std::less<>>;  // keys in upper case

constexpr std::string_view fileName = "SimConnect.cfg";
#ifdef _WIN32
constexpr std::string_view pipeOfThisPc = R"(\\.\pipe\Microsoft Flight Simulator\SimConnect)";
#else
constexpr std::string_view pipeOfThisPc;
#endif

/// Calls `use` for each line without its end and the blanks round it.
template <class Use>
void eachLine(std::string_view text, Use use) {
    while (!text.empty()) {
        const size_t end = text.find('\n');
        use(gf_trim(text.substr(0, end)));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

std::map<std::string, Section, std::less<>> readSections(std::string_view text) {
    std::map<std::string, Section, std::less<>> sections;
    Section* current = nullptr;
    eachLine(text, [&](const std::string& line) {
        if (line.empty() || line.front() == ';' || line.front() == '#') return;
        if (line.front() == '[') {
            current = &sections[gf_upper(gf_trim(std::string_view(line).substr(1, line.find(']') - 1)))];
            return;
        }
        const size_t equals = line.find('=');
        if (!current || equals == std::string::npos) return;
        const std::string_view whole = line;
        // The first of two equal keys counts, as everywhere in INI files.
        current->emplace(gf_upper(gf_trim(whole.substr(0, equals))), gf_trim(whole.substr(equals + 1)));
    });
    return sections;
}

std::optional<uint16_t> readPort(const std::string& text) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    const auto number = gf_readUnsigned(text);
    if (!number || *number < 1 || *number > 65535) return std::nullopt;
    return static_cast<uint16_t>(*number);
}

}  // namespace

bool lf_parseSimConnectConfig(std::string_view text, SimConnectAddress& address, std::string& trouble) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    if (text.find('\0') != std::string_view::npos) {
        trouble = "not a plain text file";
        return false;
    }
    const auto sections = readSections(text);
    auto it = sections.find("SIMCONNECT.0");
    if (it == sections.end()) it = sections.find("SIMCONNECT");
    if (it == sections.end()) {
        trouble = "section [SimConnect] is missing";
        return false;
    }
    const Section& section = it->second;
    for (const char* key : {"Protocol", "Address", "Port"}) {
        if (section.contains(gf_upper(key))) continue;
        trouble = fmt::format("{} is missing", key);
        return false;
    }
    const std::string& protocol = section.find("PROTOCOL")->second;
    const std::string& host = section.find("ADDRESS")->second;
    const std::string& portText = section.find("PORT")->second;
    const auto port = readPort(portText);
    if (!protocol.empty() && gf_upper(protocol) != "IPV4")
        trouble = fmt::format("Protocol '{}' is not supported, IPv4 is", protocol);
    else if (host.empty())
        trouble = "Address is empty";
    else if (!port)
        trouble = fmt::format("Port '{}' is not a port number", portText);
    else {
        address.pipe.clear();
        address.host = host;
        address.port = *port;
        const auto nagle = section.find("DISABLENAGLE");
        address.noDelay = nagle == section.end() || nagle->second != "0";
        return true;
    }
    return false;
}

bool lf_findSimulator(SimConnectAddress& address, std::string& trouble) {
    std::error_code ignored;
    for (const auto& folder : {std::filesystem::current_path(ignored), platform::homeFolder()}) {
        if (folder.empty()) continue;
        const auto path = folder / fileName;
        if (!std::filesystem::exists(path, ignored)) continue;
        std::ifstream in(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        std::string detail = "cannot be read";
        if (in.is_open() && !in.bad() && lf_parseSimConnectConfig(text, address, detail)) return true;
        trouble = fmt::format("{}: {}", gf_pathText(path), detail);
        return false;
    }
    address = {};
    address.pipe = pipeOfThisPc;
    return true;
}

}  // namespace skl
