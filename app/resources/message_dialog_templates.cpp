#include "app/resources/message_dialog_templates.h"

void RegisterMessageDialogTemplates() {
    quilt::RegisterDialogTemplates(MessageDialogTemplates);
}
