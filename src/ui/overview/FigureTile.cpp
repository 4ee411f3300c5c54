// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/FigureTile.h"

#include "ui/Theme.h"

#include <QEvent>
#include <QFontInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QStringList>

#include <algorithm>

namespace {

/// `text` as rich text in which what does not begin with a digit has the size of the body.
QString withSmallUnits(const QString& text)
{
    const int size = QFontInfo(Theme::font(Theme::TextSize::Body)).pixelSize();
    QStringList words;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        const bool isNumber = !word.isEmpty() && word.at(0).isDigit();
        words.append(isNumber ? word.toHtmlEscaped()
                              : QStringLiteral("<span style=\"font-size:%1px;font-weight:400\">"
                                               "%2</span>")
                                    .arg(size)
                                    .arg(word.toHtmlEscaped()));
    }
    return words.join(
        QStringLiteral("<span style=\"font-size:%1px;font-weight:400\">&nbsp;</span>").arg(size));
}

} // namespace

FigureTile::FigureTile(const QString& title, QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(title, this))
    , m_rate(new QLabel(this))
    , m_figure(new QLabel(this))
{
    m_rate->setObjectName(QStringLiteral("rate"));
    m_rate->setToolTip(tr("%1 in the last seconds").arg(title));
    m_figure->setObjectName(QStringLiteral("figure"));
    m_figure->setTextFormat(Qt::RichText);
    m_figure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* head = new QHBoxLayout;
    head->setSpacing(Theme::Rhythm);
    head->addWidget(m_title);
    head->addWidget(m_rate);
    head->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(head);
    layout->addWidget(m_figure);
    layout->addSpacing(Theme::Rhythm / 2);
    auto* lines = new QGridLayout;
    lines->setHorizontalSpacing(Theme::Rhythm);
    lines->setVerticalSpacing(0);
    lines->setColumnStretch(1, 1);
    layout->addLayout(lines);
    layout->addStretch();
    for (int row = 0; row < MostComparisons; ++row) {
        const Line line{.change = new QLabel(this), .caption = new QLabel(this)};
        line.change->setObjectName(QStringLiteral("change"));
        lines->addWidget(line.change, row, 0);
        lines->addWidget(line.caption, row, 1);
        m_lines.append(line);
    }
    applyTheme();
}

void FigureTile::setFigure(const QString& text, const QString& full)
{
    if (text != m_text) {
        m_text = text;
        m_figure->setText(withSmallUnits(text));
    }
    const QString named = QStringLiteral("%1: %2").arg(m_title->text(), full);
    m_figure->setToolTip(named);
    m_figure->setAccessibleName(named);
}

void FigureTile::setComparisons(const QList<Comparison>& comparisons)
{
    for (int i = 0; i < m_lines.size(); ++i) {
        const Comparison shown = comparisons.value(i);
        for (QLabel* label : {m_lines.at(i).change, m_lines.at(i).caption}) {
            label->setToolTip(shown.words);
            label->setAccessibleName(shown.words);
        }
        m_lines.at(i).change->setText(shown.change);
        m_lines.at(i).caption->setText(shown.caption);
    }
}

void FigureTile::setRate(const QString& rate)
{
    m_rate->setText(rate);
}

void FigureTile::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void FigureTile::applyTheme()
{
    const QFont caption = Theme::font(Theme::TextSize::Caption);
    const QFont figure = Theme::font(Theme::TextSize::Figure);
    const QPalette muted = Theme::mutedPalette(palette());
    m_title->setPalette(muted);
    m_rate->setFont(caption);
    m_rate->setPalette(muted);
    m_figure->setFont(figure);
    m_figure->setText(withSmallUnits(m_text));
    m_figure->setFixedHeight(QFontMetrics(figure).height());
    for (const Line& line : std::as_const(m_lines)) {
        line.change->setFont(caption);
        line.caption->setFont(caption);
        line.caption->setPalette(muted);
        line.change->setFixedHeight(QFontMetrics(caption).height());
    }
    // The widest that is usual, so that tiles do not move as their figures grow.
    setMinimumWidth(std::max(QFontMetrics(figure).horizontalAdvance(QStringLiteral("888,888")),
                             QFontMetrics(caption).horizontalAdvance(tr("▼ −88 % 30 days before")) +
                                 Theme::Rhythm));
}
