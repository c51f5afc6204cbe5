// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

/// Binding entries to keys and following the bindings, also when several files bind the same key.
class HierarchyShortcutsTest : public QObject
{
    Q_OBJECT

private:
    static void setUpTwoFilesWithTheSameKey(HierarchyDesk &desk);

private slots:
    void onlyStoredEntriesCanBeBound();
    void aNewEntryWithTypedTextIsWrittenAndCanBeBound();
    void bindingWritesKeyAndTextAndRedraws();
    void bindingIsRefusedForNewEntriesThePanelAndRefusedTexts();
    void bindingTheKeyThatTheCurrentEntryAlreadyHoldsIsAllowed();
    void bindingASecondKeyReplacesTheFirst();
    void bindingAKeyOfAnotherEntryOfTheFileMovesIt();
    void unbindingRemovesKeyAndText();
    void unbindingAnEntryWithoutABindingStillCallsTheStoreAndRedraws();
    void aKeyIsRegisteredWhereAnyFileBindsIt();
    void theCurrentEntrysOwnBindingCanBeLeftOut();
    void followingAKeyLandsOnThePreferredChild();
    void followingAKeyOfAChildlessEntryLandsOnIt();
    void followingABindingToAnEntryWhoseChildrenAreAllDoneLandsOnItsLastChild();
    void followingAKeyOfAnotherFile();
    void followingAKeyFromThePanel();
    void followingAKeyWritesTheTextFirst();
    void followingAKeyIsRefusedWhenTheTextIs();
    void followingAnUnboundKeyIsThrown();
    void followingTheKeyOfAnEntryJustClearedIsThrown();
    void aKeyBoundInTwoFilesOpensTheChooserWithTwoButtonsInFileOrder();
    void choosingAButtonJumpsToThePreferredChild_data();
    void choosingAButtonJumpsToThePreferredChild();
    void cancelLeavesThePositionButTheTextIsWritten_data();
    void cancelLeavesThePositionButTheTextIsWritten();
    void cancelAfterClearingTheEntryShowsItsPlaceEmpty();
    void chooserLabelsAreCutToTwentyCharacters();
    void chooserFollowsTheOrderOfTheFiles();
    void anUnreadableEntryInTheChooserIsThrown();
    void aFileClosedWhileTheChooserIsOpenIsNotJumpedTo();
    void bindingsAreSavedAndFoundAgain();
    void aDiscardTakesTheBindingBack();
};

void HierarchyShortcutsTest::setUpTwoFilesWithTheSameKey(HierarchyDesk &desk)
{
    desk.addFile(u"one.bdl"_s, u"- a\n  x a1\n  - a2\n- b\n"_s);
    desk.addFile(u"two.bdl"_s, u"- z\n  x z1\n  / z2\n"_s);
    desk.start();
    desk.goTo(u"z"_s, 1);
    QVERIFY(desk.model->registerShortcut(Qt::Key_K, u"K"_s));
    desk.goTo(u"a"_s, 0);
    QVERIFY(desk.model->registerShortcut(Qt::Key_K, u"K"_s));
    desk.files->commitAndRestartTransactions();
    desk.goTo(u"b"_s, 0);
}

void HierarchyShortcutsTest::onlyStoredEntriesCanBeBound()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  - a1\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->canRegisterShortcut());
    desk.goToRoot(0);
    QVERIFY(desk.model->canRegisterShortcut());
    desk.goToNewAfter(u"a"_s);
    QVERIFY(!desk.model->canRegisterShortcut());
    desk.goToPanel(0);
    QVERIFY(!desk.model->canRegisterShortcut());
    desk.goTo(u"a"_s);
    desk.type(QString());
    QVERIFY(!desk.model->canRegisterShortcut());
    // Whoever asked beeps, not the model.
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.changed->size(), 0);
    // Here asking deletes the entry, and what stands around its place is to be seen.
    desk.type(u"a"_s);
    desk.goTo(u"a1"_s);
    desk.type(QString());
    QVERIFY(!desk.model->canRegisterShortcut());
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.where(), u"a: - <> -"_s);
}

void HierarchyShortcutsTest::aNewEntryWithTypedTextIsWrittenAndCanBeBound()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    desk.type(u"b"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    QCOMPARE(desk.outline(), u"- a\n- b\n"_s);
    QCOMPARE(Outline::rowWithText(desk.rows(), u"b"_s).keyText, u"B"_s);
    QCOMPARE(desk.where(), u"one.bdl: a <b> -"_s);
}

void HierarchyShortcutsTest::bindingWritesKeyAndTextAndRedraws()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"aa"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_F5, u"F5"_s));
    QCOMPARE(desk.model->getShortcutKeyText(), u"F5"_s);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.bodyChanges->size(), 1);
    const auto row = Outline::rowWithText(desk.rows(), u"aa"_s);
    QCOMPARE(row.keyText, u"F5"_s);
    QCOMPARE(desk.store().getEntryIdByShortcutKey(Qt::Key_F5), row.id);
    // It is read again with the entry.
    desk.run(Command::GoToParent);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    desk.run(Command::GoToChild);
    QCOMPARE(desk.model->getShortcutKeyText(), u"F5"_s);
}

void HierarchyShortcutsTest::bindingIsRefusedForNewEntriesThePanelAndRefusedTexts()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  - a1\n"_s);
    desk.start();
    const auto refuses = [&](const char *place) {
        const QString before = desk.model->getShortcutKeyText();
        QVERIFY2(!desk.model->registerShortcut(Qt::Key_A, u"A"_s), place);
        QVERIFY2(!desk.model->unregisterShortcut(), place);
        QCOMPARE(desk.model->getShortcutKeyText(), before);
        QCOMPARE(desk.changed->size(), 0);
        QVERIFY2(!desk.somethingWritten(), place);
    };
    desk.goToNewAfter(u"a1"_s);
    refuses("a new entry");
    desk.goToPanel(1);
    refuses("the panel");
    desk.goTo(u"a"_s);
    desk.type(u" "_s);
    refuses("a parent with its text cleared");
    desk.goToRoot(0);
    desk.type(QString());
    refuses("a root with its text cleared");
}

void HierarchyShortcutsTest::bindingTheKeyThatTheCurrentEntryAlreadyHoldsIsAllowed()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_A, u"A"_s));
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_A, true));
    QVERIFY(desk.model->registerShortcut(Qt::Key_A, u"A"_s));
    QCOMPARE(desk.model->getShortcutKeyText(), u"A"_s);
    QCOMPARE(desk.store().getEntryIdByShortcutKey(Qt::Key_A), desk.idOf(u"a"_s));
}

void HierarchyShortcutsTest::bindingASecondKeyReplacesTheFirst()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_A, u"A"_s));
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    QCOMPARE(desk.model->getShortcutKeyText(), u"B"_s);
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_A, false));
    QVERIFY(desk.model->isShortcutRegistered(Qt::Key_B, false));
}

void HierarchyShortcutsTest::bindingAKeyOfAnotherEntryOfTheFileMovesIt()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_K, u"K"_s));
    desk.goTo(u"b"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_K, u"K"_s));
    QCOMPARE(Outline::rowWithText(desk.rows(), u"a"_s).keyText, QString());
    QCOMPARE(desk.store().getEntryIdByShortcutKey(Qt::Key_K), desk.idOf(u"b"_s));
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
}

void HierarchyShortcutsTest::unbindingRemovesKeyAndText()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_A, u"A"_s));
    desk.forget();
    desk.type(u"aa"_s);
    QVERIFY(desk.model->unregisterShortcut());
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_A, false));
    QCOMPARE(Outline::rowWithText(desk.rows(), u"aa"_s).keyText, QString());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyShortcutsTest::unbindingAnEntryWithoutABindingStillCallsTheStoreAndRedraws()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(!desk.somethingWritten());
    QVERIFY(desk.model->unregisterShortcut());
    QVERIFY(desk.somethingWritten());
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyShortcutsTest::aKeyIsRegisteredWhereAnyFileBindsIt()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    QVERIFY(desk.model->isShortcutRegistered(Qt::Key_K, false));
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_L, false));
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_L, true));
    desk.goToPanel(2);
    QVERIFY(desk.model->isShortcutRegistered(Qt::Key_K, false));
    QVERIFY(desk.model->isShortcutRegistered(Qt::Key_K, true));
    // Asking neither writes nor redraws.
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.bodyRequests->size(), 0);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyShortcutsTest::theCurrentEntrysOwnBindingCanBeLeftOut()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    const auto othersBindIt = [&] { return desk.model->isShortcutRegistered(Qt::Key_K, true); };
    desk.goTo(u"b"_s);
    QVERIFY(othersBindIt());
    // The current entry binds it, and so does the other file: before or after it.
    desk.goTo(u"a"_s);
    QVERIFY(othersBindIt());
    desk.goTo(u"z"_s, 1);
    QVERIFY(othersBindIt());
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->unregisterShortcut());
    QVERIFY(othersBindIt());
    desk.goTo(u"z"_s, 1);
    QVERIFY(!othersBindIt());
    // The same id in another file is another entry.
    desk.model->goToEntry({0, desk.idOf(u"z"_s, 1)});
    QVERIFY(othersBindIt());
}

void HierarchyShortcutsTest::followingAKeyLandsOnThePreferredChild()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  x a1\n  - a2\n  - a3\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"b"_s);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.where(), u"a: a1 <a2> a3"_s);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"A"_s);
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyShortcutsTest::followingAKeyOfAChildlessEntryLandsOnIt()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"b"_s);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    QCOMPARE(desk.model->getShortcutKeyText(), u"A"_s);
}

void HierarchyShortcutsTest::followingABindingToAnEntryWhoseChildrenAreAllDoneLandsOnItsLastChild()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  x a1\n  x a2\n  x a3\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"b"_s);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.where(), u"a: a2 <a3> -"_s);
}

void HierarchyShortcutsTest::followingAKeyOfAnotherFile()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- b\n"_s);
    desk.addFile(u"two.bdl"_s, u"- z\n  - z1\n"_s);
    desk.start();
    desk.store(1).registerShortcut(desk.idOf(u"z"_s, 1), Qt::Key_Z, u"Z"_s);
    desk.goTo(u"b"_s);
    desk.model->goToEntryByShortcutKey(Qt::Key_Z);
    QCOMPARE(desk.where(), u"z: - <z1> -"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"two.bdl"_s);
}

void HierarchyShortcutsTest::followingAKeyFromThePanel()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goToPanel(0);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.where(), u"one.bdl: - <a> -"_s);
}

void HierarchyShortcutsTest::followingAKeyWritesTheTextFirst()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.outline(), u"- a\n- bb\n"_s);
    QCOMPARE(desk.where(), u"one.bdl: - <a> bb"_s);
    QCOMPARE(desk.bodyChanges->size(), 1);
}

void HierarchyShortcutsTest::followingAKeyIsRefusedWhenTheTextIs()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  - a1\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a1"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"a"_s);
    desk.type(QString());
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    // The refusal comes before the look at the binding.
    QCOMPARE(thrownBy([&] { desk.model->goToEntryByShortcutKey(Qt::Key_X); }), "nothing");
    QCOMPARE(desk.refusals(), 2);
}

void HierarchyShortcutsTest::followingAnUnboundKeyIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"aa"_s);
    QCOMPARE(thrownBy([&] { desk.model->goToEntryByShortcutKey(Qt::Key_X); }),
             "shortcut hasn't been registered");
    QCOMPARE(desk.outline(), u"- aa\n"_s);
    QCOMPARE(desk.refusals(), 0);
}

void HierarchyShortcutsTest::followingTheKeyOfAnEntryJustClearedIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"a"_s);
    desk.type(QString());
    QCOMPARE(thrownBy([&] { desk.model->goToEntryByShortcutKey(Qt::Key_A); }),
             "shortcut hasn't been registered");
    QCOMPARE(desk.outline(), u"- b\n"_s);
    QCOMPARE(desk.deletions->size(), 1);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.where(), u"one.bdl: - <> b"_s);
}

void HierarchyShortcutsTest::aKeyBoundInTwoFilesOpensTheChooserWithTwoButtonsInFileOrder()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    QStringList labels;
    bool noFocus = true;
    bool cancelIsStandard = false;
    bool noDefault = false;
    bool isQuestion = false;
    qsizetype buttonCount = 0;
    QString title;
    BoxAnswer answer([&](QMessageBox *box) {
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) != QMessageBox::YesRole)
                continue;
            labels += button->text();
            noFocus = noFocus && button->focusPolicy() == Qt::NoFocus;
        }
        buttonCount = box->buttons().size();
        noDefault = box->defaultButton() == nullptr;
        isQuestion = box->icon() == QMessageBox::Question;
        title = box->windowTitle();
        QAbstractButton *cancel = box->button(QMessageBox::Cancel);
        cancelIsStandard = cancel != nullptr;
        cancel->click();
    });
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    QVERIFY(answer.wasShown());
    QCOMPARE(answer.text(),
             u"That shortcut is bound to entries in multiple files. Please click the button for "
             "the one you wanted, and consider adjusting your shortcut bindings to avoid such "
             "conflicts."_s);
    QCOMPARE(labels, (QStringList{u"a"_s, u"z"_s}));
    QCOMPARE(buttonCount, 3);
    QVERIFY(noFocus);
    QVERIFY(cancelIsStandard);
    QVERIFY(noDefault);
    QVERIFY(isQuestion);
    QCOMPARE(title, QString());
}

void HierarchyShortcutsTest::choosingAButtonJumpsToThePreferredChild_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("where");
    QTest::newRow("first file") << u"a"_s << u"a: a1 <a2> -"_s;
    QTest::newRow("second file") << u"z"_s << u"z: z1 <z2> -"_s;
}

void HierarchyShortcutsTest::choosingAButtonJumpsToThePreferredChild()
{
    QFETCH(const QString, label);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    desk.type(u"bb"_s);
    BoxAnswer answer([&](QMessageBox *box) {
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == label)
                return button->click();
        }
        box->reject();
    });
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    QVERIFY(answer.wasShown());
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- bb\n"_s);
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyShortcutsTest::cancelLeavesThePositionButTheTextIsWritten_data()
{
    QTest::addColumn<bool>("closeTheBox");
    QTest::newRow("Cancel pressed") << false;
    QTest::newRow("box closed") << true;
}

void HierarchyShortcutsTest::cancelLeavesThePositionButTheTextIsWritten()
{
    QFETCH(const bool, closeTheBox);
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    desk.type(u"bb"_s);
    BoxAnswer answer([&](QMessageBox *box) {
        if (closeTheBox)
            box->close();
        else
            box->button(QMessageBox::Cancel)->click();
    });
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    QVERIFY(answer.wasShown());
    QCOMPARE(desk.where(), u"one.bdl: a <bb> -"_s);
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- bb\n"_s);
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.editor->text(), u"bb"_s);
}

void HierarchyShortcutsTest::cancelAfterClearingTheEntryShowsItsPlaceEmpty()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    desk.store().registerShortcut(desk.idOf(u"b"_s), Qt::Key_B, u"B"_s);
    desk.goTo(u"a"_s);
    desk.goTo(u"b"_s);
    QCOMPARE(desk.model->getShortcutKeyText(), u"B"_s);
    desk.type(QString());
    const BoxAnswer cancel(BoxAnswer::press(QMessageBox::Cancel));
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    QVERIFY(cancel.wasShown());
    QCOMPARE(desk.where(), u"one.bdl: a <> -"_s);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyShortcutsTest::chooserLabelsAreCutToTwentyCharacters()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- Salt & pepper & oil & more\n"_s);
    desk.addFile(u"two.bdl"_s, u"- exactly twenty chars\n"_s);
    desk.addFile(u"three.bdl"_s, u"- <b>R&D</b>\n"_s);
    desk.addFile(u"four.bdl"_s, u"- lines\n"_s);
    desk.start();
    desk.store(3).updateEntryBody(desk.idOf(u"lines"_s, 3), u"two\n\nlines"_s, false);
    for (int i = 0; i < 4; ++i) {
        const Outline::Rows rows = desk.rows(i);
        desk.store(i).registerShortcut(rows.last().id, Qt::Key_K, u"K"_s);
    }
    QStringList labels;
    BoxAnswer answer([&](QMessageBox *box) {
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::YesRole)
                labels += button->text();
        }
        box->reject();
    });
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    // The text is cut first: a doubled sign counts once.
    QCOMPARE(labels,
             (QStringList{u"Salt && pepper && oil  ..."_s, u"exactly twenty chars"_s,
                          u"<b>R&&D</b>"_s, u"two lines"_s}));
}

void HierarchyShortcutsTest::chooserFollowsTheOrderOfTheFiles()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    desk.goToRoot(0);
    desk.run(Command::MoveCurrentDown);
    QStringList labels;
    BoxAnswer answer([&](QMessageBox *box) {
        QAbstractButton *first = nullptr;
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) != QMessageBox::YesRole)
                continue;
            labels += button->text();
            if (!first)
                first = button;
        }
        first->click();
    });
    desk.model->goToEntryByShortcutKey(Qt::Key_K);
    QCOMPARE(labels, (QStringList{u"z"_s, u"a"_s}));
    QCOMPARE(desk.where(), u"z: z1 <z2> -"_s);
    QCOMPARE(desk.model->getFileName(), u"two.bdl"_s);
}

void HierarchyShortcutsTest::anUnreadableEntryInTheChooserIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    const QString other = desk.addFile(u"two.bdl"_s, u"- z\n"_s);
    Outline::runOnDisk(other,
                       {u"UPDATE entry SET hotkey=75, hotkeytext='K' WHERE id=2"_s,
                        u"DELETE FROM entrybody WHERE docid=2"_s});
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_K, u"K"_s));
    QCOMPARE(thrownBy([&] { desk.model->goToEntryByShortcutKey(Qt::Key_K); }), "entry not found?");
    QCOMPARE(desk.where(), u"one.bdl: - <a> -"_s);
}

void HierarchyShortcutsTest::aFileClosedWhileTheChooserIsOpenIsNotJumpedTo()
{
    for (const QString &label : {u"a"_s, u"z"_s}) {
        HierarchyDesk desk;
        setUpTwoFilesWithTheSameKey(desk);
        desk.goTo(u"z1"_s, 1);
        // A file error closes its file whenever it is delivered, also while a box is open.
        BoxAnswer answer([&](QMessageBox *box) {
            desk.files->unloadFile(0, true);
            for (QAbstractButton *button : box->buttons()) {
                if (button->text() == label)
                    button->click();
            }
        });
        QCOMPARE(thrownBy([&] { desk.model->goToEntryByShortcutKey(Qt::Key_K); }), "nothing");
        QVERIFY(answer.wasShown());
        QCOMPARE(desk.files->getFileCount(), 1);
        QCOMPARE(desk.where(), label == u"a"_s ? u"z: - <z1> z2"_s : u"z: z1 <z2> -"_s);
        QCOMPARE(desk.model->getFileName(), u"two.bdl"_s);
    }
}

void HierarchyShortcutsTest::bindingsAreSavedAndFoundAgain()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    desk.goTo(u"b"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    desk.run(Command::SaveChangesAndHide);
    const Outline::Rows rows = Outline::readFromDisk(desk.filePath(u"one.bdl"_s));
    QCOMPARE(Outline::rowWithText(rows, u"b"_s).keyText, u"B"_s);
    QCOMPARE(Outline::rowWithText(rows, u"a"_s).keyText, u"K"_s);
}

void HierarchyShortcutsTest::aDiscardTakesTheBindingBack()
{
    HierarchyDesk desk;
    setUpTwoFilesWithTheSameKey(desk);
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_B, false));
    QCOMPARE(desk.where(), u"one.bdl: a <b> -"_s);
}

QTEST_MAIN(HierarchyShortcutsTest)
#include "HierarchyShortcutsTest.moc"
