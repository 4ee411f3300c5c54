// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PlainText.h"

#include <QStringList>

namespace {

constexpr int Longest = 16; ///< Characters without a place to wrap.

QString breakableWord(const QString& word)
{
    constexpr QChar zeroWidthSpace(0x200b);
    QString wrapping;
    int unbroken = 0;
    for (const QChar& character : word) {
        wrapping += character;
        const bool isPart = character.isLetterOrNumber() || character.isSurrogate();
        unbroken = isPart ? unbroken + 1 : 0;
        if (unbroken == 0 || (unbroken % Longest == 0 && !character.isHighSurrogate())) {
            wrapping += zeroWidthSpace;
        }
    }
    return wrapping;
}

} // namespace

QString PlainText::breakable(const QString& text)
{
    QStringList words = text.split(u' ');
    for (QString& word : words) {
        if (word.size() > Longest) {
            word = breakableWord(word);
        }
    }
    return words.join(u' ');
}

QString PlainText::toolTip(const QString& text)
{
    return text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
}
