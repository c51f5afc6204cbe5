// SPDX-License-Identifier: MIT
#include "ui/Settings.h"
#include "app/activation/AppActivationSupport.h"
#include "fakes/OtherLanguage.h"
#include "fakes/RecordingNativeSupport.h"
#include "unit/ui/DialogDesk.h"

#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace
{
const QString dontCheckKey = u"dontcheckforupdates"_s;

/// The settings dialog on settings and a desktop of its own.
class SettingsDesk
{
public:
    void show()
    {
        dialog.restoreShowAndActivate();
        if (!QTest::qWaitForWindowActive(&dialog))
            qFatal("the settings do not become active");
    }

    /// Clicks into the field for the key, as a user must.
    void enterKeyField()
    {
        QTest::mouseClick(keyField(), Qt::LeftButton);
        if (!keyField()->hasFocus())
            qFatal("the field does not take the keyboard");
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(dialog.windowHandle(), key, modifiers);
    }

    /// A press in the field as the platform reports it, with its own code.
    void pressNative(int key, quint32 nativeKey, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, 0, nativeKey, 0);
        QCoreApplication::sendEvent(keyField(), &event);
    }

    void accept() { button(QDialogButtonBox::Ok)->click(); }
    void cancel() { button(QDialogButtonBox::Cancel)->click(); }

    template <typename Widget> Widget *child(const QString &name) const
    {
        auto *widget = dialog.findChild<Widget *>(name);
        if (!widget)
            qFatal("no %s", qPrintable(name));
        return widget;
    }
    QPushButton *button(QDialogButtonBox::StandardButton which) const
    {
        return child<QDialogButtonBox>(u"buttonBox"_s)->button(which);
    }
    QLineEdit *keyField() const { return child<QLineEdit>(u"hotKeyEdit"_s); }
    QCheckBox *automatic() const { return child<QCheckBox>(u"activationCheckbox"_s); }
    QSpinBox *minutes() const { return child<QSpinBox>(u"activationMinutesBox"_s); }
    QCheckBox *updates() const { return child<QCheckBox>(u"checkForUpdatesCheckbox"_s); }

    TestSettings settings;
    RecordingNativeSupport native;
    AppActivationSupport activation{&native};
    Settings dialog{&activation};
};
} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheDefaultsOfEmptySettings();
    void showsWhatIsStoredEachTimeItIsShown();
    void comingBackFromTheTaskbarKeepsWhatWasChanged();
    void shiftAInTheKeyFieldIsRefusedAndChangesNothing();
    void anyModifierIsRefused_data();
    void anyModifierIsRefused();
    void enterOfTheKeypadInTheFieldIsRefusedAndPressesNoButton();
    void aRefusedKeyGoesNoFurther();
    void tabInTheFieldMakesTabTheHotkey();
    void pressedKeyReplacesTheWholeText();
    void modifierLockAndGroupKeysAndKeyZeroAreIgnored_data();
    void modifierLockAndGroupKeysAndKeyZeroAreIgnored();
    void nothingButAKeyPressChangesTheKeyField();
    void theKeyFieldTakesTheKeyboardByClickOnly();
    void cancelLeavesTheOldHotkeyRegisteredAndReopeningShowsIt();
    void escapeOutsideTheKeyFieldIsCancel();
    void acceptingStoresAndRegistersTheKeyAtOnce();
    void acceptingRegistersTheKeyEvenWhenItDidNotChange();
    void acceptingStoresAutomaticActivation();
    void runningTimerIsNotChangedByAccepting();
    void uncheckingUpdatesStoresTrueAndCheckingRemovesTheKey();
    void onlyThePresenceOfTheUpdateKeyCounts();
    void minutesAreEnabledExactlyWhenTheBoxIsChecked();
    void minutesAreDisabledRightAfterOpeningWithActivationStoredAsOff();
    void minutesKeepWithinTheirRange();
    void hidingIsAnnounced();
    void titleAndPrefixSurviveAChangeOfTheLanguage();
    void itsSizeIsFixed();
    void onceItIsShownItsSizeStays_data();
    void onceItIsShownItsSizeStays();
    void aDesktopThatGivesNoHotkeySaysSoAsLongAsItDoesNot();
};

void SettingsTest::showsTheDefaultsOfEmptySettings()
{
    SettingsDesk desk;
    desk.show();
    QCOMPARE(desk.dialog.windowTitle(), u"Settings"_s);
    QCOMPARE(desk.dialog.getWindowName(), u"Settings"_s);
    QVERIFY(desk.automatic()->isChecked());
    QCOMPARE(desk.minutes()->value(), 30);
    QCOMPARE(desk.keyField()->text(), u"Space"_s);
    QCOMPARE(desk.child<QLabel>(u"hotkeyPrefixLabel"_s)->text(), u"Ctrl+Alt+"_s);
    QVERIFY(desk.updates()->isChecked());
    QVERIFY(QSettings().allKeys().filter(u"activation"_s).isEmpty());
}

void SettingsTest::showsWhatIsStoredEachTimeItIsShown()
{
    SettingsDesk desk;
    desk.show();
    desk.automatic()->setChecked(false);
    desk.minutes()->setValue(7);
    desk.updates()->setChecked(false);
    desk.dialog.hide();
    desk.activation.setAutomaticActivationPeriod(45);
    desk.activation.setHotkeyKey(Qt::Key_F5, 0xffc2);
    desk.show();
    QVERIFY(desk.automatic()->isChecked());
    QCOMPARE(desk.minutes()->value(), 45);
    QCOMPARE(desk.keyField()->text(), u"F5"_s);
    QVERIFY(desk.updates()->isChecked());
}

void SettingsTest::comingBackFromTheTaskbarKeepsWhatWasChanged()
{
    SettingsDesk desk;
    desk.show();
    desk.minutes()->setValue(7);
    desk.pressNative(Qt::Key_F6, 0xffc3);
    QShowEvent fromTaskbar;
    QSpontaneKeyEvent::setSpontaneous(&fromTaskbar);
    QVERIFY(fromTaskbar.spontaneous());
    QCoreApplication::instance()->notify(&desk.dialog, &fromTaskbar);
    QCOMPARE(desk.minutes()->value(), 7);
    QCOMPARE(desk.keyField()->text(), u"F6"_s);
}

void SettingsTest::shiftAInTheKeyFieldIsRefusedAndChangesNothing()
{
    SettingsDesk desk;
    desk.activation.setHotkeyKey(Qt::Key_F5, 0xffc2);
    const auto *refusals = new RefusalWatch(&desk.dialog);
    desk.show();
    desk.enterKeyField();
    desk.press(Qt::Key_A, Qt::ShiftModifier);
    QCOMPARE(refusals->count(), 1);
    QCOMPARE(desk.keyField()->text(), u"F5"_s);
    desk.accept();
    QCOMPARE(desk.activation.getHotkeyKey(), int(Qt::Key_F5));
    QCOMPARE(desk.activation.getHotkeyNativeVirtualKey(), 0xffc2u);
}

void SettingsTest::anyModifierIsRefused_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Shift") << int(Qt::ShiftModifier);
    QTest::newRow("Ctrl") << int(Qt::ControlModifier);
    QTest::newRow("Alt") << int(Qt::AltModifier);
    QTest::newRow("Meta") << int(Qt::MetaModifier);
    QTest::newRow("key pad") << int(Qt::KeypadModifier);
}

void SettingsTest::anyModifierIsRefused()
{
    QFETCH(int, modifiers);
    SettingsDesk desk;
    const auto *refusals = new RefusalWatch(&desk.dialog);
    desk.show();
    desk.enterKeyField();
    for (const int key : {int(Qt::Key_A), int(Qt::Key_Tab), int(Qt::Key_F1)})
        desk.pressNative(key, 0x61, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(refusals->count(), 3);
    QCOMPARE(desk.keyField()->text(), u"Space"_s);
}

void SettingsTest::enterOfTheKeypadInTheFieldIsRefusedAndPressesNoButton()
{
    SettingsDesk desk;
    const auto *refusals = new RefusalWatch(&desk.dialog);
    desk.show();
    desk.enterKeyField();
    desk.pressNative(Qt::Key_Enter, 0xff8d, Qt::KeypadModifier);
    QVERIFY(desk.dialog.isVisible());
    QCOMPARE(refusals->count(), 1);
    QCOMPARE(desk.keyField()->text(), u"Space"_s);
    QVERIFY(QSettings().allKeys().filter(u"activation"_s).isEmpty());
}

void SettingsTest::aRefusedKeyGoesNoFurther()
{
    SettingsDesk desk;
    desk.show();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::ShiftModifier);
    press.ignore();
    QCoreApplication::instance()->notify(desk.keyField(), &press);
    QVERIFY(press.isAccepted());
}

void SettingsTest::tabInTheFieldMakesTabTheHotkey()
{
    SettingsDesk desk;
    desk.show();
    desk.enterKeyField();
    desk.press(Qt::Key_Tab);
    QVERIFY(desk.keyField()->hasFocus());
    QCOMPARE(desk.keyField()->text(), u"Tab"_s);
    desk.pressNative(Qt::Key_Tab, 0xff09);
    desk.accept();
    QCOMPARE(desk.activation.getHotkeyKey(), int(Qt::Key_Tab));
    QCOMPARE(desk.native.hotkeys.last(), 0xff09u);
}

void SettingsTest::pressedKeyReplacesTheWholeText()
{
    SettingsDesk desk;
    desk.show();
    desk.enterKeyField();
    desk.press(Qt::Key_A);
    QCOMPARE(desk.keyField()->text(), u"A"_s);
    desk.press(Qt::Key_Backspace);
    QCOMPARE(desk.keyField()->text(), u"Backspace"_s);
    desk.press(Qt::Key_Return);
    QCOMPARE(desk.keyField()->text(), u"Return"_s);
    QVERIFY(desk.dialog.isVisible());
}

void SettingsTest::modifierLockAndGroupKeysAndKeyZeroAreIgnored_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Shift") << int(Qt::Key_Shift) << 0;
    QTest::newRow("Shift as X11 reports it") << int(Qt::Key_Shift) << int(Qt::ShiftModifier);
    QTest::newRow("Ctrl") << int(Qt::Key_Control) << int(Qt::ControlModifier);
    QTest::newRow("Alt") << int(Qt::Key_Alt) << int(Qt::AltModifier);
    QTest::newRow("AltGr") << int(Qt::Key_AltGr) << 0;
    QTest::newRow("Super") << int(Qt::Key_Super_L) << 0;
    QTest::newRow("Caps Lock") << int(Qt::Key_CapsLock) << 0;
    QTest::newRow("Num Lock") << int(Qt::Key_NumLock) << 0;
    QTest::newRow("Scroll Lock") << int(Qt::Key_ScrollLock) << 0;
    QTest::newRow("Mode switch") << int(Qt::Key_Mode_switch) << 0;
    QTest::newRow("change of the layout") << 0 << 0;
    QTest::newRow("unknown") << int(Qt::Key_unknown) << 0;
}

void SettingsTest::modifierLockAndGroupKeysAndKeyZeroAreIgnored()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    SettingsDesk desk;
    const auto *refusals = new RefusalWatch(&desk.dialog);
    desk.show();
    desk.enterKeyField();
    desk.pressNative(key, 0xffe1, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(refusals->count(), 0);
    QCOMPARE(desk.keyField()->text(), u"Space"_s);
    desk.accept();
    QCOMPARE(desk.native.hotkeys.last(), 0x20u);
}

void SettingsTest::nothingButAKeyPressChangesTheKeyField()
{
    SettingsDesk desk;
    desk.show();
    QMimeData data;
    data.setText(u"dropped"_s);
    QDropEvent drop(QPointF(3, 3), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(desk.keyField(), &drop);
    QVERIFY(!desk.keyField()->testAttribute(Qt::WA_InputMethodEnabled));
    QCOMPARE(desk.keyField()->contextMenuPolicy(), Qt::NoContextMenu);
    QCOMPARE(desk.keyField()->text(), u"Space"_s);
}

void SettingsTest::theKeyFieldTakesTheKeyboardByClickOnly()
{
    SettingsDesk desk;
    desk.show();
    QCOMPARE(desk.keyField()->focusPolicy(), Qt::ClickFocus);
    for (int i = 0; i < 10; ++i) {
        desk.press(Qt::Key_Tab);
        QVERIFY(!desk.keyField()->hasFocus());
    }
}

void SettingsTest::cancelLeavesTheOldHotkeyRegisteredAndReopeningShowsIt()
{
    SettingsDesk desk;
    desk.activation.setHotkeyKey(Qt::Key_F5, 0xffc2);
    const QList<unsigned int> registered = desk.native.hotkeys;
    desk.show();
    desk.enterKeyField();
    desk.pressNative(Qt::Key_F6, 0xffc3);
    QCOMPARE(desk.keyField()->text(), u"F6"_s);
    desk.cancel();
    QVERIFY(!desk.dialog.isVisible());
    QCOMPARE(desk.native.hotkeys, registered);
    QCOMPARE(desk.activation.getHotkeyKey(), int(Qt::Key_F5));
    desk.show();
    QCOMPARE(desk.keyField()->text(), u"F5"_s);
}

void SettingsTest::escapeOutsideTheKeyFieldIsCancel()
{
    SettingsDesk desk;
    desk.show();
    desk.minutes()->setValue(7);
    desk.minutes()->setFocus();
    desk.press(Qt::Key_Escape);
    QVERIFY(!desk.dialog.isVisible());
    QCOMPARE(desk.activation.getAutomaticActivationPeriod(), 30);
    QVERIFY(desk.native.hotkeys.isEmpty());
}

void SettingsTest::acceptingStoresAndRegistersTheKeyAtOnce()
{
    SettingsDesk desk;
    desk.show();
    desk.enterKeyField();
    desk.pressNative(Qt::Key_F6, 0xffc3);
    QVERIFY(desk.native.hotkeys.isEmpty());
    desk.accept();
    QVERIFY(!desk.dialog.isVisible());
    QCOMPARE(desk.native.hotkeys, QList<unsigned int>{0xffc3u});
    QCOMPARE(desk.activation.getHotkeyKey(), int(Qt::Key_F6));
    QCOMPARE(desk.activation.getHotkeyNativeVirtualKey(), 0xffc3u);
}

void SettingsTest::acceptingRegistersTheKeyEvenWhenItDidNotChange()
{
    SettingsDesk desk;
    desk.show();
    desk.accept();
    QCOMPARE(desk.native.hotkeys, QList<unsigned int>{0x20u});
    QCOMPARE(QSettings().value(u"activationhotkey"_s).toInt(), int(Qt::Key_Space));
}

void SettingsTest::acceptingStoresAutomaticActivation()
{
    SettingsDesk desk;
    desk.show();
    desk.minutes()->setValue(12);
    desk.automatic()->setChecked(false);
    desk.accept();
    QVERIFY(!desk.activation.isAutomaticActivationEnabled());
    QCOMPARE(desk.activation.getAutomaticActivationPeriod(), 12);
    desk.show();
    desk.automatic()->setChecked(true);
    desk.accept();
    QVERIFY(desk.activation.isAutomaticActivationEnabled());
}

void SettingsTest::runningTimerIsNotChangedByAccepting()
{
    SettingsDesk desk;
    desk.activation.activateApp(false);
    desk.activation.deactivateApp(false);
    QVERIFY(desk.activation.isActivationTimerActive());
    desk.show();
    desk.minutes()->setValue(1);
    desk.automatic()->setChecked(false);
    desk.accept();
    QVERIFY(desk.activation.isActivationTimerActive());
    QCOMPARE(desk.activation.activationTimerInterval(), qint64(30) * 60'000);
}

void SettingsTest::uncheckingUpdatesStoresTrueAndCheckingRemovesTheKey()
{
    SettingsDesk desk;
    desk.show();
    desk.updates()->setChecked(false);
    desk.accept();
    QCOMPARE(QSettings().value(dontCheckKey).toBool(), true);
    desk.show();
    QVERIFY(!desk.updates()->isChecked());
    desk.updates()->setChecked(true);
    desk.accept();
    QVERIFY(!QSettings().contains(dontCheckKey));
}

void SettingsTest::onlyThePresenceOfTheUpdateKeyCounts()
{
    SettingsDesk desk;
    QSettings().setValue(dontCheckKey, false);
    desk.show();
    QVERIFY(!desk.updates()->isChecked());
}

void SettingsTest::minutesAreEnabledExactlyWhenTheBoxIsChecked()
{
    SettingsDesk desk;
    QVERIFY(!desk.minutes()->isEnabled()); // not shown yet, nothing checked
    desk.show();
    QVERIFY(desk.minutes()->isEnabled());
    desk.automatic()->click();
    QVERIFY(!desk.minutes()->isEnabled());
    desk.automatic()->click();
    QVERIFY(desk.minutes()->isEnabled());
}

void SettingsTest::minutesAreDisabledRightAfterOpeningWithActivationStoredAsOff()
{
    SettingsDesk desk;
    desk.activation.setAutomaticActivationEnabled(false);
    desk.show();
    QVERIFY(!desk.automatic()->isChecked());
    QVERIFY(!desk.minutes()->isEnabled());
    desk.cancel();
    desk.activation.setAutomaticActivationEnabled(true);
    desk.show();
    QVERIFY(desk.minutes()->isEnabled());
}

void SettingsTest::minutesKeepWithinTheirRange()
{
    SettingsDesk desk;
    desk.activation.setAutomaticActivationPeriod(0);
    desk.show();
    QCOMPARE(desk.minutes()->value(), 1);
    desk.minutes()->setValue(2'000'000);
    desk.accept();
    QCOMPARE(desk.activation.getAutomaticActivationPeriod(), 1'000'000);
}

void SettingsTest::hidingIsAnnounced()
{
    SettingsDesk desk;
    const QSignalSpy hidings(&desk.dialog, &AbstractWindow::hiding);
    desk.show();
    desk.accept();
    QCOMPARE(hidings.count(), 1);
    desk.show();
    desk.cancel();
    QCOMPARE(hidings.count(), 2);
}

void SettingsTest::titleAndPrefixSurviveAChangeOfTheLanguage()
{
    SettingsDesk desk;
    desk.show();
    const OtherLanguage language;
    QCOMPARE(desk.dialog.windowTitle(), u"~Settings"_s);
    QCOMPARE(desk.child<QLabel>(u"hotkeyPrefixLabel"_s)->text(), u"~Ctrl+Alt+"_s);
    QCOMPARE(desk.automatic()->text(), u"~Automatically activate every"_s);
}

void SettingsTest::itsSizeIsFixed()
{
    SettingsDesk desk;
    QSettings().setValue(u"Settings/size"_s, QSize(900, 700));
    desk.show();
    QCOMPARE(desk.dialog.size(), desk.dialog.sizeHint());
    QCOMPARE(desk.dialog.minimumSize(), desk.dialog.maximumSize());
}

void SettingsTest::onceItIsShownItsSizeStays_data()
{
    QTest::addColumn<QString>("notice");
    QTest::newRow("hotkey works") << QString();
    QTest::newRow("no hotkey") << u"There is no hotkey here. Use something else instead."_s;
}

// A window that is resized while it is framed is asked for at a wrong place.
void SettingsTest::onceItIsShownItsSizeStays()
{
    QFETCH(QString, notice);
    SettingsDesk desk;
    desk.native.hotkeyNotice = notice;
    desk.dialog.restoreShowAndActivate();
    const QSize size = desk.dialog.size();
    QVERIFY(QTest::qWaitForWindowExposed(&desk.dialog));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(desk.dialog.size(), size);
    QCOMPARE(size, desk.dialog.sizeHint());
}

void SettingsTest::aDesktopThatGivesNoHotkeySaysSoAsLongAsItDoesNot()
{
    SettingsDesk desk;
    desk.native.hotkeyNotice = u"There is no hotkey here. <b>Use</b> something else instead."_s;
    desk.show();
    auto *notice = desk.child<QLabel>(u"hotkeyNoticeLabel"_s);
    QVERIFY(notice->isVisible());
    QCOMPARE(notice->text(), desk.native.hotkeyNotice);
    QCOMPARE(notice->textFormat(), Qt::PlainText);
    QVERIFY(notice->height() >= notice->heightForWidth(notice->width()));
    desk.dialog.hide();
    desk.native.hotkeyNotice.clear();
    desk.show();
    QVERIFY(!notice->isVisible());
}

QTEST_MAIN(SettingsTest)
#include "SettingsTest.moc"
