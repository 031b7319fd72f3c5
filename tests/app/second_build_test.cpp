#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "loam/disk_file.h"
#include "sorvanta_window_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The search window's Build Index while another process builds the same index: the error report
// says so, the window stays as it was, and the other build's file keeps the name.
TEST_F(SorvantaWindowTest, BuildIndexWhileAnotherBuildRunsIsRefused) {
    MakeFiles("tree/docs", 3);
    StartWindow();
    BuildIndex();
    const std::string status = Text(MainIndexStatus);

    loam::DiskFile otherFile;
    auto other = BinaryFileIndexWriter::Begin(otherFile, FileAt(indexName));
    ASSERT_NE(other, nullptr);
    Said said;
    Answer(1001, said);
    Click(MainBuildButton);
    EXPECT_EQ(said.messages,
              std::vector<std::string>{
                  "Error: The volume indexing system was asked to start indexing when an indexing "
                  "operation was already in progress."});
    EXPECT_EQ(Text(MainBuildButton), "&Build Index");
    EXPECT_EQ(Text(MainIndexStatus), status);

    // The other build, sealed, is the index; then the window builds again.
    other->AddRoot(FileAt("tree"), 0);
    other->Finish();
    other.reset();
    IndexData sealed;
    ASSERT_TRUE(sealed.Load(FileAt(indexName)));
    EXPECT_EQ(sealed.GetRecordCount(), 1);
    BuildIndex();
}

} // namespace
