// SPDX-License-Identifier: MIT
#include "ui/HierarchyWindow.h"

#include "app/activation/AppActivationSupport.h"
#include "model/HierarchyModel.h"
#include "platform/KeyLookup.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "ui/CommandLog.h"
#include "ui/EntryTextEdit.h"
#include "ui/KeyPress.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcHierarchyWindow, "brindle.ui.hierarchywindow")

HierarchyWindow::HierarchyWindow(HierarchyModel *model, AppActivationSupport *activationSupport,
                                 int shortcutModifier, int shortcutModifierKey)
    : m_model(model)
    , m_activationSupport(activationSupport)
    , m_shortcutModifier(Qt::KeyboardModifiers::fromInt(shortcutModifier))
    , m_shortcutModifierKey(shortcutModifierKey)
    , m_hasChildrenArrow(u":/images/haschildrenarrow.png"_s)
    , m_hiddenArrow(u":/images/haschildrenarrow_hidden.png"_s)
{
    buildLayout();
    // The editor must hold the entry's text before anything asks for it.
    refresh();
    // The reason stands here, also when another window asked.
    connect(m_model, &HierarchyModel::refused, this, &HierarchyWindow::showRefusal);
    connect(m_activationSupport, &AppActivationSupport::activationChanged, this,
            &HierarchyWindow::updateModelBody);
    connect(m_activationSupport, &AppActivationSupport::activationChanged, this,
            [this] { setRegisterShortcut(false); });
    connect(m_activationSupport, &AppActivationSupport::activationChanged, this,
            &HierarchyWindow::refresh);
}

QString HierarchyWindow::getWindowName() const
{
    return u"HierarchyWindow"_s;
}

void HierarchyWindow::setRegisterShortcut(bool on)
{
    m_registerShortcut = on;
    // The key to bind must not end up in an input method.
    m_editor->setAttribute(Qt::WA_InputMethodEnabled, !on);
    m_shortcutKeyLabel->setProperty("regshortcutkey", on ? u"true"_s : u"false"_s);
    resetStylesheet();
}

bool HierarchyWindow::isJump(const QKeyEvent &event, Qt::KeyboardModifiers held) const
{
    return KeyPress::withoutKeypadAndGroup(held) == m_shortcutModifier
        && event.key() != m_shortcutModifierKey;
}

// An unchanged text stays out of the model: what the editor gives back may differ from what is
// stored, and a mere visit must not rewrite an entry.
void HierarchyWindow::updateModelBody()
{
    m_editor->commitPreedit();
    if (!m_editor->holdsUnchanged(m_model->getBody()))
        m_model->updateCurrentBody(m_editor->text());
}

void HierarchyWindow::activate()
{
    if (!m_activationSupport->isAppActive())
        return;
    giveKeyboardToPage();
    AbstractWindow::activate();
}

void HierarchyWindow::createFile()
{
    guardAgainstTexts(lcHierarchyWindow(), "createFile",
                      [this] { m_model->createFileAtCurrentPosition(); });
    giveKeyboardToPage();
}

void HierarchyWindow::loadFile()
{
    guardAgainstTexts(lcHierarchyWindow(), "loadFile",
                      [this] { m_model->loadFileAtCurrentPosition(); });
    giveKeyboardToPage();
}

void HierarchyWindow::unloadFile()
{
    guardAgainstTexts(lcHierarchyWindow(), "unloadFile", [this] {
        if (!m_model->unloadCurrentFile())
            Refusal::refuse();
    });
    giveKeyboardToPage();
}

void HierarchyWindow::reject()
{
    m_activationSupport->deactivateApp(true, false);
}

void HierarchyWindow::closeEvent(QCloseEvent *event)
{
    // A desktop that ends the session must not take this window's "no" for the program's.
    if (qApp->isSavingSession()) {
        event->accept();
        return;
    }
    m_activationSupport->deactivateApp(true, false);
    event->ignore();
}

void HierarchyWindow::showRefusal()
{
    flashAround(m_stack);
}

void HierarchyWindow::keyPressEvent(QKeyEvent *event)
{
    guardAgainstTexts(lcHierarchyWindow(), "handleCommand",
                      [this, event] { handleKeyPress(event); });
}

void HierarchyWindow::handleKeyPress(QKeyEvent *event)
{
    const Qt::KeyboardModifiers held = QApplication::keyboardModifiers();
    if (m_registerShortcut) {
        event->accept();
        registerPressedKey(*event, held);
        return;
    }
    if (isJump(*event, held)) {
        event->accept();
        jumpToPressedKey(*event, held);
        return;
    }
    const Command command = KeyPress::command(*event, held);
    if (command == Command::NoCommand) {
        AbstractWindow::keyPressEvent(event);
        return;
    }
    event->accept();
    logCommand(command);
    if (command == Command::RegisterShortcut)
        startRegisteringShortcut();
    else
        m_model->handleCommand(command);
    giveKeyboardToPage();
}

void HierarchyWindow::registerPressedKey(const QKeyEvent &event, Qt::KeyboardModifiers held)
{
    // On the way to Shift+X there is Shift: not the awaited key.
    if (KeyLookup::isModifierOrLockKey(event.key()))
        return;
    setRegisterShortcut(false);
    if (KeyPress::withoutKeypadAndGroup(held) != Qt::NoModifier)
        return;
    const int key = KeyLookup::candidates(event, held).constFirst().key;
    if (key == Qt::Key_Escape)
        return;
    if (key == Qt::Key_Backspace || key == Qt::Key_Delete) {
        if (!m_model->unregisterShortcut())
            Refusal::refuse();
        return;
    }
    if (m_model->isShortcutRegistered(key, true)) {
        Refusal::refuse();
        setRegisterShortcut(true);
        return;
    }
    const QString keyText = QKeySequence(key).toString(QKeySequence::PortableText);
    if (!m_model->registerShortcut(key, keyText))
        Refusal::refuse();
}

// A binding made in one keyboard layout is found in another through the key's other meanings.
void HierarchyWindow::jumpToPressedKey(const QKeyEvent &event, Qt::KeyboardModifiers held)
{
    if (KeyLookup::isModifierOrLockKey(event.key()))
        return;
    const QList<KeyCommandMap::KeyCombo> combos = KeyLookup::candidates(event, held);
    for (const KeyCommandMap::KeyCombo &combo : combos) {
        if (m_model->isShortcutRegistered(combo.key, false)) {
            m_model->goToEntryByShortcutKey(combo.key);
            giveKeyboardToPage();
            return;
        }
    }
    Refusal::refuse();
}

void HierarchyWindow::startRegisteringShortcut()
{
    if (m_model->canRegisterShortcut())
        setRegisterShortcut(true);
    else
        Refusal::refuse();
}

void HierarchyWindow::comeToFront()
{
    restoreShowAndActivate();
    m_activationSupport->requestFront(windowHandle());
    // An open box has the keyboard: left behind, it would block this window for no visible reason.
    QWidget *box = QApplication::activeModalWidget();
    if (!box || box == this)
        return;
    box->setWindowState(box->windowState() & ~Qt::WindowMinimized);
    box->activateWindow();
    box->raise();
}

// At the panel the editor is out of sight and must not take keys.
void HierarchyWindow::giveKeyboardToPage()
{
    m_stack->currentWidget()->setFocus();
}
