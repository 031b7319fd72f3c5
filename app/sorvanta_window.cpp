#include "app/sorvanta_window.h"

#include "app/resources/sorvanta_templates.h"
#include "app/resources/string_table.h"
#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"
#include "index/index_status.h"
#include "loam/error.h"
#include "loam/preferences.h"
#include "quilt/clock.h"
#include "quilt/file_transfer.h"
#include "quilt/msg_dialog.h"
#include "quilt/open_folder.h"
#include "quilt/wait_cursor.h"
#include "search/search_outcome.h"

namespace {

constexpr char noResultsText[] = "No results";

constexpr quilt::LayoutControl anchors[] = {
    {MainSearchPattern, quilt::AnchorStretch, quilt::AnchorNone},
    {MainUseRegExp, quilt::AnchorMove, quilt::AnchorNone},
    {MainFindButton, quilt::AnchorMove, quilt::AnchorNone},
    {MainOptionsButton, quilt::AnchorMove, quilt::AnchorNone},
    {MainResultsList, quilt::AnchorStretch, quilt::AnchorStretch},
    {MainBuildButton, quilt::AnchorNone, quilt::AnchorMove},
    {MainIndexStatus, quilt::AnchorStretch, quilt::AnchorMove},
    {MainSearchStatus, quilt::AnchorStretch, quilt::AnchorNone},
    {-1, quilt::AnchorNone, quilt::AnchorNone},
};

loam::ResourceId Text(SorvantaString id) {
    return loam::StringResource(id);
}

bool ReadBool(const char* key, bool fallback) {
    bool value = fallback;
    return loam::GetPreferences().GetBool(key, value) ? value : fallback;
}

} // namespace

const quilt::MessageMapEntry SorvantaWindow::entries[] = {
    quilt::Notification(quilt::MsgClicked, MainBuildButton, &SorvantaWindow::OnBuildIndex),
    quilt::Notification(quilt::MsgClicked, MainFindButton, &SorvantaWindow::OnFind),
    quilt::Notification(quilt::MsgItemActivate, MainResultsList,
                        &SorvantaWindow::OnResultActivated),
    quilt::Notification(quilt::MsgEnterKey, MainSearchPattern, &SorvantaWindow::OnFind),
    quilt::Notification(quilt::MsgClicked, MainOptionsButton, &SorvantaWindow::OnOptions),
    quilt::Notification(quilt::MsgContextMenu, MainResultsList, &SorvantaWindow::OnResultMenu),
    quilt::Command(ResultOpen, &SorvantaWindow::OnOpenResult),
    quilt::Command(ResultOpenFolder, &SorvantaWindow::OnShowResultInFolder),
    quilt::Command(ResultCopyPath, &SorvantaWindow::OnCopyResultPath),
    quilt::Command(ResultCopyName, &SorvantaWindow::OnCopyResultName),
    quilt::EndOfMap,
};

const quilt::MessageMap SorvantaWindow::messageMap{&quilt::Dialog::messageMap, entries};

SorvantaWindow::SorvantaWindow(SorvantaApp&) : Dialog(DialogResource(DialogMainWindow), nullptr) {}

SorvantaWindow::~SorvantaWindow() {
    DiscardBuild();
}

void SorvantaWindow::OnInitDialog() {
    Dialog::OnInitDialog();
    buildButton.BindToControl(this, MainBuildButton);
    indexStatus.BindToControl(this, MainIndexStatus);
    searchStatus.BindToControl(this, MainSearchStatus);
    searchPattern.Bind(this, MainSearchPattern, KeySearchPattern, true, true);
    resultsList.BindToControl(this, MainResultsList);
    useRegExp.Bind(this, MainUseRegExp, KeyUseRegExp, false);
    buildButton.SetText(StringBuildIndex);
    searchStatus.SetText(loam::String(noResultsText));
    if (LoadIndex()) {
        ShowIndexStatus();
    }
    AddLayoutControls(anchors);
    RestoreSize();
}

// A stored size may grow the window beyond its template, never shrink it below.
void SorvantaWindow::RestoreSize() {
    loam::Preferences& preferences = loam::GetPreferences();
    uint32_t width = 0;
    uint32_t height = 0;
    if (preferences.GetInt(KeyDialogWidth, width) && preferences.GetInt(KeyDialogHeight, height)) {
        quilt::Rect client;
        GetClientRect(client);
        client.right = std::max(client.right, client.left + static_cast<int32_t>(width));
        client.bottom = std::max(client.bottom, client.top + static_cast<int32_t>(height));
        SetClientRect(client);
    }
    if (ReadBool(KeyMaximised, false)) {
        SetShowState(quilt::ShowStateMaximised);
    }
}

void SorvantaWindow::OnCancel() {
    quilt::Rect client;
    GetClientRect(client);
    loam::Preferences& preferences = loam::GetPreferences();
    preferences.SetInt(KeyDialogWidth, static_cast<uint32_t>(client.GetWidth()));
    preferences.SetInt(KeyDialogHeight, static_cast<uint32_t>(client.GetHeight()));
    preferences.SetBool(KeyMaximised, GetShowState() == quilt::ShowStateMaximised);
    SaveAutoPrefs();
    Dialog::OnCancel();
}

// A failed load leaves the old index in force. A new one replaces the old, and the rows on the
// screen refer to the old one's result table: the list and its outcome line are given up with
// it, so that no sort or double click reaches into an index that is gone.
bool SorvantaWindow::LoadIndex() {
    auto loaded = std::make_unique<IndexData>();
    loam::FileSpec file = SorvantaApp::GetIndexFile();
    loadedStamp = file.GetStamp();
    if (file.GetKind() != loam::FileKindFile) {
        indexStatus.SetText(StringNoIndex);
        return false;
    }
    if (!loaded->Load(file)) {
        indexStatus.SetText(loam::GetCurrentErrorInfo().GetMessage());
        loam::ClearErrors();
        return false;
    }
    if (index != nullptr) {
        resultsList.Clear();
        searchStatus.SetText(loam::String());
    }
    index = std::move(loaded);
    return true;
}

void SorvantaWindow::ShowIndexStatus() {
    buildButton.SetText(StringBuildIndex);
    loam::String line;
    FormatIndexStatus(line, *index, SorvantaApp::GetIndexFile(), loam::DateTime::Now());
    indexStatus.SetText(line);
}

// Another process may have replaced the index file since the last load: a build from the
// command line or a timer. The new index is taken before a search, when the rows on the screen
// are about to be replaced anyway. The file of the window's own build is left alone while the
// build writes it. A file that fails to load is tried again only once it has changed again.
void SorvantaWindow::PickUpNewIndex() {
    bool building = builder != nullptr && !buildFinished;
    if (building || SorvantaApp::GetIndexFile().GetStamp() == loadedStamp) {
        return;
    }
    if (LoadIndex()) {
        ShowIndexStatus();
    }
}

// The pattern counts as used before the search, whether it then fails or not.
bool SorvantaWindow::OnFind() {
    PickUpNewIndex();
    if (index == nullptr) {
        quilt::ShowAlert(Text(StringIndexUnavailableTitle), Text(StringNoValidIndex), this);
        return true;
    }
    loam::String pattern;
    searchPattern.GetText(pattern);
    searchPattern.AddToHistory(pattern);
    quilt::WaitCursor wait;
    Update();
    uint32_t startTick = quilt::GetTickCount();
    bool autoWildcards = ReadBool(KeyAutoWildcards, false);
    if (!index->Search(pattern, useRegExp.IsChecked(), autoWildcards, this)) {
        loam::ClearErrors();
        quilt::ShowAlert(Text(StringSearchFailedTitle), Text(StringSearchSyntaxError), this);
        return true;
    }
    ShowOutcome(pattern, startTick);
    return true;
}

// The limit decides for all the results at once: they are shown whole or not at all.
void SorvantaWindow::ShowOutcome(const loam::String& pattern, uint32_t startTick) {
    int32_t count = index->GetResultCount();
    int32_t limit = SorvantaOptions::GetMaxResults();
    if (count > limit && AskToRaiseLimit()) {
        SorvantaOptions::SetMaxResults(count);
        limit = SorvantaOptions::GetMaxResults();
    }
    if (GetOutcomeRows(count, limit) == OutcomeRows::Fill) {
        resultsList.Fill(*index);
    } else {
        resultsList.Clear();
    }
    SearchFacts facts{pattern, count, limit, GetElapsedSeconds(startTick, quilt::GetTickCount()),
                      index->GetResultsTotalSize()};
    loam::String line;
    FormatSearchOutcome(facts, line);
    searchStatus.SetText(line);
}

// After a finished build the builder still exists: the click tidies up, then starts anew.
bool SorvantaWindow::OnBuildIndex() {
    if (buildFinished) {
        FinishBuild();
    }
    if (builder == nullptr) {
        StartBuild();
    } else {
        CancelBuild();
    }
    return true;
}

// From here on the index file's name holds the new, unfinished index: the previous one is gone.
void SorvantaWindow::StartBuild() {
    indexFile = std::make_unique<loam::DiskFile>();
    loam::FileSpec location;
    if (SorvantaApp::GetIndexFileToWrite(location))
        writer = BinaryFileIndexWriter::Begin(*indexFile, location);
    if (writer == nullptr) {
        indexFile.reset();
        loam::ReportError();
        return;
    }
    builder = std::make_unique<VolumeIndexBuilder>(this);
    builder->Start(writer.get());
    buildButton.SetText(StringCancelBuild);
    indexStatus.SetText(StringBuildingIndex);
}

void SorvantaWindow::OnIndexProgress(const loam::FileSpec& folder) {
    loam::String path;
    folder.GetPathWithSeparator(path, loam::NativeSeparator);
    indexStatus.SetText(path);
}

// Runs inside the builder's idle slice: the builder stays until a later event.
void SorvantaWindow::OnIndexFinished() {
    if (LoadIndex()) {
        ShowIndexStatus();
    }
    buildFinished = true;
}

// The abandoned file loads as an index of no records, which replaces the old one; the status
// line keeps the words of the interruption.
void SorvantaWindow::CancelBuild() {
    builder->Stop();
    FinishBuild();
    buildButton.SetText(StringBuildIndex);
    indexStatus.SetText(StringBuildInterrupted);
}

void SorvantaWindow::FinishBuild() {
    DiscardBuild();
    LoadIndex();
}

// The writer goes first, closing its file unsealed unless the build finished; the builder goes
// last, as it still points at the writer it was given.
void SorvantaWindow::DiscardBuild() {
    if (builder != nullptr) {
        builder->Stop();
    }
    writer.reset();
    if (indexFile != nullptr && indexFile->IsOpen()) {
        indexFile->Close();
    }
    indexFile.reset();
    builder.reset();
    buildFinished = false;
}

bool SorvantaWindow::OnResultActivated(int32_t) {
    loam::FileSpec folder;
    if (resultsList.GetSelectedFolder(folder) && !quilt::OpenFolderInShell(folder)) {
        loam::ReportError();
    }
    return true;
}

bool SorvantaWindow::OnResultMenu(int32_t where) {
    quilt::PopupMenu menu;
    if (!resultsList.PrepareMenu(menu)) {
        return true;
    }
    int32_t command = menu.TrackAt(resultsList, quilt::UnpackPoint(where));
    if (command != 0) {
        OnCommand(command);
    }
    return true;
}

bool SorvantaWindow::OnOpenResult() {
    loam::FileSpec entry;
    if (resultsList.GetSelectedEntry(entry) && !quilt::OpenWithDefaultApplication(entry)) {
        loam::ReportError();
    }
    return true;
}

bool SorvantaWindow::OnShowResultInFolder() {
    loam::FileSpec entry;
    loam::FileSpec folder;
    if (resultsList.GetSelectedEntry(entry) && resultsList.GetSelectedFolder(folder) &&
        !quilt::ShowInFolder(entry, folder)) {
        loam::ReportError();
    }
    return true;
}

bool SorvantaWindow::OnCopyResultPath() {
    loam::FileSpec entry;
    if (resultsList.GetSelectedEntry(entry)) {
        quilt::CopyTextToClipboard(entry.GetPath());
    }
    return true;
}

bool SorvantaWindow::OnCopyResultName() {
    loam::String name;
    if (resultsList.GetSelectedName(name)) {
        quilt::CopyTextToClipboard(name);
    }
    return true;
}

bool SorvantaWindow::OnOptions() {
    SorvantaOptions options(this);
    options.RunModal(true);
    return true;
}
