// SPDX-License-Identifier: MIT
#include "ui/FindWindow.h"

#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "shared/TextHelpers.h"
#include "store/FileErrorGuard.h"
#include "store/FileManager.h"
#include "ui/CommandLog.h"
#include "ui/QueryLine.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace
{
constexpr int snippetLength = 80;
constexpr int resultItemType = QListWidgetItem::UserType + 1;
} // namespace

/// One result with the address of its entry.
class FindWindow::ResultsListItem : public QListWidgetItem
{
public:
    ResultsListItem(const QString &text, EntryAddress entryAddress)
        : QListWidgetItem(text, nullptr, resultItemType)
        , address(entryAddress)
    {
    }

    EntryAddress address;
};

FindWindow::FindWindow(FileManager *fileManager, QWidget *parent)
    : AbstractWindow(parent, Qt::Tool)
    , m_fileManager(fileManager)
    , m_fileRow(new QWidget(this))
    , m_fileMenu(new QComboBox(m_fileRow))
    , m_query(new QueryLine(this))
    , m_results(new QListWidget(this))
{
    buildLayout();
    connect(m_results, &QListWidget::itemDoubleClicked, this,
            &FindWindow::jumpToEntryInHierarchyAndHide);
    connect(m_query, &QLineEdit::textChanged, this, &FindWindow::search);
    connect(m_fileMenu, &QComboBox::activated, this, [this] {
        rememberChosenFile();
        search();
    });
    connect(fileManager, &FileManager::fileMoved, this, &FindWindow::updateFileMenu);
    connect(fileManager, &FileManager::fileLoaded, this, &FindWindow::updateFileMenu);
    connect(fileManager, &FileManager::fileUnloaded, this, &FindWindow::updateFileMenu);
    connect(fileManager, &FileManager::fileRootBodyChanged, this, &FindWindow::updateFileMenu);
    connect(fileManager, &FileManager::transactionRollback, this, &FindWindow::searchAgainIfShown);
    updateFileMenu();
}

void FindWindow::buildLayout()
{
    setObjectName(u"FindWindow"_s);
    setWindowTitle(tr("Find"));
    setModal(false);
    setMinimumHeight(35);

    auto *row = new QHBoxLayout(m_fileRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(5);
    row->addWidget(new QLabel(tr("File:"), m_fileRow));
    row->addWidget(m_fileMenu);
    row->addStretch();
    m_fileMenu->setObjectName(u"fileMenu"_s);
    m_fileMenu->setAccessibleName(tr("File to search"));
    m_fileMenu->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    m_fileMenu->setFocusPolicy(Qt::NoFocus);
    m_results->setObjectName(u"resultsList"_s);
    m_results->setAccessibleName(tr("Results"));
    m_results->setFocusPolicy(Qt::NoFocus);
    m_results->setSelectionMode(QAbstractItemView::SingleSelection);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->addWidget(m_fileRow);
    layout->addWidget(m_query);
    layout->addWidget(m_results);
}

QString FindWindow::getWindowName() const
{
    return u"FindWindow"_s;
}

void FindWindow::rememberChosenFile()
{
    m_chosenFile = m_fileManager->getFile(m_fileMenu->currentIndex());
}

int FindWindow::indexOfChosenFile() const
{
    for (int index = 0; m_chosenFile && index < m_fileManager->getFileCount(); ++index) {
        if (m_fileManager->getFile(index) == m_chosenFile)
            return index;
    }
    return -1;
}

void FindWindow::updateFileMenu()
{
    const int fileCount = m_fileManager->getFileCount();
    int chosen = indexOfChosenFile();
    if (chosen == -1)
        chosen = m_fileMenu->currentIndex();
    m_fileMenu->clear();
    for (int index = 0; index < fileCount; ++index) {
        // A file that fails while it is read is closed soon; the others stay to be chosen.
        QString excerpt;
        const auto readExcerpt = [&] { excerpt = m_fileManager->getFile(index)->getRootExcerpt(); };
        guardAgainstFileErrors(lcCommands(), "updateFileMenu", [&] {
            guardAgainstTexts(lcCommands(), "updateFileMenu", readExcerpt);
        });
        m_fileMenu->addItem(excerpt);
    }
    m_fileMenu->setCurrentIndex(chosen != -1 && chosen < fileCount ? chosen : fileCount - 1);
    rememberChosenFile();
    m_fileRow->setVisible(fileCount >= 2);
    searchAgainIfShown();
}

void FindWindow::search()
{
    const int fileIndex = m_fileMenu->currentIndex();
    std::unique_ptr<DiskStore::EntryInfoList> found;
    if (DiskStore *store = m_fileManager->getFile(fileIndex))
        found.reset(store->entrySearch(m_query->text()));
    m_results->clear();
    if (!found)
        return;
    if (found->size() == 1 && found->first().id == -1) {
        showQueryError();
        return;
    }
    m_results->setSelectionMode(QAbstractItemView::SingleSelection);
    for (const DiskStore::EntryInfo &entry : std::as_const(*found)) {
        m_results->addItem(
            std::make_unique<ResultsListItem>(Global::oneLineExcerpt(entry.body, snippetLength),
                                              EntryAddress{fileIndex, entry.id})
                .release());
    }
    if (m_results->count() > 0)
        m_results->setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
}

void FindWindow::searchAgainIfShown()
{
    // One of several who hear that entries are gone; the others must hear it, too.
    if (isVisible())
        guardAgainstFileErrors(lcCommands(), "searchAgainIfShown", [this] { search(); });
}

void FindWindow::showQueryError()
{
    m_results->setSelectionMode(QAbstractItemView::NoSelection);
    auto item = std::make_unique<QListWidgetItem>(tr("there is an error in your query"));
    item->setForeground(QColor(u"darkgray"_s));
    m_results->addItem(item.release());
}

void FindWindow::activateAndSelectQuery()
{
    if (!isVisible())
        restoreShowAndActivate();
    else if (!isActiveWindow())
        activate();
    m_query->setFocus();
    m_query->selectAll();
    search();
}

void FindWindow::moveSelection(int rows)
{
    if (m_results->selectionMode() != QAbstractItemView::SingleSelection
        || m_results->currentRow() == -1)
        return;
    const int row = m_results->currentRow() + rows;
    if (row < 0 || row >= m_results->count())
        Refusal::refuse();
    else
        m_results->setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
}

void FindWindow::jumpToCurrent()
{
    QListWidgetItem *item = m_results->currentItem();
    if (item && item->type() == resultItemType)
        jumpToEntryInHierarchyAndHide(item);
    else
        Refusal::refuse();
}

void FindWindow::jumpToEntryInHierarchyAndHide(QListWidgetItem *item)
{
    if (!item || item->type() != resultItemType)
        return;
    // Jumping may change the results, this row with them.
    const EntryAddress address = static_cast<ResultsListItem *>(item)->address;
    guardAgainstTexts(lcCommands(), "jumpToEntryInHierarchy",
                      [&] { emit jumpToEntryInHierarchy(address); });
    setVisible(false);
}
