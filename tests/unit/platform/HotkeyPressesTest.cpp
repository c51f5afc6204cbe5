// SPDX-License-Identifier: MIT
#include "platform/x11/HotkeyPresses.h"

#include <QtTest>

class HotkeyPressesTest : public QObject
{
    Q_OBJECT

private slots:
    void eachPressAfterAReleaseIsNew();
    void repeatsWithAReleaseAtTheSameMomentAreNotNew();
    void repeatsWithoutAReleaseAreNotNew();
    void aLostReleaseDoesNotDisableTheKeyForGood();
    void theServersClockMayWrapAroundWhileTheKeyIsHeld();
    void anotherKeyIsNewAtOnce();
};

namespace
{
constexpr quint8 spaceBar = 65;
constexpr quint8 letter = 38;
} // namespace

void HotkeyPressesTest::eachPressAfterAReleaseIsNew()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 1000));
    presses.release(spaceBar, 1080);
    QVERIFY(presses.press(spaceBar, 1081));
    presses.release(spaceBar, 1150);
    QVERIFY(presses.press(spaceBar, 1300));
}

void HotkeyPressesTest::repeatsWithAReleaseAtTheSameMomentAreNotNew()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 1000));
    for (quint32 time = 1660; time < 3000; time += 40) {
        presses.release(spaceBar, time);
        QVERIFY(!presses.press(spaceBar, time));
    }
    presses.release(spaceBar, 3010);
    QVERIFY(presses.press(spaceBar, 3100));
}

void HotkeyPressesTest::repeatsWithoutAReleaseAreNotNew()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 1000));
    for (quint32 time = 1660; time < 9000; time += 40)
        QVERIFY(!presses.press(spaceBar, time));
    presses.release(spaceBar, 9010);
    QVERIFY(presses.press(spaceBar, 9020));
}

void HotkeyPressesTest::aLostReleaseDoesNotDisableTheKeyForGood()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 1000));
    QVERIFY(presses.press(spaceBar, 6000));
}

void HotkeyPressesTest::theServersClockMayWrapAroundWhileTheKeyIsHeld()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 0xffffff00U));
    QVERIFY(!presses.press(spaceBar, 0x00000100U));
}

void HotkeyPressesTest::anotherKeyIsNewAtOnce()
{
    HotkeyPresses presses;
    QVERIFY(presses.press(spaceBar, 1000));
    QVERIFY(presses.press(letter, 1000));
}

QTEST_GUILESS_MAIN(HotkeyPressesTest)
#include "HotkeyPressesTest.moc"
