// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// While this exists the program speaks a language in which each text is the given one with "~"
/// before it. Its coming and going reach every window, as a change of the user's language does.
class OtherLanguage : public QTranslator
{
public:
    OtherLanguage()
    {
        QCoreApplication::installTranslator(this);
        QCoreApplication::sendPostedEvents();
    }
    ~OtherLanguage() override
    {
        QCoreApplication::removeTranslator(this);
        QCoreApplication::sendPostedEvents();
    }

    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QChar(u'~') + QString::fromUtf8(text);
    }
};
