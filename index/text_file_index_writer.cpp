#include "index/text_file_index_writer.h"

// The two markers are of one length, so that Finish can replace the one by the other in place.
TextFileIndexWriter::TextFileIndexWriter(loam::File* file) : file(file) {
    file->SeekFromStart(0);
    file->WriteLine("BAD!");
}

TextFileIndexWriter::~TextFileIndexWriter() {
    file->Close();
}

void TextFileIndexWriter::AddFile(const loam::FileSpec& path, uint32_t, loam::DateTime) {
    file->WriteLine(path.GetPath());
}

void TextFileIndexWriter::AddFolder(const loam::FileSpec& path, loam::DateTime) {
    const loam::String& text = path.GetPath();
    file->Write(text.GetCString(), text.GetLength(), nullptr);
    if (text.IsEmpty() || text.GetCString()[text.GetLength() - 1] != loam::NativeSeparator)
        file->WriteByte(loam::NativeSeparator);
    file->WriteLineEnd();
}

void TextFileIndexWriter::Finish() {
    file->SeekFromStart(0);
    file->WriteLine("GOOD");
    file->Close();
}
