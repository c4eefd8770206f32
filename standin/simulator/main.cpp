// The program.
#include "standin/simulator/simulator.h"

int main(int count, char** values) {
    simulator::Options options;
    if (const auto status =
            standin::readCommandLine(count, values, simulator::helpText(), options.help,
                                     [&](const auto& all) { return simulator::readOptions(all, options); })) {
        return *status;
    }
    simulator::Simulator simulator(options, standin::steadySeconds, standin::utcSeconds());
    return standin::run(simulator);
}
