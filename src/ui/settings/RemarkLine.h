// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Theme.h"

#include <QStringList>
#include <QWidget>

class QLabel;

/// A sentence that changes, with a symbol before it where it matters. Its height is that of the
/// longest, so that nothing below moves. Thread: main.
class RemarkLine : public QWidget
{
    Q_OBJECT

public:
    /// Makes room for each of `texts`.
    RemarkLine(const QString& name, Theme::TextSize size, const QStringList& texts,
               QWidget* parent = nullptr);

    /// Without an icon it is a muted hint.
    void setRemark(const QString& text, const QString& icon = {});

    QString text() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyTheme();

    Theme::TextSize m_size;
    QLabel* m_icon;
    QLabel* m_text;
    QString m_iconName;
};
