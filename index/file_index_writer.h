#pragma once

#include "index/index_format.h"
#include "index/trigram_sidecar.h"
#include "loam/date_time.h"
#include "loam/file.h"
#include "loam/file_lock.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>
#include <map>
#include <memory>

namespace loam {
class DiskFile;
}

// What a walk hands its entries to, so that the walk does not know the file's format.
// Paths are full paths; a folder is added before anything below it.
class FileIndexWriter {
public:
    virtual ~FileIndexWriter() = default;
    virtual void AddFile(const loam::FileSpec& path, uint32_t size, loam::DateTime modified) = 0;
    virtual void AddFolder(const loam::FileSpec& path, loam::DateTime modified) = 0;
    virtual void Finish() = 0;
    // A folder where a walk starts. Its parent may well be outside the index, which is no
    // fault: it is then stored as a root.
    virtual void AddRoot(const loam::FileSpec& path, loam::DateTime modified) {
        AddFolder(path, modified);
    }
};

// The error of a build asked to start while another build of the same index goes on; the first
// build goes on.
bool RaiseBuildInProgress();
// The lock file that a build of `indexFile` holds while it writes it. It lies beside the index
// because the index's name is taken over by a new file at the start of every build: a second
// build and the finder open the lock by its name and so meet the lock of the build under way.
loam::FileSpec GetBuildLockFile(const loam::FileSpec& indexFile);

// How the writer tells the user of a fault in the order of the walk; the application points
// it at its alert box. The default prints to standard error.
using WriterAlertHandler = void (*)(const char* title, const char* text);
// Null restores the default. Gives the handler that was set before.
WriterAlertHandler SetWriterAlertHandler(WriterAlertHandler handler);

// Writes the binary index file. The header goes out at once, saying "unfinished, no records",
// and is rewritten by Finish; a writer destroyed without Finish leaves a file that loads empty.
class BinaryFileIndexWriter : public FileIndexWriter {
public:
    // The file is open for writing at its start; it is closed here but not deleted.
    explicit BinaryFileIndexWriter(loam::File* file);
    // Starts the index file of a build at `location`: a new file, made beside the name, takes
    // the name's place as soon as its unfinished header is on the disk. So the name holds a
    // loadable index at every moment, the old one until here and the unfinished one from here
    // until Finish seals it, and a reader of the old one keeps it whole. One build at a time per
    // index file, across processes: the writer holds the index's build lock until it is sealed
    // or destroyed. Null, with the error raised and the new file removed, when it cannot be made
    // or another build holds the lock.
    static std::unique_ptr<BinaryFileIndexWriter> Begin(loam::DiskFile& file,
                                                        const loam::FileSpec& location);
    BinaryFileIndexWriter(const BinaryFileIndexWriter&) = delete;
    BinaryFileIndexWriter& operator=(const BinaryFileIndexWriter&) = delete;
    ~BinaryFileIndexWriter() override;

    void AddFile(const loam::FileSpec& path, uint32_t size, loam::DateTime modified) override;
    void AddFolder(const loam::FileSpec& path, loam::DateTime modified) override;
    void AddRoot(const loam::FileSpec& path, loam::DateTime modified) override;
    void Finish() override;

    int32_t GetRecordCount() const { return header.recordCount; }
    // How many times the folder map was searched, which the last-parent cache keeps rare.
    uint32_t GetFolderLookups() const { return folderLookups; }

private:
    struct Placement {
        uint32_t parent;
        const char* name;
        int32_t nameLength;
    };

    void AddEntry(IndexRecordKind kind, const loam::FileSpec& path, uint32_t size,
                  loam::DateTime modified, bool isRoot);
    bool Place(const loam::FileSpec& path, bool isRoot, Placement& placement);
    bool FindFolder(const loam::String& key, int32_t& ordinal);
    void WriteRecord(const IndexRecord& fixed, const char* name, int32_t nameLength);
    void RememberFolder(const loam::FileSpec& path, int32_t ordinal);
    void WriteHeader();

    IndexFileHeader header{IndexFormatVersion, 1, 0};
    loam::File* file;
    std::map<loam::String, int32_t> folders;
    loam::FileLock buildLock;
    loam::String cachedParent;
    int32_t cachedOrdinal = -1;
    uint32_t folderLookups = 0;
    // The stored form of the last name too long for a record.
    char standIn[MaxIndexNameBlock];
    // A build's index gets the trigram file that lets the finder read only the records a search
    // may find, written beside it once it is sealed.
    std::unique_ptr<trigram::SidecarWriter> sidecar;
    loam::FileSpec location;
};
