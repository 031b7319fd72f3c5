#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"

#include <vector>

// The index files that one run of the finder searches, in the order given. Each -d adds a list
// of names separated by ':', as PATH lists folders; an empty name, like no -d at all, stands for
// the user's own index, where the program's settings keep it.
class IndexList {
public:
    void Add(const char* list);
    // The user's own index alone when nothing was added.
    std::vector<loam::FileSpec> GetFiles() const;

private:
    std::vector<loam::String> names;
};
