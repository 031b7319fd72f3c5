#include "index/file_index_writer.h"

#include "index/long_name.h"
#include "loam/disk_file.h"
#include "loam/error.h"

#include <cstdio>
#include <cstring>

namespace {

void PrintAlert(const char* title, const char* text) {
    std::fprintf(stderr, "%s %s\n", title, text);
}

WriterAlertHandler alertHandler = PrintAlert;

const char* const prefixNotFoundTitle = "Prefix not found for...";

} // namespace

bool RaiseBuildInProgress() {
    return loam::RaiseError(loam::ErrorWrongState,
                            "The volume indexing system was asked to start indexing when an "
                            "indexing operation was already in progress.");
}

loam::FileSpec GetBuildLockFile(const loam::FileSpec& indexFile) {
    return loam::FileSpec((indexFile.GetPath() + ".lock").GetCString());
}

WriterAlertHandler SetWriterAlertHandler(WriterAlertHandler handler) {
    const WriterAlertHandler previous = alertHandler;
    alertHandler = handler ? handler : PrintAlert;
    return previous;
}

BinaryFileIndexWriter::BinaryFileIndexWriter(loam::File* file) : file(file) {
    WriteHeader();
}

std::unique_ptr<BinaryFileIndexWriter>
BinaryFileIndexWriter::Begin(loam::DiskFile& file, const loam::FileSpec& location) {
    // The new file first: a folder that cannot take it is told by the index's own name. A writer
    // that goes without its lock closes the new file, which removes it.
    if (!file.CreateBeside(location))
        return nullptr;
    auto writer = std::make_unique<BinaryFileIndexWriter>(&file);
    const loam::FileLock::Outcome outcome = writer->buildLock.Take(GetBuildLockFile(location));
    if (outcome == loam::FileLock::Outcome::HeldElsewhere)
        RaiseBuildInProgress();
    if (outcome != loam::FileLock::Outcome::Taken || !file.PutInPlace())
        return nullptr;
    writer->sidecar = std::make_unique<trigram::SidecarWriter>(location);
    writer->location = location;
    return writer;
}

BinaryFileIndexWriter::~BinaryFileIndexWriter() {
    file->Close();
}

void BinaryFileIndexWriter::AddFile(const loam::FileSpec& path, uint32_t size,
                                    loam::DateTime modified) {
    AddEntry(IndexKindFile, path, size, modified, false);
}

void BinaryFileIndexWriter::AddFolder(const loam::FileSpec& path, loam::DateTime modified) {
    AddEntry(IndexKindFolder, path, 0, modified, false);
}

void BinaryFileIndexWriter::AddRoot(const loam::FileSpec& path, loam::DateTime modified) {
    AddEntry(IndexKindFolder, path, 0, modified, true);
}

void BinaryFileIndexWriter::Finish() {
    file->SeekFromStart(0);
    header.unfinished = 0;
    WriteHeader();
    file->Close();
    if (sidecar)
        sidecar->Write(location);
    sidecar.reset();
    buildLock.Release();
}

void BinaryFileIndexWriter::AddEntry(IndexRecordKind kind, const loam::FileSpec& path,
                                     uint32_t size, loam::DateTime modified, bool isRoot) {
    Placement placement;
    if (!Place(path, isRoot, placement))
        return;
    const IndexRecord fixed{kind, 0, placement.parent, size, modified.GetSeconds()};
    WriteRecord(fixed, placement.name, placement.nameLength);
    if (kind == IndexKindFolder)
        RememberFolder(path, header.recordCount);
    ++header.recordCount;
}

// Finds the record of the folder that holds the path and the name to store under it: a name
// longer than a record holds is stored as its stand-in. False for a root whose path the format
// cannot hold: it is left out.
bool BinaryFileIndexWriter::Place(const loam::FileSpec& path, bool isRoot, Placement& placement) {
    const loam::String& text = path.GetPath();
    loam::FileSpec parent;
    int32_t ordinal = -1;
    if (path.GetParent(parent) && !FindFolder(parent.GetPath(), ordinal) && !isRoot)
        alertHandler(prefixNotFoundTitle, text.GetCString());
    if (ordinal < 0) {
        placement = {IndexNoParent, text.GetCString(), text.GetLength()};
        return placement.nameLength <= MaxIndexNameLength;
    }
    // The parent text ends in a separator and is a prefix of the path; a trailing separator of
    // the path is not part of the name.
    int32_t end = text.GetLength();
    while (end > 0 && text.GetCString()[end - 1] == loam::NativeSeparator)
        --end;
    const int32_t start = parent.GetPath().GetLength();
    placement = {static_cast<uint32_t>(ordinal), text.GetCString() + start, end - start};
    if (placement.nameLength > MaxIndexNameLength)
        placement = {placement.parent, standIn,
                     MakeLongNameStandIn(placement.name, placement.nameLength, standIn)};
    return placement.nameLength >= 0;
}

bool BinaryFileIndexWriter::FindFolder(const loam::String& key, int32_t& ordinal) {
    if (cachedOrdinal >= 0 && cachedParent == key) {
        ordinal = cachedOrdinal;
        return true;
    }
    ++folderLookups;
    const auto found = folders.find(key);
    if (found == folders.end())
        return false;
    cachedParent = key;
    cachedOrdinal = found->second;
    ordinal = found->second;
    return true;
}

void BinaryFileIndexWriter::WriteRecord(const IndexRecord& fixed, const char* name,
                                        int32_t nameLength) {
    // One write per record: the fixed part, the name, its NUL and the padding together.
    char bytes[sizeof(IndexRecord) + MaxIndexNameBlock] = {};
    const int32_t withNul = nameLength + 1;
    const auto blockLength = static_cast<uint8_t>((withNul + 3) & ~3);
    IndexRecord record = fixed;
    record.nameLength = blockLength;
    std::memcpy(bytes, &record, sizeof record);
    std::memcpy(bytes + sizeof record, name, nameLength);
    file->Write(bytes, sizeof record + blockLength, nullptr);
    if (sidecar)
        sidecar->AddRecord(name, nameLength, sizeof record + blockLength);
}

void BinaryFileIndexWriter::RememberFolder(const loam::FileSpec& path, int32_t ordinal) {
    loam::String key(path.GetPath());
    if (key.IsEmpty() || key.GetCString()[key.GetLength() - 1] != loam::NativeSeparator)
        key.Append(loam::NativeSeparator);
    if (key == cachedParent)
        cachedOrdinal = ordinal;
    folders.insert_or_assign(key, ordinal);
}

void BinaryFileIndexWriter::WriteHeader() {
    file->Write(&header, sizeof header, nullptr);
}
