// See the header.
#include "parking/static_ac.h"

namespace skl {

std::vector<StaticAc> staticAcs;

void lf_sweepStatics() {
    std::erase_if(staticAcs, [](const StaticAc& record) { return record.eraseNow || record.eraseFromQueue; });
}

}  // namespace skl
