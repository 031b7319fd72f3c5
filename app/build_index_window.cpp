#include "app/build_index_window.h"

#include "app/resources/sorvanta_templates.h"
#include "app/sorvanta_app.h"
#include "index/index_data.h"
#include "loam/error.h"
#include "quilt/application.h"
#include "quilt/timer.h"
#include "quilt/window_imp.h"

BuildIndexWindow::BuildIndexWindow() : Dialog(DialogResource(DialogRebuildIndex), nullptr) {}

BuildIndexWindow::~BuildIndexWindow() {
    DiscardBuild();
}

void BuildIndexWindow::OnInitDialog() {
    Dialog::OnInitDialog();
    folderLine.BindToControl(this, RebuildFolderLine);
    quilt::Timer::StartWindowTimer(true, TickInterval, *this);
    SetShowState(quilt::ShowStateMinimised);
}

bool BuildIndexWindow::OnTimer(uint32_t id) {
    if (builder == nullptr) {
        StartBuild();
    } else {
        ShowProgress(id);
    }
    return true;
}

void BuildIndexWindow::OnCancel() {
    DiscardBuild();
    Dialog::OnCancel();
}

// From here on the index file's name holds the new, unfinished index: the previous one is gone.
void BuildIndexWindow::StartBuild() {
    // The ticks go on under the report of a failed attempt; one report at a time.
    if (loam::GetErrorState().IsReporting()) {
        return;
    }
    if (indexFile == nullptr) {
        indexFile = std::make_unique<loam::DiskFile>();
    }
    loam::FileSpec location;
    if (SorvantaApp::GetIndexFileToWrite(location)) {
        writer = BinaryFileIndexWriter::Begin(*indexFile, location);
    }
    if (writer == nullptr) {
        ReportFailure();
        // Nobody could fix the cause and the ticks would report it for ever.
        if (!GetDialogImp()->IsUserPresent()) {
            OnCancel();
        }
        return;
    }
    builder = std::make_unique<VolumeIndexBuilder>(nullptr);
    builder->Start(writer.get());
}

void BuildIndexWindow::ShowProgress(uint32_t timerId) {
    loam::FileSpec folder;
    if (builder->IsRunning(&folder)) {
        loam::String text;
        folder.GetPathWithSeparator(text, loam::NativeSeparator);
        folderLine.SetContent(text);
        return;
    }
    quilt::Timer::Stop(timerId);
    DiscardBuild();
    CheckWrittenIndex();
    OnCancel();
}

// The walk does not look at its writes, so a full, read-only or vanished folder shows only in
// the file it leaves: the run loads what it wrote and reports the loader's failure.
void BuildIndexWindow::CheckWrittenIndex() {
    IndexData written;
    bool loaded = written.Scan(SorvantaApp::GetIndexFile(), ScanMatches::Counted);
    while (loaded && written.GetRecordCount() > 0) {
        loaded = written.TakeNextWindow();
    }
    if (loaded) {
        loam::ClearErrors();
        return;
    }
    ReportFailure();
}

// A run from a timer or cron has only the exit code to go by, so a failed build ends the process
// with 1, whether or not someone saw the report.
void BuildIndexWindow::ReportFailure() {
    if (quilt::Application* application = quilt::Application::GetCurrent()) {
        application->SetExitCode(1);
    }
    loam::ReportError();
}

// The writer closes the file without sealing it; the builder goes last, as it still points at
// the writer it was given.
void BuildIndexWindow::DiscardBuild() {
    if (builder != nullptr && builder->IsRunning(nullptr)) {
        builder->Stop();
    }
    writer.reset();
    if (indexFile != nullptr && indexFile->IsOpen()) {
        indexFile->Close();
    }
    indexFile.reset();
    builder.reset();
}
