#include "tools/datakit/findings.h"

#include <fmt/format.h>

namespace skl::datakit {

std::string Place::text() const {
    return line ? fmt::format("{}:{}", file, line) : file;
}

Findings::Findings(std::ostream& out, uint64_t shown, const std::string& reportPath)
    : out_(out), shown_(shown) {
    if (!reportPath.empty()) report_ = std::make_unique<OutputFile>(reportPath);
}

void Findings::tell(std::string_view kind, const Place& place, std::string_view text) {
    auto found = counts_.find(kind);
    if (found == counts_.end()) found = counts_.emplace(kind, 0).first;
    const uint64_t count = ++found->second;
    const std::string line = fmt::format("{}: {}\n", place.text(), text);
    if (report_) report_->write(line);
    if (count <= shown_) out_ << line;
    if (count == shown_ + 1)
        out_ << fmt::format("... further ones of the kind '{}' are counted only{}\n", kind,
                            report_ ? "" : "; --report FILE takes them all");
}

uint64_t Findings::count(std::string_view kind) const {
    const auto found = counts_.find(kind);
    return found == counts_.end() ? 0 : found->second;
}

void Findings::close() {
    for (const auto& [kind, count] : counts_) out_ << fmt::format("{:>9} {}\n", count, kind);
    if (report_) report_->commit();
    report_.reset();
}

Progress::Progress(std::ostream& out, std::string what, uint64_t total)
    : out_(out), what_(std::move(what)), total_(total) {}

void Progress::reach(uint64_t done) {
    done_ = done;
    // The clock is not asked at each row.
    if (done_ < nextLook_) return;
    nextLook_ = done_ + 100;
    const auto now = std::chrono::steady_clock::now();
    if (now - last_ < std::chrono::seconds(1)) return;
    last_ = now;
    print();
}

void Progress::print() {
    if (total_)
        out_ << fmt::format("{}: {} of {}\n", what_, done_, total_);
    else
        out_ << fmt::format("{}: {}\n", what_, done_);
    out_.flush();
}

}  // namespace skl::datakit
