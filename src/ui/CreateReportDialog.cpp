// SPDX-License-Identifier: MIT
#include "ui/CreateReportDialog.h"

#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "ui/ViewReport.h"
#include "ui_CreateReportDialog.h"

#include <QLocale>
#include <QMessageBox>
#include <QSettings>
#include <QShowEvent>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcReports, "brindle.ui.reports")

namespace
{
const auto fromKey = "reportfromdatetime"_L1;
const auto toKey = "reporttodatetime"_L1;

constexpr int daysOfWeek = 7;

// Date first, then time.
void setDateAndTime(QDateTimeEdit *editor, const QDateTime &value)
{
    editor->setDate(value.date());
    editor->setTime(value.time());
}

QDateTime startOf(const QDate &day)
{
    return QDateTime(day, QTime(0, 0));
}
} // namespace

CreateReportDialog::CreateReportDialog(FileManager *files, QWidget *parent)
    : AbstractWindow(parent)
    , m_ui(std::make_unique<Ui_CreateReportDialog>())
    , m_files(files)
{
    m_ui->setupUi(this);
    const QString format = QLocale::system().dateTimeFormat(QLocale::ShortFormat);
    m_ui->fromDate->setDisplayFormat(format);
    m_ui->toDate->setDisplayFormat(format);
}

CreateReportDialog::~CreateReportDialog()
{
    for (const QPointer<ViewReport> &report : m_reports)
        delete report.data();
}

QString CreateReportDialog::getWindowName() const
{
    return u"CreateReport"_s;
}

// Coming back from the taskbar is no showing: a range that was typed stays.
void CreateReportDialog::showEvent(QShowEvent *event)
{
    if (event->spontaneous())
        return;
    const QSettings settings;
    const QDateTime now = m_clock();
    m_ui->fromDate->setDateTime(settings.value(fromKey, now.addDays(-1)).toDateTime());
    m_ui->toDate->setDateTime(settings.value(toKey, now).toDateTime());
}

void CreateReportDialog::setRange(const QDateTime &from, const QDateTime &to)
{
    setDateAndTime(m_ui->fromDate, from);
    setDateAndTime(m_ui->toDate, to);
}

void CreateReportDialog::on_latestBtn_clicked()
{
    const QSettings settings;
    if (!settings.contains(toKey)) {
        Refusal::refuse();
        return;
    }
    setRange(settings.value(toKey).toDateTime().addSecs(1), m_clock());
}

void CreateReportDialog::on_todayBtn_clicked()
{
    const QDateTime now = m_clock();
    setRange(startOf(now.date()), now);
}

void CreateReportDialog::on_yesterdayBtn_clicked()
{
    const QDate today = m_clock().date();
    setRange(startOf(today.addDays(-1)), startOf(today));
}

// Weeks run from Monday to Monday, whatever the locale says.
void CreateReportDialog::on_lastWeekBtn_clicked()
{
    const QDate lastWeek = m_clock().date().addDays(-daysOfWeek);
    const QDate monday = lastWeek.addDays(1 - lastWeek.dayOfWeek());
    setRange(startOf(monday), startOf(monday.addDays(daysOfWeek)));
}

void CreateReportDialog::on_buttonBox_accepted()
{
    const QDateTime from = m_ui->fromDate->dateTime();
    const QDateTime to = m_ui->toDate->dateTime();
    if (to < from) {
        QMessageBox::information(this, tr("Date Error"),
                                 tr("The \"from\" date must be before the \"to\" date."));
        return;
    }
    QSettings settings;
    settings.setValue(fromKey, from);
    settings.setValue(toKey, to);
    settings.sync();
    hide();
    guardAgainstTexts(lcReports(), "createReport", [&] { openReport(from.toUTC(), to.toUTC()); });
}

void CreateReportDialog::on_buttonBox_rejected()
{
    hide();
}

void CreateReportDialog::openReport(const QDateTime &from, const QDateTime &to)
{
    auto report = std::make_unique<ViewReport>(m_files, from, to);
    report->setAttribute(Qt::WA_DeleteOnClose);
    report->show();
    // Hiding this dialog brought the main window forward.
    report->raise();
    report->activateWindow();
    std::erase_if(m_reports, [](const QPointer<ViewReport> &gone) { return gone.isNull(); });
    m_reports.emplace_back(report.release());
}

void CreateReportDialog::changeEvent(QEvent *event)
{
    AbstractWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
}
