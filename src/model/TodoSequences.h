// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <functional>
#include <vector>

/// How the to-do list numbers its rows: ascending, with random gaps.
class TodoSequences
{
public:
    /// The standard library's generator, unless a test wants to know what comes.
    using Random = std::function<int()>;

    explicit TodoSequences(std::vector<int> sequences, Random random = {});

    /// Makes room for a row at \a row (0 … count) and gives the number it is to carry: \a wanted
    /// (-1 for none) when it fits. When the neighbours leave no gap the shorter of the two runs
    /// beside it moves by one.
    int makeRoomForItemInsertionAndSelectSequence(int row, int wanted);

    /// The numbers, the moved ones included.
    const std::vector<int> &sequences() const { return m_sequences; }

    /// A random gap, 75 to 124.
    int getItemSequenceJump() const;
    /// The first number of an empty list, 1431655764 (two thirds of the largest) and up to 299
    /// more.
    int getItemSequenceStartingPoint() const;

private:
    int count() const { return static_cast<int>(m_sequences.size()); }
    int at(int row) const { return m_sequences[static_cast<std::size_t>(row)]; }
    void shift(int firstRow, int lastRow, int delta);
    int append(int wanted);
    int insertAtTop(int wanted);
    int insertBetween(int row, int wanted);
    int renumber(int row);
    int upwardRun(int row) const;
    int downwardRun(int row) const;

    std::vector<int> m_sequences;
    Random m_random;
};
