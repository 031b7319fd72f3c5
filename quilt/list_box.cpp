#include "quilt/list_box.h"

#include "quilt/imp_factory.h"

namespace quilt {

ListBox::ListBox() : ListControl(GetImpFactory().CreateListBoxImp()) {
    boxImp = dynamic_cast<ListBoxImp*>(GetImp());
}

void ListBox::CheckAll() {
    for (int32_t row = 0; row < GetCount(); ++row) {
        SetItemChecked(row, true);
    }
}

void ListBox::UncheckAll() {
    for (int32_t row = 0; row < GetCount(); ++row) {
        SetItemChecked(row, false);
    }
}

} // namespace quilt
