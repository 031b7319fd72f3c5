#pragma once

#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/long_name.h"
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

enum class Kind { Folder, File };

// One entry as a writer or `find` sees it; a folder's size is not compared.
struct Entry {
    Kind kind;
    std::string path;
    uint32_t size = 0;
    int32_t time = 0;

    auto operator<=>(const Entry& other) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Entry& entry) {
    return out << static_cast<int>(entry.kind) << ' ' << entry.path << ' ' << entry.size << ' '
               << entry.time;
}

// Keeps what a walk hands over, in order, and checks that every entry's folder came first; a root
// is kept as a folder, and among the roots.
class RecordingWriter : public FileIndexWriter {
public:
    void AddFile(const loam::FileSpec& path, uint32_t size, loam::DateTime modified) override {
        ++files;
        Add(Kind::File, path, size, modified);
    }
    void AddFolder(const loam::FileSpec& path, loam::DateTime modified) override {
        Add(Kind::Folder, path, 0, modified);
    }
    void AddRoot(const loam::FileSpec& path, loam::DateTime modified) override {
        roots.insert(Add(Kind::Folder, path, 0, modified, true));
    }
    void Finish() override { ++finishes; }

    std::vector<Entry> entries;
    std::vector<std::string> orphans;
    std::set<std::string> roots;
    size_t files = 0;
    int finishes = 0;

private:
    std::string Add(Kind kind, const loam::FileSpec& location, uint32_t size,
                    loam::DateTime modified, bool root = false) {
        std::string path = location.GetPath().GetCString();
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        if (!root && !folders.count(path.substr(0, path.rfind('/'))))
            orphans.push_back(path);
        if (kind != Kind::File)
            folders.insert(path);
        entries.push_back({kind, path, size, modified.GetSeconds()});
        return path;
    }

    std::set<std::string> folders;
};

// The tree to walk is "tree" in the test's fresh folder.
class WalkTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        tree = root + "/tree";
        std::filesystem::create_directory(tree);
        SetRoots({""});
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
        char* record = nullptr;
        size_t capacity = 0;
        while (pipe && getdelim(&record, &capacity, '\0', pipe) > 0) {
            char type = 0;
            unsigned long long size = 0;
            double time = 0;
            int consumed = 0;
            std::sscanf(record, "%c %llu %lf %n", &type, &size, &time, &consumed);
            const bool folder = type == 'd';
            found.insert({folder ? Kind::Folder : Kind::File, record + consumed,
                          folder ? 0u : static_cast<uint32_t>(size),
                          static_cast<int32_t>(std::floor(time))});
        }
        free(record);
        if (pipe)
            pclose(pipe);
        return found;
    }

    // Builds the index of the roots in one call into a file beside the tree.
    loam::FileSpec WriteIndex() const {
        const loam::FileSpec file((root + "/sorvanta.idx").c_str());
        loam::DiskFile disk;
        EXPECT_TRUE(disk.OpenFile(file, loam::FileModeWrite));
        BinaryFileIndexWriter writer(&disk);
        EXPECT_TRUE(VolumeIndexBuilder(nullptr).RunToCompletion(&writer));
        writer.Finish();
        return file;
    }

    // Builds the index and reads it back as a walk would hand it over, with the real paths on
    // the disk: a record without a parent is a root.
    RecordingWriter BuildIndex() const {
        IndexData index;
        EXPECT_TRUE(index.Load(WriteIndex()));
        RecordingWriter read;
        for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
            const IndexRecord* record = index.GetRecord(ordinal);
            const loam::FileSpec path(GetRealPathOf(index, record).GetCString());
            const loam::DateTime modified(record->GetModified());
            if (!record->IsFolder())
                read.AddFile(path, record->GetSize(), modified);
            else if (record->GetParent() == IndexNoParent)
                read.AddRoot(path, modified);
            else
                read.AddFolder(path, modified);
        }
        return read;
    }

    std::string tree;
    std::optional<ScopedEnvironment> roots;
};

} // namespace walk_test
