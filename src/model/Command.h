// SPDX-License-Identifier: MIT
#pragma once

/// What a user can ask for with a key combination. The names of the values up to Exit are also the
/// names by which help texts refer to commands.
enum class Command : int {
    NoCommand = 0,
    GoToParent = 1,
    GoToFirst = 2,
    GoToPrevious = 3,
    GoToNext = 4,
    GoToLast = 5,
    GoToChild = 6,
    MoveCurrentLeft = 7,
    MoveCurrentToTop = 8,
    MoveCurrentUp = 9,
    MoveCurrentDown = 10,
    MoveCurrentToBottom = 11,
    MoveCurrentRight = 12,
    NewSibling = 13,
    Hide = 14,
    SaveChangesAndHide = 15,
    DiscardChanges = 16,
    MarkCurrentDone = 17,
    MarkCurrentTodo = 18,
    MarkCurrentWontDo = 19,
    MarkCurrentCategory = 20,
    RegisterShortcut = 21,
    AddEntryToTodoListAndShow = 22,
    ActivateTodoListWindow = 23,
    ShowFindWindow = 24,
    ShowCreateReportDialog = 25,
    ShowSettingsDialog = 26,
    ShowHelp = 27,
    Exit = 28,
    CommitEdit = 29, ///< Writes the edited text; has a binding, but no name in help texts.
};
