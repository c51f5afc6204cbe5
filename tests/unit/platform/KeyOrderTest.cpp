// SPDX-License-Identifier: MIT
#include "platform/KeyOrder.h"

#include <QtTest>

using Group = PhysicalKey::Group;
using Keys = QList<int>;

namespace
{

// Key codes of places on the keyboard, named by what a US keyboard has there.
constexpr quint32 usA = 38;
constexpr quint32 usQ = 24;
constexpr quint32 usK = 45;
constexpr quint32 usZ = 52;
constexpr quint32 usSlash = 61;
constexpr quint32 usPeriod = 60;
constexpr quint32 usBracketLeft = 34;
constexpr quint32 us2 = 11;
constexpr quint32 us5 = 14;
constexpr quint32 us7 = 16;
constexpr quint32 us8 = 17;
constexpr quint32 us9 = 18;
constexpr quint32 us0 = 19;

constexpr int cyrillicEf = 0x424;
constexpr int cyrillicEl = 0x41b;
constexpr int cyrillicHa = 0x425;
constexpr int tradeMark = 0x2122;
constexpr int eAcute = 0xc9;

Group latin(std::array<int, 4> keys)
{
    return {true, keys};
}

Group cyrillic(std::array<int, 4> keys)
{
    return {false, keys};
}

} // namespace

class KeyOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void usBracketWithShiftIsTriedUnshiftedNext();
    void namedKeysMeanThemselvesInEveryLayout();
    void germanAltGr8IsTheBracket();
    void germanShiftAltGr8FallsBackToTheLevelWithoutShift();
    void germanSlashAndEqualStandOnTheShiftedDigits();
    void germanUmlautLendsTheUsBracket();
    void germanAltGrQIsNeverQ();
    void frenchAIsNeverTheUsQ();
    void frenchDeadKeyLendsTheUsBracket();
    void frenchBracketStandsOnAltGr5();
    void frenchAccentedDigitKeyKeepsItsOwnSymbolFirst();
    void dvorakLetterKeysLendNothing();
    void russianBesideUsIsReadAsUs();
    void russianSlashBesideUsIsNotPeriod();
    void russianAloneIsReadByPlace();
    void russianAloneSlashIsNotPeriod();
    void latinLettersOfAMadeUpLayoutAreMeantWhereverTheyStand();
    void russianBesideFrenchIsReadAsFrench();
    void twoLatinLayoutsLendNoLettersToEachOther();
    void aSymbolOfAnotherLatinLayoutCountsAfterTheActiveOne();
    void withoutALayoutLatinKeysStayAndLendPunctuationOnly();
    void withoutALayoutOtherLettersAreReadByPlace();
    void withoutACodeTheToolkitsKeyIsAll();
    void unknownKeysGiveThemselves();
    void usKeysStandAtTheirCodes();
};

void KeyOrderTest::usBracketWithShiftIsTriedUnshiftedNext()
{
    const PhysicalKey key{usBracketLeft, {latin({Qt::Key_BracketLeft, Qt::Key_BraceLeft})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_BraceLeft, false, key),
             (Keys{Qt::Key_BraceLeft, Qt::Key_BracketLeft}));
    QCOMPARE(KeyOrder::keys(Qt::Key_BracketLeft, false, key).first(), int(Qt::Key_BracketLeft));
}

void KeyOrderTest::namedKeysMeanThemselvesInEveryLayout()
{
    for (const int named :
         {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_F5}) {
        const PhysicalKey key{usK, {latin({Qt::Key_K, Qt::Key_K})}, 0};
        QCOMPARE(KeyOrder::keys(named, false, key), Keys{named});
    }
}

void KeyOrderTest::germanAltGr8IsTheBracket()
{
    const PhysicalKey key{
        us8, {latin({Qt::Key_8, Qt::Key_ParenLeft, Qt::Key_BracketLeft, tradeMark})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_BracketLeft, true, key),
             (Keys{Qt::Key_BracketLeft, tradeMark}));
}

void KeyOrderTest::germanShiftAltGr8FallsBackToTheLevelWithoutShift()
{
    const PhysicalKey key{
        us8, {latin({Qt::Key_8, Qt::Key_ParenLeft, Qt::Key_BracketLeft, tradeMark})}, 0};
    QCOMPARE(KeyOrder::keys(tradeMark, true, key), (Keys{tradeMark, Qt::Key_BracketLeft}));
}

void KeyOrderTest::germanSlashAndEqualStandOnTheShiftedDigits()
{
    const PhysicalKey seven{us7, {latin({Qt::Key_7, Qt::Key_Slash, Qt::Key_BraceLeft, 0})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_7, false, seven), (Keys{Qt::Key_7, Qt::Key_Slash}));
    QCOMPARE(KeyOrder::keys(Qt::Key_Slash, false, seven), (Keys{Qt::Key_Slash, Qt::Key_7}));
    const PhysicalKey zero{us0, {latin({Qt::Key_0, Qt::Key_Equal, Qt::Key_BraceRight, 0})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_Equal, false, zero), (Keys{Qt::Key_Equal, Qt::Key_0}));
}

void KeyOrderTest::germanUmlautLendsTheUsBracket()
{
    const PhysicalKey key{usBracketLeft, {latin({Qt::Key_Udiaeresis, Qt::Key_Udiaeresis})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_Udiaeresis, false, key),
             (Keys{Qt::Key_Udiaeresis, Qt::Key_BracketLeft}));
}

void KeyOrderTest::germanAltGrQIsNeverQ()
{
    const PhysicalKey key{usQ, {latin({Qt::Key_Q, Qt::Key_Q, Qt::Key_At, 0})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_At, true, key), Keys{Qt::Key_At});
}

void KeyOrderTest::frenchAIsNeverTheUsQ()
{
    const PhysicalKey a{usQ, {latin({Qt::Key_A, Qt::Key_A})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_A, false, a), Keys{Qt::Key_A});
    const PhysicalKey w{usZ, {latin({Qt::Key_W, Qt::Key_W})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_W, false, w), Keys{Qt::Key_W});
}

void KeyOrderTest::frenchDeadKeyLendsTheUsBracket()
{
    const PhysicalKey key{usBracketLeft, {latin({0, 0})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_Dead_Circumflex, false, key),
             (Keys{Qt::Key_Dead_Circumflex, Qt::Key_BracketLeft}));
}

void KeyOrderTest::frenchBracketStandsOnAltGr5()
{
    const PhysicalKey key{us5, {latin({Qt::Key_ParenLeft, Qt::Key_5, Qt::Key_BracketLeft, 0})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_BracketLeft, true, key), Keys{Qt::Key_BracketLeft});
    QVERIFY(!KeyOrder::keys(Qt::Key_ParenLeft, false, key).contains(Qt::Key_BracketLeft));
}

void KeyOrderTest::frenchAccentedDigitKeyKeepsItsOwnSymbolFirst()
{
    const PhysicalKey key{us2, {latin({eAcute, Qt::Key_2})}, 0};
    QCOMPARE(KeyOrder::keys(eAcute, false, key), (Keys{eAcute, Qt::Key_2}));
}

void KeyOrderTest::dvorakLetterKeysLendNothing()
{
    // Undo would otherwise be the help of the key's US place.
    const PhysicalKey z{usSlash, {latin({Qt::Key_Z, Qt::Key_Z})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_Z, false, z), Keys{Qt::Key_Z});
    // And the apostrophe would otherwise quit.
    const PhysicalKey apostrophe{usQ, {latin({Qt::Key_Apostrophe, Qt::Key_QuoteDbl})}, 0};
    QVERIFY(!KeyOrder::keys(Qt::Key_Apostrophe, false, apostrophe).contains(Qt::Key_Q));
}

void KeyOrderTest::russianBesideUsIsReadAsUs()
{
    const PhysicalKey key{
        usK, {latin({Qt::Key_K, Qt::Key_K}), cyrillic({cyrillicEl, cyrillicEl})}, 1};
    QCOMPARE(KeyOrder::keys(cyrillicEl, false, key), (Keys{Qt::Key_K, cyrillicEl}));
    QCOMPARE(KeyOrder::keys(Qt::Key_K, false, key), Keys{Qt::Key_K});
}

void KeyOrderTest::russianSlashBesideUsIsNotPeriod()
{
    const PhysicalKey key{
        usSlash,
        {latin({Qt::Key_Slash, Qt::Key_Question}), cyrillic({Qt::Key_Period, Qt::Key_Comma})},
        1};
    QCOMPARE(KeyOrder::keys(Qt::Key_Period, false, key),
             (Keys{Qt::Key_Slash, Qt::Key_Question, Qt::Key_Period}));
    QCOMPARE(KeyOrder::keys(Qt::Key_Comma, false, key).first(), int(Qt::Key_Slash));
}

void KeyOrderTest::russianAloneIsReadByPlace()
{
    const PhysicalKey letter{usA, {cyrillic({cyrillicEf, cyrillicEf})}, 0};
    QCOMPARE(KeyOrder::keys(cyrillicEf, false, letter), (Keys{Qt::Key_A, cyrillicEf}));
    const PhysicalKey bracket{usBracketLeft, {cyrillic({cyrillicHa, cyrillicHa})}, 0};
    QCOMPARE(KeyOrder::keys(cyrillicHa, false, bracket), (Keys{Qt::Key_BracketLeft, cyrillicHa}));
}

void KeyOrderTest::russianAloneSlashIsNotPeriod()
{
    const PhysicalKey key{usSlash, {cyrillic({Qt::Key_Period, Qt::Key_Comma})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_Period, false, key), (Keys{Qt::Key_Slash, Qt::Key_Period}));
}

void KeyOrderTest::latinLettersOfAMadeUpLayoutAreMeantWhereverTheyStand()
{
    // An on-screen keyboard that has made keys for what it types just now.
    const PhysicalKey key{usQ, {Group{false, {Qt::Key_K, 0, 0, 0}}}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_K, false, key).first(), int(Qt::Key_K));
}

void KeyOrderTest::russianBesideFrenchIsReadAsFrench()
{
    const PhysicalKey key{usQ, {cyrillic({0x419, 0x419}), latin({Qt::Key_A, Qt::Key_A})}, 0};
    QCOMPARE(KeyOrder::keys(0x419, false, key), (Keys{Qt::Key_A, 0x419}));
}

void KeyOrderTest::twoLatinLayoutsLendNoLettersToEachOther()
{
    const PhysicalKey key{usQ, {latin({Qt::Key_Q, Qt::Key_Q}), latin({Qt::Key_A, Qt::Key_A})}, 1};
    QCOMPARE(KeyOrder::keys(Qt::Key_A, false, key), Keys{Qt::Key_A});
    const PhysicalKey semicolon{
        47, {latin({Qt::Key_Semicolon, Qt::Key_Colon}), latin({Qt::Key_S, Qt::Key_S})}, 0};
    QVERIFY(!KeyOrder::keys(Qt::Key_Semicolon, false, semicolon).contains(Qt::Key_S));
}

void KeyOrderTest::aSymbolOfAnotherLatinLayoutCountsAfterTheActiveOne()
{
    const PhysicalKey key{us2, {latin({Qt::Key_2, Qt::Key_At}), latin({eAcute, Qt::Key_2})}, 0};
    QCOMPARE(KeyOrder::keys(Qt::Key_2, false, key), (Keys{Qt::Key_2, Qt::Key_At, eAcute}));
}

void KeyOrderTest::withoutALayoutLatinKeysStayAndLendPunctuationOnly()
{
    QCOMPARE(KeyOrder::keys(Qt::Key_A, false, PhysicalKey{usQ, {}, 0}), Keys{Qt::Key_A});
    QCOMPARE(KeyOrder::keys(Qt::Key_BraceLeft, false, PhysicalKey{usBracketLeft, {}, 0}),
             (Keys{Qt::Key_BraceLeft, Qt::Key_BracketLeft}));
    QCOMPARE(KeyOrder::keys(Qt::Key_Apostrophe, false, PhysicalKey{usQ, {}, 0}),
             Keys{Qt::Key_Apostrophe});
}

void KeyOrderTest::withoutALayoutOtherLettersAreReadByPlace()
{
    QCOMPARE(KeyOrder::keys(cyrillicEf, false, PhysicalKey{usA, {}, 0}),
             (Keys{Qt::Key_A, cyrillicEf}));
}

void KeyOrderTest::withoutACodeTheToolkitsKeyIsAll()
{
    QCOMPARE(KeyOrder::keys(Qt::Key_BracketLeft, false, PhysicalKey{}), Keys{Qt::Key_BracketLeft});
    QCOMPARE(KeyOrder::keys(cyrillicEf, false, PhysicalKey{}), Keys{cyrillicEf});
}

void KeyOrderTest::unknownKeysGiveThemselves()
{
    QCOMPARE(KeyOrder::keys(0, false, PhysicalKey{}), Keys{0});
    QCOMPARE(KeyOrder::keys(Qt::Key_unknown, true, PhysicalKey{}), Keys{Qt::Key_unknown});
}

void KeyOrderTest::usKeysStandAtTheirCodes()
{
    QCOMPARE(KeyOrder::usKey(usA), int(Qt::Key_A));
    QCOMPARE(KeyOrder::usKey(usSlash), int(Qt::Key_Slash));
    QCOMPARE(KeyOrder::usKey(usPeriod), int(Qt::Key_Period));
    QCOMPARE(KeyOrder::usKey(usBracketLeft), int(Qt::Key_BracketLeft));
    QCOMPARE(KeyOrder::usKey(35), int(Qt::Key_BracketRight));
    QCOMPARE(KeyOrder::usKey(21), int(Qt::Key_Equal));
    QCOMPARE(KeyOrder::usKey(us9), int(Qt::Key_9));
    for (const quint32 code : {0U, 9U, 22U, 23U, 36U, 37U, 50U, 62U, 65U, 300U})
        QCOMPARE(KeyOrder::usKey(code), 0);
}

QTEST_GUILESS_MAIN(KeyOrderTest)
#include "KeyOrderTest.moc"
