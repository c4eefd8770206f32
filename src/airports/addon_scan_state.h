// Which scan a thread works for. One that hung in a file and was left behind must not touch what a later scan
// makes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace skl {

/// The number of the scan that is running.
uint64_t lf_currentScan();
/// This thread works for the scan with this number from now on.
void lf_workForScan(uint64_t number);
/// Whether the scan of this thread is over.
bool lf_scanLeftBehind();
/// Lines of this thread go to `sink` from now on, so that those of one file stay together; nullptr: to the
/// log itself.
void lf_collectScanLog(std::vector<std::string>* sink);
/// A new scan begins: which files were generated, and by what, is of the one before.
void lf_forgetGenerated();

}  // namespace skl
