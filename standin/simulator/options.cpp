// Reading the command line: each option with its value and its bounds.
#include "standin/simulator/options.h"

#include "standin/common/options.h"

namespace simulator {

std::string readOptions(const std::vector<std::string>& arguments, Options& options) {
    const std::map<std::string, standin::Setter> setters{
        {"--port", standin::whole(options.port, 0, 65535)},
        {"--sim",
         [&options](const std::string& value) {
             options.sim = value == "2024" ? 2024 : 2020;
             return value == "2020" || value == "2024";
         }},
        {"--lat", standin::number(options.lat, -89, 89)},
        {"--lon", standin::number(options.lon, -180, 180)},
        {"--alt", standin::number(options.alt, -2000, 100000)},
        {"--heading", standin::number(options.heading, -360, 360)},
        {"--on-ground", standin::yesNo(options.onGround)},
        {"--fps", standin::number(options.fps, 1, 500)},
        {"--seconds", standin::number(options.seconds, 0, 1e7)},
        {"--elevation", standin::number(options.elevation, -2000, 30000)},
        {"--slope", standin::number(options.slope, -20, 20)},
        {"--refuse", standin::text(options.refuse)},
        {"--user-path", standin::text(options.userPath)},
        {"--trace", standin::text(options.trace)},
        {"--trace-hz", standin::number(options.traceHz, 0.1, 500)},
        {"--script", standin::text(options.script)},
        {"--feed", standin::text(options.feed)},
    };
    return standin::readOptions(arguments, setters, options.help);
}

std::string helpText() {
    return R"(simulator: plays the flight simulator for any SimConnect client over TCP

  --port N             port on the loopback address (2048; 0 for any free one)
  --sim 2020|2024      which simulator it says it is (2020)
  --lat D --lon D      user's aircraft (51.4706, -0.4619)
  --alt FT             its centre of gravity, when in the air (3000)
  --heading DEG        true heading (90)
  --on-ground 0|1      on its wheels or in the air (1)
  --user-path FILE     lines "seconds lat lon alt heading groundspeed", seconds since the flight started
  --elevation FT       ground at the start position (--alt when on the ground, else 0)
  --slope PERCENT      the ground rises to the north, within 5 nm (0)
  --fps N              visual frames a second (30)
  --seconds N          ends by itself after so long
  --refuse TEXT        refuses objects whose title contains TEXT
  --trace FILE         JSON lines of creations, removals, poses, events and plans
  --trace-hz N         poses a second and object in the trace (5)
  --feed FILE          recording of the traffic, for the cross-track figures of the report
  --script FILE        lines "SECONDS COMMAND [ARGUMENTS]", seconds since the start:
                         pause, resume            the flight stops and goes on
                         quit                     the simulator ends, as when its user closes it
                         cut                      all connections are closed without a word
                         cut-mid-message          the same in the middle of a message
                         stop-reading [SECONDS]   clients are no longer read
                         flight-loaded            another flight is loaded
                         teleport LAT LON         the user's aircraft is moved
                         foreign-object           another program's aircraft appears
                         late-replies SECONDS     replies come so much later
                         wrong-name [NAME]        another simulator's name from the next connection on

Prints "listening PORT" first and, at its end (SIGTERM, SIGINT, --seconds, quit), a report as one JSON object.
)";
}

}  // namespace simulator
