#pragma once

#include "index/file_index_writer.h"

// Writes an index as plain text for reading with the eye: line 1 is "BAD!" until Finish makes
// it "GOOD", then one full path per entry, a folder's with a separator at its end.
class TextFileIndexWriter : public FileIndexWriter {
public:
    // The file is open for writing; it is closed here but not deleted.
    explicit TextFileIndexWriter(loam::File* file);
    TextFileIndexWriter(const TextFileIndexWriter&) = delete;
    TextFileIndexWriter& operator=(const TextFileIndexWriter&) = delete;
    ~TextFileIndexWriter() override;

    void AddFile(const loam::FileSpec& path, uint32_t size, loam::DateTime modified) override;
    void AddFolder(const loam::FileSpec& path, loam::DateTime modified) override;
    void Finish() override;

private:
    loam::File* file;
};
