// Reading the command line: each option with its value and its bounds.
#include "standin/realtraffic/options.h"

#include "standin/common/options.h"

namespace realtraffic {

std::string readOptions(const std::vector<std::string>& arguments, Options& options) {
    const std::map<std::string, standin::Setter> setters{
        {"--feed", standin::text(options.feed)},
        {"--host", standin::text(options.host)},
        {"--tcp-port", standin::whole(options.tcpPort, 1, 65535)},
        {"--traffic-port", standin::whole(options.trafficPort, 1, 65535)},
        {"--weather-port", standin::whole(options.weatherPort, 1, 65535)},
        {"--level", standin::whole(options.level, 1, 2)},
        {"--qnh", standin::number(options.qnh, -1e6, 1e6)},
        {"--speed", standin::number(options.speed, 0.01, 1e6)},
        {"--wait", standin::number(options.wait, 0, 1e6)},
        {"--linger", standin::number(options.linger, 0, 1e6)},
        {"--script", standin::text(options.script)},
    };
    const auto complaint = standin::readOptions(arguments, setters, options.help);
    const bool missing = complaint.empty() && !options.help && options.feed.empty();
    return missing ? "--feed is missing, see --help" : complaint;
}

std::string helpText() {
    return R"(realtraffic: plays RealTraffic from a recording

  --feed FILE          the recording: one record a line, as in the datagrams
  --host ADDRESS       IPv4 address of the PC that shows the traffic (127.0.0.1)
  --tcp-port N         its port for the link (10747)
  --traffic-port N     its UDP port for the records (49005)
  --weather-port N     its UDP port for the pressure (49004)
  --level 1|2          level told to the version question (1)
  --qnh N              pressure told every 5 seconds, in any number (1013)
  --speed X            so many times faster, for load (1)
  --wait SECONDS       begin without a link after so long (60); 0 for a PC that wants none
  --linger SECONDS     go on for so long after the last record (60)
  --script FILE        lines "SECONDS COMMAND [ARGUMENTS]", seconds since the start:
                         drop-link           the link is closed; records go on
                         reconnect           and opened again
                         silent [SECONDS]    nothing is sent, on the link nor as datagrams; records of that
                                             time are lost
                         half-reply          the next version question gets half an answer
                         raw HEX             these bytes go out as a datagram among the records

The link is tried again each second until it stands, and after it was lost. The recording begins when the other
side has asked for the version. Its time stamps are moved by as many whole seconds as make it begin then; they
set the pace. A line without a readable stamp goes out with the line before it.

Prints "listening PORT" first (it listens nowhere: the port is that of the link, so that it starts as other
stand-ins do) and, at its end (SIGTERM, SIGINT, end of the recording), a report as one JSON object.
)";
}

}  // namespace realtraffic
