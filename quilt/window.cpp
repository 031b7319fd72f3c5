#include "quilt/window.h"

#include "quilt/imp_factory.h"
#include "quilt/timer.h"

#include <cstdarg>

namespace quilt {

Window::Window() : Window(GetImpFactory().CreateWindowImp()) {}

Window::Window(std::unique_ptr<WindowImp> windowImp) : imp(std::move(windowImp)) {
    imp->SetOwner(this);
}

Window::~Window() {
    imp->Destroy();
    Timer::ForgetWindow(this);
}

bool Window::OnCommand(int32_t id) {
    if (MessageTarget::OnCommand(id)) {
        return true;
    }
    return parent != nullptr && parent->OnCommand(id);
}

bool Window::AsDialog(Dialog**) {
    return false;
}

bool Window::BindToControl(Window* parentWindow, int32_t id) {
    parent = parentWindow;
    return imp->BindToControl(parentWindow, id);
}

bool Window::BindToHandle(Window* parentWindow, NativeHandle handle) {
    parent = parentWindow;
    return imp->BindToHandle(parentWindow, handle);
}

void Window::BeginResize() {
    imp->BeginResize();
}

void Window::EndResize() {
    imp->EndResize();
}

bool Window::Create(Window* parentWindow, int32_t kind, const loam::String* title) {
    parent = parentWindow;
    return imp->Create(*this, parentWindow, kind, title);
}

bool Window::CreateFromResource(Window* parentWindow, int32_t kind, const loam::ResourceId* title) {
    parent = parentWindow;
    return imp->CreateFromResource(*this, parentWindow, kind, title);
}

bool Window::CreateControl(Window* parentWindow, const ChildControl& childSpec) {
    parent = parentWindow;
    return parentWindow != nullptr && parentWindow->GetImp()->CreateChildControl(*this, childSpec);
}

void Window::Unbind() {
    parent = nullptr;
    imp->Unbind();
}

void Window::MoveBy(int32_t dx, int32_t dy, bool repaint) {
    Rect rect;
    if (!GetRect(rect)) {
        return;
    }
    rect.Offset(dx, dy);
    SetRect(rect, repaint);
}

bool Window::SetText(const loam::ResourceId& text) {
    loam::String loaded;
    if (!loam::LoadResourceString(text, loaded)) {
        return false;
    }
    return SetText(loaded);
}

bool Window::SetText(uint16_t stringId) {
    return SetText(loam::StringResource(stringId));
}

bool Window::SetTextFormat(const char* format, ...) {
    loam::String text;
    va_list args;
    va_start(args, format);
    text.FormatArgs(format, args);
    va_end(args);
    return SetText(text);
}

bool Window::IsTextEmpty() {
    loam::String text;
    return !GetText(text) || text.IsEmpty();
}

void Window::SetScrollStep(uint32_t mask, int32_t step) {
    if ((mask & ScrollBarHorizontal) != 0) {
        scrollStepH = step;
    }
    if ((mask & ScrollBarVertical) != 0) {
        scrollStepV = step;
    }
}

int32_t Window::GetScrollStep(uint32_t mask) const {
    return (mask & ScrollBarHorizontal) != 0 ? scrollStepH : scrollStepV;
}

void Window::MapPoints(Window* target, Point* points, int32_t count) {
    imp->MapPoints(target, points, count);
}

void Window::MapRect(Window* target, Rect& rect) {
    Point corners[2] = {{rect.left, rect.top}, {rect.right, rect.bottom}};
    MapPoints(target, corners, 2);
    rect = Rect{corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

} // namespace quilt
