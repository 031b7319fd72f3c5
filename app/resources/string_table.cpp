#include "app/resources/string_table.h"

#include "loam/resource.h"

#include <iterator>

namespace {

// Users and tests compare these byte for byte: the double spaces are the program's own.
constexpr loam::StringTableEntry strings[] = {
    {StringTitle, "Sorvanta"},
    {StringBuildIndex, "&Build Index"},
    {StringCancelBuild, "&Cancel"},
    {StringBuildingIndex, "Building index..."},
    {StringBuildInterrupted, "Index unavailable - user interrupted index building."},
    {StringIndexStatus, "Index status %s, updated %s, %s files in %s folders, totalling %s"},
    {StringStateGood, "good"},
    {StringStateIncomplete, "incomplete"},
    {StringStateUnknown, "unknown"},
    {StringTooManyToShow,
     "There are more than %d results to display - try narrowing your search..."},
    {StringResultsFound,
     "%s results found matching '%s' in %.1f seconds, totalling %s - see below..."},
    {StringNoIndex, "No index available."},
    {StringMoveNoSpace, "There is not enough space to store the index in the new location - "
                        "choose a different location instead."},
    {StringMoveFailedTitle, "Unable to move index file..."},
    {StringMoveNotRemoved,
     "The index was copied successfully to the new location, but the original index could not "
     "be removed.  The index has been restored to its original position."},
    {StringMoveTargetExists, "The index file could not be moved to the new location, because a "
                             "file of that name already exists."},
    {StringYes, "&Yes"},
    {StringNo, "&No"},
    {StringMoveAnyway, "There was a problem moving the existing index file.  Do you want to use "
                       "the new location to store new indexes in anyway?"},
    {StringIndexLocationTitle, "Index Location..."},
    {StringMovingIndex, "Moving existing index file..."},
    {StringMoveCopyFailed, "The index could not be copied to the new location."},
    {StringMoveReason, "(Reason: %s)"},
    {StringNoResults, "No results found matching '%s'."},
    {StringOneResultFound, "1 result found matching '%s' in %.1f seconds - see below..."},
    {StringRaiseLimit,
     "The number of search results found is greater than Sorvanta is currently configured to "
     "show.  Do you want to increase the limit so that you can view all the results of the "
     "search?"},
    {StringTooManyResultsTitle, "Too many results..."},
    {StringLimitLabel, "%d,000"},
    {StringSearchFailedTitle, "Search failed"},
    {StringSearchSyntaxError, "The search failed because the regular expression you have "
                              "entered has a syntax error."},
    {StringNoValidIndex, "There is currently no valid index available.  Click the Build Index "
                         "button to create an index."},
    {StringIndexUnavailableTitle, "Index not available"},
    {StringSearching, "Searching..."},
};

} // namespace

void RegisterSorvantaStrings() {
    static const bool registered =
        (loam::RegisterStringTable(strings, static_cast<int>(std::size(strings))), true);
    (void)registered;
}
