// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTranslator>

/// The language of the user interface. Thread: main.
class Translation
{
public:
    /// Translates from now on with the compiled translation `file`; an empty path stands for the
    /// built-in one of `language` ("en" is the language of the source and needs none). Where it
    /// cannot be loaded, texts stay as they were and the log says so.
    void install(const QString& file, const QString& language);

private:
    QTranslator m_translator;
};
