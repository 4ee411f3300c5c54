// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigureTile.h"

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

FigureTile::FigureTile(const QString& title, int lines, QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(this))
    , m_rate(new QLabel(this))
    , m_figure(new QLabel(this))
{
    m_rate->setObjectName(QStringLiteral("rate"));
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
    layout->addLayout(linesLayout(lines));
    layout->addStretch();
    setTitle(title);
    applyTheme();
}

QLayout* FigureTile::linesLayout(int lines)
{
    auto* layout = new QGridLayout;
    layout->setHorizontalSpacing(Theme::Rhythm);
    layout->setVerticalSpacing(0);
    layout->setColumnStretch(1, 1);
    for (int row = 0; row < lines; ++row) {
        const Labels labels{.lead = new QLabel(this), .text = new QLabel(this)};
        labels.lead->setObjectName(QStringLiteral("lead"));
        // A long remark is cut rather than taking the room of the tiles beside it.
        labels.text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        layout->addWidget(labels.lead, row, 0);
        layout->addWidget(labels.text, row, 1);
        m_lines.append(labels);
    }
    return layout;
}

void FigureTile::setTitle(const QString& title)
{
    m_title->setText(title);
    m_rate->setToolTip(tr("%1 in the last seconds").arg(title));
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

void FigureTile::setLines(const QList<Line>& lines)
{
    for (int i = 0; i < m_lines.size(); ++i) {
        const Line shown = lines.value(i);
        const Labels& labels = m_lines.at(i);
        for (QLabel* label : {labels.lead, labels.text}) {
            label->setToolTip(shown.inFull);
            label->setAccessibleName(shown.inFull);
        }
        labels.lead->setText(shown.lead);
        labels.lead->setVisible(!shown.lead.isEmpty());
        labels.text->setText(shown.text);
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
    for (const Labels& labels : std::as_const(m_lines)) {
        labels.lead->setFont(caption);
        labels.text->setFont(caption);
        labels.text->setPalette(muted);
        labels.text->setFixedHeight(QFontMetrics(caption).height());
    }
    // The widest that is usual, so that tiles do not move as their figures grow.
    setMinimumWidth(std::max(QFontMetrics(figure).horizontalAdvance(QStringLiteral("888,888")),
                             QFontMetrics(caption).horizontalAdvance(tr("▼ −88 % 30 days before")) +
                                 Theme::Rhythm));
}
