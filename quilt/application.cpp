#include "quilt/application.h"

#include "quilt/imp_factory.h"
#include "quilt/window.h"

#include <vector>

namespace quilt {

namespace {

Application* currentApplication = nullptr;

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
    currentApplication = this;
}

Application::~Application() {
    mainWindow.reset();
    imp.reset();
    if (currentApplication == this) {
        currentApplication = nullptr;
    }
}

Application* Application::GetCurrent() {
    return currentApplication;
}

Window* Application::GetMainWindow() {
    return currentApplication != nullptr ? currentApplication->mainWindow.get() : nullptr;
}

bool Application::OnCommand(int32_t id) {
    if (mainWindow != nullptr && mainWindow->OnCommand(id)) {
        return true;
    }
    return MessageTarget::OnCommand(id);
}

void Application::CreateImp() {
    imp = GetImpFactory().CreateApplicationImp();
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
    if (currentApplication != nullptr && currentApplication->GetImp() != nullptr) {
        currentApplication->GetImp()->NoteUserInput(time);
    }
}

void QuitApplication() {
    if (currentApplication != nullptr && currentApplication->GetImp() != nullptr) {
        currentApplication->GetImp()->Quit();
    }
}

int RunProcess(Application* (*create)(), int argc, char** argv) {
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
    return 0;
}

} // namespace quilt
