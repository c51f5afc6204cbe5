// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MarkupReader.h"

#include <QList>
#include <QString>
#include <QStringList>

/// Writes the page of an announcement anew out of its tokens: only elements, attributes and styles
/// that are known to be harmless, always balanced. It says when the page exceeds a bound of
/// AnnouncementPage.
class MarkupWriter
{
public:
    /// False when the page with \a token exceeds a bound; nothing more can be added then.
    bool add(const MarkupReader::Token &token);
    /// The whole page; elements that are still open end here.
    QString finish();

private:
    /// What the toolkit lays a table out as: as many columns in every row as in the widest.
    class Grid
    {
    public:
        void beginRow();
        void addCell(int columns, int rows);
        bool hasRows() const { return m_rows > 0; }
        int width() const { return m_width; } ///< Columns of the last row.
        int cells() const;

    private:
        struct Span {
            int columns = 1;
            int lastRow = 0;
        };

        QList<Span> m_spans; ///< Cells of more than one row that reach into the last one.
        int m_rows = 0; ///< So far; also the number of the last row.
        int m_width = 0;
        int m_widest = 1;
    };

    bool addText(const QString &text);
    bool addPictureText(const MarkupReader::Token &tag);
    bool begin(const MarkupReader::Token &tag);
    bool beginElement(const MarkupReader::Token &tag);
    bool areTablesWithinBounds() const;
    void end(const QString &element);
    void endWhatCannotHold(const QString &element);
    void endNearest(const QStringList &elements, const QStringList &within);
    void endLast();
    void beginCaption();
    bool write(char32_t character);
    bool measure(char32_t character);
    void beginLine();
    bool mayStandHere(const QString &element) const;
    bool isAmongRows() const;
    int openCount(const QStringList &elements) const;

    QString m_html;
    QStringList m_open; ///< Elements, the outermost first.
    QStringList m_captioned; ///< Beginnings of tables whose captions are open.
    QList<Grid> m_grids; ///< Of the open tables.
    int m_elements = 0;
    int m_cells = 0; ///< Of the tables that have ended.
    int m_references = 0; ///< Also those that are written for what would be markup.
    int m_lines = 0;
    int m_wordLength = 0;
    int m_preformattedLength = 0;
};
