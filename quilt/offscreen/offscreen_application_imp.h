#pragma once

#include "quilt/application.h"

namespace quilt {

// The application's side of the offscreen backend: its events are the desktop's. In a headless
// run the loop ends by itself once no event can come any more, as nothing could wake it.
class Offscreen_ApplicationImp : public ApplicationImp {
public:
    void PumpMessages() override;
    bool WaitMessage(std::optional<uint32_t> timeout) override;
    bool CanReceiveEvents() override;

    // The offscreen desktop has no notification area.
    bool AddTrayIcon(const loam::ResourceId&, const loam::ResourceId&) override { return false; }
    bool ModifyTrayIcon(const loam::ResourceId&, const loam::ResourceId&) override { return false; }
    void RemoveTrayIcon() override {}
    uint32_t ShowTrayMenu(const loam::ResourceId&, uint32_t) override { return 0; }

protected:
    bool RegisterNativeHotKey(uint32_t id, int32_t key, uint32_t modifiers) override;
    void UnregisterNativeHotKey(uint32_t id) override;
};

} // namespace quilt
