// SPDX-License-Identifier: MIT
#include "ui/AnnouncementPage.h"

#include "ui/MarkupReader.h"
#include "ui/MarkupWriter.h"

using namespace Qt::StringLiterals;

namespace
{
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
    : m_source(source)
    , m_html(writtenAnew(source))
{
}

QString AnnouncementPage::plainText() const
{
    QString text;
    int lines = 1;
    int wordLength = 0;
    for (const QChar character : m_source) {
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
