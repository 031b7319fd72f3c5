#include "quilt/application.h"

#include "quilt/imp_factory.h"
#include "quilt/window.h"

#include <iterator>
#include <utility>
#include <vector>

namespace quilt {

namespace {

loam::String JoinArguments(int argc, char** argv) {
    loam::String text;
    for (int i = 1; i < argc; ++i) {
        if (i > 1) {
            text.Append(' ');
        }
        text.Append(argv[i]);
    }
    return text;
}

} // namespace

bool ApplicationImp::RegisterHotKey(int32_t key, uint32_t modifiers, uint32_t& id) {
    if (!RegisterNativeHotKey(nextHotKeyId, key, modifiers)) {
        return false;
    }
    id = nextHotKeyId++;
    return true;
}

void ApplicationImp::UnregisterHotKey(uint32_t& id) {
    UnregisterNativeHotKey(id);
    id = 0;
}

void ApplicationImp::Run() {
    if (application != nullptr) {
        loop.Run(*this, *application);
    }
}

IdleHandler::~IdleHandler() {
    if (Application* application = Application::GetCurrent()) {
        application->RemoveIdleHandler(this);
    }
}

void IdleHandler::EnableIdle() {
    Application* application = Application::GetCurrent();
    if (!registered && application != nullptr) {
        application->AddIdleHandler(this);
        registered = true;
    }
    enabled = true;
}

Application::Application() {
    current = this;
    currentMainWindow = &mainWindow;
}

Application::~Application() {
    mainWindow.reset();
    imp.reset();
    if (current == this) {
        current = nullptr;
        currentMainWindow = nullptr;
    }
}

bool Application::OnCommand(int32_t id) {
    if (mainWindow != nullptr && mainWindow->OnCommand(id)) {
        return true;
    }
    return MessageTarget::OnCommand(id);
}

void Application::CreateImp() {
    SetImp(GetImpFactory().CreateApplicationImp());
}

void Application::SetImp(std::unique_ptr<ApplicationImp> platform) {
    imp = std::move(platform);
    imp->SetApplication(this);
}

void Application::ProcessCommandLine() {
    loam::String text = GetCommandLine();
    if (text.IsEmpty()) {
        return;
    }
    int32_t length = text.GetLength();
    const char* chars = text.GetCString();
    if (length >= 2 && chars[0] == '"' && chars[length - 1] == '"') {
        text = text.Mid(1, length - 2);
    }
    OpenFile(loam::FileSpec(text));
}

bool Application::Start() {
    if (!CreateMainWindow()) {
        return false;
    }
    if (!mainWindow->CreateFromResource(nullptr, WindowKindTop, &titleResource)) {
        return false;
    }
    if (useTray) {
        if (!AddTrayIcon()) {
            return false;
        }
        if (!showAtStart) {
            return true;
        }
    }
    mainWindow->Show(ShowModeShow);
    mainWindow->Update();
    return true;
}

bool Application::CreateMainWindow() {
    mainWindow = std::make_unique<Window>();
    return true;
}

void Application::Run() {
    imp->Run();
}

void Application::Shutdown() {
    imp->PrepareExit();
    OnExit();
}

bool Application::RunIdle() {
    // A handler may enable or destroy another one from its OnIdle.
    std::vector<IdleHandler*> round(idleHandlers.begin(), idleHandlers.end());
    uint32_t wantMore = 0;
    for (IdleHandler* handler : round) {
        if (idleHandlers.count(handler) != 0 && handler->IsIdleEnabled() &&
            handler->OnIdle(idleCount)) {
            ++wantMore;
        }
    }
    if (wantMore > 0) {
        ++idleCount;
        return true;
    }
    idleCount = 0;
    return false;
}

bool Application::OnExitCommand() {
    if (mainWindow != nullptr) {
        mainWindow->Destroy();
    }
    return true;
}

void Application::PumpMessages() {
    imp->PumpMessages();
}

void Application::Quit() {
    if (trayActive || overrideActive) {
        imp->RemoveTrayIcon();
        trayActive = false;
        overrideActive = false;
    }
    imp->Quit();
}

TrayAction Application::ClassifyTrayEvent(uint32_t event) {
    auto has = [event](uint32_t bits) { return (event & bits) != 0; };
    if (has(TrayEventRightButton) && has(TrayEventRelease)) {
        return TrayActionMenu;
    }
    if (!has(TrayEventLeftButton) || !has(TrayEventPress | TrayEventDoubleClick)) {
        return TrayActionNone;
    }
    return has(TrayEventShift) ? TrayActionSecondCommand : TrayActionFirstCommand;
}

void Application::OnTrayEvent(uint32_t event) {
    const TrayAction action = ClassifyTrayEvent(event);
    if (action == TrayActionMenu)
        ShowTrayMenu(event);
    else if (action == TrayActionFirstCommand)
        GiveFirstTrayCommand(event);
    else if (action == TrayActionSecondCommand)
        GiveSecondTrayCommand(event);
}

void Application::ShowTrayMenu(uint32_t event) {
    loam::ResourceId menu = PrepareTrayMenu(trayMenuResource, event);
    GiveCommand(imp->ShowTrayMenu(menu, firstTrayCommand));
}

void Application::GiveFirstTrayCommand(uint32_t) {
    GiveCommand(overrideActive && overrideCommand != 0 ? overrideCommand : firstTrayCommand);
}

void Application::GiveSecondTrayCommand(uint32_t) {
    GiveCommand(secondTrayCommand);
}

void Application::GiveCommand(uint32_t command) {
    if (command != 0) {
        OnCommand(static_cast<int32_t>(command));
    }
}

void Application::DeliverHotKey(uint32_t id, uint32_t time) {
    OnHotKey(id);
    imp->NoteUserInput(time);
}

bool Application::AddTrayIcon() {
    trayActive = imp->AddTrayIcon(smallIconResource, trayTipResource);
    return trayActive;
}

// The icon is added when none is shown yet, so an override can show one without the tray.
bool Application::UpdateTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip) {
    if (trayActive || overrideActive) {
        return imp->ModifyTrayIcon(icon, tip);
    }
    return imp->AddTrayIcon(icon, tip);
}

bool Application::OverrideTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip,
                                   uint32_t command) {
    overrideCommand = command;
    if (!UpdateTrayIcon(icon, tip)) {
        return false;
    }
    overrideActive = true;
    return true;
}

void Application::RestoreTrayIcon() {
    if (!overrideActive) {
        return;
    }
    if (trayActive) {
        imp->ModifyTrayIcon(smallIconResource, trayTipResource);
    } else {
        imp->RemoveTrayIcon();
    }
    overrideActive = false;
}

bool Application::RegisterHotKey(int32_t key, uint32_t modifiers, uint32_t& id) {
    return imp->RegisterHotKey(key, modifiers, id);
}

void Application::UnregisterHotKey(uint32_t& id) {
    imp->UnregisterHotKey(id);
}

const loam::String& Application::GetCommandLine() const {
    return imp->GetCommandLine();
}

void Application::AddIdleHandler(IdleHandler* handler) {
    idleHandlers.insert(handler);
    if (imp != nullptr) {
        imp->WakeIdle();
    }
}

void Application::RemoveIdleHandler(IdleHandler* handler) {
    idleHandlers.erase(handler);
}

void NoteUserInput(uint32_t time) {
    Application* application = Application::GetCurrent();
    if (application != nullptr && application->GetImp() != nullptr) {
        application->GetImp()->NoteUserInput(time);
    }
}

void QuitApplication() {
    Application* application = Application::GetCurrent();
    if (application != nullptr && application->GetImp() != nullptr) {
        application->Quit();
    }
}

int RunProcess(Application* (*create)(), int argc, char** argv) {
    if (!GetImpFactory().CanRun()) {
        return 0;
    }
    std::unique_ptr<Application> application(create());
    if (application == nullptr) {
        return 0;
    }
    application->CreateImp();
    application->GetImp()->SetCommandLine(JoinArguments(argc, argv));
    if (!application->GetImp()->Initialise() || !application->Start()) {
        return 0;
    }
    application->ProcessCommandLine();
    application->Run();
    application->Shutdown();
    return application->GetExitCode();
}

} // namespace quilt
