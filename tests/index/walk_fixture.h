#pragma once

#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/volume_index_builder.h"
#include "loam/disk_file.h"
#include "loam/scratch_folder.h"

#include <cmath>
#include <compare>
#include <cstdio>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <vector>

namespace walk_test {

enum class Kind { Root, Folder, File };

// One entry as a writer or `find` sees it; a folder's size is not compared.
struct Entry {
    Kind kind;
    std::string path;
    uint32_t size = 0;
    int32_t time = 0;

    auto operator<=>(const Entry& other) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Entry& entry) {
    static const char* const kinds[] = {"root", "folder", "file"};
    return out << kinds[static_cast<int>(entry.kind)] << ' ' << entry.path << ' ' << entry.size
               << ' ' << entry.time;
}

inline std::string WithoutFinalSeparator(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// Keeps what a walk hands over, in order, and checks that every entry's folder came first.
class RecordingWriter : public FileIndexWriter {
public:
    void AddFile(const loam::FileSpec& path, uint32_t size, loam::DateTime modified) override {
        Add(Kind::File, path, size, modified);
    }
    void AddFolder(const loam::FileSpec& path, loam::DateTime modified) override {
        Add(Kind::Folder, path, 0, modified);
    }
    void AddRoot(const loam::FileSpec& path, loam::DateTime modified) override {
        Add(Kind::Root, path, 0, modified);
    }
    void Finish() override { ++finishes; }

    size_t CountFiles() const {
        size_t count = 0;
        for (const Entry& entry : entries)
            count += entry.kind == Kind::File;
        return count;
    }

    std::vector<Entry> entries;
    std::vector<std::string> orphans;
    int finishes = 0;

private:
    void Add(Kind kind, const loam::FileSpec& location, uint32_t size, loam::DateTime modified) {
        const std::string path = WithoutFinalSeparator(location.GetPath().GetCString());
        if (kind != Kind::Root && !folders.count(path.substr(0, path.rfind('/'))))
            orphans.push_back(path);
        if (kind != Kind::File)
            folders.insert(path);
        entries.push_back({kind, path, size, modified.GetSeconds()});
    }

    std::set<std::string> folders;
};

// The writer's complaints of an entry whose folder it does not know; a walk never causes one.
inline std::vector<std::string> alerts;

inline void RecordAlert(const char*, const char* text) {
    alerts.push_back(text);
}

// The tree to walk is "tree" in the test's fresh folder; the walk's writer must never complain.
class WalkTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        tree = root + "/tree";
        std::filesystem::create_directory(tree);
        SetRoots({""});
        alerts.clear();
        previousAlertHandler = SetWriterAlertHandler(RecordAlert);
    }
    void TearDown() override {
        EXPECT_EQ(alerts, std::vector<std::string>());
        SetWriterAlertHandler(previousAlertHandler);
        ScratchFolderTest::TearDown();
    }

    // Roots by their place in the tree: "" is the tree itself.
    void SetRoots(const std::vector<std::string>& names) {
        std::string list;
        for (const std::string& name : names)
            list += (list.empty() ? "" : ":") + Path(name);
        roots.reset();
        roots.emplace("SORVANTA_ROOTS", list.c_str());
    }

    std::string Path(const std::string& name) const {
        return name.empty() ? tree : tree + "/" + name;
    }
    // Makes the file and the folders above it.
    void MakeFile(const std::string& name, const std::string& content = "") const {
        std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
        std::ofstream(Path(name), std::ios::binary) << content;
    }
    void MakeFolder(const std::string& name) const {
        std::filesystem::create_directories(Path(name));
    }
    void SetTime(const std::string& name, time_t seconds) const {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, Path(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }

    // What `find` lists under a root, staying on its file system as the walk does.
    static std::set<Entry> Find(const std::string& root) {
        const std::string command =
            "find '" + root + "' -xdev -printf '%y %s %T@ %p\\0' 2>/dev/null";
        std::set<Entry> found;
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            return found;
        std::string record;
        for (int byte; (byte = std::fgetc(pipe)) != EOF;) {
            if (byte != 0) {
                record += static_cast<char>(byte);
                continue;
            }
            char type = 0;
            unsigned long long size = 0;
            double time = 0;
            int consumed = 0;
            std::sscanf(record.c_str(), "%c %llu %lf %n", &type, &size, &time, &consumed);
            const bool folder = type == 'd';
            found.insert({folder ? Kind::Folder : Kind::File, record.substr(consumed),
                          folder ? 0u : static_cast<uint32_t>(size),
                          static_cast<int32_t>(std::floor(time))});
            record.clear();
        }
        pclose(pipe);
        return found;
    }

    // Builds the index of the roots in one call into a file beside the tree.
    std::vector<Entry> BuildIndex() const {
        const std::string file = root + "/sorvanta.idx";
        {
            loam::DiskFile disk;
            EXPECT_TRUE(disk.OpenFile(loam::FileSpec(file.c_str()), loam::FileModeWrite));
            BinaryFileIndexWriter writer(&disk);
            VolumeIndexBuilder builder(nullptr);
            EXPECT_TRUE(builder.RunToCompletion(&writer));
            writer.Finish();
        }
        return ReadIndex(file);
    }

    // The records of an index file, with their full paths; a record without a parent is a root.
    static std::vector<Entry> ReadIndex(const std::string& file) {
        IndexData index;
        std::vector<Entry> entries;
        EXPECT_TRUE(index.Load(loam::FileSpec(file.c_str())));
        for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
            const IndexRecord* record = index.GetRecord(ordinal);
            const Kind kind = !record->IsFolder()                    ? Kind::File
                              : record->GetParent() == IndexNoParent ? Kind::Root
                                                                     : Kind::Folder;
            entries.push_back({kind, WithoutFinalSeparator(index.GetPathOf(record).GetCString()),
                               record->GetSize(), record->GetModified()});
        }
        return entries;
    }

    // The entries with every root as a folder, as `find` shows a root.
    static std::set<Entry> AsFolders(const std::vector<Entry>& entries) {
        std::set<Entry> folders;
        for (Entry entry : entries) {
            if (entry.kind == Kind::Root)
                entry.kind = Kind::Folder;
            folders.insert(entry);
        }
        return folders;
    }

    std::string tree;
    std::optional<ScopedEnvironment> roots;
    WriterAlertHandler previousAlertHandler = nullptr;
};

} // namespace walk_test
