// SPDX-License-Identifier: MIT
#pragma once

#include "shared/EntryAddress.h"
#include "store/DiskStore.h"
#include "ui/AbstractWindow.h"

#include <QPointer>

class FileManager;
class QComboBox;
class QListWidget;
class QListWidgetItem;

/// Full-text search in one open file at a time: results come while one types, Enter or a double
/// click goes to the chosen entry.
class FindWindow : public AbstractWindow
{
    Q_OBJECT

public:
    class QueryLine;
    class ResultsListItem;

    /// \a fileManager is borrowed and must outlive this window.
    FindWindow(FileManager *fileManager, QWidget *parent);

    QString getWindowName() const override;

public slots:
    void search();
    void updateFileMenu();
    void jumpToEntryInHierarchyAndHide(QListWidgetItem *item);
    /// Brings the window up, ready to replace the last query.
    void activateAndSelectQuery();
    /// Searches again while the window is shown: results may have vanished.
    void searchAgainIfShown();

signals:
    void jumpToEntryInHierarchy(EntryAddress entryAddress);

private:
    void buildLayout();
    int indexOfChosenFile() const;
    void rememberChosenFile();
    void showQueryError();
    void moveSelection(int rows);
    void jumpToCurrent();

    FileManager *m_fileManager;
    QPointer<DiskStore> m_chosenFile; ///< Files are reordered; the choice stays with the file.

    // Owned through Qt's parents.
    QWidget *m_fileRow;
    QComboBox *m_fileMenu;
    QueryLine *m_query;
    QListWidget *m_results;
};
