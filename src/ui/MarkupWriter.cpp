// SPDX-License-Identifier: MIT
#include "ui/MarkupWriter.h"

#include "ui/AnnouncementPage.h"
#include "ui/MarkupAttributes.h"

#include <QRegularExpression>
#include <QSet>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
const QStringList tables{u"table"_s};
const QStringList rowHolders{u"table"_s, u"thead"_s, u"tbody"_s, u"tfoot"_s};
const QStringList rowGroups{u"thead"_s, u"tbody"_s, u"tfoot"_s};
const QStringList cells{u"td"_s, u"th"_s};
const QStringList captions{u"caption"_s};
const QStringList textHoldersOfTables = cells + captions;
const QStringList lists{u"ul"_s, u"ol"_s};
const QStringList indented{u"ul"_s, u"ol"_s, u"dl"_s, u"blockquote"_s};
const QStringList preformatted{u"pre"_s};
const QStringList withoutContent{u"br"_s, u"hr"_s};

bool isInline(const QString &element)
{
    static const QSet<QString> known{
        u"a"_s,   u"b"_s,     u"strong"_s, u"i"_s,    u"em"_s,   u"u"_s,    u"s"_s,   u"del"_s,
        u"big"_s, u"small"_s, u"sub"_s,    u"sup"_s,  u"tt"_s,   u"code"_s, u"kbd"_s, u"samp"_s,
        u"var"_s, u"cite"_s,  u"dfn"_s,    u"span"_s, u"font"_s, u"br"_s};
    return known.contains(element);
}

bool isBlock(const QString &element)
{
    static const QSet<QString> known{
        u"p"_s,   u"div"_s,     u"center"_s, u"h1"_s, u"h2"_s, u"h3"_s, u"h4"_s, u"h5"_s, u"h6"_s,
        u"pre"_s, u"address"_s, u"hr"_s,     u"li"_s, u"dt"_s, u"dd"_s, u"tr"_s, u"td"_s, u"th"_s};
    return known.contains(element) || indented.contains(element) || rowHolders.contains(element)
        || captions.contains(element);
}

/// Characters that the toolkit's documents keep for themselves, and those that stand for nothing.
bool isForText(char32_t character)
{
    const bool isControl = character < U' ' && character != U'\t' && character != U'\n';
    const bool isKept = character == QChar::ObjectReplacementCharacter
        || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
    return !isControl && !isKept && character <= QChar::LastValidCodePoint
        && !QChar::isSurrogate(character) && !QChar::isNonCharacter(character);
}

/// The toolkit knows no captions: text in a table, but in none of its cells, upsets its layout.
QString writtenName(const QString &element)
{
    return captions.contains(element) ? u"div"_s : element;
}

int spanOf(const QList<MarkupReader::Attribute> &attributes, QLatin1StringView name)
{
    for (const MarkupReader::Attribute &attribute : attributes) {
        if (attribute.name == name)
            return std::max(1, MarkupAttributes::decoded(attribute.value).trimmed().toInt());
    }
    return 1;
}
} // namespace

void MarkupWriter::Grid::beginRow()
{
    ++m_rows;
    m_width = 0;
    m_spans.removeIf([this](const Span &span) { return span.lastRow < m_rows; });
    for (const Span &span : m_spans)
        m_width += span.columns;
}

void MarkupWriter::Grid::addCell(int columns, int rows)
{
    if (rows > 1)
        m_spans << Span{columns, m_rows + rows - 1};
    m_width += columns;
    m_widest = std::max(m_widest, m_width);
}

int MarkupWriter::Grid::cells() const
{
    return m_rows * m_widest;
}

bool MarkupWriter::add(const MarkupReader::Token &token)
{
    switch (token.kind) {
    case MarkupReader::Token::Kind::Text:
        return addText(token.text);
    case MarkupReader::Token::Kind::Start:
        return begin(token);
    case MarkupReader::Token::Kind::End:
        end(token.text);
        return true;
    }
    return false;
}

QString MarkupWriter::finish()
{
    while (!m_open.isEmpty())
        endLast();
    return m_html;
}

bool MarkupWriter::addText(const QString &text)
{
    static const QRegularExpression reference(u"&[a-zA-Z][a-zA-Z0-9]{1,9};"_s);
    for (const QChar character : text) {
        if (character == u'&' || character == u'<' || character == u'>')
            ++m_references;
    }
    if (m_references > AnnouncementPage::mostCharacterReferences)
        return false;
    const QString decoded = MarkupAttributes::decoded(text);
    // Only blanks can stand between the rows of a table without upsetting its layout.
    if (isAmongRows())
        return decoded.trimmed().isEmpty();
    const QList<uint> characters = decoded.toUcs4();
    for (qsizetype i = 0, position = 0; i < characters.size(); ++i) {
        const char32_t character = characters.at(i);
        if (character == U'&') {
            const QRegularExpressionMatch match
                = reference.match(decoded, position, QRegularExpression::NormalMatch,
                                  QRegularExpression::AnchorAtOffsetMatchOption);
            m_html += match.hasMatch() ? u"&"_s : u"&amp;"_s;
            if (!measure(character))
                return false;
        } else if (!write(character)) {
            return false;
        }
        position += QChar::requiresSurrogates(character) ? 2 : 1;
    }
    return true;
}

bool MarkupWriter::write(char32_t character)
{
    if (character == U'\r')
        character = U'\n';
    if (!isForText(character))
        return true;
    if (!measure(character))
        return false;
    if (character == U'<')
        m_html += u"&lt;"_s;
    else if (character == U'>')
        m_html += u"&gt;"_s;
    else
        m_html += QString::fromUcs4(&character, 1);
    return true;
}

/// Whether the lines, and what can't be broken into several, stay short with \a character.
bool MarkupWriter::measure(char32_t character)
{
    constexpr int tabLength = 10;
    if (character == U'\n') {
        beginLine();
        return ++m_lines <= AnnouncementPage::mostLines;
    }
    const bool isBlank = character == U' ' || character == U'\t';
    m_wordLength = isBlank ? 0 : m_wordLength + 1;
    if (openCount(preformatted) > 0)
        m_preformattedLength += character == U'\t' ? tabLength : 1;
    return m_wordLength <= AnnouncementPage::longestWord
        && m_preformattedLength <= AnnouncementPage::longestPreformattedLine;
}

void MarkupWriter::beginLine()
{
    m_wordLength = 0;
    m_preformattedLength = 0;
}

bool MarkupWriter::begin(const MarkupReader::Token &tag)
{
    for (const MarkupReader::Attribute &attribute : tag.attributes) {
        if (!MarkupAttributes::isWithinBounds(attribute))
            return false;
    }
    if (tag.text == "img"_L1)
        return addPictureText(tag);
    if (!isInline(tag.text) && !isBlock(tag.text))
        return true;
    endWhatCannotHold(tag.text);
    return !mayStandHere(tag.text) || beginElement(tag);
}

/// No picture is ever fetched; what stands for it is all there is to see.
bool MarkupWriter::addPictureText(const MarkupReader::Token &tag)
{
    for (const MarkupReader::Attribute &attribute : tag.attributes) {
        if (attribute.name == "alt"_L1)
            return addText(attribute.value);
    }
    return true;
}

bool MarkupWriter::beginElement(const MarkupReader::Token &tag)
{
    if (isAmongRows() && !textHoldersOfTables.contains(tag.text) && !rowHolders.contains(tag.text)
        && tag.text != "tr"_L1)
        return false;
    if (++m_elements > AnnouncementPage::mostElements)
        return false;
    if (captions.contains(tag.text))
        beginCaption();
    m_html += u'<' + writtenName(tag.text);
    QSet<QString> seen;
    for (const MarkupReader::Attribute &attribute : tag.attributes) {
        if (!seen.contains(attribute.name))
            m_html += MarkupAttributes::written(tag.text, attribute);
        seen << attribute.name;
    }
    m_html += u'>';
    if (isBlock(tag.text) || tag.text == "br"_L1)
        beginLine();
    if (withoutContent.contains(tag.text))
        return true;
    m_open << tag.text;
    if (tag.text == "table"_L1)
        m_grids << Grid();
    else if (tag.text == "tr"_L1)
        m_grids.last().beginRow();
    else if (cells.contains(tag.text))
        m_grids.last().addCell(spanOf(tag.attributes, "colspan"_L1),
                               spanOf(tag.attributes, "rowspan"_L1));
    return areTablesWithinBounds() && m_open.size() <= AnnouncementPage::deepestNesting
        && openCount(tables) <= AnnouncementPage::deepestTables
        && openCount(indented) <= AnnouncementPage::deepestIndentation;
}

/// What a caption says is written above its table, which hasn't a row yet.
void MarkupWriter::beginCaption()
{
    const qsizetype table = m_html.lastIndexOf("<table"_L1);
    m_captioned << m_html.mid(table);
    m_html.truncate(table);
}

bool MarkupWriter::areTablesWithinBounds() const
{
    int count = m_cells;
    for (const Grid &grid : m_grids) {
        if (grid.width() > AnnouncementPage::mostColumns)
            return false;
        count += grid.cells();
    }
    return count <= AnnouncementPage::mostCells;
}

void MarkupWriter::end(const QString &element)
{
    // An end tag reaches out of no cell or caption, but for those of the table itself.
    const bool isOfTable = textHoldersOfTables.contains(element) || rowHolders.contains(element)
        || element == "tr"_L1;
    endNearest({element},
               element == "table"_L1 ? QStringList()
                   : isOfTable       ? tables
                                     : textHoldersOfTables);
}

/// Many end tags may be left out: the next element of the kind says that the last one is over.
void MarkupWriter::endWhatCannotHold(const QString &element)
{
    if (isInline(element))
        return;
    if (captions.contains(element) || element == "tr"_L1 || rowGroups.contains(element))
        endNearest(captions, tables);
    if (cells.contains(element)) {
        endNearest(cells, tables);
    } else if (element == "tr"_L1) {
        endNearest({u"tr"_s}, tables);
    } else if (rowGroups.contains(element)) {
        endNearest(rowGroups, tables);
        endNearest({u"tr"_s}, tables);
    } else if (!captions.contains(element)) {
        endNearest({u"p"_s},
                   textHoldersOfTables + indented + QStringList{u"li"_s, u"dd"_s, u"div"_s});
    }
    if (element == "li"_L1)
        endNearest({u"li"_s}, lists + textHoldersOfTables);
    else if (element == "dt"_L1 || element == "dd"_L1)
        endNearest({u"dt"_s, u"dd"_s}, QStringList{u"dl"_s} + textHoldersOfTables);
}

/// Ends the innermost open one of \a elements, with all that is inside, unless one of \a within
/// lies between.
void MarkupWriter::endNearest(const QStringList &elements, const QStringList &within)
{
    for (qsizetype i = m_open.size() - 1; i >= 0; --i) {
        if (elements.contains(m_open.at(i))) {
            while (m_open.size() > i)
                endLast();
            return;
        }
        if (within.contains(m_open.at(i)))
            return;
    }
}

void MarkupWriter::endLast()
{
    const QString element = m_open.takeLast();
    m_html += u"</"_s + writtenName(element) + u'>';
    if (captions.contains(element))
        m_html += m_captioned.takeLast();
    if (isBlock(element))
        beginLine();
    if (element == "table"_L1)
        m_cells += m_grids.takeLast().cells();
}

/// Rows and cells stand in tables only, items in lists; elsewhere their tags mean nothing.
bool MarkupWriter::mayStandHere(const QString &element) const
{
    const QString holder = m_open.isEmpty() ? QString() : m_open.last();
    if (cells.contains(element))
        return holder == "tr"_L1;
    if (captions.contains(element))
        return holder == "table"_L1 && !m_grids.last().hasRows();
    if (element == "tr"_L1)
        return rowHolders.contains(holder);
    if (rowGroups.contains(element))
        return holder == "table"_L1;
    if (element == "li"_L1)
        return lists.contains(holder);
    if (element == "dt"_L1 || element == "dd"_L1)
        return holder == "dl"_L1;
    return true;
}

/// Whether what comes next would stand in a table, but in none of its cells.
bool MarkupWriter::isAmongRows() const
{
    return !m_open.isEmpty() && (rowHolders.contains(m_open.last()) || m_open.last() == "tr"_L1);
}

int MarkupWriter::openCount(const QStringList &elements) const
{
    return static_cast<int>(
        std::count_if(m_open.begin(), m_open.end(),
                      [&elements](const QString &element) { return elements.contains(element); }));
}
