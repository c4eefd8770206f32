// The threads of a livery scan: files go in one by one, their yields come out in the order in which the files
// went in, whatever the number of threads. One thread adds and takes; it also works when no thread could be
// started.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "liveries/cfg_file.h"

namespace skl {

class ScanPool {
  public:
    using Work = std::function<void(const CfgFile& file, CfgText& buffer, CfgYield& yield)>;

    ScanPool(int workers, Work work);
    /// Waits for the threads. One that hangs in a file is left behind; what it finds is thrown away.
    ~ScanPool();
    ScanPool(const ScanPool&) = delete;
    ScanPool& operator=(const ScanPool&) = delete;

    void add(CfgFile file);
    /// No file follows: what was added last is handed out, too.
    void flush();
    /// Takes the oldest yield if it is ready. False: nothing is ready.
    bool takeReady(CfgYield& yield);
    /// Waits for the oldest yield. False: nothing is left, or a stop ended the wait. Throws
    /// std::runtime_error when no file of it was finished for ten seconds, and what the work has thrown.
    bool takeNext(CfgYield& yield);

  private:
    struct Batch;
    struct Shared;
    bool take(CfgYield& yield);

    std::shared_ptr<Shared> shared_;
    std::vector<std::thread> threads_;
    std::deque<std::shared_ptr<Batch>> waiting_;  ///< handed out and not taken, oldest first
    std::vector<CfgFile> pending_;
    bool gaveUp_ = false;
};

}  // namespace skl
