// SPDX-License-Identifier: MIT
#include "platform/mac/MacKeyboardLayout.h"

#include "platform/KeyLookup.h"

#include <Carbon/Carbon.h>
#include <QKeyEvent>
#include <QtTest>

namespace
{

constexpr Qt::KeyboardModifiers command = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers commandShift = Qt::ControlModifier | Qt::ShiftModifier;
constexpr quint32 bracketLeft = 0x21;
constexpr quint32 slash = 0x2C;
constexpr quint32 letterK = 0x28;

/// The press as the toolkit tells it on a Mac: no scan code, but a virtual key.
QKeyEvent press(int key, Qt::KeyboardModifiers modifiers, quint32 virtualKey)
{
    return QKeyEvent(QEvent::KeyPress, key, modifiers, 0, virtualKey, 0);
}

Command commandOf(int key, Qt::KeyboardModifiers modifiers, quint32 virtualKey)
{
    return KeyLookup::command(press(key, modifiers, virtualKey), modifiers);
}

} // namespace

class MacKeyboardLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void theApplicationsLayoutIsTheMacs();
    void everySymbolOfAUsKeyboardHasItsPlace_data();
    void everySymbolOfAUsKeyboardHasItsPlace();
    void otherKeysHaveNoPlace_data();
    void otherKeysHaveNoPlace();
    void commandShiftBracketIsFoundThoughItComesAsABrace();
    void aPlainBindingIsFoundAsItComes();
    void aRussianLetterIsFoundByItsPlace();
    void aLatinLetterIsNeverFoundByItsPlace();
};

void MacKeyboardLayoutTest::theApplicationsLayoutIsTheMacs()
{
    QVERIFY(qobject_cast<MacKeyboardLayout *>(KeyboardLayout::ofApplication()));
    QCOMPARE(KeyboardLayout::ofApplication()->parent(), qApp);
}

void MacKeyboardLayoutTest::everySymbolOfAUsKeyboardHasItsPlace_data()
{
    QTest::addColumn<quint32>("virtualKey");
    QTest::addColumn<quint32>("place");
    const QList<std::pair<quint32, QList<quint32>>> rows{
        {10, {0x12, 0x13, 0x14, 0x15, 0x17, 0x16, 0x1A, 0x1C, 0x19, 0x1D, 0x1B, 0x18}},
        {24, {0x0C, 0x0D, 0x0E, 0x0F, 0x11, 0x10, 0x20, 0x22, 0x1F, 0x23, 0x21, 0x1E}},
        {38, {0x00, 0x01, 0x02, 0x03, 0x05, 0x04, 0x26, 0x28, 0x25, 0x29, 0x27, 0x32}},
        {51, {0x2A, 0x06, 0x07, 0x08, 0x09, 0x0B, 0x2D, 0x2E, 0x2B, 0x2F, 0x2C}}};
    for (const auto &[first, virtualKeys] : rows) {
        for (int i = 0; i < virtualKeys.size(); ++i) {
            const quint32 place = first + static_cast<quint32>(i);
            QTest::addRow("place %u", place) << virtualKeys[i] << place;
        }
    }
}

void MacKeyboardLayoutTest::everySymbolOfAUsKeyboardHasItsPlace()
{
    QFETCH(quint32, virtualKey);
    const PhysicalKey key = MacKeyboardLayout().physicalKey(press(Qt::Key_X, command, virtualKey));
    QTEST(key.code, "place");
    QVERIFY(key.groups.isEmpty());
}

void MacKeyboardLayoutTest::otherKeysHaveNoPlace_data()
{
    QTest::addColumn<quint32>("virtualKey");
    QTest::newRow("section sign") << quint32(0x0A);
    QTest::newRow("Return") << quint32(kVK_Return);
    QTest::newRow("Tab") << quint32(0x30);
    QTest::newRow("space bar") << quint32(kVK_Space);
    QTest::newRow("Delete") << quint32(0x33);
    QTest::newRow("F1") << quint32(0x7A);
    QTest::newRow("none such") << quint32(0xFFFFFFFF);
}

void MacKeyboardLayoutTest::otherKeysHaveNoPlace()
{
    QFETCH(quint32, virtualKey);
    QCOMPARE(MacKeyboardLayout().physicalKey(press(Qt::Key_X, command, virtualKey)).code, 0u);
}

void MacKeyboardLayoutTest::commandShiftBracketIsFoundThoughItComesAsABrace()
{
    QCOMPARE(commandOf(Qt::Key_BraceLeft, commandShift, bracketLeft), Command::MoveCurrentToTop);
    QCOMPARE(commandOf(Qt::Key_Question, commandShift, slash), Command::ShowHelp);
}

void MacKeyboardLayoutTest::aPlainBindingIsFoundAsItComes()
{
    QCOMPARE(commandOf(Qt::Key_BracketLeft, command, bracketLeft), Command::GoToFirst);
    QCOMPARE(commandOf(Qt::Key_K, command, letterK), Command::GoToPrevious);
}

void MacKeyboardLayoutTest::aRussianLetterIsFoundByItsPlace()
{
    constexpr int letterEl = 0x041B; // where a US keyboard has its K
    QCOMPARE(commandOf(letterEl, command, letterK), Command::GoToPrevious);
}

void MacKeyboardLayoutTest::aLatinLetterIsNeverFoundByItsPlace()
{
    constexpr quint32 letterQ = 0x0C; // where a French keyboard has its A
    QCOMPARE(commandOf(Qt::Key_A, command, letterQ), Command::NoCommand);
}

QTEST_MAIN(MacKeyboardLayoutTest)
#include "MacKeyboardLayoutTest.moc"
