// The data site on a thread of its own, over a folder, while the test fetches from it.
#pragma once

#include <atomic>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>

#include "standin/site/site.h"

namespace skl::test {

class SiteServer {
  public:
    explicit SiteServer(const std::string& folder, std::vector<site::Fault> faults = {})
        : site_({.root = folder, .port = 0, .script = "", .faults = std::move(faults), .help = false},
                standin::steadySeconds) {
        if (const std::string complaint = site_.start(); !complaint.empty())
            throw std::runtime_error(complaint);
        thread_ = std::thread([this] {
            while (!ending_) site_.step(0.02);
        });
    }
    ~SiteServer() { end(); }
    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(site_.port()) + path;
    }
    /// Gives the report.
    nlohmann::json end() {
        ending_ = true;
        if (thread_.joinable()) thread_.join();
        return site_.report();
    }

  private:
    site::Site site_;
    std::atomic<bool> ending_{false};
    std::thread thread_;
};

}  // namespace skl::test
