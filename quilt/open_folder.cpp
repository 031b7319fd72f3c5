#include "quilt/open_folder.h"

#include "loam/error.h"

#include <gio/gio.h>

namespace quilt {

namespace {

constexpr char folderMissingText[] = "The application tried to open a folder that did not exist.";
constexpr char cannotOpenText[] =
    "The application was unable to open an explorer window onto a particular folder.";

struct LaunchFailure {
    GQuark (*domain)();
    int code;
    uint32_t errorCode;
    const char* text;
};

GQuark IoErrorDomain() {
    return G_IO_ERROR;
}

GQuark SpawnErrorDomain() {
    return G_SPAWN_ERROR;
}

// What the launch's failures mean to the user; any other is "unable to open".
const LaunchFailure launchFailures[] = {
    {SpawnErrorDomain, G_SPAWN_ERROR_NOMEM, loam::ErrorOutOfMemory,
     "There is not enough memory available to complete this operation."},
    {IoErrorDomain, G_IO_ERROR_NOT_FOUND, loam::ErrorNotFound, folderMissingText},
    {IoErrorDomain, G_IO_ERROR_PERMISSION_DENIED, loam::ErrorAccessDenied,
     "The application encountered an error accessing data in a file or folder."},
    {SpawnErrorDomain, G_SPAWN_ERROR_ACCES, loam::ErrorAccessDenied,
     "The application encountered an error accessing data in a file or folder."},
};

bool RaiseLaunchFailure(const GError* error) {
    for (const LaunchFailure& failure : launchFailures) {
        if (g_error_matches(error, failure.domain(), failure.code)) {
            return loam::RaiseError(failure.errorCode, failure.text);
        }
    }
    return loam::RaiseError(loam::ErrorGeneral, cannotOpenText);
}

} // namespace

bool OpenFolderInShell(const loam::FileSpec& folder) {
    if (folder.GetKind() != loam::FileKindFolder) {
        return loam::RaiseError(loam::ErrorBadPath, folderMissingText);
    }
    GError* error = nullptr;
    gchar* uri = g_filename_to_uri(folder.GetPath().GetCString(), nullptr, &error);
    bool launched = uri != nullptr && g_app_info_launch_default_for_uri(uri, nullptr, &error);
    g_free(uri);
    if (launched) {
        return true;
    }
    bool result = RaiseLaunchFailure(error);
    g_clear_error(&error);
    return result;
}

} // namespace quilt
