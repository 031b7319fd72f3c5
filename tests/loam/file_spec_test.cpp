#include "loam/file_spec.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

using loam::FileSpec;

std::string Text(const FileSpec& location) {
    return location.GetPath().GetCString();
}

TEST(FileSpecTest, ParentKeepsItsTrailingSeparator) {
    const std::pair<const char*, const char*> cases[] = {
        {"/a/b", "/a/"},   {"/a/b//", "/a/"}, {"/a", "/"},     {"//server/share/", "//server/"},
        {"C:/a", "C:/"},   {"/", nullptr},    {"//", nullptr}, {"C:/", nullptr},
        {"name", nullptr}, {"", nullptr}};
    for (const auto& [path, parent] : cases) {
        FileSpec out("untouched");
        EXPECT_EQ(FileSpec(path).GetParent(out), parent != nullptr) << path;
        EXPECT_EQ(Text(out), parent ? parent : "untouched") << path;
    }
}

TEST(FileSpecTest, AppendKeepsTheComponentAndAppendPathDropsItsLeadingSeparators) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"", "x", "x", "x"},
        {"/a/", "x", "/a/x", "/a/x"},
        {"/a", "//x/y", "/a///x/y", "/a/x/y"},
        {"/a", "", "/a/", "/a"}};
    for (const auto& [path, component, appended, appendedPath] : cases) {
        FileSpec append(path), appendPath(path);
        append.Append(component);
        appendPath.AppendPath(component);
        EXPECT_EQ(Text(append), appended) << path << " + " << component;
        EXPECT_EQ(Text(appendPath), appendedPath) << path << " + " << component;
    }
}

TEST(FileSpecTest, SeparatorConversion) {
    FileSpec location;
    location.SetPath("C:\\a\\b", '\\');
    EXPECT_EQ(Text(location), "C:/a/b");
    loam::String windows;
    location.GetPathWithSeparator(windows, '\\');
    EXPECT_STREQ(windows.GetCString(), "C:\\a\\b");
}

} // namespace
