#pragma once

#include "loam/error.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// A fresh folder per test for index files and dumps, and an empty error stack around the test.
class ScratchFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "index_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root = pattern;
        loam::ClearErrors();
    }
    void TearDown() override {
        std::filesystem::remove_all(root);
        loam::ClearErrors();
    }

    std::string Path(const std::string& name) const { return root + "/" + name; }
    loam::FileSpec Spec(const std::string& name) const {
        return loam::FileSpec(Path(name).c_str());
    }
    void MakeFile(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
    }
    std::string ReadWhole(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    std::string root;
};

inline std::string CurrentMessage() {
    return loam::GetCurrentErrorInfo().GetMessage().GetCString();
}

namespace loam {
// Shows a String's text in a failed expectation.
inline void PrintTo(const String& text, std::ostream* out) {
    *out << '"' << text.GetCString() << '"';
}
} // namespace loam
