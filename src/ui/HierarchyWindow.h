// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"
#include "shared/EntryAddress.h"
#include "shared/EntryState.h"
#include "ui/AbstractWindow.h"

#include <QPixmap>

class AppActivationSupport;
class HierarchyModel;
class QBoxLayout;
class QGridLayout;
class QLabel;
class QPushButton;
class QStackedWidget;

/// The main window: the current entry in an editor, one line each of its parent and its neighbours,
/// and every command by a key. Between the files it offers to open or create one instead.
class HierarchyWindow : public AbstractWindow
{
    Q_OBJECT

public:
    class EntryTextEdit;

    /// \a model and \a activationSupport are borrowed. Keys pressed with \a shortcutModifier jump
    /// to entries; \a shortcutModifierKey is the key of that modifier itself.
    HierarchyWindow(HierarchyModel *model, AppActivationSupport *activationSupport,
                    int shortcutModifier, int shortcutModifierKey);

    QString getWindowName() const override;

    /// Whether the next key press is to become the current entry's shortcut key.
    bool isRegisteringShortcut() const { return m_registerShortcut; }
    void setRegisterShortcut(bool on);
    /// Whether \a event, with the modifiers \a held, asks for the entry bound to its key.
    bool isJump(const QKeyEvent &event, Qt::KeyboardModifiers held) const;
    /// Needed whenever a dynamic property has changed.
    void resetStylesheet();

public slots:
    /// Redraws everything from the model, and follows the application to the front or back.
    void refresh();
    /// Hands the editor's text to the model, unless the user hasn't touched it.
    void updateModelBody();
    void activate() override;
    void createFile();
    void loadFile();
    void unloadFile();
    /// Dialogs close on Escape; this window never does.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showRefusal() override;

private:
    void buildLayout();
    QBoxLayout *buildParentRow();
    QGridLayout *buildGrid();
    void addPrecedingRow(QGridLayout *grid);
    void addCurrentRows(QGridLayout *grid);
    void addFilePanel(QGridLayout *grid);
    void addFollowingRow(QGridLayout *grid);
    QStackedWidget *buildStack();
    QWidget *buildOpenCreatePanel();
    QWidget *createFixedWidthWidget();
    QWidget *createStateBar(const QString &objectName, const QString &description);
    QLabel *createLabel(const QString &objectName, const QString &description);
    QLabel *createExcerptLabel(const QString &objectName, const QString &description);
    QLabel *createShortcutKeyLabel(const QString &objectName, const QString &description);
    QPushButton *createButton(const QString &objectName, const QString &text);

    void showPage();
    void showParent();
    void showNeighbours();
    void showCurrentEntry();
    void showDoneDate();
    void showFilePanel();
    void showState(QWidget *bar, EntryState state);
    void comeToFront();
    void giveKeyboardToPage();

    void handleKeyPress(QKeyEvent *event);
    void registerPressedKey(const QKeyEvent &event, Qt::KeyboardModifiers held);
    void jumpToPressedKey(const QKeyEvent &event, Qt::KeyboardModifiers held);
    void startRegisteringShortcut();

    HierarchyModel *m_model;
    AppActivationSupport *m_activationSupport;
    Qt::KeyboardModifiers m_shortcutModifier;
    int m_shortcutModifierKey;
    bool m_registerShortcut = false;
    EntryAddress m_shownAddress; ///< The entry in the editor at the last refresh.
    QPixmap m_hasChildrenArrow;
    QPixmap m_hiddenArrow;

    // Owned by this window through Qt's parents.
    QWidget *m_parentStateBar = nullptr;
    QLabel *m_parentLabel = nullptr;
    QLabel *m_parentShortcutKeyLabel = nullptr;
    QWidget *m_precedingStateBar = nullptr;
    QLabel *m_precedingLabel = nullptr;
    QWidget *m_currentStateBar = nullptr;
    QStackedWidget *m_stack = nullptr;
    EntryTextEdit *m_editor = nullptr;
    QLabel *m_shortcutKeyLabel = nullptr;
    QLabel *m_hasChildrenLabel = nullptr;
    QLabel *m_doneDateLabel = nullptr;
    QWidget *m_filePanel = nullptr;
    QLabel *m_fileLabel = nullptr;
    QWidget *m_followingStateBar = nullptr;
    QLabel *m_followingLabel = nullptr;
};
