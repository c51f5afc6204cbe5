// SPDX-License-Identifier: MIT
#include "ui/HierarchyWindow.h"

#include "ui/EntryTextEdit.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace
{
constexpr int narrowMargin = 2;
constexpr int narrowSpacing = 3;
constexpr int indentation = 20;
constexpr int barWidth = 5;

void narrow(QLayout *layout, int spacing)
{
    layout->setContentsMargins(narrowMargin, narrowMargin, narrowMargin, narrowMargin);
    layout->setSpacing(spacing);
}
} // namespace

void HierarchyWindow::buildLayout()
{
    setObjectName(u"HierarchyWindow"_s);
    resize(500, 200);
    setModal(false);
    setSizeGripEnabled(false);
    setMinimumHeight(35);

    auto *windowLayout = new QVBoxLayout(this);
    narrow(windowLayout, 0);
    windowLayout->addLayout(buildParentRow());
    auto *container = new QWidget(this);
    windowLayout->addWidget(container, 1);

    auto *containerLayout = new QHBoxLayout(container);
    narrow(containerLayout, 0);
    containerLayout->addSpacing(indentation);
    containerLayout->addLayout(buildGrid());
}

QBoxLayout *HierarchyWindow::buildParentRow()
{
    m_parentStateBar = createStateBar(u"parentStateBar"_s, tr("Parent entry"));
    m_parentLabel = createExcerptLabel(u"parentLabel"_s, tr("Parent entry"));
    m_parentShortcutKeyLabel = createShortcutKeyLabel(u"parentShortcutKeyLabel"_s,
                                                      tr("Shortcut key of the parent entry"));
    auto *row = new QHBoxLayout;
    narrow(row, narrowSpacing);
    row->addWidget(m_parentStateBar);
    row->addWidget(m_parentLabel, 1);
    row->addWidget(m_parentShortcutKeyLabel);
    row->addSpacing(13);
    return row;
}

QGridLayout *HierarchyWindow::buildGrid()
{
    auto *grid = new QGridLayout;
    narrow(grid, narrowSpacing);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    addPrecedingRow(grid);
    addCurrentRows(grid);
    addFilePanel(grid);
    addFollowingRow(grid);
    return grid;
}

void HierarchyWindow::addPrecedingRow(QGridLayout *grid)
{
    m_precedingStateBar = createStateBar(u"precedingStateBar"_s, tr("Preceding entry"));
    m_precedingLabel = createExcerptLabel(u"precedingLabel"_s, tr("Preceding entry"));
    grid->addWidget(m_precedingStateBar, 0, 0);
    grid->addWidget(m_precedingLabel, 0, 1);
}

void HierarchyWindow::addCurrentRows(QGridLayout *grid)
{
    m_currentStateBar = createStateBar(u"currentStateBar"_s, tr("Current entry"));
    grid->addWidget(m_currentStateBar, 1, 0, 2, 1);
    m_stack = buildStack();
    grid->addWidget(m_stack, 1, 1, 2, 1);

    m_shortcutKeyLabel
        = createShortcutKeyLabel(u"shortcutKeyLabel"_s, tr("Shortcut key of the current entry"));
    m_shortcutKeyLabel->setProperty("regshortcutkey", u"false"_s);
    auto *keyColumn = new QVBoxLayout;
    keyColumn->setContentsMargins(0, 0, 0, 0);
    keyColumn->setSpacing(0);
    keyColumn->addWidget(m_shortcutKeyLabel);
    keyColumn->addSpacerItem(new QSpacerItem(5, 10, QSizePolicy::Minimum, QSizePolicy::Expanding));
    grid->addLayout(keyColumn, 1, 2);

    m_hasChildrenLabel = createLabel(u"hasChildrenLabel"_s, tr("Current entry"));
    grid->addWidget(m_hasChildrenLabel, 2, 2, Qt::AlignRight | Qt::AlignBottom);

    m_doneDateLabel = createLabel(u"doneDateLabel"_s, tr("When the current entry was done"));
    m_doneDateLabel->setProperty("donedate", u"true"_s);
    m_doneDateLabel->setContentsMargins(0, 0, 7, 0);
    m_doneDateLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(m_doneDateLabel, 3, 1);
}

void HierarchyWindow::addFilePanel(QGridLayout *grid)
{
    m_fileLabel = createLabel(u"fileLabel"_s, tr("File of the current entry"));
    m_fileLabel->setTextFormat(Qt::RichText);
    m_fileLabel->setMinimumWidth(1); // A long name must not widen the window.
    QPushButton *closeButton = createButton(u"closeButton"_s, tr("Close"));
    connect(closeButton, &QPushButton::clicked, this, &HierarchyWindow::unloadFile);

    m_filePanel = new QWidget(this);
    auto *row = new QHBoxLayout(m_filePanel);
    row->setContentsMargins(0, 0, 0, 10);
    row->setSpacing(10);
    row->addWidget(m_fileLabel, 1);
    row->addWidget(closeButton);
    grid->addWidget(m_filePanel, 4, 1);
}

void HierarchyWindow::addFollowingRow(QGridLayout *grid)
{
    m_followingStateBar = createStateBar(u"followingStateBar"_s, tr("Following entry"));
    m_followingLabel = createExcerptLabel(u"followingLabel"_s, tr("Following entry"));
    grid->addWidget(m_followingStateBar, 5, 0);
    grid->addWidget(m_followingLabel, 5, 1);
}

QStackedWidget *HierarchyWindow::buildStack()
{
    m_editor = new EntryTextEdit(this);
    m_editor->setObjectName(u"entryEdit"_s);
    m_editor->setAccessibleName(tr("Entry text"));

    auto *stack = new QStackedWidget(this);
    stack->addWidget(m_editor);
    stack->addWidget(buildOpenCreatePanel());
    return stack;
}

QWidget *HierarchyWindow::buildOpenCreatePanel()
{
    QPushButton *openButton = createButton(u"openButton"_s, tr("Open file"));
    connect(openButton, &QPushButton::clicked, this, &HierarchyWindow::loadFile);
    QPushButton *newFileButton = createButton(u"createButton"_s, tr("Create file"));
    connect(newFileButton, &QPushButton::clicked, this, &HierarchyWindow::createFile);

    auto *panel = new QFrame(this);
    panel->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    panel->setLineWidth(1);
    auto *row = new QHBoxLayout(panel);
    row->setContentsMargins(25, 25, 25, 25);
    row->addWidget(openButton);
    row->addWidget(newFileButton);
    return panel;
}

QWidget *HierarchyWindow::createFixedWidthWidget()
{
    auto *widget = new QWidget(this);
    widget->setFixedWidth(barWidth);
    return widget;
}

QWidget *HierarchyWindow::createStateBar(const QString &objectName, const QString &description)
{
    QWidget *bar = createFixedWidthWidget();
    bar->setObjectName(objectName);
    bar->setAccessibleDescription(description);
    return bar;
}

// A screen reader hears the label's text as its name and what the text is as its description.
QLabel *HierarchyWindow::createLabel(const QString &objectName, const QString &description)
{
    auto *label = new QLabel(this);
    label->setObjectName(objectName);
    label->setAccessibleDescription(description);
    label->setTextFormat(Qt::PlainText);
    return label;
}

// However long a neighbour's text is, the window stays as wide as the user made it.
QLabel *HierarchyWindow::createExcerptLabel(const QString &objectName, const QString &description)
{
    QLabel *label = createLabel(objectName, description);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

QLabel *HierarchyWindow::createShortcutKeyLabel(const QString &objectName,
                                                const QString &description)
{
    QLabel *label = createLabel(objectName, description);
    label->setProperty("shortcutkey", u"true"_s);
    return label;
}

// Buttons never take the keyboard, so that Return goes on meaning what it means in the editor.
QPushButton *HierarchyWindow::createButton(const QString &objectName, const QString &text)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(objectName);
    button->setAccessibleName(text);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    button->setDefault(false);
    return button;
}
