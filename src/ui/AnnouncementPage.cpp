// SPDX-License-Identifier: MIT
#include "ui/AnnouncementPage.h"

#include "ui/MarkupReader.h"
#include "ui/MarkupWriter.h"

using namespace Qt::StringLiterals;

namespace
{
QString withLineFeeds(QString source)
{
    return source.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

/// Where a document breaks the line of a plain text.
bool isLineBreak(QChar character)
{
    constexpr char16_t beginningOfFrame = 0xfdd0;
    constexpr char16_t endOfFrame = 0xfdd1;
    return character == u'\n' || character == QChar::LineSeparator
        || character == QChar::ParagraphSeparator || character == beginningOfFrame
        || character == endOfFrame;
}

std::optional<QString> writtenAnew(const QString &source)
{
    if (source.size() > AnnouncementPage::longestPage)
        return std::nullopt;
    MarkupReader reader(source);
    MarkupWriter writer;
    while (const std::optional<MarkupReader::Token> token = reader.next()) {
        if (!writer.add(*token))
            return std::nullopt;
    }
    return writer.finish();
}
} // namespace

AnnouncementPage::AnnouncementPage(const QString &source)
    : m_source(withLineFeeds(source))
    , m_html(writtenAnew(m_source))
{
}

QString AnnouncementPage::plainText() const
{
    QString text;
    int lines = 1;
    int wordLength = 0;
    for (const QChar found : m_source) {
        const QChar character = isLineBreak(found) ? u'\n' : found;
        if (text.size() >= longestPlainText || lines > mostPlainLines)
            return text + u"\n..."_s;
        if (character == u'\n')
            ++lines;
        if (character.isSpace())
            wordLength = 0;
        else if (++wordLength > longestWord) {
            text += u'\n';
            ++lines;
            wordLength = 1;
        }
        text += character;
    }
    return text;
}
