// SPDX-License-Identifier: MIT
#include "platform/x11/ModifierBits.h"

#include <QtTest>
#include <set>

namespace
{

std::set<quint16> combinationsOf(const ModifierBits &bits)
{
    const std::vector<quint16> combinations = bits.lockCombinations();
    return {combinations.begin(), combinations.end()};
}

constexpr quint16 caps = XCB_MOD_MASK_LOCK;
constexpr quint16 num = XCB_MOD_MASK_2;
constexpr quint16 scroll = XCB_MOD_MASK_3;

} // namespace

class ModifierBitsTest : public QObject
{
    Q_OBJECT

private slots:
    void everyCombinationOfTheThreeLocksIsThereOnce();
    void locksWithoutAModifierMakeNoCombinations();
};

void ModifierBitsTest::everyCombinationOfTheThreeLocksIsThereOnce()
{
    const ModifierBits bits{XCB_MOD_MASK_1, num, scroll};
    QCOMPARE(bits.lockCombinations().size(), std::size_t(8));
    const std::set<quint16> expected{0,      caps,          num,          caps | num,
                                     scroll, caps | scroll, num | scroll, caps | num | scroll};
    QVERIFY(combinationsOf(bits) == expected);
    QCOMPARE(bits.locks(), quint16(caps | num | scroll));
}

void ModifierBitsTest::locksWithoutAModifierMakeNoCombinations()
{
    const ModifierBits bits{XCB_MOD_MASK_1, 0, 0};
    QVERIFY(combinationsOf(bits) == (std::set<quint16>{0, caps}));
    QCOMPARE(bits.locks(), caps);
}

QTEST_GUILESS_MAIN(ModifierBitsTest)
#include "ModifierBitsTest.moc"
