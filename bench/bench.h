// What the measurements share: rows of the table, timing, the count of heap allocations, a folder to work in.
// Plain timing instead of a framework, since most figures are ratios of two things measured in turns, or
// counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace skl::bench {

/// One line of the table.
struct Row {
    std::string work, goal, measured;
    std::optional<bool> met;  ///< nothing: told without a goal
};
using Rows = std::vector<Row>;

Rows decodeRows();
Rows engineTickRows();
Rows frameFlushRows();
Rows liveryScanRows();
Rows coldStartRows();
Rows matchRows();
Rows regcodeRows();
Rows bglScanRows();
Rows airportFileRows();
Rows parkingRows();
Rows panelRows();
Rows dataSiteRows();

struct Measurement {
    std::string_view name;
    Rows (*run)();
};
/// Those of this system, in the order of the table.
std::span<const Measurement> measurements();
/// What a process started with this word does instead of measuring; null for another word.
int (*childOf(std::string_view word))();

/// The cold start itself, in a process of its own: reads the data of the working folder, prints wall time and
/// memory.
int coldStartChild();
/// The making of a data site out of the sources in the working folder, in a process of its own, likewise.
int dataSiteChild();

/// What the process of a cold start tells.
struct Start {
    double seconds = 0, peakKb = 0;
    size_t registrations = 0, liveries = 0, airports = 0;
};
/// A process of `self`, in the working folder `folder`.
Start startOnce(const std::filesystem::path& self, const std::filesystem::path& folder);

/// Every figure is the least of this many runs.
inline constexpr int runs = 5;

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

template <class Work>
double secondsOf(Work&& work) {
    const auto start = Clock::now();
    work();
    return secondsSince(start);
}

/// Keeps the compiler from leaving out what nobody reads.
template <class T>
void keep(const T& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

/// The value below which the share `q` of all lies. Changes the order.
inline double quantile(std::vector<double>& values, double q) {
    const auto place =
        std::min(values.size() - 1, static_cast<size_t>(q * static_cast<double>(values.size())));
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(place), values.end());
    return values[place];
}

/// Calls of operator new by this thread so far.
uint64_t allocations();

/// Ends the measurement: the scene is not what it is meant to be, so that its figures would be worth nothing.
void require(bool holds, std::string_view what);

/// A fresh working folder, left and removed at the end.
class WorkFolder {
  public:
    /// `inMemory`: where the system has a file system of that kind, for what is not to measure the disk.
    explicit WorkFolder(bool inMemory = false);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_, before_;
};

}  // namespace skl::bench
