#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

namespace quilt {

// A link's colour: pure blue, whatever the desktop's theme gives links.
inline constexpr Colour LinkColour{0, 0, 255};

// The address that a link's text opens: a text without "://" is taken as a web address and
// gets "http://" in front; a text with any scheme stays as it is.
loam::String MakeLinkAddress(const loam::String& text);

// How a link's address is handed to the desktop. The default is the desktop's own handler for
// the address's scheme, through GIO, never through a shell; what it answers is not read.
using LinkOpener = void (*)(const char* address);
// Null brings back the default.
void SetLinkOpener(LinkOpener opener);

// A static text of a dialog that acts as a link: underlined, blue, with the hand cursor, and a
// press on it opens its text.
class URLButtonImp : public virtual WindowImp {
public:
    // The user pressed the link.
    void OpenLink();
};

class URLButton : public Window {
public:
    URLButton();
};

} // namespace quilt
