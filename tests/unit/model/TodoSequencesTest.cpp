// SPDX-License-Identifier: MIT
#include "model/TodoSequences.h"

#include <QRandomGenerator>
#include <QTest>
#include <algorithm>
#include <limits>
#include <random>
#include <set>

using Numbers = std::vector<int>;
Q_DECLARE_METATYPE(Numbers)

namespace
{

constexpr int largest = std::numeric_limits<int>::max();
/// Seed of a run that failed, to see it again.
const char *const seedVariable = "BRINDLE_TEST_SEED";

std::string text(const Numbers &numbers)
{
    std::string result;
    for (const int number : numbers)
        result += std::to_string(number) + ' ';
    return result;
}

/// The rules told a second time, with sets of numbers instead of runs of rows.
class PlainRules
{
public:
    PlainRules(const Numbers &numbers, int jump)
        : m_numbers(numbers)
        , m_jump(jump)
    {
    }

    /// All numbers after room was made, the new one in its place.
    Numbers insert(std::size_t row, int wanted)
    {
        m_result = m_numbers;
        m_result.insert(m_result.begin() + static_cast<std::ptrdiff_t>(row), choose(row, wanted));
        // What was moved stands in m_numbers.
        for (std::size_t i = 0; i < m_numbers.size(); ++i)
            m_result[i < row ? i : i + 1] = m_numbers[i];
        return m_result;
    }

private:
    int choose(std::size_t row, int wanted)
    {
        const bool atEnd = row == m_numbers.size();
        const std::int64_t below = row == 0 ? -1 : m_numbers[row - 1];
        const std::int64_t above = atEnd ? std::int64_t(largest) + 1 : m_numbers[row];
        if (wanted != -1 && below < wanted && wanted < above)
            return wanted;
        if (above - below == 1)
            return makeGap(row, below, above);
        if (atEnd)
            return atTheEnd(below);
        return static_cast<int>(row == 0 ? atTheTop(above) : below + (above - below) / 2);
    }

    int atTheEnd(std::int64_t below) const
    {
        if (below + m_jump < 2147483548)
            return static_cast<int>(below + m_jump);
        const std::int64_t half = below + (largest - below) / 2;
        return half == below ? largest : static_cast<int>(half);
    }

    std::int64_t atTheTop(std::int64_t above) const
    {
        return above - m_jump >= 100 ? above - m_jump : above / 2;
    }

    int makeGap(std::size_t row, std::int64_t below, std::int64_t above)
    {
        const std::set<std::int64_t> used(m_numbers.begin(), m_numbers.end());
        std::int64_t firstFreeAbove = above;
        while (used.count(firstFreeAbove) == 1)
            ++firstFreeAbove;
        std::int64_t firstFreeBelow = below;
        while (used.count(firstFreeBelow) == 1)
            --firstFreeBelow;
        const bool upIsPossible = firstFreeAbove <= largest;
        const bool downIsPossible = firstFreeBelow >= 0;
        const bool downIsShorter = below - firstFreeBelow < firstFreeAbove - above;
        if (downIsPossible && (downIsShorter || !upIsPossible)) {
            for (std::size_t i = 0; i < row; ++i) {
                if (m_numbers[i] > firstFreeBelow)
                    --m_numbers[i];
            }
            return static_cast<int>(below);
        }
        for (std::size_t i = row; i < m_numbers.size(); ++i) {
            if (m_numbers[i] < firstFreeAbove)
                ++m_numbers[i];
        }
        return static_cast<int>(above);
    }

    Numbers m_numbers;
    Numbers m_result;
    int m_jump;
};

/// The numbers after room was made at \a row, the new one in its place.
Numbers inserted(const Numbers &numbers, int row, int wanted, int random)
{
    TodoSequences sequences(numbers, [random] { return random; });
    const int selected = sequences.makeRoomForItemInsertionAndSelectSequence(row, wanted);
    Numbers result = sequences.sequences();
    result.insert(result.begin() + row, selected);
    return result;
}

} // namespace

class TodoSequencesTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstItemOfAnEmptyListStartsAtTwoThirds();
    void gapsAreSeventyFiveTo124();
    void roomIsMadeByTheRules_data();
    void roomIsMadeByTheRules();
    void anInsertionBetween5And6ShiftsTheShorterRun_data();
    void anInsertionBetween5And6ShiftsTheShorterRun();
    void agreesWithAPlainRestatementOnRandomLists();

private:
    static Numbers randomNumbers(std::mt19937 &random);
};

void TodoSequencesTest::theFirstItemOfAnEmptyListStartsAtTwoThirds()
{
    QCOMPARE(inserted({}, 0, -1, 0), Numbers{1431655764});
    QCOMPARE(inserted({}, 0, -1, 299), Numbers{1431656063});
    QCOMPARE(inserted({}, 0, -1, 300), Numbers{1431655764});
    for (int i = 0; i < 2000; ++i) {
        TodoSequences sequences({});
        const int first = sequences.makeRoomForItemInsertionAndSelectSequence(0, -1);
        QVERIFY(first >= 1431655764 && first <= 1431656063);
    }
}

void TodoSequencesTest::gapsAreSeventyFiveTo124()
{
    std::set<int> gaps;
    for (int random = 0; random < 500; ++random)
        gaps.insert(TodoSequences({}, [random] { return random; }).getItemSequenceJump());
    QCOMPARE(*gaps.begin(), 75);
    QCOMPARE(*gaps.rbegin(), 124);
    QCOMPARE(gaps.size(), std::size_t(50));
    for (int i = 0; i < 2000; ++i) {
        const int gap = TodoSequences({}).getItemSequenceJump();
        QVERIFY(gap >= 75 && gap <= 124);
    }
}

void TodoSequencesTest::roomIsMadeByTheRules_data()
{
    QTest::addColumn<Numbers>("before");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("jump");
    QTest::addColumn<Numbers>("after");
    const auto add = [](const char *name, const Numbers &before, int row, int wanted, int jump,
                        const Numbers &after) {
        QTest::newRow(name) << before << row << wanted << jump << after;
    };
    add("empty, wanted 0", {}, 0, 0, 75, {0});
    add("empty, wanted the largest", {}, 0, largest, 75, {largest});

    add("end, wanted fits", {5}, 1, 6, 75, {5, 6});
    add("end, wanted the largest fits", {5}, 1, largest, 75, {5, largest});
    add("end, wanted taken", {5}, 1, 5, 75, {5, 80});
    add("end, wanted too small", {5}, 1, 3, 75, {5, 80});
    add("end, smallest jump", {0}, 1, -1, 75, {0, 75});
    add("end, largest jump", {0}, 1, -1, 124, {0, 124});
    add("end, jump just below the ceiling", {2147483547 - 75}, 1, -1, 75,
        {2147483547 - 75, 2147483547});
    add("end, jump reaching the ceiling", {2147483548 - 75}, 1, -1, 75,
        {2147483548 - 75, 2147483473 + 87});
    add("end, jump beyond what a number holds", {largest - 10}, 1, -1, 124,
        {largest - 10, largest - 5});
    add("end, two below the largest", {largest - 2}, 1, -1, 75, {largest - 2, largest - 1});
    add("end, one below the largest", {largest - 1}, 1, -1, 75, {largest - 1, largest});
    add("end at the largest", {largest}, 1, -1, 75, {largest - 1, largest});
    add("end at the largest, wanted the largest", {largest}, 1, largest, 75,
        {largest - 1, largest});
    add("end at the largest, a run below it", {7, largest - 2, largest - 1, largest}, 4, -1, 75,
        {7, largest - 3, largest - 2, largest - 1, largest});
    add("end at the largest, the run ends at a gap", {largest - 3, largest - 1, largest}, 3, -1, 75,
        {largest - 3, largest - 2, largest - 1, largest});

    add("top, wanted fits", {5}, 0, 4, 75, {4, 5});
    add("top, wanted 0 fits", {5}, 0, 0, 75, {0, 5});
    add("top, wanted taken", {500}, 0, 500, 75, {425, 500});
    add("top, jump of 75", {1000}, 0, -1, 75, {925, 1000});
    add("top, jump of 124", {1000}, 0, -1, 124, {876, 1000});
    add("top, jump to 100 stays above the floor", {175}, 0, -1, 75, {100, 175});
    add("top, jump to 99 doesn't: half", {174}, 0, -1, 75, {87, 174});
    add("top, jump below zero: half", {50}, 0, -1, 124, {25, 50});
    add("top at 1", {1}, 0, -1, 75, {0, 1});
    add("top at 0", {0}, 0, -1, 75, {0, 1});
    add("top at 0, wanted 0", {0}, 0, 0, 75, {0, 1});
    add("top at 0, a run above it", {0, 1, 2, 9}, 0, -1, 75, {0, 1, 2, 3, 9});
    add("top at the largest", {largest}, 0, -1, 75, {largest - 75, largest});

    add("between, wanted fits", {5, 9}, 1, 8, 75, {5, 8, 9});
    add("between, wanted is the lower", {5, 9}, 1, 5, 75, {5, 7, 9});
    add("between, wanted is the upper", {5, 9}, 1, 9, 75, {5, 7, 9});
    add("between, none wanted", {5, 9}, 1, -1, 75, {5, 7, 9});
    add("between, an odd gap", {5, 8}, 1, -1, 75, {5, 6, 8});
    add("between, gap of two", {5, 7}, 1, -1, 75, {5, 6, 7});
    add("between 0 and the largest", {0, largest}, 1, -1, 75, {0, 1073741823, largest});

    add("no gap, upward run shorter", {4, 5, 6, 8}, 2, -1, 75, {4, 5, 6, 7, 8});
    add("no gap, downward run shorter", {3, 5, 6, 7}, 2, -1, 75, {3, 4, 5, 6, 7});
    add("no gap, runs of two equally long", {4, 5, 6, 7}, 2, -1, 75, {4, 5, 6, 7, 8});
    add("no gap, downward run shorter but from 0", {0, 1, 2, 3}, 1, -1, 75, {0, 1, 2, 3, 4});
    add("no gap, downward run from 1 moves to 0", {1, 2, 3}, 1, -1, 75, {0, 1, 2, 3});
    add("no gap, upward run shorter but at the largest",
        {largest - 4, largest - 3, largest - 2, largest - 1, largest}, 4, -1, 75,
        {largest - 5, largest - 4, largest - 3, largest - 2, largest - 1, largest});
    add("no gap, upward run may still reach the largest", {largest - 2, largest - 1}, 1, -1, 75,
        {largest - 2, largest - 1, largest});
}

void TodoSequencesTest::roomIsMadeByTheRules()
{
    QFETCH(Numbers, before);
    QFETCH(int, row);
    QFETCH(int, wanted);
    QFETCH(int, jump);
    QFETCH(Numbers, after);
    const Numbers result = inserted(before, row, wanted, jump - 75);
    QVERIFY2(result == after, text(result).c_str());
    QVERIFY(std::adjacent_find(result.begin(), result.end(), std::greater_equal<>())
            == result.end());
}

void TodoSequencesTest::anInsertionBetween5And6ShiftsTheShorterRun_data()
{
    QTest::addColumn<Numbers>("before");
    QTest::addColumn<int>("row");
    QTest::addColumn<Numbers>("after");
    QTest::newRow("equally long") << Numbers{5, 6} << 1 << Numbers{5, 6, 7};
    QTest::newRow("above shorter") << Numbers{4, 5, 6} << 2 << Numbers{4, 5, 6, 7};
    QTest::newRow("below shorter") << Numbers{5, 6, 7} << 1 << Numbers{4, 5, 6, 7};
}

void TodoSequencesTest::anInsertionBetween5And6ShiftsTheShorterRun()
{
    QFETCH(Numbers, before);
    QFETCH(int, row);
    QFETCH(Numbers, after);
    const Numbers result = inserted(before, row, -1, 0);
    QVERIFY2(result == after, text(result).c_str());
}

/// Ascending numbers with many runs, often at one of the two ends.
Numbers TodoSequencesTest::randomNumbers(std::mt19937 &random)
{
    const int count = static_cast<int>(random() % 12);
    const int window = std::max(count, 1) + static_cast<int>(random() % 14);
    const int bases[] = {0, 1, largest - window + 1, largest - window, 60, 2147483400, 1431655764};
    const int base = bases[random() % std::size(bases)];
    std::set<int> numbers;
    while (static_cast<int>(numbers.size()) < count)
        numbers.insert(base + static_cast<int>(random() % static_cast<unsigned>(window)));
    if (random() % 8 == 0)
        numbers.insert(static_cast<int>(random() % 2000));
    return {numbers.begin(), numbers.end()};
}

void TodoSequencesTest::agreesWithAPlainRestatementOnRandomLists()
{
    bool given = false;
    unsigned seed = qEnvironmentVariableIntValue(seedVariable, &given);
    if (!given)
        seed = QRandomGenerator::global()->generate();
    qInfo("%s=%u", seedVariable, seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 60000; ++i) {
        const Numbers numbers = randomNumbers(random);
        const std::size_t row = random() % (numbers.size() + 1);
        int wanted = -1;
        if (!numbers.empty() && random() % 3 != 0) {
            const std::int64_t near = std::int64_t(numbers[random() % numbers.size()])
                + static_cast<int>(random() % 5) - 2;
            wanted = static_cast<int>(std::clamp<std::int64_t>(near, 0, largest));
        }
        const int jump = 75 + static_cast<int>(random() % 50);
        if (numbers.empty())
            continue;
        const Numbers result = inserted(numbers, static_cast<int>(row), wanted, jump - 75);
        const Numbers expected = PlainRules(numbers, jump).insert(row, wanted);
        const std::string what = "numbers " + text(numbers) + "row " + std::to_string(row)
            + " wanted " + std::to_string(wanted) + " jump " + std::to_string(jump) + ": "
            + text(result) + "instead of " + text(expected);
        QVERIFY2(result == expected, what.c_str());
    }
}

QTEST_APPLESS_MAIN(TodoSequencesTest)
#include "TodoSequencesTest.moc"
