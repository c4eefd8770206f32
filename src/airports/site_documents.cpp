#include "airports/site_documents.h"

#include <algorithm>
#include <fstream>
#include <list>
#include <sstream>
#include <system_error>

#include "airports/airport_file.h"
#include "core/fnv.h"
#include "core/folders.h"
#include "distribution/site.h"

namespace skl {

namespace {

constexpr size_t documentsKept = 3;  // an airport, its neighbour, and the one in sight

struct Document {
    std::string name, text;
};

StringMap<bool> answers;        // by name, whether the site gave the file
std::list<Document> documents;  // the latest first

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

bool fetch(const std::string& name, std::string& text) {
    const fs::path path = paths::airports / "airport.xml";
    if (!gf_download(lf_siteDocumentUrl(name), path)) return false;
    std::ifstream file(path, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(file), {});
    const bool whole = file.is_open() && !file.bad();
    file.close();
    std::error_code ignored;
    fs::remove(path, ignored);
    return whole;
}

}  // namespace

std::string lf_siteDocumentUrl(std::string_view name) {
    // Stock airports and those that come with the simulator are the same in both simulators.
    const bool common = name.find("simaddon") != name.npos || name.find("stock") != name.npos;
    return gf_siteUrl(common) + replaceAll(std::string(name), " ", "%20");
}

bool lf_siteHolds(const std::string& name) {
    const auto answer = answers.find(name);
    return answer != answers.end() ? answer->second : lf_siteDocument(name) != nullptr;
}

const std::string* lf_siteDocument(const std::string& name) {
    if (!gf_siteKnown()) return nullptr;
    const auto kept = std::find_if(documents.begin(), documents.end(),
                                   [&name](const Document& document) { return document.name == name; });
    if (kept != documents.end()) return &kept->text;
    const auto answer = answers.find(name);
    if (answer != answers.end() && !answer->second) return nullptr;
    Document document{name, {}};
    answers[name] = fetch(name, document.text);
    if (!answers[name]) return nullptr;
    documents.push_front(std::move(document));
    if (documents.size() > documentsKept) documents.pop_back();
    return &documents.front().text;
}

void gf_forgetProbes() {
    answers.clear();
    documents.clear();
}

}  // namespace skl
