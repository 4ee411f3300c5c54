// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Translation.h"

#include "base/Log.h"

#include <QCoreApplication>

void Translation::install(const QString& file, const QString& language)
{
    if (file.isEmpty() && language == QLatin1String("en")) {
        return;
    }
    const QString path =
        file.isEmpty() ? QStringLiteral(":/i18n/tallyvane_%1.qm").arg(language) : file;
    if (!m_translator.load(path)) {
        Log::warn("Unable to load the translation {}", path);
        return;
    }
    QCoreApplication::installTranslator(&m_translator);
}
