// Shows the dialog of the toolkit's further controls on the desktop backend, for the desktop
// test to look at and drive. It ends when the dialog is closed.

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "support/further_controls_dialog.h"

#include <memory>

namespace {

class FurtherControlsApplication : public quilt::ApplicationDialog {
public:
    FurtherControlsApplication() { further_controls::Register(); }

    std::unique_ptr<quilt::Dialog> CreateDialog() override {
        return std::make_unique<FurtherControlsDialog>();
    }
};

} // namespace

quilt::Application* CreateApplication() {
    return new FurtherControlsApplication;
}
