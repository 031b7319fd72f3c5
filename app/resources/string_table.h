#pragma once

#include <cstdint>

// The ids of the program's texts. The texts themselves live in string_table.cpp.
enum SorvantaString : uint16_t {
    StringTitle = 100,
    StringBuildIndex = 101,
    StringCancelBuild = 102,
    StringBuildingIndex = 103,
    StringBuildInterrupted = 104,
    StringIndexStatus = 106,
    StringStateGood = 107,
    StringStateIncomplete = 108,
    StringStateUnknown = 109,
    StringTooManyToShow = 110,
    StringResultsFound = 111,
    StringNoIndex = 112,
    StringMoveNoSpace = 113,
    StringMoveFailedTitle = 114,
    StringMoveNotRemoved = 115,
    StringMoveTargetExists = 118,
    StringYes = 119,
    StringNo = 120,
    StringMoveAnyway = 121,
    StringIndexLocationTitle = 122,
    StringMovingIndex = 123,
    StringMoveCopyFailed = 124,
    StringMoveReason = 125,
    StringNoResults = 126,
    StringOneResultFound = 127,
    StringRaiseLimit = 128,
    StringTooManyResultsTitle = 129,
    StringLimitLabel = 130,
    StringSearchFailedTitle = 131,
    StringSearchSyntaxError = 132,
    StringNoValidIndex = 133,
    StringIndexUnavailableTitle = 134,
    StringSearching = 135,
};

// Makes the program's texts known to LoadResourceString. Calls after the first do nothing.
void RegisterSorvantaStrings();
