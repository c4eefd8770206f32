// The choice between the wire and the maker of a test.
#include "simlink/simconnect.h"

#include <utility>

#include "platform/simconnect/wire_client.h"

namespace skl {

namespace {

std::function<std::unique_ptr<SimConnect>()> testMaker;

}  // namespace

std::unique_ptr<SimConnect> gf_makeSimConnect() {
    return testMaker ? testMaker() : wire::makeClient();
}

void gf_setSimConnectMaker(std::function<std::unique_ptr<SimConnect>()> maker) {
    testMaker = std::move(maker);
}

}  // namespace skl
