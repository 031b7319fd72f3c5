// make-index FILE COUNT [SEED]: writes an index of COUNT generated entries for benchmarks.
#include "bench/index_generator.h"
#include "loam/error.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        std::fprintf(stderr, "usage: make-index FILE COUNT [SEED]\n");
        return 2;
    }
    const long count = std::strtol(argv[2], nullptr, 10);
    const unsigned long long seed = argc == 4 ? std::strtoull(argv[3], nullptr, 10) : 1;
    if (count < 1 || count > 100000000) {
        std::fprintf(stderr, "make-index: COUNT must be between 1 and 100000000\n");
        return 2;
    }
    if (!GenerateIndex(loam::FileSpec(argv[1]), static_cast<int32_t>(count), seed)) {
        std::fprintf(stderr, "make-index: %s\n",
                     loam::GetCurrentErrorInfo().GetMessage().GetCString());
        return 1;
    }
    return 0;
}
