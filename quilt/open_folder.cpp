#include "quilt/open_folder.h"

#include "loam/error.h"

#include <gio/gio.h>

namespace quilt {

namespace {

constexpr char folderMissingText[] = "The application tried to open a folder that did not exist.";
constexpr char cannotOpenText[] =
    "The application was unable to open an explorer window onto a particular folder.";
constexpr char entryMissingText[] = "The application tried to open a file that did not exist.";

// The desktop's interface for showing files in its file manager.
constexpr char fileManagerName[] = "org.freedesktop.FileManager1";
constexpr char fileManagerPath[] = "/org/freedesktop/FileManager1";
// A file manager that does not answer in this time is taken for absent, and the folder opens as
// the double click opens it. The window goes on meanwhile: only the bus daemon's answer to whether
// a file manager is there is waited for, and the daemon answers at once.
constexpr gint fileManagerTimeout = 3000;
constexpr gint busTimeout = 1000;

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

// On false `error` says why, unless the path has no URI.
bool LaunchDefault(const loam::FileSpec& place, GError** error) {
    gchar* uri = g_filename_to_uri(place.GetPath().GetCString(), nullptr, error);
    bool launched = uri != nullptr && g_app_info_launch_default_for_uri(uri, nullptr, error);
    g_free(uri);
    return launched;
}

bool IsFileManagerThere(GDBusConnection* bus) {
    GVariant* reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "NameHasOwner", g_variant_new("(s)", fileManagerName), G_VARIANT_TYPE("(b)"),
        G_DBUS_CALL_FLAGS_NONE, busTimeout, nullptr, nullptr);
    if (reply == nullptr) {
        return false;
    }
    gboolean owned = FALSE;
    g_variant_get(reply, "(b)", &owned);
    g_variant_unref(reply);
    return owned;
}

// The folder to open when the file manager's answer is a failure, or none comes in time. No
// caller is left to report that open's own failure to: the desktop had a file manager a moment
// before, so it is not expected to fail.
void OnShowItemsAnswer(GObject* bus, GAsyncResult* result, gpointer folderPath) {
    GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr);
    if (reply != nullptr) {
        g_variant_unref(reply);
    } else if (!OpenFolderInShell(loam::FileSpec(static_cast<const char*>(folderPath)))) {
        loam::ClearErrors();
    }
    g_free(folderPath);
}

// Only a file manager that is running is asked: none is started for the purpose. True once it
// has been asked; its answer comes later.
bool AskFileManagerToShow(const loam::FileSpec& entry, const loam::FileSpec& folder) {
    gchar* uri = g_filename_to_uri(entry.GetPath().GetCString(), nullptr, nullptr);
    GDBusConnection* bus =
        uri != nullptr ? g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr) : nullptr;
    bool asked = false;
    if (bus != nullptr) {
        // The shared connection would end the process when the bus goes away.
        g_dbus_connection_set_exit_on_close(bus, FALSE);
    }
    if (bus != nullptr && IsFileManagerThere(bus)) {
        const gchar* uris[] = {uri, nullptr};
        g_dbus_connection_call(bus, fileManagerName, fileManagerPath, fileManagerName, "ShowItems",
                               g_variant_new("(^ass)", uris, ""), nullptr,
                               G_DBUS_CALL_FLAGS_NO_AUTO_START, fileManagerTimeout, nullptr,
                               OnShowItemsAnswer, g_strdup(folder.GetPath().GetCString()));
        asked = true;
    }
    if (bus != nullptr) {
        g_object_unref(bus);
    }
    g_free(uri);
    return asked;
}

} // namespace

bool OpenWithDefaultApplication(const loam::FileSpec& entry) {
    if (entry.GetKind() == loam::FileKindNone) {
        return loam::RaiseError(loam::ErrorBadPath, entryMissingText);
    }
    GError* error = nullptr;
    if (LaunchDefault(entry, &error)) {
        return true;
    }
    // The desktop's own words say best why it has no application for a file.
    loam::RaiseError(loam::ErrorGeneral, error != nullptr ? error->message : cannotOpenText);
    g_clear_error(&error);
    return false;
}

bool ShowInFolder(const loam::FileSpec& entry, const loam::FileSpec& folder) {
    if (folder.GetKind() == loam::FileKindFolder && entry.GetKind() != loam::FileKindNone &&
        AskFileManagerToShow(entry, folder)) {
        return true;
    }
    return OpenFolderInShell(folder);
}

bool OpenFolderInShell(const loam::FileSpec& folder) {
    if (folder.GetKind() != loam::FileKindFolder) {
        return loam::RaiseError(loam::ErrorBadPath, folderMissingText);
    }
    GError* error = nullptr;
    if (LaunchDefault(folder, &error)) {
        return true;
    }
    bool result = RaiseLaunchFailure(error);
    g_clear_error(&error);
    return result;
}

} // namespace quilt
