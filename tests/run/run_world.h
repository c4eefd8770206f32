// A whole run on the stepped clock: the program's own threads as tasks, the simulator stand-in behind its
// wire, and a RealTraffic that says what the test wants.
#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "standin/simulator/simulator.h"
#include "tests/support/fake_network.h"
#include "tests/support/stepped_world.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

class RunTest : public TempFolderTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// The simulator's options may be changed before it is started; its script is lines "SECONDS COMMAND".
    void startSimulator(const std::string& script = {});
    void stopSimulator() { simulator.reset(); }
    /// RealTraffic answers the handshake as soon as it is waited for.
    void startRealTraffic();
    /// From `from` seconds on for `length` seconds: `count` aircraft that fly north in a row, a report every
    /// 2 s each.
    void sendTraffic(double from, double length, int count, double knots = 300);
    /// One datagram of the traffic stream now.
    void report(uint32_t hexid, double lat, double lon, double alt, double track, double knots,
                const std::string& callsign);
    void closeAt(double seconds);
    nlohmann::json simulatorReport() const { return simulator->report(); }
    /// Where in time the log line with this text was written, first seen at the next look; -1 if never.
    double whenLogged(const std::string& text) const;
    void watchLog(const std::string& text);

    std::unique_ptr<SteppedWorld> world;
    std::unique_ptr<FakeNetwork> network;
    simulator::Options options;
    std::unique_ptr<simulator::Simulator> simulator;
    std::shared_ptr<FakeClient> realTraffic;
    bool simulatorHangs = false;  ///< while set, the simulator neither reads nor sends
    int feedLevel = 1;            ///< what RealTraffic reports in the handshake
    double feedShift = 0;         ///< seconds between the present and the stamps of the records

  private:
    std::map<std::string, double> seen_;
};

}  // namespace skl::test
