#pragma once

#include "quilt/application.h"
#include "quilt/clock.h"
#include "quilt/dialog.h"
#include "quilt/offscreen/testing/offscreen_driver.h"
#include "quilt/window.h"

#include <gtest/gtest.h>

#include <functional>
#include <span>
#include <vector>

using quilt::ControlKind;
using quilt::Dialog;
using quilt::DialogControlTemplate;
using quilt::DialogTemplate;
using quilt::OffscreenDriver;
using quilt::Rect;

inline loam::ResourceId DialogResource(uint16_t id) {
    return loam::ResourceId{loam::ResourceKindDialog, id};
}

// A fresh offscreen desktop that knows the suite's dialog templates.
class TemplateTest : public testing::Test {
protected:
    explicit TemplateTest(std::span<const DialogTemplate> templates) {
        quilt::RegisterDialogTemplates(templates);
    }

    OffscreenDriver driver;
};

// An application with a shown main window, made on the offscreen backend.
class TestApplication : public quilt::Application {
public:
    TestApplication() {
        CreateImp();
        Start();
    }
    quilt::Window& GetWindow() { return *mainWindow; }
};

// Records the clock and the idle count of every call, and wants more while `rounds` lasts.
class RecordingIdleHandler : public quilt::IdleHandler {
public:
    bool OnIdle(uint32_t idleCount) override {
        times.push_back(quilt::GetTickCount());
        counts.push_back(idleCount);
        if (onIdle) {
            onIdle();
        }
        if (rounds == 0) {
            return false;
        }
        --rounds;
        return true;
    }

    int rounds = 0;
    std::function<void()> onIdle;
    std::vector<uint32_t> times;
    std::vector<uint32_t> counts;
};
