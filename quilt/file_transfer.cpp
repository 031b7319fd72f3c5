#include "quilt/file_transfer.h"

#include "quilt/imp_factory.h"

#include <glib.h>

namespace quilt {

bool GetFileUri(const loam::String& path, loam::String& uri) {
    gchar* escaped = g_filename_to_uri(path.GetCString(), nullptr, nullptr);
    if (escaped == nullptr) {
        return false;
    }
    uri = loam::String(escaped);
    g_free(escaped);
    return true;
}

bool GetUriList(const loam::String& path, loam::String& list) {
    if (!GetFileUri(path, list)) {
        return false;
    }
    list.Append("\r\n");
    return true;
}

bool CopyTextToClipboard(const loam::String& text) {
    return GetImpFactory().CreateFileTransferImp()->CopyText(text);
}

FileDrag::FileDrag() : imp(GetImpFactory().CreateFileTransferImp()) {}

FileDrag::~FileDrag() = default;

} // namespace quilt
