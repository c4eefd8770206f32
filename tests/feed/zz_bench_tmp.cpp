#include <gtest/gtest.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>
#include "src/core/geodesy.cpp"
#include "src/core/text.cpp"
#include "src/feed/traffic_decoder.cpp"
#include "src/feed/traffic_reader.cpp"
static size_t allocs = 0;
void* operator new(size_t n) {
    ++allocs;
    return malloc(n);
}
void operator delete(void* p) noexcept {
    free(p);
}
void operator delete(void* p, size_t) noexcept {
    free(p);
}
namespace skl {
static double baseline(const std::string& line, std::vector<std::string_view>& f) {
    split(line, f);
    double s = 0;
    for (size_t i : {14, 2, 3, 1, 8, 4, 7, 5, 23, 20}) {
        double v = 0;
        std::from_chars(f[i].data(), f[i].data() + f[i].size(), v);
        s += v;
    }
    return s;
}
TEST(Bench, Decode) {
    std::string line =
        "RTTFC,4921633,47.612345,8.612345,9000,1792,0,137.5,280.4,SWR123,A320,HB-JLT,LSZH,EGLL,1700000000.5,"
        "X,X2,mlat,9000,-1,310,-1,-1,-12,0,141,0,none,A3";
    TrafficReader r;
    r.setFilterPos({47.5, 8.5});
    g_acceptTraffic = true;
    std::vector<std::string_view> f;
    const int N = 300000;
    double s = 0;
    double best[3] = {1e9, 1e9, 1e9};
    std::string far = line;
    far.replace(far.find("47.6"), 4, "17.6");
    for (int k = 0; k < 7; ++k) {
        auto t = [](auto fn) {
            auto a = std::chrono::steady_clock::now();
            fn();
            return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - a).count() / N;
        };
        best[0] = std::min(best[0], t([&] {
                               for (int i = 0; i < N; ++i) s += baseline(line, f);
                           }));
        best[1] = std::min(best[1], t([&] {
                               for (int i = 0; i < N; ++i) {
                                   r.processText(line);
                                   if (trafficInbox.size() >= 64) trafficInbox.clear();
                               }
                           }));
        size_t a0 = allocs;
        best[2] = std::min(best[2], t([&] {
                               for (int i = 0; i < N; ++i) r.processText(far);
                           }));
        printf("allocs out of range %zu\n", allocs - a0);
    }
    printf("base %.0f ns, decode %.0f ns (%.2f), far %.0f ns %g\n", best[0], best[1], best[1] / best[0],
           best[2], s);
    for (int i = 0; i < 64; ++i) {
        r.processText(line);
    }
}
}  // namespace skl
