// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigurePanel.h"

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QLabel>

namespace {

constexpr qint64 LargestInFull = 999'999;

} // namespace

FigurePanel::FigurePanel(CountsModel* model, QString unit, int facts, int factsWhenLow,
                         QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_unit(std::move(unit))
    , m_factsWhenLow(factsWhenLow)
    , m_figure(new QLabel(this))
    , m_unitLabel(new QLabel(m_unit, this))
    , m_layout(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , m_factsLayout(new QBoxLayout(QBoxLayout::TopToBottom))
{
    m_figure->setObjectName(QStringLiteral("figure"));
    m_figure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->addWidget(buildFigure());
    m_layout->addLayout(m_factsLayout);
    m_layout->addStretch();
    for (int fact = 0; fact < facts; ++fact) {
        addFact();
    }
    setForm(Form::Tall);
    connect(model, &QAbstractItemModel::dataChanged, this, &FigurePanel::follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, &FigurePanel::follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &FigurePanel::follow);
    applyTheme();
}

QWidget* FigurePanel::buildFigure()
{
    auto* figure = new QWidget(this);
    auto* layout = new QHBoxLayout(figure);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_figure, 0, Qt::AlignBaseline);
    layout->addWidget(m_unitLabel, 0, Qt::AlignBaseline);
    layout->addStretch();
    return figure;
}

void FigurePanel::addFact()
{
    const Fact fact{.caption = new QLabel(this),
                    .value = new QLabel(this),
                    .layout = new QBoxLayout(QBoxLayout::LeftToRight)};
    fact.layout->addWidget(fact.caption, 1);
    fact.layout->addWidget(fact.value);
    m_factsLayout->addLayout(fact.layout);
    m_facts.append(fact);
}

void FigurePanel::setForm(Form form)
{
    const bool tall = form == Form::Tall;
    m_layout->setDirection(tall ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_layout->setSpacing(tall ? Theme::Gap : 4 * Theme::Rhythm);
    m_factsLayout->setDirection(tall ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_factsLayout->setSpacing(tall ? Theme::Rhythm : 4 * Theme::Rhythm);
    for (int index = 0; index < m_facts.size(); ++index) {
        const Fact& fact = m_facts.at(index);
        fact.caption->setVisible(tall || index < m_factsWhenLow);
        fact.value->setVisible(tall || index < m_factsWhenLow);
        // The value stands above its caption where there is little height.
        fact.layout->setDirection(tall ? QBoxLayout::LeftToRight : QBoxLayout::BottomToTop);
        fact.layout->setSpacing(tall ? Theme::Rhythm : 0);
    }
}

void FigurePanel::setNote(const QString& note)
{
    m_note = note;
    follow();
}

void FigurePanel::follow()
{
    const QList<CountsModel::Row>& rows = m_model->rows();
    if (rows.isEmpty()) {
        return;
    }
    const qint64 count = rows.constFirst().count;
    m_figure->setText(count <= LargestInFull ? Format::count(count) : Format::shortCount(count));
    const QString full = QStringLiteral("%1 %2").arg(Format::count(count), m_unit);
    m_figure->setToolTip(m_note.isEmpty() ? full : full + QStringLiteral("\n\n") + m_note);
    m_figure->setAccessibleName(full);
    for (int fact = 0; fact < m_facts.size(); ++fact) {
        const bool known = fact + 1 < rows.size();
        m_facts.at(fact).caption->setText(known ? rows.at(fact + 1).label : QString());
        m_facts.at(fact).value->setText(known ? Format::count(rows.at(fact + 1).count) : QString());
    }
}

void FigurePanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void FigurePanel::applyTheme()
{
    m_figure->setFont(Theme::font(Theme::TextSize::Figure));
    const QPalette muted = Theme::mutedPalette(palette());
    for (const Fact& fact : std::as_const(m_facts)) {
        fact.caption->setPalette(muted);
    }
}
