#pragma once

// A dialog that holds nothing but a results list, as the search window lays it out: the list's
// own behaviour, filled and sorted, without the rest of the window.

#include "quilt/dialog.h"
#include "quilt/dialog_template.h"
#include "search/search_results_list.h"

#include <cstdint>

namespace results_dialog {

inline constexpr uint16_t DialogId = 630;
inline constexpr int32_t ListId = 1034;

inline constexpr quilt::DialogControlTemplate controls[] = {
    {ListId,
     quilt::ControlKind::ListView,
     "",
     {7, 43, 292, 69},
     quilt::StyleReportView | quilt::StyleSingleSelection | quilt::StyleSortAscending},
};

inline constexpr quilt::DialogTemplate templates[] = {
    {DialogId, "Results", 306, 140, "MS Sans Serif", 8, 0, controls},
};

} // namespace results_dialog

class ResultsDialog : public quilt::Dialog {
public:
    ResultsDialog() : Dialog({loam::ResourceKindDialog, results_dialog::DialogId}, nullptr) {}
    static void Register() { quilt::RegisterDialogTemplates(results_dialog::templates); }
    void OnInitDialog() override {
        Dialog::OnInitDialog();
        list.BindToControl(this, results_dialog::ListId);
    }
    SearchResultsList list;
};
