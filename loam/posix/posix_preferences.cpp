#include "loam/posix/posix_preferences.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <glib.h>
#include <memory>
#include <pwd.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace loam {

namespace {

constexpr mode_t privateFileMode = 0600;
constexpr mode_t privateFolderMode = 0700;
// Far above any real settings file; a larger one is not ours and reads as damaged.
constexpr off_t largestStoreSize = 16 * 1024 * 1024;
// The group of the root's values, and the escape that keeps a top node of that name apart.
const char* const rootGroup = "General";
const char rootGroupEscape = '%';
// Bytes that the key file or our own group paths give a meaning.
const char* const reservedNameBytes = "/[]=%";

struct NamedNumber {
    const char* text;
    uint32_t number;
};

// A stored bool reads as the number that a bool is written as.
constexpr NamedNumber namedNumbers[] = {{"true", 1}, {"false", 0}};

struct Escape {
    char code;
    char byte;
};

// The escapes that the key file writes into a string value.
constexpr Escape valueEscapes[] = {{'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
struct StringArrayDeleter {
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
struct GlibDeleter {
    void operator()(gchar* text) const { g_free(text); }
};
using KeyFilePtr = std::unique_ptr<GKeyFile, KeyFileDeleter>;
using StringArrayPtr = std::unique_ptr<gchar*, StringArrayDeleter>;
using GlibStringPtr = std::unique_ptr<gchar, GlibDeleter>;

// The names of a node's chain from the top down. A node with an empty name adds no level, so
// "a..b" and "a.b" name the same value.
using NodePath = std::vector<String>;

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor) : descriptor(descriptor) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (descriptor >= 0)
            ::close(descriptor);
    }
    int Get() const { return descriptor; }
    bool IsOpen() const { return descriptor >= 0; }

private:
    int descriptor;
};

// Held for one read-change-write of the settings file. The lock lives on a file of its own
// because the settings file is replaced by each write.
class StoreLock {
public:
    explicit StoreLock(const String& path)
        : file(::open(path.GetCString(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                      privateFileMode)) {
        while (file.IsOpen() && !held) {
            held = ::flock(file.Get(), LOCK_EX) == 0;
            if (!held && errno != EINTR)
                return;
        }
    }
    bool IsHeld() const { return held; }

private:
    FileDescriptor file;
    bool held = false;
};

bool IsStorableName(const String& name) {
    const char* text = name.GetCString();
    const int32_t length = name.GetLength();
    if (length == 0 || text[0] == ' ' || text[0] == '#' || text[length - 1] == ' ')
        return false;
    for (int32_t i = 0; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7F || std::strchr(reservedNameBytes, byte))
            return false;
    }
    return true;
}

bool GetNodePath(const Preferences& node, NodePath& out) {
    for (const TreeNode* level = &node; level; level = level->GetParent()) {
        const String& name = static_cast<const Preferences*>(level)->GetName();
        if (name.IsEmpty())
            continue;
        if (!IsStorableName(name))
            return false;
        out.insert(out.begin(), name);
    }
    return true;
}

String GetGroupName(const NodePath& path) {
    if (path.empty())
        return rootGroup;
    String group;
    for (const String& name : path) {
        if (!group.IsEmpty())
            group += "/";
        group += name;
    }
    if (path.size() != 1 || !group.EqualsNoCase(rootGroup))
        return group;
    String escaped;
    escaped.Append(rootGroupEscape);
    escaped += group;
    return escaped;
}

NodePath GetGroupPath(const char* group) {
    NodePath path;
    if (g_ascii_strcasecmp(group, rootGroup) == 0)
        return path;
    if (group[0] == rootGroupEscape)
        ++group;
    const StringArrayPtr names(g_strsplit(group, "/", -1));
    for (gchar** name = names.get(); *name; ++name)
        path.push_back(*name);
    return path;
}

size_t CountCommonLevels(const NodePath& known, const NodePath& path) {
    size_t count = 0;
    while (count < known.size() && count < path.size() && known[count].EqualsNoCase(path[count]))
        ++count;
    return count;
}

// The group of a node as the file spells it. A group that is not there yet takes the
// spelling of the levels that the file already knows, so a name keeps the case in which it was
// first written.
String GetStoredGroup(GKeyFile* store, NodePath path) {
    const String wanted = GetGroupName(path);
    StringArrayPtr groups(g_key_file_get_groups(store, nullptr));
    NodePath spelling;
    for (gchar** group = groups.get(); *group; ++group) {
        if (g_ascii_strcasecmp(*group, wanted.GetCString()) == 0)
            return *group;
        NodePath known = GetGroupPath(*group);
        if (CountCommonLevels(known, path) > CountCommonLevels(spelling, path))
            spelling = known;
    }
    const size_t common = CountCommonLevels(spelling, path);
    for (size_t level = 0; level < common; ++level)
        path[level] = spelling[level];
    return GetGroupName(path);
}

String GetStoredKey(GKeyFile* store, const String& group, const String& name) {
    StringArrayPtr keys(g_key_file_get_keys(store, group.GetCString(), nullptr, nullptr));
    for (gchar** key = keys.get(); key && *key; ++key) {
        if (g_ascii_strcasecmp(*key, name.GetCString()) == 0)
            return *key;
    }
    return name;
}

bool GetConfigFolder(String& out) {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && config[0] == '/') {
        out = config;
        return true;
    }
    // A relative home would put the settings wherever the program was started.
    const char* home = std::getenv("HOME");
    if (!home || home[0] != '/') {
        const passwd* user = ::getpwuid(::getuid());
        home = user ? user->pw_dir : nullptr;
    }
    if (!home || home[0] != '/')
        return false;
    out = home;
    out += "/.config";
    return true;
}

// The folder of the settings file; false while no location is set.
bool GetStoreFolder(String& out) {
    if (!HasPreferenceLocation() || !GetConfigFolder(out))
        return false;
    if (!GetPreferenceCompany().IsEmpty())
        out += String("/") + GetPreferenceCompany();
    return true;
}

String GetStoreFile(const String& folder) {
    return folder + "/" + GetPreferenceProduct() + ".conf";
}

// Opening without blocking and taking only a regular file keeps a fifo or a device in the
// file's place from stalling the program.
bool ReadStoreBytes(const String& path, std::string& out) {
    const FileDescriptor file(::open(path.GetCString(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status;
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > largestStoreSize)
        return false;
    out.resize(static_cast<size_t>(status.st_size));
    size_t done = 0;
    while (done < out.size()) {
        const ssize_t count = ::read(file.Get(), out.data() + done, out.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        done += static_cast<size_t>(count);
    }
    out.resize(done);
    return true;
}

bool IsAcceptedText(GKeyFile* probe, const std::string& text) {
    return g_key_file_load_from_data(probe, text.data(), text.size(), G_KEY_FILE_NONE, nullptr);
}

bool IsGroupLine(const std::string& line) {
    const size_t first = line.find_first_not_of(" \t\r\f\v");
    return first != std::string::npos && line[first] == '[';
}

// The key file refuses a whole file for one line that it cannot read. Each line is tried here
// alone, in its own shape: a group line by itself, any other line under a group. A refused
// line is dropped; the values under a refused group line go with it, as they would otherwise
// land in the group above.
std::string KeepReadableLines(const std::string& bytes) {
    const KeyFilePtr probe(g_key_file_new());
    std::string kept;
    bool inGroup = false;
    for (size_t start = 0; start < bytes.size();) {
        size_t end = bytes.find('\n', start);
        end = end == std::string::npos ? bytes.size() : end + 1;
        std::string line = bytes.substr(start, end - start);
        start = end;
        if (line.back() != '\n')
            line += '\n';
        const bool isGroup = IsGroupLine(line);
        if (isGroup)
            inGroup = IsAcceptedText(probe.get(), line);
        if (inGroup && (isGroup || IsAcceptedText(probe.get(), "[General]\n" + line)))
            kept += line;
    }
    return kept;
}

// The file as it stands, as far as it can be read: a damaged line costs that line, at most its
// group. `clean` tells whether the file was read whole, or was not there at all.
KeyFilePtr LoadStore(const String& path, bool& clean) {
    KeyFilePtr store(g_key_file_new());
    std::string bytes;
    if (!ReadStoreBytes(path, bytes)) {
        struct stat status;
        clean = ::lstat(path.GetCString(), &status) != 0 && errno == ENOENT;
        return store;
    }
    clean = IsAcceptedText(store.get(), bytes);
    if (!clean && !IsAcceptedText(store.get(), KeepReadableLines(bytes)))
        store.reset(g_key_file_new());
    return store;
}

KeyFilePtr LoadStore(const String& path) {
    bool clean = false;
    return LoadStore(path, clean);
}

// A file that was not read whole is kept beside as it was, before a write replaces it, so that
// nothing written there by hand is lost without a trace.
void KeepOriginal(const String& path) {
    const String kept = path + ".bad";
    ::unlink(kept.GetCString());
    ::link(path.GetCString(), kept.GetCString());
}

// The key file's writes go through a temporary file of this name and six letters or digits;
// one that a killed write left behind is removed by the next write, under the lock.
bool IsStaleWrite(const char* name, const String& storeName) {
    const size_t length = static_cast<size_t>(storeName.GetLength());
    if (std::strncmp(name, storeName.GetCString(), length) != 0 || name[length] != '.')
        return false;
    const char* suffix = name + length + 1;
    if (std::strlen(suffix) != 6)
        return false;
    for (const char* at = suffix; *at; ++at) {
        if (!g_ascii_isalnum(*at))
            return false;
    }
    return true;
}

void RemoveStaleWrites(const String& folder, const String& storeName) {
    const FileDescriptor descriptor(
        ::open(folder.GetCString(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    DIR* listing = descriptor.IsOpen() ? ::fdopendir(::dup(descriptor.Get())) : nullptr;
    if (!listing)
        return;
    while (const dirent* entry = ::readdir(listing)) {
        struct stat status;
        if (IsStaleWrite(entry->d_name, storeName) &&
            ::fstatat(descriptor.Get(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode))
            ::unlinkat(descriptor.Get(), entry->d_name, 0);
    }
    ::closedir(listing);
}

// Durable also fsyncs the folder, so the new name is on disk when this returns.
bool SaveStore(GKeyFile* store, const String& path) {
    gsize length = 0;
    const GlibStringPtr text(g_key_file_to_data(store, &length, nullptr));
    const auto flags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                          G_FILE_SET_CONTENTS_DURABLE);
    return g_file_set_contents_full(path.GetCString(), text.get(), static_cast<gssize>(length),
                                    flags, privateFileMode, nullptr);
}

// A value of a node as the file just read holds it, with the names the file spells it by.
struct StoredValue {
    KeyFilePtr store;
    String group;
    String key;
    GlibStringPtr raw;
};

bool FindValue(const PreferencesImp& imp, const String& name, StoredValue& out) {
    NodePath path;
    String folder;
    if (!IsStorableName(name) || !GetNodePath(*imp.GetNode(), path) || !GetStoreFolder(folder))
        return false;
    out.store = LoadStore(GetStoreFile(folder));
    out.group = GetStoredGroup(out.store.get(), path);
    out.key = GetStoredKey(out.store.get(), out.group, name);
    out.raw.reset(g_key_file_get_value(out.store.get(), out.group.GetCString(),
                                       out.key.GetCString(), nullptr));
    return out.raw != nullptr;
}

// Changes one value under the lock: read the file, set the value, replace the file.
template <typename Setter>
bool WriteValue(const PreferencesImp& imp, const String& name, Setter setValue) {
    NodePath path;
    String folder;
    if (!IsStorableName(name) || !GetNodePath(*imp.GetNode(), path) || !GetStoreFolder(folder))
        return false;
    if (g_mkdir_with_parents(folder.GetCString(), privateFolderMode) != 0)
        return false;
    const String file = GetStoreFile(folder);
    const StoreLock lock(file + ".lock");
    if (!lock.IsHeld())
        return false;
    RemoveStaleWrites(folder, GetPreferenceProduct() + String(".conf"));
    bool clean = false;
    const KeyFilePtr store = LoadStore(file, clean);
    if (!clean)
        KeepOriginal(file);
    const String group = GetStoredGroup(store.get(), path);
    const String key = GetStoredKey(store.get(), group, name);
    setValue(store.get(), group.GetCString(), key.GetCString());
    return SaveStore(store.get(), file);
}

// A decimal number of 32 bits, signed or not, or a stored bool.
bool ParseNumber(const char* text, uint32_t& out) {
    for (const NamedNumber& named : namedNumbers) {
        if (g_ascii_strcasecmp(text, named.text) == 0) {
            out = named.number;
            return true;
        }
    }
    gint64 number = 0;
    if (!g_ascii_string_to_signed(text, 10, G_MININT32, G_MAXUINT32, &number, nullptr))
        return false;
    out = static_cast<uint32_t>(number);
    return true;
}

// GLib decodes only UTF-8 values; text in another 8-bit encoding has the same escapes undone
// here.
String UnescapeValue(const char* raw) {
    String text;
    for (const char* at = raw; *at; ++at) {
        char byte = *at;
        if (byte == '\\' && at[1]) {
            for (const Escape& escape : valueEscapes) {
                if (escape.code == at[1]) {
                    byte = escape.byte;
                    ++at;
                    break;
                }
            }
        }
        text.Append(byte);
    }
    return text;
}

} // namespace

bool Posix_PreferencesImp::GetFileSpec(const String& name, FileSpec& value) {
    String text;
    if (!GetString(name, text))
        return false;
    value.SetPath(text, NativeSeparator);
    return true;
}

bool Posix_PreferencesImp::GetBool(const String& name, bool& value) {
    StoredValue stored;
    if (!FindValue(*this, name, stored))
        return false;
    uint32_t number = 0;
    if (ParseNumber(stored.raw.get(), number))
        value = number != 0;
    return true;
}

// A value that is there gives true even when it is no number, as a value of another type is
// still a value; only a number changes the target, so the caller's default stands.
bool Posix_PreferencesImp::GetInt(const String& name, uint32_t& value) {
    StoredValue stored;
    if (!FindValue(*this, name, stored))
        return false;
    ParseNumber(stored.raw.get(), value);
    return true;
}

bool Posix_PreferencesImp::GetString(const String& name, String& value) {
    StoredValue stored;
    if (!FindValue(*this, name, stored))
        return false;
    const GlibStringPtr text(g_key_file_get_string(stored.store.get(), stored.group.GetCString(),
                                                   stored.key.GetCString(), nullptr));
    value = text ? String(text.get()) : UnescapeValue(stored.raw.get());
    return true;
}

bool Posix_PreferencesImp::SetFileSpec(const String& name, const FileSpec& value) {
    String text;
    value.GetPathWithSeparator(text, NativeSeparator);
    return SetString(name, text);
}

bool Posix_PreferencesImp::SetBool(const String& name, bool value) {
    return WriteValue(*this, name, [value](GKeyFile* store, const char* group, const char* key) {
        g_key_file_set_boolean(store, group, key, value);
    });
}

bool Posix_PreferencesImp::SetInt(const String& name, uint32_t value) {
    return WriteValue(*this, name, [value](GKeyFile* store, const char* group, const char* key) {
        g_key_file_set_integer(store, group, key, static_cast<gint>(value));
    });
}

bool Posix_PreferencesImp::SetString(const String& name, const String& value) {
    return WriteValue(*this, name, [&value](GKeyFile* store, const char* group, const char* key) {
        g_key_file_set_string(store, group, key, value.GetCString());
    });
}

// Nothing in the program deletes the whole store, and a stray call must not either.
bool Posix_PreferencesImp::RemoveAll() {
    return false;
}

PreferencesImp* CreatePreferencesImp() {
    return new Posix_PreferencesImp;
}

} // namespace loam
