// SPDX-License-Identifier: MIT
#include "ui/MarkupAttributes.h"

#include "ui/AnnouncementPage.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace
{
constexpr int largestFont = 99;

using Patterns = QHash<QString, QRegularExpression>;

/// What the whole of a value must be.
QRegularExpression whole(const QString &pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

bool matches(const Patterns &patterns, const QString &name, const QString &value)
{
    const auto pattern = patterns.constFind(name);
    return pattern != patterns.constEnd() && pattern->match(value).hasMatch();
}

const Patterns &attributePatterns()
{
    static const QRegularExpression color = whole(u"#[0-9a-fA-F]{3,8}|[a-zA-Z]{1,30}"_s);
    static const QRegularExpression word = whole(u"[a-zA-Z0-9]{1,10}"_s);
    static const QRegularExpression twoDigits = whole(u"[0-9]{1,2}"_s);
    static const Patterns patterns{{u"color"_s, color},
                                   {u"bgcolor"_s, color},
                                   {u"align"_s, word},
                                   {u"valign"_s, word},
                                   {u"dir"_s, word},
                                   {u"type"_s, word},
                                   {u"border"_s, twoDigits},
                                   {u"cellpadding"_s, twoDigits},
                                   {u"cellspacing"_s, twoDigits},
                                   {u"colspan"_s, twoDigits},
                                   {u"rowspan"_s, twoDigits},
                                   {u"start"_s, whole(u"[0-9]{1,4}"_s)},
                                   {u"size"_s, whole(u"[+-]?[1-7]"_s)},
                                   {u"width"_s, whole(u"[0-9]{1,4}|(100|[0-9]{1,2})%"_s)}};
    return patterns;
}

const Patterns &stylePatterns()
{
    static const QRegularExpression color
        = whole(u"#[0-9a-f]{3,8}|[a-z]{1,30}|rgb\\([0-9, ]{5,15}\\)"_s);
    static const QRegularExpression words = whole(u"[a-z0-9 -]{1,30}"_s);
    static const QRegularExpression pixels = whole(u"[0-9]{1,2}(px)?"_s);
    static const Patterns patterns{
        {u"color"_s, color},
        {u"background-color"_s, color},
        {u"font-weight"_s, words},
        {u"font-style"_s, words},
        {u"text-align"_s, words},
        {u"text-decoration"_s, words},
        {u"margin-left"_s, pixels},
        {u"margin-right"_s, pixels},
        {u"margin-top"_s, pixels},
        {u"margin-bottom"_s, pixels},
        {u"padding"_s, pixels},
        {u"font-family"_s, whole(u"[a-z ,-]{1,60}"_s)},
        {u"font-size"_s, whole(u"[0-9]{1,2}(px|pt)|[1-3]?[0-9]{1,2}%|[a-z-]{1,10}"_s)}};
    return patterns;
}

/// "name:value" in lower case, split.
QList<std::pair<QString, QString>> declarations(const QString &style)
{
    QList<std::pair<QString, QString>> found;
    const QStringList parts = style.toLower().split(u';');
    for (const QString &part : parts)
        found.emplace_back(part.section(u':', 0, 0).trimmed(), part.section(u':', 1).trimmed());
    return found;
}

int largestNumber(const QString &name)
{
    static const QStringList spacings{u"cellpadding"_s, u"cellspacing"_s, u"border"_s,
                                      u"hspace"_s,      u"vspace"_s,      u"margin"_s,
                                      u"padding"_s,     u"text-indent"_s, u"-qt-block-indent"_s,
                                      u"line-height"_s};
    if (name == "colspan"_L1 || name == "rowspan"_L1)
        return AnnouncementPage::mostColumns;
    if (name == "font-weight"_L1)
        return AnnouncementPage::largestNumber;
    if (name.startsWith("font"_L1) || name == "size"_L1)
        return largestFont;
    for (const QString &spacing : spacings) {
        if (name.startsWith(spacing))
            return AnnouncementPage::largestSpacing;
    }
    return AnnouncementPage::largestNumber;
}

/// Whether no number in \a value is greater than \a name may have; colours are no numbers.
bool holdsSmallNumbers(const QString &name, QString value)
{
    static const QRegularExpression noNumbers(u"#[0-9a-f]*|\\.[0-9]+"_s,
                                              QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression exponent(u"[0-9]e[+-]?[0-9]"_s,
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression number(u"[0-9]+"_s);
    value.remove(noNumbers);
    if (value.contains(exponent))
        return false;
    const bool isPercentage = value.contains(u'%');
    for (const QRegularExpressionMatch &match : number.globalMatch(value)) {
        bool isNumber = false;
        const int found = match.captured().toInt(&isNumber);
        if (!isNumber
            || found > (isPercentage ? AnnouncementPage::largestNumber : largestNumber(name)))
            return false;
    }
    return true;
}

/// Whether numbers in the attribute called \a name could reach the layout.
bool isMeasure(const QString &name)
{
    static const QSet<QString> neverWritten{u"height"_s, u"hspace"_s, u"vspace"_s};
    const bool isColor = name.endsWith("color"_L1);
    return neverWritten.contains(name) || (attributePatterns().contains(name) && !isColor);
}

QString withoutSpace(const QString &text)
{
    QString result;
    for (const QChar character : text) {
        if (character > u' ' && character != QChar(QChar::Nbsp))
            result += character;
    }
    return result.toLower();
}

QString escaped(const QString &value)
{
    static const QRegularExpression bareAmpersand(u"&(?![a-zA-Z][a-zA-Z0-9]{1,9};)"_s);
    QString result = value;
    return result.replace(bareAmpersand, u"&amp;"_s)
        .replace(u'"', u"&quot;"_s)
        .replace(u'<', u"&lt;"_s)
        .replace(u'>', u"&gt;"_s);
}

QString writtenStyle(const QString &value)
{
    QString style;
    for (const auto &[name, content] : declarations(value)) {
        if (matches(stylePatterns(), name, content))
            style += name + u':' + content + u';';
    }
    return style;
}

/// Elements that keep each of the attributes that not all of them do.
bool takes(const QString &element, const QString &attribute)
{
    const bool isCell = element == "td"_L1 || element == "th"_L1;
    if (attribute == "href"_L1)
        return element == "a"_L1;
    if (attribute == "colspan"_L1 || attribute == "rowspan"_L1)
        return isCell;
    if (attribute == "border"_L1 || attribute.startsWith("cell"_L1))
        return element == "table"_L1;
    if (attribute == "width"_L1)
        return isCell || element == "table"_L1 || element == "hr"_L1;
    if (attribute == "size"_L1)
        return element == "font"_L1;
    return true;
}
} // namespace

QString MarkupAttributes::decoded(const QString &text)
{
    static const QRegularExpression reference(u"&#(?:[xX]([0-9a-fA-F]+)|([0-9]+));?"_s);
    QString result;
    qsizetype copied = 0;
    for (const QRegularExpressionMatch &match : reference.globalMatch(text)) {
        result += QStringView(text).mid(copied, match.capturedStart() - copied);
        copied = match.capturedEnd();
        const bool isHex = !match.capturedView(1).isEmpty();
        bool isNumber = false;
        const uint code = match.capturedView(isHex ? 1 : 2).toUInt(&isNumber, isHex ? 16 : 10);
        if (isNumber && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code))
            result += QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1);
    }
    return result += QStringView(text).mid(copied);
}

bool MarkupAttributes::isWithinBounds(const MarkupReader::Attribute &attribute)
{
    const QString value = decoded(attribute.value);
    if (withoutSpace(value).startsWith("data:"_L1))
        return false;
    if (attribute.name == "style"_L1) {
        if (withoutSpace(value).contains("data:"_L1))
            return false;
        for (const auto &[name, content] : declarations(value)) {
            if (!holdsSmallNumbers(name, content))
                return false;
        }
        return true;
    }
    return !isMeasure(attribute.name) || holdsSmallNumbers(attribute.name, value);
}

QString MarkupAttributes::written(const QString &element, const MarkupReader::Attribute &attribute)
{
    const QString value = decoded(attribute.value).trimmed();
    if (!takes(element, attribute.name))
        return {};
    QString kept;
    if (attribute.name == "href"_L1) {
        if (value.size() <= AnnouncementPage::longestLink)
            kept = escaped(value);
    } else if (attribute.name == "style"_L1) {
        kept = writtenStyle(value);
    } else if (matches(attributePatterns(), attribute.name, value)) {
        kept = value;
    }
    return kept.isEmpty() ? QString() : u' ' + attribute.name + u"=\""_s + kept + u'"';
}
