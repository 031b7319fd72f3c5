#include "app/file_mover.h"
#include "app/resources/string_table.h"
#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"
#include "loam/error.h"
#include "quilt/browse_dialog.h"
#include "quilt/msg_dialog.h"
#include "quilt/question_dialog.h"

namespace {

constexpr char browseCaption[] = "Select index location...";
constexpr char notFullFolderText[] =
    "The index location must be a full folder path, beginning with '/': a relative folder would "
    "depend on where Sorvanta was started.";
constexpr char notStoredText[] =
    "The new index location could not be stored in the settings. The index stays where it was.";

struct MoveFailure {
    int32_t status;
    SorvantaString text;
};

constexpr MoveFailure moveFailures[] = {
    {FileMover::StatusNoSpace, StringMoveNoSpace},
    {FileMover::StatusTargetExists, StringMoveTargetExists},
    {FileMover::StatusCopyFailed, StringMoveCopyFailed},
    {FileMover::StatusNotRemoved, StringMoveNotRemoved},
};

loam::String LoadText(SorvantaString id) {
    return loam::StringResource(id).GetString();
}

// The failure's words, and its reason where the mover has one.
void TellMoveFailure(const FileMover& mover, const loam::String& failure, quilt::Window* parent) {
    loam::String text = failure;
    loam::String reason;
    if (mover.GetReason(reason)) {
        loam::String line;
        loam::FormatResource(loam::StringResource(StringMoveReason), line, reason.GetCString());
        text.Append("\n\n");
        text.Append(line);
    }
    quilt::ShowAlert(LoadText(StringMoveFailedTitle), text, parent);
}

// A folder that the settings refuse stays out of force: the error's words go to the user.
bool StoreIndexFolder(const loam::FileSpec& folder, quilt::Window* parent) {
    if (SorvantaApp::SetIndexFolder(folder))
        return true;
    loam::String text(notStoredText);
    loam::String line;
    loam::FormatResource(loam::StringResource(StringMoveReason), line,
                         loam::GetCurrentErrorInfo().GetMessage().GetCString());
    loam::ClearErrors();
    text.Append("\n\n");
    text.Append(line);
    quilt::ShowAlert(LoadText(StringIndexLocationTitle), text, parent);
    return false;
}

bool UseNewFolderAnyway() {
    quilt::Question question(loam::StringResource(StringIndexLocationTitle),
                             loam::StringResource(StringMoveAnyway), nullptr);
    const loam::ResourceId buttons[] = {loam::StringResource(StringYes),
                                        loam::StringResource(StringNo), loam::ResourceId{}};
    return question.Ask(buttons).id != StringNo;
}

} // namespace

const quilt::MessageMapEntry SorvantaOptions::entries[] = {
    quilt::Notification(quilt::MsgClicked, OptionsBrowseButton, &SorvantaOptions::OnBrowse),
    quilt::Notification(quilt::MsgSliderTrack, OptionsLimitSlider,
                        &SorvantaOptions::OnLimitChanged),
    quilt::Notification(quilt::MsgSliderThumbPosition, OptionsLimitSlider,
                        &SorvantaOptions::OnLimitChanged),
    quilt::Notification(quilt::MsgSliderEndTrack, OptionsLimitSlider,
                        &SorvantaOptions::OnLimitChanged),
    quilt::EndOfMap,
};

const quilt::MessageMap SorvantaOptions::messageMap{&quilt::Dialog::messageMap, entries};

void SorvantaOptions::OnInitDialog() {
    Dialog::OnInitDialog();
    indexFolderBox.BindToControl(this, OptionsIndexFolder);
    limitSlider.BindToControl(this, OptionsLimitSlider);
    limitLabel.BindToControl(this, OptionsLimitLabel);
    autoWildcards.Bind(this, OptionsAutoWildcards, KeyAutoWildcards, false);
    indexFolderBox.SetContent(SorvantaApp::GetIndexFolder().GetPath());
    limitSlider.SetRange(DefaultMaxResults / MaxResultsStep, MaxResultsCeiling / MaxResultsStep);
    limitSlider.SetPos(GetMaxResults() / MaxResultsStep);
    UpdateLimitLabel();
}

void SorvantaOptions::UpdateLimitLabel() {
    limitLabel.SetTextFormat(StringLimitLabel, GetMaxResults() / MaxResultsStep);
}

bool SorvantaOptions::OnLimitChanged() {
    SetMaxResults(limitSlider.GetPos() * MaxResultsStep);
    UpdateLimitLabel();
    return true;
}

bool SorvantaOptions::OnBrowse() {
    quilt::BrowseDialog chooser(quilt::BrowsePreview, this);
    const loam::String caption(browseCaption);
    const loam::String prefix;
    // The chooser opens in the folder that the box shows.
    loam::FileSpec chosen(indexFolderBox.GetContent());
    if (chooser.Run(&caption, &prefix, chosen)) {
        indexFolderBox.SetContent(chosen.GetPath());
    }
    return true;
}

// The typed folder is compared byte by byte: another case counts as another folder. A moved
// index has its folder stored by the move itself, before the original goes.
void SorvantaOptions::OnOK() {
    loam::String typed = indexFolderBox.GetContent();
    if (!(typed == SorvantaApp::GetIndexFolder().GetPath())) {
        const loam::FileSpec folder(typed);
        if (!IsFullFolder(folder)) {
            quilt::ShowAlert(LoadText(StringIndexLocationTitle), loam::String(notFullFolderText),
                             this);
            return;
        }
        const loam::FileSpec oldFile = SorvantaApp::GetIndexFile();
        if (oldFile.GetKind() == loam::FileKindFile && !MoveIndex(oldFile, folder)) {
            return;
        }
        if (!(typed == SorvantaApp::GetIndexFolder().GetPath()) &&
            !StoreIndexFolder(folder, this)) {
            return;
        }
    }
    Dialog::OnOK();
}

bool SorvantaOptions::MoveIndex(const loam::FileSpec& oldFile, const loam::FileSpec& newFolder) {
    loam::FileSpec newFile(newFolder);
    newFile.Append(IndexFileName);
    FileMover mover(oldFile, newFile);
    const loam::FileSpec oldFolder = SorvantaApp::GetIndexFolder();
    mover.SetPlaceKeeper(
        [&](bool isNew) { return SorvantaApp::SetIndexFolder(isNew ? newFolder : oldFolder); });
    ProgressDialog progress(&mover, LoadText(StringMovingIndex), nullptr);
    progress.RunModal(true);
    const int32_t status = mover.GetStatus();
    if (status == FileMover::StatusMoved) {
        return true;
    }
    if (status == FileMover::StatusNotStored) {
        TellMoveFailure(mover, loam::String(notStoredText), this);
        return false;
    }
    for (const MoveFailure& failure : moveFailures) {
        if (failure.status == status) {
            TellMoveFailure(mover, LoadText(failure.text), this);
            return UseNewFolderAnyway();
        }
    }
    // Cancelled, before the work began or during it: nothing has changed.
    return false;
}
