#include "index/index_data.h"
#include "loam/resource.h"
#include "quilt/progress_dialog.h"
#include "search/index_searcher.h"

namespace {

// "Searching...": the title of the progress dialog, for a search that outlasts its grace.
constexpr uint16_t SearchingTitleString = 135;

} // namespace

// The dialog stays invisible for a search that ends within its grace. Whether the user ended
// it early is not asked: the matches found so far are then the result.
bool IndexData::Search(const loam::String& pattern, bool isRegExp, bool autoWildcards,
                       quilt::Window* parent) {
    IndexSearcher searcher;
    if (!searcher.Start(this, pattern, isRegExp, autoWildcards)) {
        return false;
    }
    quilt::ProgressDialog dialog(&searcher, loam::StringResource(SearchingTitleString).GetString(),
                                 parent);
    dialog.RunWithBarNoCancel();
    return true;
}
