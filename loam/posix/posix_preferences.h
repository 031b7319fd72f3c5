#pragma once

#include "loam/preferences.h"

namespace loam {

// Keeps the values of one node in the user's settings file, a key file with one group per
// node. Each call reads the file anew, and each write replaces it whole under a lock, so that
// processes sharing the file see and keep each other's values.
class Posix_PreferencesImp : public PreferencesImp {
public:
    bool GetFileSpec(const String& name, FileSpec& value) override;
    bool GetBool(const String& name, bool& value) override;
    bool GetInt(const String& name, uint32_t& value) override;
    bool GetString(const String& name, String& value) override;
    bool SetFileSpec(const String& name, const FileSpec& value) override;
    bool SetBool(const String& name, bool value) override;
    bool SetInt(const String& name, uint32_t value) override;
    bool SetString(const String& name, const String& value) override;
    bool RemoveAll() override;
};

} // namespace loam
