// SPDX-License-Identifier: MIT
#pragma once

/// State of an entry, stored as this number in the data file.
enum class EntryState : int {
    None = -1, ///< No state: the level above a file's root, and the open/create panel position.
    Todo = 0,
    WontDo = 1,
    Done = 2,
    Category = 3,
};
