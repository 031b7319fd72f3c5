#pragma once

#include "loam/file_spec.h"
#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/message_loop.h"
#include "quilt/message_target.h"

#include <cstdint>
#include <memory>
#include <set>

namespace quilt {

class Application;
class Window;

// The platform side of the application: its events and its main loop. The loop's rule is the
// toolkit's own (MessageLoop); a backend supplies the events.
class ApplicationImp : public EventSource {
public:
    ApplicationImp() = default;
    ApplicationImp(const ApplicationImp&) = delete;
    ApplicationImp& operator=(const ApplicationImp&) = delete;

    void SetApplication(Application* owner) { application = owner; }
    Application* GetApplication() const { return application; }

    // Prepares the platform before the main window exists; false stops the start.
    virtual bool Initialise() { return true; }
    // Runs the main loop to its end.
    virtual void Run();
    virtual bool PrepareExit() { return true; }
    // Asks for an idle round.
    virtual void WakeIdle() { loop.WakeIdle(); }
    virtual void NoteUserInput(uint32_t time) { loop.NoteUserInput(time); }
    virtual void Quit() { loop.Quit(); }

    // The program's arguments, without its own name, joined by single blanks.
    void SetCommandLine(const loam::String& text) { commandLine = text; }
    const loam::String& GetCommandLine() const { return commandLine; }

    MessageLoop& GetLoop() { return loop; }

private:
    Application* application = nullptr;
    MessageLoop loop;
    loam::String commandLine;
};

// Anything that wants idle time: a bounded piece of work per call.
class IdleHandler {
public:
    IdleHandler() = default;
    IdleHandler(const IdleHandler&) = delete;
    IdleHandler& operator=(const IdleHandler&) = delete;
    virtual ~IdleHandler();

    // Does a bounded piece of work; true when it wants to be called again soon. Must not
    // destroy the handler itself.
    virtual bool OnIdle(uint32_t idleCount) = 0;

    // The first call registers the handler, which wakes idle time; later calls only enable it,
    // so it runs after the next input or wake and two quiet seconds.
    void EnableIdle();
    void DisableIdle() { enabled = false; }
    bool IsIdleEnabled() const { return enabled; }

private:
    bool registered = false;
    bool enabled = false;
};

// The one application object of the process. It owns the main window and the platform side.
class Application : public MessageTarget {
public:
    Application();
    ~Application() override;

    static Application* GetCurrent();
    static Window* GetMainWindow();

    // Asks the main window first.
    bool OnCommand(int32_t id) override;
    virtual void CreateImp();
    // Hands a non-empty command line, without surrounding double quotes, to OpenFile.
    virtual void ProcessCommandLine();
    virtual void OnExit() {}
    // Creates and shows the main window; false stops the program.
    virtual bool Start();
    virtual bool CreateMainWindow();
    virtual void OpenFile(const loam::FileSpec&) {}

    void Run();
    void Shutdown();
    // One idle round over the enabled handlers; true when one of them wants more.
    bool RunIdle();
    uint32_t GetIdleCount() const { return idleCount; }
    // A map handler for a derived class: destroys the main window's native window.
    bool OnExitCommand();
    void PumpMessages();

    ApplicationImp* GetImp() const { return imp.get(); }
    const loam::String& GetCommandLine() const;
    const loam::ResourceId& GetTitleResource() const { return titleResource; }
    const loam::ResourceId& GetIconResource() const { return iconResource; }

    void AddIdleHandler(IdleHandler* handler);
    void RemoveIdleHandler(IdleHandler* handler);

protected:
    // Set by a derived class in its constructor.
    loam::ResourceId titleResource{loam::ResourceKindString, 0};
    loam::ResourceId menuResource{loam::ResourceKindMenu, 0};
    loam::ResourceId iconResource{loam::ResourceKindIcon, 0};
    loam::ResourceId smallIconResource{loam::ResourceKindIcon, 0};
    loam::ResourceId acceleratorResource{loam::ResourceKindAccelerators, 0};

    std::unique_ptr<Window> mainWindow;

private:
    std::unique_ptr<ApplicationImp> imp;
    uint32_t idleCount = 0;
    std::set<IdleHandler*> idleHandlers;
};

// User input at `time`, or now for 0, as the platform's event handling reports it.
void NoteUserInput(uint32_t time);
// Ends the main loop at its next pass.
void QuitApplication();

// The process: makes the application with `create`, starts it, runs the loop, shuts down.
// The exit code is 0 in every case.
int RunProcess(Application* (*create)(), int argc, char** argv);

} // namespace quilt

// Defined by the program: makes its application object.
quilt::Application* CreateApplication();
