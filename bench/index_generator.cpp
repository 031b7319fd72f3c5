#include "bench/index_generator.h"

#include "index/file_index_writer.h"
#include "loam/disk_file.h"
#include "loam/error.h"

#include <cmath>
#include <iterator>
#include <string>

namespace {

const char* const words[] = {
    "report",   "notes",    "image",   "photo",   "backup",  "config",   "main",    "index",
    "data",     "setup",    "test",    "draft",   "invoice", "music",    "video",   "window",
    "module",   "build",    "cache",   "summary", "budget",  "letter",   "holiday", "family",
    "project",  "client",   "server",  "network", "driver",  "update",   "manual",  "guide",
    "table",    "chart",    "sketch",  "scan",    "receipt", "contract", "meeting", "agenda",
    "plan",     "schedule", "list",    "archive", "export",  "import",   "sample",  "demo",
    "font",     "icon",     "theme",   "player",  "editor",  "parser",   "reader",  "writer",
    "stream",   "buffer",   "socket",  "thread",  "queue",   "widget",   "dialog",  "button",
    "layout",   "render",   "shader",  "texture", "sound",   "voice",    "track",   "album",
    "garden",   "kitchen",  "recipe",  "travel",  "wedding", "birthday", "school",  "lesson",
    "history",  "science",  "physics", "math",    "english", "french",   "spanish", "river",
    "mountain", "beach",    "winter",  "summer",  "autumn",  "spring",   "night",   "morning",
};

const char* const folderNames[] = {
    "Documents", "Pictures", "Music", "Videos",  "Downloads",    "Desktop", "src",    "include",
    "lib",       "share",    "doc",   "bin",     "build",        "tmp",     ".cache", ".config",
    "assets",    "images",   "icons", "locale",  "projects",     "backup",  "test",   "tests",
    "examples",  "data",     "old",   "Archive", "node_modules", "vendor",  "dist",   "resources",
};

// Common extensions appear more than once, so that they come up more often.
const char* const extensions[] = {
    ".txt", ".txt", ".cpp", ".cpp",  ".h",    ".h",    ".jpg", ".jpg",  ".JPG", ".png",  ".png",
    ".dll", ".so",  ".pdf", ".pdf",  ".docx", ".xlsx", ".xml", ".json", ".py",  ".js",   ".html",
    ".css", ".mp3", ".log", ".conf", ".o",    ".gz",   ".md",  ".svg",  ".c",   ".java", ".ini",
    ".exe", ".bak", ".TXT", ".zip",  ".mp4",  ".wav",  ".csv", ".rs",   ".go",  ".sh",   ".pyc",
};

const char* const fixedNames[] = {"README",      "LICENSE",   "Makefile",   "CMakeLists.txt",
                                  "INSTALL",     "ChangeLog", "Thumbs.db",  ".gitignore",
                                  "desktop.ini", "COPYING",   "index.html", "__init__.py"};

// A fixed sequence: the same seed gives the same index on every machine.
class Sequence {
public:
    explicit Sequence(uint64_t seed) : state(seed) {}
    uint32_t Next(uint32_t bound) { return static_cast<uint32_t>(NextBits() % bound); }
    bool Chance(uint32_t percent) { return Next(100) < percent; }
    // A count with the given mean, most often small, now and then large.
    int32_t Geometric(double mean) {
        const double keep = mean / (1 + mean);
        int32_t count = 0;
        while (count < 10000 && static_cast<double>(Next(1000000)) < keep * 1000000)
            ++count;
        return count;
    }

private:
    uint64_t NextBits() {
        state += 0x9E3779B97F4A7C15ULL;
        uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
        return mixed ^ (mixed >> 31);
    }

    uint64_t state;
};

template <size_t count> const char* Pick(Sequence& sequence, const char* const (&list)[count]) {
    return list[sequence.Next(count)];
}

std::string Capitalised(std::string word) {
    word[0] = static_cast<char>(word[0] - 'a' + 'A');
    return word;
}

class TreeGenerator {
public:
    TreeGenerator(FileIndexWriter& writer, int32_t recordCount, uint64_t seed)
        : writer(writer), remaining(recordCount), sequence(seed) {}

    void Run() {
        const loam::FileSpec root("/");
        writer.AddRoot(root, Time());
        --remaining;
        while (remaining > 0)
            AddTree(Child(root, FolderName()), 1);
    }

private:
    void AddTree(const loam::FileSpec& folder, int32_t depth) {
        writer.AddFolder(folder, Time());
        --remaining;
        int32_t files = FileCount();
        int32_t folders = depth >= 12 ? 0 : sequence.Geometric(3.5 * std::pow(0.7, depth));
        while ((files > 0 || folders > 0) && remaining > 0) {
            if (sequence.Next(files + folders) < static_cast<uint32_t>(folders)) {
                --folders;
                AddTree(Child(folder, FolderName()), depth + 1);
            } else {
                --files;
                writer.AddFile(Child(folder, FileName()), Size(), Time());
                --remaining;
            }
        }
    }

    static loam::FileSpec Child(const loam::FileSpec& folder, const std::string& name) {
        loam::FileSpec child(folder);
        child.Append(name.c_str());
        return child;
    }

    int32_t FileCount() {
        if (sequence.Chance(5))
            return 100 + static_cast<int32_t>(sequence.Next(300));
        if (sequence.Chance(25))
            return 20 + static_cast<int32_t>(sequence.Next(40));
        return sequence.Geometric(8);
    }

    std::string Number() {
        return std::to_string(sequence.Next(sequence.Chance(50) ? 100 : 10000));
    }

    std::string FolderName() {
        switch (sequence.Next(4)) {
        case 0:
            return Pick(sequence, folderNames);
        case 1:
            return Capitalised(Pick(sequence, words)) + " " + Number();
        case 2:
            return std::string(Pick(sequence, words)) + "-" + std::to_string(sequence.Next(20)) +
                   "." + std::to_string(sequence.Next(10));
        default:
            return Capitalised(Pick(sequence, words)) + Capitalised(Pick(sequence, words));
        }
    }

    std::string Stem() {
        switch (sequence.Next(7)) {
        case 0:
            return Capitalised(Pick(sequence, words)) + " " + Capitalised(Pick(sequence, words)) +
                   " " + std::to_string(1990 + sequence.Next(35));
        case 1:
            return std::string(Pick(sequence, words)) + "_" + Pick(sequence, words);
        case 2:
            return Pick(sequence, words) + Capitalised(Pick(sequence, words));
        case 3:
            return (sequence.Chance(50) ? "IMG_" : "DSC0") +
                   std::to_string(1000 + sequence.Next(9000));
        case 4:
            return std::string("lib") + Pick(sequence, words) + Number();
        case 5:
            return std::string(Pick(sequence, words)) + "-" + Number();
        default:
            return Pick(sequence, words);
        }
    }

    std::string FileName() {
        if (sequence.Chance(4))
            return Pick(sequence, fixedNames);
        return Stem() + Pick(sequence, extensions);
    }

    uint32_t Size() { return sequence.Next(1u << sequence.Next(28)) + 1; }
    loam::DateTime Time() {
        return loam::DateTime(1500000000 + static_cast<int32_t>(sequence.Next(200000000)));
    }

    FileIndexWriter& writer;
    int32_t remaining;
    Sequence sequence;
};

} // namespace

bool GenerateIndex(const loam::FileSpec& indexFile, int32_t recordCount, uint64_t seed) {
    loam::DiskFile file;
    if (!file.OpenFile(indexFile, loam::FileModeWrite))
        return false;
    BinaryFileIndexWriter writer(&file);
    TreeGenerator(writer, recordCount, seed).Run();
    writer.Finish();
    return !loam::GetErrorState().GetCurrentError().GetCode();
}
