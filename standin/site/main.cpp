// The program.
#include "standin/site/site.h"

int main(int count, char** values) {
    site::Options options;
    if (const auto status =
            standin::readCommandLine(count, values, site::helpText(), options.help,
                                     [&](const auto& all) { return site::readOptions(all, options); })) {
        return *status;
    }
    site::Site program(options, standin::steadySeconds);
    return standin::run(program);
}
