// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/IdentityPanel.h"

#include "ui/PlainText.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

IdentityPanel::IdentityPanel(int lines, QWidget* parent)
    : QWidget(parent)
    , m_model(new FiguresModel(
          {FiguresModel::textColumn(tr("What")), FiguresModel::textColumn(tr("Value"))}, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int line = 0; line < lines; ++line) {
        const Labels labels{.caption = new QLabel(this), .value = new QLabel(this)};
        labels.value->setObjectName(QStringLiteral("value"));
        labels.value->setTextFormat(Qt::PlainText);
        labels.value->setWordWrap(true);
        labels.value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        layout->addWidget(labels.caption);
        layout->addWidget(labels.value);
        layout->addSpacing(Theme::Rhythm);
        m_lines.append(labels);
    }
    layout->addStretch();
    applyTheme();
}

void IdentityPanel::setLines(const QList<Line>& lines)
{
    QList<FiguresModel::Row> rows;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const Line line = lines.value(i);
        const Labels& labels = m_lines.at(i);
        labels.caption->setText(line.caption);
        labels.value->setText(PlainText::breakable(line.value));
        labels.value->setToolTip(PlainText::toolTip(line.value));
        labels.value->setAccessibleName(QStringLiteral("%1: %2").arg(line.caption, line.value));
        labels.caption->setVisible(!line.value.isEmpty());
        labels.value->setVisible(!line.value.isEmpty());
        rows.append({line.caption, line.value});
    }
    m_model->setRows(rows);
}

void IdentityPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void IdentityPanel::applyTheme()
{
    const QFont caption = Theme::font(Theme::TextSize::Caption);
    const QPalette muted = Theme::mutedPalette(palette());
    for (const Labels& labels : std::as_const(m_lines)) {
        labels.caption->setFont(caption);
        labels.caption->setPalette(muted);
    }
}
