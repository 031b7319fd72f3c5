#include "quilt/file_transfer.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A drop target reads the path back from the URI: every byte that is not plain in a URI is
// escaped as it is, whatever the text's encoding.
TEST(FileTransferTest, AUriListEscapesThePathsBytes) {
    const struct {
        const char* path;
        const char* list; // null: the path has no URI
    } cases[] = {
        {"/home/a/notes.txt", "file:///home/a/notes.txt\r\n"},
        {"/home/a/two words", "file:///home/a/two%20words\r\n"},
        {"/home/a/caf\xe9", "file:///home/a/caf%E9\r\n"},
        {"/home/a/\xc3\xa9t\xc3\xa9", "file:///home/a/%C3%A9t%C3%A9\r\n"},
        {"/home/a/100%#?", "file:///home/a/100%25%23%3F\r\n"},
        {"/home/a/line\nbreak", "file:///home/a/line%0Abreak\r\n"},
        {"/", "file:///\r\n"},
        {"relative/notes.txt", nullptr},
        {"", nullptr},
    };
    for (const auto& c : cases) {
        loam::String list("left alone");
        bool made = quilt::GetUriList(loam::String(c.path), list);
        EXPECT_EQ(made, c.list != nullptr) << c.path;
        if (made) {
            EXPECT_STREQ(list.GetCString(), c.list) << c.path;
        }
    }
}

} // namespace
