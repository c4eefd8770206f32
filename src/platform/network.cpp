// Which network is in force.
#include "platform/net.h"

namespace skl::net {

namespace {

Network* testNetwork = nullptr;

}  // namespace

Network& network() {
    return testNetwork ? *testNetwork : systemNetwork();
}

void setNetwork(Network* network) {
    testNetwork = network;
}

}  // namespace skl::net
