// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>

/// A page that comes from the network, judged before it is laid out: a page can be made to end or
/// freeze the toolkit's layout. What stays within the bounds is written anew from what was
/// understood of it, so that the toolkit sees nothing else; a page beyond them is plain text.
class AnnouncementPage
{
public:
    /// What a page may hold at most.
    static constexpr qsizetype longestPage = 64 * 1024; ///< Characters.
    static constexpr int longestWord = 200; ///< Characters between two places to break a line.
    static constexpr int longestPreformattedLine = 500; ///< Characters; no blank breaks it.
    static constexpr int mostElements = 1000;
    static constexpr int mostCells = 800; ///< Of all tables together, as wide as their widest rows.
    static constexpr int mostColumns = 30; ///< Of one row, spans and what reaches down included.
    static constexpr int deepestNesting = 16;
    static constexpr int deepestTables = 2;
    static constexpr int deepestIndentation = 6; ///< Lists and quotations within each other.
    static constexpr int largestNumber = 2000; ///< Of any attribute and style.
    static constexpr int largestSpacing = 50; ///< Pixels around cells and paragraphs.
    static constexpr int mostCharacterReferences = 1000; ///< The toolkit is slow with them.
    static constexpr int mostLines = 2000;
    static constexpr qsizetype longestLink = 2000; ///< Characters.
    /// What is shown of a page as plain text.
    static constexpr qsizetype longestPlainText = 16 * 1024; ///< Characters.
    static constexpr int mostPlainLines = 1000;

    explicit AnnouncementPage(const QString &source);

    /// The page in markup that is balanced, refers to no picture, style sheet or other file, and
    /// stays within the bounds; nothing when the page exceeds one or holds "data:" in an address.
    std::optional<QString> html() const { return m_html; }
    /// The page's source with line feeds for all its line breaks, cut and its words broken so that
    /// it stays within the bounds.
    QString plainText() const;

private:
    QString m_source;
    std::optional<QString> m_html;
};
