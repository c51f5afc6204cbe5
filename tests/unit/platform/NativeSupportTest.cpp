// SPDX-License-Identifier: MIT
#include "platform/NativeSupport.h"
#include "fakes/RecordingNativeSupport.h"
#include "platform/none/NoDesktopSupport.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

QString rendered(Qt::KeyboardModifiers modifiers, int key)
{
    KeyCommandMap::KeyCombo combo{modifiers, key};
    return NoDesktopSupport().renderKeyCombo(&combo);
}

} // namespace

class NativeSupportTest : public QObject
{
    Q_OBJECT

private slots:
    void controlShiftNIsRenderedWithBothModifiersInFixedOrder();
    void metaOrAltWithSpaceIsJustSpace();
    void deleteWithoutModifiersIsDelAlone();
    void combinationsOfTheKeyMapAreRendered_data();
    void combinationsOfTheKeyMapAreRendered();
    void renderingNullThrowsBad();
    void theVocabularyIsThatOfThisDesktop();
    void createWorksWithoutAnyDisplay();
    void withoutADisplayRestoringAndCapturingAndHotkeysDoNothing();
    void theRecordingFakeRendersLikeTheRealOne();
};

void NativeSupportTest::controlShiftNIsRenderedWithBothModifiersInFixedOrder()
{
    QCOMPARE(rendered(Qt::ShiftModifier | Qt::ControlModifier, Qt::Key_N), u"Ctrl+Shift+N"_s);
}

void NativeSupportTest::metaOrAltWithSpaceIsJustSpace()
{
    QCOMPARE(rendered(Qt::MetaModifier, Qt::Key_Space), u"Space"_s);
    QCOMPARE(rendered(Qt::AltModifier, Qt::Key_Space), u"Space"_s);
    QCOMPARE(rendered(Qt::AltModifier | Qt::ControlModifier, Qt::Key_F1), u"Ctrl+F1"_s);
}

void NativeSupportTest::deleteWithoutModifiersIsDelAlone()
{
    QCOMPARE(rendered(Qt::NoModifier, Qt::Key_Delete), u"Del"_s);
}

void NativeSupportTest::combinationsOfTheKeyMapAreRendered_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::newRow("help") << u"ShowHelp"_s << u"Ctrl+/"_s;
    QTest::newRow("discard") << u"DiscardChanges"_s << u"Ctrl+Shift+Del"_s;
    QTest::newRow("first") << u"GoToFirst"_s << u"Ctrl+["_s;
    QTest::newRow("to top") << u"MoveCurrentToTop"_s << u"Ctrl+Shift+["_s;
    QTest::newRow("save") << u"SaveChangesAndHide"_s << u"Return"_s;
    QTest::newRow("hide") << u"Hide"_s << u"Esc"_s;
    QTest::newRow("settings") << u"ShowSettingsDialog"_s << u"Ctrl+,"_s;
}

void NativeSupportTest::combinationsOfTheKeyMapAreRendered()
{
    QFETCH(QString, command);
    QFETCH(QString, text);
    const KeyCommandMap map;
    QCOMPARE(NoDesktopSupport().renderKeyCombo(map.getPreferredKeyComboByName(command)), text);
}

void NativeSupportTest::renderingNullThrowsBad()
{
    NoDesktopSupport support;
    QString thrown;
    try {
        support.renderKeyCombo(nullptr);
    } catch (const char *text) {
        thrown = QString::fromLatin1(text);
    }
    QCOMPARE(thrown, u"bad"_s);
}

void NativeSupportTest::theVocabularyIsThatOfThisDesktop()
{
    NoDesktopSupport support;
    QCOMPARE(support.getModifierSeparator(), u"+"_s);
    QCOMPARE(support.getShortcutModifier(), Qt::KeyboardModifiers(Qt::AltModifier));
    QCOMPARE(support.getShortcutModifierKey(), int(Qt::Key_Alt));
    QCOMPARE(support.getShortcutModifierKeySymbol(), u"Alt"_s);
    QCOMPARE(support.getActivationHotkeyPrefix(), u"Ctrl+Alt+"_s);
    QCOMPARE(support.getSpaceVirtualKey(), 0x20);
}

void NativeSupportTest::createWorksWithoutAnyDisplay()
{
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    const std::unique_ptr<NativeSupport> support = NativeSupport::create();
    if (!display.isNull())
        qputenv("DISPLAY", display);
    QVERIFY(support);
    QVERIFY(qobject_cast<NoDesktopSupport *>(support.get()));
    QCOMPARE(support->getActivationHotkeyPrefix(), u"Ctrl+Alt+"_s);
}

void NativeSupportTest::withoutADisplayRestoringAndCapturingAndHotkeysDoNothing()
{
    NoDesktopSupport support;
    const QSignalSpy presses(&support, &NativeSupport::hotKeyPressed);
    support.captureFrontProcessForRestore();
    support.restoreCapturedProcess();
    support.setActivationHotkey(0x20);
    support.requestFront(nullptr);
    QVERIFY(!support.areWeFrontProcess());
    QCOMPARE(presses.count(), 0);
}

void NativeSupportTest::theRecordingFakeRendersLikeTheRealOne()
{
    RecordingNativeSupport fake;
    KeyCommandMap::KeyCombo combo{Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_D};
    QCOMPARE(fake.renderKeyCombo(&combo), u"Ctrl+Shift+D"_s);
}

QTEST_MAIN(NativeSupportTest)
#include "NativeSupportTest.moc"
