// make-index FILE COUNT [SEED [NAMES]]: writes an index of COUNT generated entries for
// benchmarks, and with NAMES also the entries' names, one a line, for tools that read text.
#include "bench/index_generator.h"
#include "index/index_data.h"
#include "loam/error.h"

#include <cstdio>
#include <cstdlib>

namespace {

bool WriteNames(const char* indexFile, const char* namesFile) {
    IndexData index;
    if (!index.Load(loam::FileSpec(indexFile)))
        return false;
    std::FILE* names = std::fopen(namesFile, "w");
    if (!names)
        return loam::RaiseError(loam::ErrorCannotOpen, "the names file could not be written");
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        std::fputs(index.GetRecord(ordinal)->GetName(), names);
        std::fputc('\n', names);
    }
    if (std::fclose(names) != 0)
        return loam::RaiseError(loam::ErrorWrite, "the names file could not be written");
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 5) {
        std::fprintf(stderr, "usage: make-index FILE COUNT [SEED [NAMES]]\n");
        return 2;
    }
    const long count = std::strtol(argv[2], nullptr, 10);
    const unsigned long long seed = argc >= 4 ? std::strtoull(argv[3], nullptr, 10) : 1;
    if (count < 1 || count > 100000000) {
        std::fprintf(stderr, "make-index: COUNT must be between 1 and 100000000\n");
        return 2;
    }
    if (!GenerateIndex(loam::FileSpec(argv[1]), static_cast<int32_t>(count), seed) ||
        (argc == 5 && !WriteNames(argv[1], argv[4]))) {
        std::fprintf(stderr, "make-index: %s\n",
                     loam::GetCurrentErrorInfo().GetMessage().GetCString());
        return 1;
    }
    return 0;
}
