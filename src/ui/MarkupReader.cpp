// SPDX-License-Identifier: MIT
#include "ui/MarkupReader.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace
{
bool isLatinLetter(QChar character)
{
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
}
} // namespace

MarkupReader::MarkupReader(QStringView page)
    : m_page(page)
{
}

std::optional<MarkupReader::Token> MarkupReader::next()
{
    while (m_position < m_page.size()) {
        if (charAt(m_position) != u'<')
            return readText();
        const QChar following = charAt(m_position + 1);
        if (following == u'!' || following == u'?') {
            skipDeclaration();
            continue;
        }
        const bool ends = following == u'/';
        if (!isLatinLetter(ends ? charAt(m_position + 2) : following))
            return readText();
        return readTag();
    }
    return std::nullopt;
}

/// From here to the next "<"; one that stands here begins no tag.
std::optional<MarkupReader::Token> MarkupReader::readText()
{
    qsizetype end = m_page.indexOf(u'<', m_position + 1);
    if (end == -1)
        end = m_page.size();
    const QString text = m_page.mid(m_position, end - m_position).toString();
    m_position = end;
    return Token{Token::Kind::Text, text, {}};
}

std::optional<MarkupReader::Token> MarkupReader::readTag()
{
    const qsizetype begin = m_position++;
    Token tag{Token::Kind::Start, {}, {}};
    if (charAt(m_position) == u'/') {
        tag.kind = Token::Kind::End;
        ++m_position;
    }
    const qsizetype nameBegin = m_position;
    while (isLatinLetter(charAt(m_position)) || charAt(m_position).isDigit())
        ++m_position;
    tag.text = m_page.mid(nameBegin, m_position - nameBegin).toString().toLower();
    while (const std::optional<Attribute> attribute = readAttribute())
        tag.attributes << *attribute;
    if (m_position >= m_page.size()) { // a tag without end
        const QString rest = m_page.mid(begin).toString();
        return Token{Token::Kind::Text, rest, {}};
    }
    ++m_position;
    if (tag.kind == Token::Kind::Start)
        skipContent(tag.text);
    return tag;
}

/// Nothing at the end of the tag, where the position stays then, or of the page.
std::optional<MarkupReader::Attribute> MarkupReader::readAttribute()
{
    skipSpace();
    while (charAt(m_position) == u'/') {
        ++m_position;
        skipSpace();
    }
    if (m_position >= m_page.size() || charAt(m_position) == u'>')
        return std::nullopt;
    const qsizetype begin = m_position++;
    while (m_position < m_page.size() && !charAt(m_position).isSpace()
           && !QStringView(u"=>/").contains(charAt(m_position)))
        ++m_position;
    Attribute attribute{m_page.mid(begin, m_position - begin).toString().toLower(), {}};
    skipSpace();
    if (charAt(m_position) == u'=') {
        ++m_position;
        attribute.value = readValue();
    }
    return attribute;
}

QString MarkupReader::readValue()
{
    skipSpace();
    const QChar quote = charAt(m_position);
    if (quote != u'"' && quote != u'\'') {
        const qsizetype begin = m_position;
        while (m_position < m_page.size() && !charAt(m_position).isSpace()
               && charAt(m_position) != u'>')
            ++m_position;
        return m_page.mid(begin, m_position - begin).toString();
    }
    const qsizetype begin = ++m_position;
    skipPast(QStringView(&quote, 1));
    return m_page.mid(begin, m_position - begin - 1).toString();
}

void MarkupReader::skipDeclaration()
{
    const QStringView comment = u"<!--";
    if (m_page.mid(m_position).startsWith(comment)) {
        m_position += comment.size();
        skipPast(u"-->");
    } else {
        skipPast(u">");
    }
}

/// What these elements hold is neither markup nor for the reader's eyes.
void MarkupReader::skipContent(const QString &element)
{
    static const QStringList withoutText{u"style"_s, u"script"_s, u"title"_s};
    if (!withoutText.contains(element))
        return;
    const qsizetype end = m_page.indexOf(u"</"_s + element, m_position, Qt::CaseInsensitive);
    m_position = end == -1 ? m_page.size() : end;
}

void MarkupReader::skipPast(QStringView end)
{
    const qsizetype found = m_page.indexOf(end, m_position);
    m_position = found == -1 ? m_page.size() : found + end.size();
}

void MarkupReader::skipSpace()
{
    while (m_position < m_page.size() && charAt(m_position).isSpace())
        ++m_position;
}

QChar MarkupReader::charAt(qsizetype position) const
{
    return position < m_page.size() ? m_page.at(position) : QChar();
}
