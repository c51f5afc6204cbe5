// SPDX-License-Identifier: MIT
#include "ui/ViewReport.h"

#include "model/ReportBuilder.h"
#include "ui/KeyPress.h"
#include "ui_ViewReport.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

ViewReport::ViewReport(FileManager *files, const QDateTime &from, const QDateTime &to,
                       QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui_ViewReport>())
{
    m_ui->setupUi(this);
    setWindowTitle(tr("Report"));
    m_ui->textEdit->setPlainText(ReportBuilder(files).build(from, to));
    setStyleSheet(u"* {font-family:courier} "_s);
}

ViewReport::~ViewReport() = default;

void ViewReport::keyPressEvent(QKeyEvent *event)
{
    if (KeyPress::command(*event, event->modifiers()) == Command::Hide)
        close();
    else
        QDialog::keyPressEvent(event);
}

void ViewReport::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        setWindowTitle(tr("Report"));
    }
}
