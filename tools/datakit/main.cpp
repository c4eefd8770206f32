// datakit: makes the program's data files and the site that serves them.
#include <iostream>

#include "tools/datakit/commands.h"

int main(int count, char** words) {
    return skl::datakit::run({words + 1, words + count}, std::cout, std::cerr);
}
