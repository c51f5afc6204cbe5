// SPDX-License-Identifier: MIT
#include "model/TodoSequences.h"

#include <cstdlib>
#include <limits>
#include <utility>

namespace
{
constexpr int largest = std::numeric_limits<int>::max();
constexpr int startingPoint = 0x55555554;
constexpr int startingSpread = 300;
constexpr int smallestJump = 75;
constexpr int jumpSpread = 50;
/// A jump upward must stay below this, a jump downward above the floor.
constexpr int ceiling = 0x7fffff9c;
constexpr int jumpFloor = 99;
constexpr int unlimited = largest;
constexpr int none = -1;

bool isNext(int sequence, int next)
{
    return qint64(sequence) + 1 == next;
}
} // namespace

TodoSequences::TodoSequences(std::vector<int> sequences, Random random)
    : m_sequences(std::move(sequences))
    , m_random(random ? std::move(random) : Random([] { return std::rand(); }))
{
}

int TodoSequences::getItemSequenceJump() const
{
    return m_random() % jumpSpread + smallestJump;
}

int TodoSequences::getItemSequenceStartingPoint() const
{
    return m_random() % startingSpread + startingPoint;
}

int TodoSequences::makeRoomForItemInsertionAndSelectSequence(int row, int wanted)
{
    if (m_sequences.empty())
        return wanted != none ? wanted : getItemSequenceStartingPoint();
    if (row == count())
        return append(wanted);
    return row == 0 ? insertAtTop(wanted) : insertBetween(row, wanted);
}

int TodoSequences::append(int wanted)
{
    const int before = at(count() - 1);
    if (before < wanted)
        return wanted;
    if (before == largest)
        return renumber(count());
    const qint64 jumped = qint64(before) + getItemSequenceJump();
    if (jumped < ceiling)
        return static_cast<int>(jumped);
    const int half = before + (largest - before) / 2;
    return half == before ? largest : half;
}

int TodoSequences::insertAtTop(int wanted)
{
    const int after = at(0);
    if (wanted != none && after > wanted)
        return wanted;
    if (after == 0)
        return renumber(0);
    const qint64 jumped = qint64(after) - getItemSequenceJump();
    return jumped > jumpFloor ? static_cast<int>(jumped) : after / 2;
}

int TodoSequences::insertBetween(int row, int wanted)
{
    const int before = at(row - 1);
    const int after = at(row);
    if (before < wanted && wanted < after)
        return wanted;
    const qint64 gap = qint64(after) - before;
    return gap != 1 ? static_cast<int>(before + gap / 2) : renumber(row);
}

int TodoSequences::upwardRun(int row) const
{
    int run = 0;
    while (row + run < count() && (run == 0 || isNext(at(row + run - 1), at(row + run))))
        ++run;
    return at(row + run - 1) == largest ? unlimited : run;
}

int TodoSequences::downwardRun(int row) const
{
    int run = 0;
    while (row - 1 - run >= 0 && (run == 0 || isNext(at(row - 1 - run), at(row - run))))
        ++run;
    return run;
}

int TodoSequences::renumber(int row)
{
    const int up = upwardRun(row);
    const int down = downwardRun(row);
    const int firstOfRun = row - down;
    if (at(firstOfRun) != 0 && up > down) {
        shift(firstOfRun, row - 1, -1);
        return at(row - 1) + 1;
    }
    shift(row, row + up - 1, +1);
    return at(row) - 1;
}

void TodoSequences::shift(int firstRow, int lastRow, int delta)
{
    for (int row = firstRow; row <= lastRow; ++row)
        m_sequences[static_cast<std::size_t>(row)] += delta;
}
