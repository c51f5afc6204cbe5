// SPDX-License-Identifier: MIT
#include "model/HierarchyModel.h"

#include "store/FileManager.h"

void HierarchyModel::handleCommand(Command command)
{
    if (command == Command::Hide) {
        emit requestAppDeactivation();
        return;
    }
    const EntryAddress before = getCurrentAddress();
    bool done = getAndWriteModifiedBodyToDb();
    if (done) {
        redrawWhenItFails([&] {
            done = carryOut(command);
            if (done)
                postStateChange();
        });
    }
    if (!done) {
        // Refused or not, writing the text may have inserted or deleted the entry.
        showIfNoLongerAt(before);
        refuse();
        return;
    }
    m_fileManager->maybePromptUserToPeriodicallySaveChanges();
}

bool HierarchyModel::carryOut(Command command)
{
    switch (command) {
    case Command::GoToParent:
        return commandGoToParent();
    case Command::GoToFirst:
        return commandGoToFirst();
    case Command::GoToPrevious:
        return commandGoToPrevious();
    case Command::GoToNext:
        return commandGoToNext();
    case Command::GoToLast:
        return commandGoToLast();
    case Command::GoToChild:
        return commandGoToChild();
    case Command::NewSibling:
        return commandNewSibling();
    case Command::SaveChangesAndHide:
        // After a failed save the window stays, with the error in front of it.
        if (m_fileManager->commitAndRestartTransactions())
            emit requestAppDeactivation();
        return true;
    case Command::MarkCurrentDone:
        return commandMarkDone();
    case Command::MarkCurrentTodo:
        return m_diskStore && updateStateAndSave(EntryState::Todo);
    case Command::MarkCurrentWontDo:
        return m_diskStore && updateStateAndSave(EntryState::WontDo);
    case Command::MarkCurrentCategory:
        return m_diskStore && updateStateAndSave(EntryState::Category);
    case Command::AddEntryToTodoListAndShow:
        return commandAddToTodoList();
    case Command::CommitEdit:
        return true;
    default:
        return carryOutMove(command);
    }
}

bool HierarchyModel::carryOutMove(Command command)
{
    switch (command) {
    case Command::MoveCurrentLeft:
        return commandMoveLeft();
    case Command::MoveCurrentToTop:
        return commandMoveToTop();
    case Command::MoveCurrentUp:
        return commandMoveUp();
    case Command::MoveCurrentDown:
        return commandMoveDown();
    case Command::MoveCurrentToBottom:
        return commandMoveToBottom();
    case Command::MoveCurrentRight:
        return commandMoveRight();
    default:
        throw "unhandled command";
    }
}

bool HierarchyModel::commandGoToParent()
{
    if (atTopLevel())
        return false;
    goToParent();
    return true;
}

bool HierarchyModel::commandGoToFirst()
{
    if (atTopLevel()) {
        if (m_fileManager->getFileCount() > 0)
            goToFileRoot(0, false);
        return true;
    }
    const int sequence = m_diskStore->getMinEntrySequence(m_parentId, DiskStore::lowestSequence);
    if (sequence != -1)
        goToSiblingBySequence(sequence);
    return true;
}

bool HierarchyModel::commandGoToLast()
{
    if (atTopLevel()) {
        if (m_fileManager->getFileCount() > 0)
            goToFileRoot(m_fileManager->getFileCount() - 1, false);
        return true;
    }
    const int sequence = m_diskStore->getMaxEntrySequence(m_parentId, DiskStore::highestSequence);
    if (sequence != -1)
        goToSiblingBySequence(sequence);
    return true;
}

bool HierarchyModel::commandGoToPrevious()
{
    if (atTopLevel())
        return commandGoToPreviousAtTopLevel();
    if (m_precedingSiblingBody.isEmpty())
        return !m_body.isEmpty() && newSibling(true);
    goToSiblingBySequence(m_diskStore->getMaxEntrySequence(m_parentId, m_sequence - 1));
    return true;
}

bool HierarchyModel::commandGoToPreviousAtTopLevel()
{
    if (m_currentFileIndex > 0)
        goToFileRoot(m_currentFileIndex - 1, false);
    else if (m_diskStore)
        goToFileRoot(0, true);
    else
        return false;
    return true;
}

bool HierarchyModel::commandGoToNext()
{
    if (atTopLevel())
        return commandGoToNextAtTopLevel();
    if (m_followingSiblingBody.isEmpty())
        return !m_body.isEmpty() && newSibling(false);
    goToSiblingBySequence(getFollowingSiblingEntrySequence());
    return true;
}

bool HierarchyModel::commandGoToNextAtTopLevel()
{
    if (m_diskStore) {
        goToFileRoot(m_currentFileIndex + 1, isLastFile());
        return true;
    }
    if (m_currentFileIndex >= m_fileManager->getFileCount())
        return false;
    goToFileRoot(m_currentFileIndex, false);
    return true;
}

bool HierarchyModel::commandGoToChild()
{
    if (m_body.isEmpty())
        return false;
    const int sequence = getChildSequenceToJumpTo(m_currentEntryId);
    if (sequence == -1) {
        const EntryState state
            = selectStateForNewEntry(m_state, EntryState::Todo, EntryState::Done);
        if (state == EntryState::None)
            return false;
        makeCurrentEntryTheParent();
        becomeNewEntry(state);
        m_sequence = 0;
        return true;
    }
    const qint64 childId = m_diskStore->getEntryId(m_currentEntryId, sequence);
    const StoredEntry child = readEntry(m_diskStore, childId);
    makeCurrentEntryTheParent();
    takeEntry(childId, child);
    return true;
}

void HierarchyModel::makeCurrentEntryTheParent()
{
    m_parentId = m_currentEntryId;
    m_parentBody = m_body;
    m_parentState = m_state;
    m_parentShortcutKeyText = m_shortcutKeyText;
}

void HierarchyModel::becomeNewEntry(EntryState state)
{
    m_currentEntryId = -1;
    m_body.clear();
    m_state = state;
    setUpCurrentEntryDoneDateBasedOnState();
    m_hasChildren = false;
    m_shortcutKeyText.clear();
}

bool HierarchyModel::canTakeOneMoreChild(qint64 parentId)
{
    // Making room adds one to the last sibling's number.
    return m_diskStore->getMaxEntrySequence(parentId, DiskStore::highestSequence)
        != DiskStore::highestSequence;
}

bool HierarchyModel::commandNewSibling()
{
    if (!atTopLevel())
        return !m_body.isEmpty() && newSibling(false);
    if (!m_diskStore)
        return false;
    goToFileRoot(m_currentFileIndex + 1, true);
    return true;
}

bool HierarchyModel::newSibling(bool before)
{
    const EntryState state
        = selectStateForNewEntry(m_parentState, EntryState::Todo, EntryState::Done);
    if (state == EntryState::None || !canTakeOneMoreChild(m_parentId))
        return false;
    becomeNewEntry(state);
    if (!before)
        ++m_sequence;
    return true;
}

EntryState HierarchyModel::selectStateForNewEntry(EntryState parentState, EntryState first,
                                                  EntryState second)
{
    const DiskStore::StateSet *allowed = m_diskStore->getAllowedChildStates(parentState);
    for (const EntryState state : {first, second, EntryState::Todo, EntryState::WontDo,
                                   EntryState::Done, EntryState::Category}) {
        if (state != EntryState::None && allowed->contains(state))
            return state;
    }
    return EntryState::None;
}

void HierarchyModel::setUpCurrentEntryDoneDateBasedOnState()
{
    m_doneDate = m_state == EntryState::Done ? m_clock().toUTC() : QDateTime();
}

bool HierarchyModel::updateStateAndSave(EntryState newState)
{
    if (newState == m_state
        || !m_diskStore->getAllowedChildStates(m_parentState)->contains(newState))
        return false;
    const bool stored = m_currentEntryId != -1;
    if (stored && !m_diskStore->areChildrenCompatibleWithNewState(m_currentEntryId, newState))
        return false;
    const EntryState oldState = m_state;
    m_state = newState;
    setUpCurrentEntryDoneDateBasedOnState();
    if (stored) {
        m_diskStore->updateEntryState(m_currentEntryId, m_state, m_doneDate);
        emit entryStateChanged(m_currentFileIndex, m_currentEntryId, oldState, newState);
    }
    return true;
}

bool HierarchyModel::commandMarkDone()
{
    const EntryState oldState = m_state;
    if (!m_diskStore || !updateStateAndSave(EntryState::Done))
        return false;
    if (oldState == EntryState::Todo && m_currentEntryId != -1 && !atTopLevel())
        moveOnAfterDone();
    return true;
}

void HierarchyModel::moveOnAfterDone()
{
    const int next = m_sequence == DiskStore::highestSequence
        ? -1
        : m_diskStore->getMinEntrySequenceWithState(m_parentId, EntryState::Todo, m_sequence + 1);
    if (next != -1) {
        goToSiblingBySequence(next);
        return;
    }
    const bool noneLeft = m_diskStore->getMinEntrySequenceWithState(m_parentId, EntryState::Todo,
                                                                    DiskStore::lowestSequence)
        == -1;
    // The parent can be marked done next.
    if (noneLeft && m_parentState == EntryState::Todo)
        goToParent();
}

bool HierarchyModel::commandAddToTodoList()
{
    if (m_currentEntryId == -1 || m_state != EntryState::Todo)
        return false;
    emit addEntryToTodoListAndShow(EntryAddress{m_currentFileIndex, m_currentEntryId});
    return true;
}

void HierarchyModel::updateSequenceAndSave(int sequence)
{
    m_sequence = sequence;
    if (m_currentEntryId != -1)
        m_diskStore->relocateEntry(m_currentEntryId, sequence, DiskStore::keepParent);
}

void HierarchyModel::postStateChange()
{
    m_modifiedBody = m_body;
    updateSiblingFields();
    emit changed();
}

bool HierarchyModel::commandMoveLeft()
{
    if (atTopLevel())
        return false;
    int parentSequence = -1;
    long long grandparentId = -1;
    if (!m_diskStore->getEntryInfo(m_parentId, nullptr, &parentSequence, nullptr, &grandparentId,
                                   nullptr, nullptr, nullptr))
        throw "bad";
    if (grandparentId == -1)
        return false;
    EntryState grandparentState = EntryState::None;
    if (!m_diskStore->getEntryInfo(grandparentId, nullptr, nullptr, &grandparentState, nullptr,
                                   nullptr, nullptr, nullptr))
        throw "bad";
    if (!m_diskStore->getAllowedChildStates(grandparentState)->contains(m_state)
        || !canTakeOneMoreChild(grandparentId))
        return false;
    return moveToParent(grandparentId, parentSequence + 1);
}

bool HierarchyModel::commandMoveRight()
{
    if (atTopLevel() || m_precedingSiblingBody.isEmpty()
        || !m_diskStore->getAllowedChildStates(m_precedingSiblingState)->contains(m_state))
        return false;
    const qint64 newParentId = m_diskStore->getEntryId(
        m_parentId, m_diskStore->getMaxEntrySequence(m_parentId, m_sequence - 1));
    if (newParentId == -1)
        throw "bad";
    if (!canTakeOneMoreChild(newParentId))
        return false;
    return moveToParent(
        newParentId, m_diskStore->getMaxEntrySequence(newParentId, DiskStore::highestSequence) + 1);
}

bool HierarchyModel::moveToParent(qint64 newParentId, int newSequence)
{
    // The store moves entries to parents with 32-bit ids; another id cut to that would be a
    // stranger's.
    if (static_cast<int>(newParentId) != newParentId || newParentId < -1)
        return false;
    const Parent parent = readParent(m_diskStore, newParentId);
    m_parentId = newParentId;
    m_sequence = newSequence;
    if (m_currentEntryId != -1)
        m_diskStore->relocateEntry(m_currentEntryId, m_sequence, static_cast<int>(m_parentId));
    takeParent(parent);
    return true;
}

bool HierarchyModel::commandMoveToTop()
{
    if (m_precedingSiblingBody.isEmpty())
        return false;
    if (atTopLevel()) {
        if (m_diskStore)
            m_fileManager->reorderFile(m_currentFileIndex, 0);
        m_currentFileIndex = 0;
        return true;
    }
    if (!canTakeOneMoreChild(m_parentId))
        return false;
    updateSequenceAndSave(m_diskStore->getMinEntrySequence(m_parentId, DiskStore::lowestSequence));
    return true;
}

bool HierarchyModel::commandMoveUp()
{
    if (m_precedingSiblingBody.isEmpty())
        return false;
    if (atTopLevel()) {
        if (m_diskStore)
            m_fileManager->reorderFile(m_currentFileIndex, m_currentFileIndex - 1);
        --m_currentFileIndex;
        return true;
    }
    updateSequenceAndSave(m_diskStore->getMaxEntrySequence(m_parentId, m_sequence - 1));
    return true;
}

bool HierarchyModel::commandMoveDown()
{
    if (m_followingSiblingBody.isEmpty())
        return false;
    if (atTopLevel()) {
        if (m_diskStore)
            m_fileManager->reorderFile(m_currentFileIndex, m_currentFileIndex + 1);
        ++m_currentFileIndex;
        return true;
    }
    if (!canTakeOneMoreChild(m_parentId))
        return false;
    updateSequenceAndSave(getFollowingSiblingEntrySequence() + 1);
    return true;
}

bool HierarchyModel::commandMoveToBottom()
{
    if (m_followingSiblingBody.isEmpty())
        return false;
    if (atTopLevel()) {
        const int fileCount = m_fileManager->getFileCount();
        if (m_diskStore)
            m_fileManager->reorderFile(m_currentFileIndex, fileCount - 1);
        m_currentFileIndex = m_diskStore ? fileCount - 1 : fileCount;
        return true;
    }
    const int last = m_diskStore->getMaxEntrySequence(m_parentId, DiskStore::highestSequence);
    if (last == DiskStore::highestSequence)
        return false;
    updateSequenceAndSave(last + 1);
    return true;
}

void HierarchyModel::createFileAtCurrentPosition()
{
    if (m_diskStore)
        throw "this method can only be called when the open/create panel is displayed";
    m_fileManager->createFile(m_currentFileIndex);
}

void HierarchyModel::loadFileAtCurrentPosition()
{
    if (m_diskStore)
        throw "this method can only be called when the open/create panel is displayed";
    m_fileManager->loadFile(m_currentFileIndex);
}

bool HierarchyModel::unloadCurrentFile()
{
    if (!m_diskStore)
        throw "there is no current file";
    if (!writeEditedText())
        return false;
    m_fileManager->unloadFile(m_currentFileIndex, false);
    return true;
}
