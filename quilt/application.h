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
    // The busy cursor came or went (WaitCursor): a backend shows it at once, as the program
    // may now block without serving events.
    virtual void OnWaitCursorChanged() {}

    // The icon in the desktop's notification area. A backend without one answers false.
    virtual bool AddTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip) = 0;
    virtual bool ModifyTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip) = 0;
    virtual void RemoveTrayIcon() = 0;
    // Shows the menu at the pointer with `defaultCommand` as its default item; the command the
    // user chose, 0 when none.
    virtual uint32_t ShowTrayMenu(const loam::ResourceId& menu, uint32_t defaultCommand) = 0;

    // A system-wide key (KeyCode and KeyModifier bits); its events reach
    // Application::DeliverHotKey. On success `id` is the new key's id, which is never 0.
    bool RegisterHotKey(int32_t key, uint32_t modifiers, uint32_t& id);
    // Sets `id` to 0.
    void UnregisterHotKey(uint32_t& id);

    // The program's arguments, without its own name, joined by single blanks.
    void SetCommandLine(const loam::String& text) { commandLine = text; }
    const loam::String& GetCommandLine() const { return commandLine; }

    MessageLoop& GetLoop() { return loop; }

protected:
    virtual bool RegisterNativeHotKey(uint32_t id, int32_t key, uint32_t modifiers) = 0;
    virtual void UnregisterNativeHotKey(uint32_t id) = 0;

private:
    static constexpr uint32_t FirstHotKeyId = 42;

    Application* application = nullptr;
    MessageLoop loop;
    uint32_t nextHotKeyId = FirstHotKeyId;
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

// What a click on the tray icon does.
enum TrayAction : uint32_t {
    TrayActionMenu = 0,
    TrayActionFirstCommand = 1,
    TrayActionSecondCommand = 2,
    TrayActionNone = 3,
};

// The event word of a click on the tray icon: one button, one kind of click, held modifiers.
enum TrayEventBit : uint32_t {
    TrayEventLeftButton = 0x00000002,
    TrayEventRightButton = 0x00000008,
    TrayEventControl = 0x00010000,
    TrayEventShift = 0x00020000,
    TrayEventAlt = 0x00040000,
    TrayEventPress = 0x01000000,
    TrayEventRelease = 0x02000000,
    TrayEventDoubleClick = 0x04000000,
};

// The one application object of the process. It owns the main window and the platform side.
class Application : public MessageTarget {
public:
    Application();
    ~Application() override;

    // Inline, and without touching the object, so that code which only asks for them (a job's
    // controller in the command-line finder) links nothing of the application or the windows.
    static Application* GetCurrent() { return current; }
    static Window* GetMainWindow() {
        return currentMainWindow != nullptr ? currentMainWindow->get() : nullptr;
    }

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
    virtual TrayAction ClassifyTrayEvent(uint32_t event);
    // The menu to show for a click with `event`.
    virtual loam::ResourceId PrepareTrayMenu(const loam::ResourceId& menu, uint32_t) {
        return menu;
    }
    virtual void OnHotKey(uint32_t) {}

    void Run();
    void Shutdown();
    // One idle round over the enabled handlers; true when one of them wants more.
    bool RunIdle();
    uint32_t GetIdleCount() const { return idleCount; }
    // A map handler for a derived class: destroys the main window's native window.
    bool OnExitCommand();
    void PumpMessages();
    // Removes the tray icon, then ends the main loop at its next pass.
    void Quit();

    // A backend reports each click on its tray icon here.
    void OnTrayEvent(uint32_t event);
    // A hot key's event, which counts as user input at `time`.
    void DeliverHotKey(uint32_t id, uint32_t time);
    // Shows `icon` and `tip` in the notification area, in place of the tray's own, until
    // RestoreTrayIcon; a click then gives `command` instead of the first tray command, unless
    // it is 0.
    bool OverrideTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip,
                          uint32_t command);
    void RestoreTrayIcon();
    bool IsTrayActive() const { return trayActive; }
    bool RegisterHotKey(int32_t key, uint32_t modifiers, uint32_t& id);
    void UnregisterHotKey(uint32_t& id);
    bool IsMinimiseToTray() const { return useTray && minimiseToTray; }

    ApplicationImp* GetImp() const { return imp.get(); }
    const loam::String& GetCommandLine() const;
    const loam::ResourceId& GetTitleResource() const { return titleResource; }
    const loam::ResourceId& GetIconResource() const { return iconResource; }

    void AddIdleHandler(IdleHandler* handler);
    void RemoveIdleHandler(IdleHandler* handler);

    // What the process gives back at its end: 0 unless a window set another code, for a run
    // whose caller reads it.
    void SetExitCode(int code) { exitCode = code; }
    int GetExitCode() const { return exitCode; }

protected:
    // Set by a derived class in its constructor.
    loam::ResourceId titleResource{loam::ResourceKindString, 0};
    loam::ResourceId menuResource{loam::ResourceKindMenu, 0};
    loam::ResourceId iconResource{loam::ResourceKindIcon, 0};
    loam::ResourceId smallIconResource{loam::ResourceKindIcon, 0};
    loam::ResourceId acceleratorResource{loam::ResourceKindAccelerators, 0};
    loam::ResourceId trayMenuResource{loam::ResourceKindMenu, 0};
    loam::ResourceId trayTipResource{loam::ResourceKindString, 0};
    uint32_t firstTrayCommand = 0;
    uint32_t secondTrayCommand = 0;
    // Put an icon in the notification area at start.
    bool useTray = false;
    // With the tray in use, show the main window at start; otherwise it starts hidden.
    bool showAtStart = true;
    // With the tray in use, minimising the main window hides it.
    bool minimiseToTray = true;

    std::unique_ptr<Window> mainWindow;

    void SetImp(std::unique_ptr<ApplicationImp> platform);

private:
    bool AddTrayIcon();
    bool UpdateTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip);
    void GiveCommand(uint32_t command);
    void ShowTrayMenu(uint32_t event);
    void GiveFirstTrayCommand(uint32_t event);
    void GiveSecondTrayCommand(uint32_t event);

    static inline Application* current = nullptr;
    static inline std::unique_ptr<Window>* currentMainWindow = nullptr;

    int exitCode = 0;
    bool trayActive = false;
    bool overrideActive = false;
    uint32_t overrideCommand = 0;
    std::unique_ptr<ApplicationImp> imp;
    uint32_t idleCount = 0;
    std::set<IdleHandler*> idleHandlers;
};

// User input at `time`, or now for 0, as the platform's event handling reports it.
void NoteUserInput(uint32_t time);
// Ends the main loop at its next pass.
void QuitApplication();

// The process: makes the application with `create`, starts it, runs the loop, shuts down.
// The exit code is the application's, 0 unless a window set another.
int RunProcess(Application* (*create)(), int argc, char** argv);

} // namespace quilt

// Defined by the program: makes its application object.
quilt::Application* CreateApplication();
