// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <compare>

/// Where an entry is: the position of its file in the open-file set and its row id in that file.
///
/// File indexes shift when files are opened, closed or reordered; whoever keeps an address across
/// such a change renumbers it from the signals of FileManager. Ordered by file index, then id.
struct EntryAddress {
    int fileIndex = -1; ///< 0-based position of the file; -1 means none.
    qint64 entryId = -1; ///< Row id of the entry; -1 means none.

    friend auto operator<=>(const EntryAddress &, const EntryAddress &) = default;
};
