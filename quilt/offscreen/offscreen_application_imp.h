#pragma once

#include "quilt/application.h"

namespace quilt {

// The application's side of the offscreen backend: its events are the desktop's. In a headless
// run the loop ends by itself once no event can come any more, as nothing could wake it.
class Offscreen_ApplicationImp : public ApplicationImp {
public:
    void PumpMessages() override;
    bool WaitMessage() override;
    bool CanReceiveEvents() override;
};

} // namespace quilt
