// SPDX-License-Identifier: MIT
#include "ui/HierarchyWindow.h"

#include "app/activation/AppActivationSupport.h"
#include "model/HierarchyModel.h"
#include "ui/EntryStateTexts.h"
#include "ui/EntryTextEdit.h"

#include <QApplication>
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace
{
constexpr int editorPage = 0;
constexpr int panelPage = 1;

/// Tool tips guess whether they are rich text; a path never is.
QString plainToolTip(const QString &text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    return u"<p style='white-space:pre'>"_s + text.toHtmlEscaped() + u"</p>"_s;
}
} // namespace

void HierarchyWindow::refresh()
{
    const bool wasVisible = isVisible();
    const bool appActive = m_activationSupport->isAppActive();
    if (wasVisible && !appActive)
        setVisible(false);
    // Another entry may stand here now, and the key is for the one that it was asked for.
    if (m_registerShortcut)
        setRegisterShortcut(false);

    showPage();
    showParent();
    showNeighbours();
    showCurrentEntry();
    showDoneDate();
    showFilePanel();
    resetStylesheet();

    if (!wasVisible && appActive) {
        comeToFront();
        if (!QApplication::focusWidget())
            giveKeyboardToPage();
    }
}

void HierarchyWindow::resetStylesheet()
{
    setStyleSheet(u"*[donedate=\"true\"] {font-size:10px} "
                  "*[shortcutkey=\"true\"] {color: #0000CC} "
                  "*[regshortcutkey=\"true\"] {border: 2px solid #BB6600;} "
                  "*[iconstate=\"todo\"] {background-color: #4466FF} "
                  "*[iconstate=\"done\"] {background-color: #888888} "
                  "*[iconstate=\"wontdo\"] {background-color: #FFCC44} "_s);
}

void HierarchyWindow::showPage()
{
    if (m_model->atOpenCreatePanel()) {
        setWindowTitle(u"Brindle"_s);
        m_stack->setCurrentIndex(panelPage);
        return;
    }
    setWindowTitle(u"Brindle ("_s + m_model->getRootExcerpt() + u')');
    m_stack->setCurrentIndex(editorPage);
    m_editor->setFocus();
}

void HierarchyWindow::showParent()
{
    const QString body = m_model->getParentBody();
    m_parentLabel->setText(body);
    m_parentShortcutKeyLabel->setText(m_model->getParentShortcutKeyText());
    showState(m_parentStateBar, m_model->getParentState());
    for (QWidget *widget : {m_parentStateBar, static_cast<QWidget *>(m_parentLabel),
                            static_cast<QWidget *>(m_parentShortcutKeyLabel)})
        widget->setVisible(!body.isEmpty());
}

void HierarchyWindow::showNeighbours()
{
    showState(m_precedingStateBar, m_model->getPrecedingSiblingEntryState());
    m_precedingLabel->setText(m_model->getPrecedingSiblingEntryBody());
    showState(m_followingStateBar, m_model->getFollowingSiblingEntryState());
    m_followingLabel->setText(m_model->getFollowingSiblingEntryBody());
}

void HierarchyWindow::showCurrentEntry()
{
    showState(m_currentStateBar, m_model->getState());
    m_editor->showBody(m_model->getBody());
    if (m_model->getCurrentAddress() != m_shownAddress) {
        // Undoing must not bring another entry's words back into this one.
        m_shownAddress = m_model->getCurrentAddress();
        m_editor->document()->clearUndoRedoStacks();
    }
    m_shortcutKeyLabel->setText(m_model->getShortcutKeyText());
    const bool hasChildren = m_model->getHasChildren();
    m_hasChildrenLabel->setPixmap(hasChildren ? m_hasChildrenArrow : m_hiddenArrow);
    m_hasChildrenLabel->setAccessibleName(hasChildren ? tr("Has children") : tr("No children"));
}

void HierarchyWindow::showDoneDate()
{
    const QDateTime date = m_model->getDoneDate();
    m_doneDateLabel->setVisible(date.isValid());
    m_doneDateLabel->setText(
        date.isValid() ? QLocale::system().toString(date.toLocalTime(), QLocale::ShortFormat)
                       : QString());
}

void HierarchyWindow::showFilePanel()
{
    m_filePanel->setVisible(m_model->atRootOfFile());
    m_fileLabel->setText(u"File:  <b>"_s + m_model->getFileName().toHtmlEscaped() + u"</b>"_s);
    m_fileLabel->setToolTip(plainToolTip(m_model->getFilePath()));
}

void HierarchyWindow::showState(QWidget *bar, EntryState state)
{
    const QString text = EntryStateTexts::toolTip(state);
    bar->setProperty("iconstate", EntryStateTexts::iconState(state));
    bar->setToolTip(text);
    bar->setAccessibleName(text.isEmpty() ? tr("State: none") : tr("State: %1").arg(text));
}
