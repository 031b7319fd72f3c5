#pragma once

#include "loam/error.h"
#include "loam/file_spec.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <list>
#include <optional>
#include <string>

// Sets an environment variable for the life of the object and puts back what was there.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name(name) {
        if (const char* old = std::getenv(name))
            previous = old;
        Set(value);
    }
    ~ScopedEnvironment() { Set(previous ? previous->c_str() : nullptr); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    void Set(const char* value) {
        if (value)
            setenv(name.c_str(), value, 1);
        else
            unsetenv(name.c_str());
    }

    std::string name;
    std::optional<std::string> previous;
};

// A fresh folder per test, with the program's settings, data and roots pointing into it, and an
// empty error stack at the start and the end.
class ScratchFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "loam_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root = pattern;
        environment.emplace_back("XDG_CONFIG_HOME", Path("config").c_str());
        environment.emplace_back("XDG_DATA_HOME", Path("data").c_str());
        environment.emplace_back("SORVANTA_ROOTS", root.c_str());
        loam::ClearErrors();
    }

    void TearDown() override {
        std::filesystem::remove_all(root);
        loam::ClearErrors();
    }

    std::string Path(const std::string& name) const { return root + "/" + name; }
    loam::FileSpec FileAt(const std::string& name) const {
        return loam::FileSpec(Path(name).c_str());
    }

    void MakeFile(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
    }
    std::string ReadWhole(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    // Checks the newest error and clears the stack for the next step.
    static void ExpectError(uint32_t code, const std::string& message) {
        EXPECT_EQ(loam::GetCurrentErrorCode(), code);
        EXPECT_EQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), message);
        loam::ClearErrors();
    }
    bool Exists(const std::string& name) const {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::symlink_status(Path(name), error));
    }

    std::string root;
    std::list<ScopedEnvironment> environment;
};
