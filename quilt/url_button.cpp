#include "quilt/url_button.h"

#include "quilt/imp_factory.h"

#include <gio/gio.h>

namespace quilt {

namespace {

constexpr char schemeSeparator[] = "://";
constexpr char webScheme[] = "http://";

void LaunchDefaultHandler(const char* address) {
    g_app_info_launch_default_for_uri(address, nullptr, nullptr);
}

LinkOpener linkOpener = LaunchDefaultHandler;

} // namespace

loam::String MakeLinkAddress(const loam::String& text) {
    int32_t found = 0;
    if (text.Find(schemeSeparator, &found, false)) {
        return text;
    }
    loam::String address(webScheme);
    address.Append(text);
    return address;
}

void SetLinkOpener(LinkOpener opener) {
    linkOpener = opener != nullptr ? opener : LaunchDefaultHandler;
}

void URLButtonImp::OpenLink() {
    loam::String text;
    if (GetText(text)) {
        linkOpener(MakeLinkAddress(text).GetCString());
    }
}

URLButton::URLButton() : Window(GetImpFactory().CreateURLButtonImp()) {}

} // namespace quilt
