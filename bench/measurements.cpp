// Every measurement there is.
#include "bench/bench.h"

namespace skl::bench {

std::span<const Measurement> measurements() {
    static constexpr Measurement all[] = {{"decode", decodeRows},
                                          {"tick", engineTickRows},
                                          {"flush", frameFlushRows},
                                          {"scan", liveryScanRows},
                                          {"cold start", coldStartRows},
                                          {"match", matchRows},
                                          {"registration rows", regcodeRows},
                                          {"scenery", bglScanRows},
                                          {"airport file", airportFileRows},
                                          {"parking", parkingRows},
                                          {"panel", panelRows},
                                          {"data site", dataSiteRows}};
    return all;
}

int (*childOf(std::string_view word))() {
    return word == "--cold-start" ? coldStartChild : word == "--data-site" ? dataSiteChild : nullptr;
}

}  // namespace skl::bench
