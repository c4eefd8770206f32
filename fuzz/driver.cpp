// Drives a fuzz target without a fuzzer: all files of the corpus, then a number of changes of them, always
// the same. driver CORPUS COUNT
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::string;

std::vector<Bytes> readCorpus(const char* folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> corpus;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

/// A few bytes changed, a piece doubled, cut out or taken from another file, or the end cut off.
void change(Bytes& bytes, const std::vector<Bytes>& corpus, std::mt19937& random) {
    const auto below = [&random](size_t limit) { return limit ? random() % limit : 0; };
    for (size_t round = 1 + below(4); round > 0 && !bytes.empty(); --round) {
        const size_t at = below(bytes.size()), length = below(std::min<size_t>(bytes.size() - at, 64));
        switch (below(6)) {
            case 0:
                bytes[at] = static_cast<char>(random());
                break;
            case 1:
                bytes[at] = static_cast<char>(below(2) ? 0xFF : 0);
                break;
            case 2:
                bytes.insert(at, bytes.substr(at, length));
                break;
            case 3:
                bytes.erase(at, length);
                break;
            case 4: {
                const Bytes& other = corpus[below(corpus.size())];
                const size_t from = below(other.size());
                bytes.replace(at, length, other.substr(from, below(64)));
                break;
            }
            default:
                bytes.resize(at);
                break;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: driver CORPUS COUNT\n", stderr);
        return 2;
    }
    const auto corpus = readCorpus(argv[1]);
    if (corpus.empty()) {
        std::fputs("the corpus is empty\n", stderr);
        return 1;
    }
    const auto run = [](const Bytes& bytes) {
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    };
    for (const Bytes& bytes : corpus) run(bytes);
    std::mt19937 random(1);
    for (long left = std::strtol(argv[2], nullptr, 10); left > 0; --left) {
        Bytes bytes = corpus[random() % corpus.size()];
        change(bytes, corpus, random);
        run(bytes);
    }
}
