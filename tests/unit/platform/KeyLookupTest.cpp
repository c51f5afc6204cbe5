// SPDX-License-Identifier: MIT
#include "platform/KeyLookup.h"

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>
#include <QtTest>

using Combos = QList<KeyCommandMap::KeyCombo>;

namespace
{

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;

/// Takes the application's layout away, so that another one can take its place.
QObject *applicationWithoutLayout()
{
    delete KeyboardLayout::ofApplication();
    return qApp;
}

/// A layout of one key, put in the application's place for it.
class OneKeyLayout : public KeyboardLayout
{
public:
    explicit OneKeyLayout(PhysicalKey onlyKey)
        : KeyboardLayout(applicationWithoutLayout())
        , m_key(std::move(onlyKey))
    {
    }

    PhysicalKey physicalKey(const QKeyEvent &event) override
    {
        const quint32 code = event.nativeScanCode();
        return code == m_key.code ? m_key : PhysicalKey{code, {}, 0};
    }

private:
    PhysicalKey m_key;
};

QKeyEvent press(int key, Qt::KeyboardModifiers modifiers, quint32 code = 0)
{
    return QKeyEvent(QEvent::KeyPress, key, modifiers, code, 0, 0);
}

} // namespace

class KeyLookupTest : public QObject
{
    Q_OBJECT

private slots:
    void aPressWithoutACodeIsTheToolkitsKeyWithTheHeldModifiers();
    void theHeldModifiersCountNotThoseOfTheEvent();
    void keypadFlagNeverCounts();
    void groupSwitchFlagNeverCounts();
    void everyCandidateCarriesTheRealModifiers();
    void theFirstBoundCandidateIsTheCommand();
    void unboundPressesAreNoCommand();
    void theKeyPadIsNotReadByPlace();
    void modifierAndLockKeysAreRecognised_data();
    void modifierAndLockKeysAreRecognised();
    void otherKeysAreNoModifiers_data();
    void otherKeysAreNoModifiers();
};

void KeyLookupTest::aPressWithoutACodeIsTheToolkitsKeyWithTheHeldModifiers()
{
    QCOMPARE(KeyLookup::candidates(press(Qt::Key_K, ctrl), ctrl), (Combos{{ctrl, Qt::Key_K}}));
    QCOMPARE(KeyLookup::command(press(Qt::Key_K, ctrl), ctrl), Command::GoToPrevious);
}

void KeyLookupTest::theHeldModifiersCountNotThoseOfTheEvent()
{
    QCOMPARE(KeyLookup::candidates(press(Qt::Key_K, Qt::NoModifier), ctrl),
             (Combos{{ctrl, Qt::Key_K}}));
}

void KeyLookupTest::keypadFlagNeverCounts()
{
    const QKeyEvent enter = press(Qt::Key_Enter, Qt::KeypadModifier, 104);
    QCOMPARE(KeyLookup::candidates(enter, Qt::KeypadModifier),
             (Combos{{Qt::NoModifier, Qt::Key_Enter}}));
    QCOMPARE(KeyLookup::command(enter, Qt::KeypadModifier), Command::SaveChangesAndHide);
}

void KeyLookupTest::groupSwitchFlagNeverCounts()
{
    const Qt::KeyboardModifiers held = ctrl | Qt::GroupSwitchModifier;
    QCOMPARE(KeyLookup::command(press(Qt::Key_BracketLeft, held), held), Command::GoToFirst);
}

void KeyLookupTest::everyCandidateCarriesTheRealModifiers()
{
    const OneKeyLayout german(
        PhysicalKey{17, {{true, {Qt::Key_8, Qt::Key_ParenLeft, Qt::Key_BracketLeft, 0x2122}}}, 0});
    const Qt::KeyboardModifiers held = ctrlShift | Qt::GroupSwitchModifier;
    const QKeyEvent shiftAltGr8 = press(0x2122, held, 17);
    QCOMPARE(KeyLookup::candidates(shiftAltGr8, held),
             (Combos{{ctrlShift, 0x2122}, {ctrlShift, Qt::Key_BracketLeft}}));
    QCOMPARE(KeyLookup::command(shiftAltGr8, held), Command::MoveCurrentToTop);
}

void KeyLookupTest::theFirstBoundCandidateIsTheCommand()
{
    const OneKeyLayout us(
        PhysicalKey{34, {{true, {Qt::Key_BracketLeft, Qt::Key_BraceLeft, 0, 0}}}, 0});
    QCOMPARE(KeyLookup::command(press(Qt::Key_BraceLeft, ctrlShift, 34), ctrlShift),
             Command::MoveCurrentToTop);
    QCOMPARE(KeyLookup::command(press(Qt::Key_BracketLeft, ctrl, 34), ctrl), Command::GoToFirst);
}

void KeyLookupTest::unboundPressesAreNoCommand()
{
    QCOMPARE(KeyLookup::command(press(Qt::Key_K, Qt::NoModifier), Qt::NoModifier),
             Command::NoCommand);
    QCOMPARE(KeyLookup::command(press(Qt::Key_A, ctrl, 38), ctrl), Command::NoCommand);
}

void KeyLookupTest::theKeyPadIsNotReadByPlace()
{
    // The key pad's slash, on a made-up keyboard that has it at the place of the letter Q.
    const QKeyEvent slash = press(Qt::Key_Slash, ctrl | Qt::KeypadModifier, 24);
    QCOMPARE(KeyLookup::candidates(slash, ctrl | Qt::KeypadModifier),
             (Combos{{ctrl, Qt::Key_Slash}}));
}

void KeyLookupTest::modifierAndLockKeysAreRecognised_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Shift") << int(Qt::Key_Shift);
    QTest::newRow("Control") << int(Qt::Key_Control);
    QTest::newRow("Alt") << int(Qt::Key_Alt);
    QTest::newRow("AltGr") << int(Qt::Key_AltGr);
    QTest::newRow("Meta") << int(Qt::Key_Meta);
    QTest::newRow("Super") << int(Qt::Key_Super_L);
    QTest::newRow("right Super") << int(Qt::Key_Super_R);
    QTest::newRow("Hyper") << int(Qt::Key_Hyper_L);
    QTest::newRow("Caps Lock") << int(Qt::Key_CapsLock);
    QTest::newRow("Num Lock") << int(Qt::Key_NumLock);
    QTest::newRow("Scroll Lock") << int(Qt::Key_ScrollLock);
    QTest::newRow("mode switch") << int(Qt::Key_Mode_switch);
    QTest::newRow("Compose") << int(Qt::Key_Multi_key);
    QTest::newRow("Kanji") << int(Qt::Key_Kanji);
    QTest::newRow("Hangul") << int(Qt::Key_Hangul);
    QTest::newRow("layout switch") << 0;
    QTest::newRow("unknown") << int(Qt::Key_unknown);
}

void KeyLookupTest::modifierAndLockKeysAreRecognised()
{
    QFETCH(int, key);
    QVERIFY(KeyLookup::isModifierOrLockKey(key));
}

void KeyLookupTest::otherKeysAreNoModifiers_data()
{
    QTest::addColumn<int>("key");
    for (const int key :
         {int(Qt::Key_Space), int(Qt::Key_A), int(Qt::Key_Escape), int(Qt::Key_Return),
          int(Qt::Key_Enter), int(Qt::Key_F1), int(Qt::Key_Delete), int(Qt::Key_Backspace),
          int(Qt::Key_Menu), int(Qt::Key_Left), int(Qt::Key_Dead_Acute), 0x424})
        QTest::addRow("%x", static_cast<unsigned>(key)) << key;
}

void KeyLookupTest::otherKeysAreNoModifiers()
{
    QFETCH(int, key);
    QVERIFY(!KeyLookup::isModifierOrLockKey(key));
}

QTEST_MAIN(KeyLookupTest)
#include "KeyLookupTest.moc"
