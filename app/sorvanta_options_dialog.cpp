#include "app/file_mover.h"
#include "app/resources/string_table.h"
#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"
#include "quilt/browse_dialog.h"
#include "quilt/msg_dialog.h"
#include "quilt/question_dialog.h"

namespace {

constexpr char browseCaption[] = "Select index location...";

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
void TellMoveFailure(const FileMover& mover, SorvantaString textId, quilt::Window* parent) {
    loam::String text = LoadText(textId);
    loam::String reason;
    if (mover.GetReason(reason)) {
        loam::String line;
        loam::FormatResource(loam::StringResource(StringMoveReason), line, reason.GetCString());
        text.Append("\n\n");
        text.Append(line);
    }
    quilt::ShowAlert(LoadText(StringMoveFailedTitle), text, parent);
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

// The typed folder is compared byte by byte: another case counts as another folder.
void SorvantaOptions::OnOK() {
    loam::String typed = indexFolderBox.GetContent();
    if (!(typed == SorvantaApp::GetIndexFolder().GetPath())) {
        loam::FileSpec newFile(typed);
        newFile.Append(IndexFileName);
        loam::FileSpec oldFile = SorvantaApp::GetIndexFile();
        if (oldFile.GetKind() == loam::FileKindFile && !MoveIndex(oldFile, newFile)) {
            return;
        }
        SetIndexFolder(loam::FileSpec(typed));
    }
    Dialog::OnOK();
}

bool SorvantaOptions::MoveIndex(const loam::FileSpec& oldFile, const loam::FileSpec& newFile) {
    FileMover mover(oldFile, newFile);
    ProgressDialog progress(&mover, LoadText(StringMovingIndex), nullptr);
    progress.RunModal(true);
    const int32_t status = mover.GetStatus();
    if (status == FileMover::StatusMoved) {
        return true;
    }
    for (const MoveFailure& failure : moveFailures) {
        if (failure.status == status) {
            TellMoveFailure(mover, failure.text, this);
            return UseNewFolderAnyway();
        }
    }
    // Cancelled, before the work began or during it: nothing has changed.
    return false;
}
