// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"
#include "shared/Clock.h"
#include "shared/EntryAddress.h"
#include "shared/EntryState.h"

#include <QDateTime>
#include <QObject>
#include <functional>

class DiskStore;
class FileManager;

/// Where the user is in the hierarchy, and every command that moves or edits from there.
///
/// At the top level the root entries of the open files are siblings, and between them there is one
/// more place, the open/create panel position, at which there is no store. A new entry exists only
/// here until its text is written for the first time.
class HierarchyModel : public QObject
{
    Q_OBJECT

public:
    /// \a fileManager is borrowed and must outlive this object.
    explicit HierarchyModel(FileManager *fileManager);

    /// \name What the main window shows
    /// @{
    EntryState getState() const { return m_state; }
    EntryState getParentState() const { return m_parentState; }
    bool getHasChildren() const { return m_hasChildren; }
    EntryState getPrecedingSiblingEntryState() const { return m_precedingSiblingState; }
    EntryState getFollowingSiblingEntryState() const { return m_followingSiblingState; }
    QDateTime getDoneDate() const { return m_doneDate; }
    QString getShortcutKeyText() const { return m_shortcutKeyText; }
    QString getParentShortcutKeyText() const { return m_parentShortcutKeyText; }
    QString getRootExcerpt() const { return m_rootExcerpt; }
    /// The text being edited, not the stored one.
    QString getBody() const { return m_modifiedBody; }
    /// The neighbours' texts are cut to 70 characters; empty when there is no such neighbour.
    QString getParentBody() const;
    QString getPrecedingSiblingEntryBody() const;
    QString getFollowingSiblingEntryBody() const;
    QString getFilePath() const;
    QString getFileName() const;
    bool atRootOfFile() const;
    /// Which entry stands in the editor; the id is -1 for a new one and at the panel.
    EntryAddress getCurrentAddress() const { return {m_currentFileIndex, m_currentEntryId}; }
    /// Whether the open/create panel is shown: between the files, with no current store.
    bool atOpenCreatePanel() const { return m_diskStore == nullptr; }
    /// @}

    /// Takes the editor's text (trimmed) as the one being edited.
    void updateCurrentBody(const QString &text);
    /// Writes the edited text: stores, inserts or, when cleared, deletes the current entry.
    /// \return false when that is refused (clearing a root or an entry with children).
    bool getAndWriteModifiedBodyToDb();
    /// The same for whoever may leave it at that: redraws when the entry was inserted or deleted by
    /// it, since neighbours and state are others then.
    bool writeEditedText();

    /// \name Files at the top level
    /// \throws const char* when called at the wrong place.
    /// @{
    void createFileAtCurrentPosition();
    void loadFileAtCurrentPosition();
    /// \return false when the edited text was refused.
    bool unloadCurrentFile();
    /// @}

    /// \name Entry shortcut keys
    /// @{
    bool canRegisterShortcut();
    bool registerShortcut(int key, const QString &keyText);
    bool unregisterShortcut();
    /// With \a ignoreCurrentEntry a binding held by the current entry alone does not count.
    bool isShortcutRegistered(int key, bool ignoreCurrentEntry) const;
    /// Jumps to the entry bound to \a key; asks which one when several files bind it.
    /// \throws const char* when none does.
    void goToEntryByShortcutKey(int key);
    /// @}

    /// \name Navigation
    /// @{
    void goToParent();
    void goToSiblingBySequence(int sequence);
    /// The first to-do or category child, else the last child; -1 when there is none.
    int getChildSequenceToJumpTo(qint64 entryId);
    int getFollowingSiblingEntrySequence();
    void goToFileRoot(int index, bool openCreatePanel);
    void setUpEverythingUsingCurrentEntryId();
    void updateSiblingFields();
    /// @}

    /// \name Editing
    /// @{
    bool updateStateAndSave(EntryState newState);
    EntryState selectStateForNewEntry(EntryState parentState, EntryState first, EntryState second);
    void setUpCurrentEntryDoneDateBasedOnState();
    bool newSibling(bool before);
    void updateSequenceAndSave(int sequence);
    void postStateChange();
    /// @}

    /// Replaces the clock behind done dates.
    void setClock(Clock clock) { m_clock = std::move(clock); }

public slots:
    /// Carries out \a command; a refusal beeps and changes nothing but the written text.
    /// \throws const char* "unhandled command" for a command that is not this model's.
    void handleCommand(Command command);
    void goToEntry(EntryAddress address, bool jumpToChild = false);
    void tryToResetStateAfterDbRollback();
    void fileLoaded(int index);
    void fileUnloaded(int index);
    void updateRootExcerpt();

signals:
    void changed();
    /// The receiver answers at once through updateCurrentBody().
    void requestBodyUpdate();
    void addEntryToTodoListAndShow(EntryAddress address);
    void entryStateChanged(int fileIndex, qint64 entryId, EntryState oldState, EntryState newState);
    void entryBodyChanged(int fileIndex, qint64 entryId);
    void entryDeleted(int fileIndex, qint64 entryId);
    void requestAppDeactivation();
    /// What was asked for can't be done here. The window that the user works in has been told.
    void refused();

private:
    /// A sibling as the window shows it; an empty text means that there is none.
    struct Neighbour {
        QString body;
        EntryState state = EntryState::None;
    };

    /// All that is read of an entry before any of it is taken over.
    struct StoredEntry {
        QString body;
        int sequence = -1;
        EntryState state = EntryState::None;
        long long parentId = -1;
        bool hasChildren = false;
        QDateTime doneDate;
        QString shortcutKeyText;
    };

    struct Parent {
        QString body;
        EntryState state = EntryState::None;
        QString shortcutKeyText;
    };

    // Commands; each returns false when it is refused.
    bool carryOut(Command command);
    bool carryOutMove(Command command);
    bool commandGoToParent();
    bool commandGoToFirst();
    bool commandGoToPrevious();
    bool commandGoToPreviousAtTopLevel();
    bool commandGoToNext();
    bool commandGoToNextAtTopLevel();
    bool commandGoToLast();
    bool commandGoToChild();
    bool commandMoveLeft();
    bool commandMoveToTop();
    bool commandMoveUp();
    bool commandMoveDown();
    bool commandMoveToBottom();
    bool commandMoveRight();
    bool commandNewSibling();
    bool commandMarkDone();
    bool commandAddToTodoList();
    void moveOnAfterDone();

    bool atTopLevel() const { return m_parentId == -1; }
    bool isLastFile() const;
    void refuse();
    bool writeStoredEntry();
    void showIfNoLongerAt(EntryAddress before);
    bool canTakeOneMoreChild(qint64 parentId);
    bool moveToParent(qint64 newParentId, int newSequence);
    void makeCurrentEntryTheParent();
    void becomeNewEntry(EntryState state);
    StoredEntry readEntry(DiskStore *store, qint64 id) const;
    Parent readParent(DiskStore *store, qint64 parentId) const;
    void takeEntry(qint64 id, const StoredEntry &entry);
    void takeParent(const Parent &parent);
    void goTo(int fileIndex, DiskStore *store, qint64 entryId);
    void clearToPanelPosition();
    void goToNeighbourOfClosedFile(int index);
    int fileIndexOf(const DiskStore *store) const;
    void redrawWhenItFails(const std::function<void()> &action);
    void followFileSet(const char *where, const std::function<void()> &action);
    void readSiblingFieldsBelowTopLevel();
    void readSiblingFieldsAtTopLevel();
    void takeNeighbours(const Neighbour &preceding, const Neighbour &following);
    int childToJumpTo(DiskStore *store, qint64 entryId) const;
    Neighbour readNeighbour(DiskStore *store, qint64 parentId, int sequence) const;
    Neighbour readRoot(int fileIndex) const;
    EntryAddress chooseBetween(const QList<EntryAddress> &addresses) const;

    FileManager *m_fileManager;
    int m_currentFileIndex = 0;
    DiskStore *m_diskStore = nullptr;
    qint64 m_currentEntryId = -1;
    qint64 m_parentId = -1;
    QString m_rootExcerpt;
    int m_sequence = -1;
    EntryState m_state = EntryState::None;
    QDateTime m_doneDate;
    QString m_body;
    QString m_modifiedBody;
    QString m_parentBody;
    EntryState m_parentState = EntryState::None;
    QString m_parentShortcutKeyText;
    QString m_shortcutKeyText;
    bool m_hasChildren = false;
    QString m_precedingSiblingBody;
    EntryState m_precedingSiblingState = EntryState::None;
    QString m_followingSiblingBody;
    EntryState m_followingSiblingState = EntryState::None;
    Clock m_clock = systemClock();
};
