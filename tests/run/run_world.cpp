#include "tests/run/run_world.h"

#include <fmt/format.h>

#include <filesystem>

#include "core/folders.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "distribution/cipher_key.h"
#include "distribution/stream_cipher.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "simlink/session.h"

namespace skl::test {

namespace {

constexpr const char* database = R"(<?xml version="1.0"?>
<aircrafts><aircraft types="A320,B738,C172,EC35,A332,F16,GLF6,CRJ7,E190"/></aircrafts>
<high_performance><hpf types="F16"/></high_performance><heavy><hvy types="A332"/></heavy>
<large><lar types="A320,B738,E190,CRJ7"/></large><buzjet><bzj types="GLF6"/></buzjet>
<rotorcraft><rot types="EC35"/></rotorcraft><cargo_types><cargo_type types="A332"/></cargo_types>
<similar_types><similar types="A320,B738"/></similar_types><ICAO_airlines><ICAO codes="DLH,BAW,KLM"/></ICAO_airlines>
<cargo_operators><ICAO codes="FDX"/></cargo_operators><publishers><pub names="Somebody"/></publishers>
<wingspans><wingspan type="A320" meters="35.8"/><wingspan type="B738" meters="35.8"/></wingspans>
<fixes><fx wro="B73H" cor="B738"/></fixes><simaddons20><simaddon20 arpts="EGLL"/></simaddons20>
<thirdparties20><thirdpartie20 pub="Somebody" arpts="EGLL"/></thirdparties20>
<thirdparties24><thirdpartie24 pub="Somebody" arpts="EGLL"/></thirdparties24>
<dbase><db reg="D-AIUA" airl="DLH" type="A320" opr="" cargo="false"/></dbase>
)";

constexpr const char* liveries = R"([GENERAL]
icao_type_designator = A320
[FLTSIM.0]
title = "Test A320 DLH"
icao_airline = DLH
[FLTSIM.1]
title = "Test A320 BAW"
icao_airline = BAW
)";

}  // namespace

void RunTest::SetUp() {
    TempFolderTest::SetUp();
    writeFile("docs/manual.md", "manual");
    writeFile("plain.xml", database);
    std::filesystem::create_directories("input");
    gf_streamEncrypt(cipherKey, "plain.xml", paths::dbaseEnc);
    writeFile("input/airports_msfs.xml",
              "<airports><airport code=\"LSZH\" lat=\"47.458\" lon=\"8.548\" alt=\"1416\" "
              "iata=\"ZRH\"/></airports>");
    const auto packages = root.parent_path() / "packages";
    std::string config = liveries;
    for (size_t at; (at = config.find("[FLTSIM")) != std::string::npos;) config.replace(at, 7, "[fltsim");
    writeFile(packages / "Community" / "aig-aitraffic-oci_test" / "SimObjects" / "A320" / "aircraft.cfg",
              config);
    std::filesystem::create_directories(packages / "Official");
    std::filesystem::create_directories(gf_programDataPath());
    writeFile(gf_programDataPath() / "parameters.xml",
              fmt::format("<?xml version=\"1.0\"?>\n<parameters>\n"
                          "<parameter name=\"MSFS_INSTALL_PATH\" value=\"{}\"/>\n"
                          "<parameter name=\"PROGRAM_VERSION\" value=\"11.0.3\"/>\n"
                          "<parameter name=\"AUTO_RANGE\" value=\"false\"/>\n"
                          "<parameter name=\"SCAN_AIRPORTS\" value=\"false\"/>\n</parameters>\n",
                          packages.string()));
    writeFile(gf_appDataPath() / "InsideSystems" / "RealTraffic.jar", "");
    gf_resetFeed();
    gf_resetSimLink();
    gf_resetEngine();
    gf_resetPanel();
    g_restartPending = false;

    world = std::make_unique<SteppedWorld>();
    world->setLimit(4 * 3600);
    network = std::make_unique<FakeNetwork>();
    options.port = 0;
    options.elevation = 80;
    options.alt = 85;
    options.fps = 30;
}

void RunTest::TearDown() {
    simulator.reset();
    network.reset();
    world.reset();
    TempFolderTest::TearDown();
}

void RunTest::startSimulator(const std::string& script) {
    if (!script.empty()) {
        options.script = (root / "script.txt").string();
        writeFile(options.script, script);
    }
    simulator = std::make_unique<simulator::Simulator>(
        options, [w = world.get()] { return w->seconds(); }, 1764000000.0);
    ASSERT_EQ(simulator->start(), "");
    world->every(0.004, [this] {
        if (simulator && !simulatorHangs && !simulator->ended()) simulator->step(0);
    });
    network->onConnect = [this](const std::string&, uint16_t) -> std::unique_ptr<net::ByteStream> {
        if (!simulator) return nullptr;
        return net::systemNetwork().connectTcp("127.0.0.1", static_cast<uint16_t>(simulator->port()), true);
    };
}

void RunTest::startRealTraffic() {
    world->every(0.5, [this] {
        // One that has left comes back only when the test says so.
        if (network->listenPort.empty() || (realTraffic && (realTraffic->ended || !realTraffic->dropped)))
            return;
        realTraffic = network->connectClient();
        realTraffic->say(fmt::format(R"({{"level":{},"version":"11.0"}})", feedLevel));
    });
}

void RunTest::report(uint32_t hexid, double lat, double lon, double alt, double track, double knots,
                     const std::string& callsign) {
    const double stamp = std::chrono::duration<double>(world->utcNow()).count() + feedShift;
    network->sendUdp(
        trafficPort,
        fmt::format("RTTFC,{},{:.7f},{:.7f},{},0,1,{:.2f},{},{},A320,,,,{:.3f},X,,adsb_icao,{},-1,{},-1,0,-1,"
                    "-1,-1,0,none,A3",
                    hexid, lat, lon, alt, track, knots, callsign, stamp, alt, knots));
}

void RunTest::sendTraffic(double from, double length, int count, double knots) {
    for (int i = 0; i < count; ++i)
        for (double t = 0; t < length; t += 2)
            world->at(from + t, [=, this] {
                report(5000000u + static_cast<uint32_t>(i), 51.25 + 0.01 * (i % 10) + t * knots / 3600 / 60.0,
                       -0.9 + 0.06 * i / 10 + 0.002 * i, 12000 + 500 * i, 0, knots,
                       fmt::format("DLH{}", 100 + i));
            });
}

void RunTest::closeAt(double seconds) {
    world->at(seconds, [] { gf_requestClose(); });
}

void RunTest::watchLog(const std::string& text) {
    seen_[text] = -1;
    world->every(0.1, [this, text] {
        if (seen_[text] < 0 && logHas(text)) seen_[text] = world->seconds();
    });
}

double RunTest::whenLogged(const std::string& text) const {
    return seen_.at(text);
}

}  // namespace skl::test
