#pragma once

#include "loam/file_spec.h"
#include "quilt/dialog.h"
#include "quilt/message_target.h"

#include <memory>

// The program's fixed names.
inline constexpr char PreferenceCompany[] = "Wendlemark";
inline constexpr char PreferenceProduct[] = "Sorvanta";
inline constexpr char IndexFileName[] = "sorvanta.idx";
inline constexpr char BuildIndexSwitch[] = "/buildindex";

// Every preference key of the program.
inline constexpr char KeyIndexLocation[] = "IndexLocation";
inline constexpr char KeyMaxResults[] = "MaxResults";
inline constexpr char KeyAutoWildcards[] = "Options.AutoWildcards";
inline constexpr char KeyUseRegExp[] = "Options.UseRegExp";
inline constexpr char KeySearchPattern[] = "UI.SearchPattern";
inline constexpr char KeyDialogWidth[] = "DialogWidth";
inline constexpr char KeyDialogHeight[] = "DialogHeight";
inline constexpr char KeyMaximised[] = "Maximised";

// The one application object. It sets up what every window relies on, then picks the window
// that the program is from its command line. The index folder lives outside it for the life of
// the process, so that every window, and the command-line finder, can ask for the index file
// anew.
class SorvantaApp : public quilt::ApplicationDialog {
public:
    SorvantaApp();
    ~SorvantaApp() override;

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    std::unique_ptr<quilt::Dialog> CreateDialog() override;

    static loam::FileSpec GetIndexFolder();
    static loam::FileSpec GetIndexFile();

    static const quilt::MessageMap messageMap;

private:
    static const quilt::MessageMapEntry entries[];
};
