// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Data files to measure on: a tree in which every entry has ten children until the wanted number
/// of entries is reached. The same number gives the same file.
namespace BenchFiles
{

inline constexpr int childrenPerEntry = 10;
/// Each such entry is on the to-do list, so that its length is the same in every file.
inline constexpr int todoCount = 20;

/// Path of the file with \a entryCount entries that \a side measures on. It lives as long as the
/// process; whoever changes it rolls back.
QString fileFor(const QString &side, int entryCount);

/// The \a i-th of a fixed sequence of entry ids spread over the whole file.
inline long long spreadId(long long i, int entryCount)
{
    return 2 + (i * 7919) % (entryCount - 1);
}

/// Parent of the entry \a id; entry 1 is the root.
inline long long parentOf(long long id)
{
    return (id - 2) / childrenPerEntry + 1;
}

/// Number of the entry \a id among its siblings.
inline int sequenceOf(long long id)
{
    return static_cast<int>((id - 2) % childrenPerEntry);
}

/// An entry whose children are all there, the \a i-th of a fixed sequence.
inline long long spreadParent(long long i, int entryCount)
{
    return 1 + (i * 7919) % (entryCount / childrenPerEntry - 1);
}

} // namespace BenchFiles
