#include "app/sorvanta_app.h"

#include "app/build_index_window.h"
#include "app/resources/message_dialog_templates.h"
#include "app/resources/sorvanta_templates.h"
#include "app/resources/string_table.h"
#include "app/sorvanta_options.h"
#include "index/file_index_writer.h"
#include "loam/error.h"
#include "loam/preferences.h"
#include "quilt/error_dialog.h"
#include "quilt/imp_factory.h"
#include "quilt/msg_dialog.h"
#include "quilt/question_dialog.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint16_t IconId = 102;
constexpr uint16_t AcceleratorsId = 106;
constexpr int32_t ExitCommand = 101;

const char needsDisplayText[] =
    "sorvanta: the search window needs a display; run 'sorvanta /buildindex' to index this "
    "machine's fixed disks and 'sorvanta-find PATTERN' to search the index\n";
const char noSearchWindowText[] =
    "sorvanta: this build has no search window yet; run 'sorvanta /buildindex' to index this "
    "machine's fixed disks and 'sorvanta-find PATTERN' to search the index\n";

// The headless backend stands in because no display could be opened, not because it was asked
// for.
bool IsDisplayMissing() {
    const char* requested = std::getenv("QUILT_PLATFORM");
    const bool askedForHeadless = requested != nullptr && std::strcmp(requested, "offscreen") == 0;
    return quilt::GetImpFactory().GetBackend() == quilt::Backend::Headless && !askedForHeadless;
}

// The writer's word about a fault in the order of the walk comes up as the toolkit's alert.
void ShowWriterAlert(const char* title, const char* text) {
    quilt::ShowAlert(loam::String(title), loam::String(text));
}

void SetMessageDialogs() {
    RegisterMessageDialogTemplates();
    quilt::AlertDialog::SetTemplate({loam::ResourceKindDialog, AlertDialogId}, AlertTextId,
                                    AlertOkId, quilt::NoControlId);
    quilt::QuestionDialog::SetTemplate({loam::ResourceKindDialog, QuestionDialogId}, QuestionTextId,
                                       QuestionFirstButtonId, QuestionSecondButtonId,
                                       quilt::NoControlId);
    loam::GetErrorState().SetReporter(new quilt::QuiltErrorReporter(MessageErrorDialogIds));
}

} // namespace

const quilt::MessageMapEntry SorvantaApp::entries[] = {
    quilt::Command(ExitCommand, &quilt::Application::OnExitCommand),
    quilt::EndOfMap,
};

const quilt::MessageMap SorvantaApp::messageMap{&quilt::Application::messageMap, entries};

SorvantaApp::SorvantaApp() {
    RegisterSorvantaStrings();
    RegisterSorvantaTemplates();
    titleResource = loam::StringResource(StringTitle);
    iconResource = loam::ResourceId{loam::ResourceKindIcon, IconId};
    acceleratorResource = loam::ResourceId{loam::ResourceKindAccelerators, AcceleratorsId};
    SetMessageDialogs();
    SetWriterAlertHandler(ShowWriterAlert);
    loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    SorvantaOptions::LoadSettings();
}

SorvantaApp::~SorvantaApp() {
    SetWriterAlertHandler(nullptr);
}

// The line is not parsed into arguments: the switch counts wherever it stands.
std::unique_ptr<quilt::Dialog> SorvantaApp::CreateDialog() {
    if (GetCommandLine().Find(BuildIndexSwitch, nullptr, false)) {
        return std::make_unique<BuildIndexWindow>();
    }
    std::fputs(IsDisplayMissing() ? needsDisplayText : noSearchWindowText, stderr);
    return nullptr;
}
