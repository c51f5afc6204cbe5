// SPDX-License-Identifier: MIT
#include "model/ReportBuilder.h"

#include "model/ReportTree.h"
#include "store/FileManager.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{
constexpr qsizetype blanksPerLevel = 2;
constexpr qsizetype averageLineLength = 60;

constexpr qsizetype weekdayWidth = 3;

/// The widths of date and time are those of this moment: two digits everywhere.
const QDate sampleDate(2009, 11, 13);
const QTime sampleTime(11, 24, 25, 777);

/// A hierarchy of many thousand levels, which only a damaged or generated file holds, would need
/// gigabytes of blanks.
std::size_t deepestIndentation(std::size_t lineCount)
{
    constexpr std::size_t always = 100;
    constexpr std::size_t levelsInAll = 10'000'000;
    return std::max(always, levelsInAll / lineCount);
}
} // namespace

ReportBuilder::ReportBuilder(const FileManager *files, const QLocale &locale, const QTimeZone &zone)
    : m_files(files)
    , m_locale(locale)
    , m_zone(zone)
    , m_dateFormat(m_locale.dateFormat(QLocale::ShortFormat).trimmed())
    , m_timeFormat(m_locale.timeFormat(QLocale::ShortFormat).trimmed())
    , m_dateWidth(m_locale.toString(sampleDate, m_dateFormat).size())
    , m_timeWidth(m_locale.toString(sampleTime, m_timeFormat).size())
    , m_blankColumns(weekdayWidth + 1 + m_dateWidth + 1 + m_timeWidth, u' ')
{
}

QString ReportBuilder::build(const QDateTime &from, const QDateTime &to) const
{
    const int count = m_files->getFileCount();
    std::vector<ReportTree> trees;
    trees.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index)
        trees.emplace_back(m_files->getFile(index), from, to);
    std::stable_sort(trees.begin(), trees.end(), [](const ReportTree &a, const ReportTree &b) {
        return a.latestDone() < b.latestDone();
    });
    QString text;
    for (const ReportTree &tree : trees)
        text += textOf(tree);
    return text;
}

QString ReportBuilder::textOf(const ReportTree &tree) const
{
    struct Line {
        std::size_t node;
        std::size_t level;
    };
    const std::vector<ReportTree::Node> &nodes = tree.nodes();
    const std::size_t deepest = deepestIndentation(nodes.size());
    QString text;
    text.reserve(static_cast<qsizetype>(nodes.size())
                 * (m_blankColumns.size() + averageLineLength));
    const auto startLine = [&](const QString &dateColumns, std::size_t level) {
        const auto levels = static_cast<qsizetype>(std::min(level, deepest));
        text += dateColumns + u" | "_s;
        text.resize(text.size() + levels * blanksPerLevel, u' ');
    };
    // The lines still to write, the next one last. Children are one level below their line; those
    // of the top node, which has no line, stand at level 0.
    std::vector<Line> toWrite{{0, 0}};
    while (!toWrite.empty()) {
        const Line line = toWrite.back();
        toWrite.pop_back();
        const ReportTree::Node &node = nodes[line.node];
        const bool isTop = line.node == 0;
        const std::size_t levelBelow = isTop ? 0 : line.level + 1;
        if (!isTop) {
            startLine(columns(node.doneDate), line.level);
            text += node.text + u'\n';
        }
        if (node.children.empty() && node.hasHiddenChildren) {
            startLine(m_blankColumns, levelBelow);
            text += u"...\n"_s;
        }
        for (auto child = node.children.rbegin(); child != node.children.rend(); ++child)
            toWrite.push_back({*child, levelBelow});
    }
    return text;
}

QString ReportBuilder::columns(const QDateTime &doneDate) const
{
    if (!doneDate.isValid())
        return m_blankColumns;
    const QDateTime local = m_zone.isValid() ? doneDate.toTimeZone(m_zone) : doneDate.toLocalTime();
    return m_locale.toString(local.date(), u"ddd"_s) + u' '
        + m_locale.toString(local.date(), m_dateFormat).rightJustified(m_dateWidth) + u' '
        + m_locale.toString(local.time(), m_timeFormat).rightJustified(m_timeWidth);
}
