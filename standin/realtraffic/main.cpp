// The program.
#include "standin/realtraffic/player.h"

int main(int count, char** values) {
    realtraffic::Options options;
    if (const auto status = standin::readCommandLine(
            count, values, realtraffic::helpText(), options.help,
            [&](const auto& all) { return realtraffic::readOptions(all, options); })) {
        return *status;
    }
    realtraffic::Player player(options, standin::steadySeconds, standin::utcSeconds());
    return standin::run(player);
}
