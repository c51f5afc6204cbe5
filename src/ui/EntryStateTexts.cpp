// SPDX-License-Identifier: MIT
#include "ui/EntryStateTexts.h"

#include <QCoreApplication>
#include <map>

using namespace Qt::StringLiterals;

QString EntryStateTexts::iconState(EntryState state)
{
    static const std::map<EntryState, QString> names{
        {EntryState::Todo, u"todo"_s},     {EntryState::Done, u"done"_s},
        {EntryState::WontDo, u"wontdo"_s}, {EntryState::Category, u"category"_s},
        {EntryState::None, u"none"_s},
    };
    const auto found = names.find(state);
    return found == names.end() ? QString() : found->second;
}

QString EntryStateTexts::toolTip(EntryState state)
{
    static const std::map<EntryState, const char *> texts{
        {EntryState::Todo, QT_TRANSLATE_NOOP("EntryStateTexts", "to-do")},
        {EntryState::Done, QT_TRANSLATE_NOOP("EntryStateTexts", "done")},
        {EntryState::WontDo, QT_TRANSLATE_NOOP("EntryStateTexts", "won't do")},
        {EntryState::Category, QT_TRANSLATE_NOOP("EntryStateTexts", "category")},
    };
    const auto found = texts.find(state);
    return found == texts.end() ? QString()
                                : QCoreApplication::translate("EntryStateTexts", found->second);
}
