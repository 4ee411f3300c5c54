// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigurePanel.h"

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QLabel>

FigurePanel::FigurePanel(CountsModel* model, QString unit, int facts, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_unit(std::move(unit))
    , m_figure(new QLabel(this))
    , m_unitLabel(new QLabel(m_unit, this))
    , m_layout(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , m_factsLayout(new QBoxLayout(QBoxLayout::TopToBottom))
{
    m_figure->setObjectName(QStringLiteral("figure"));
    m_figure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* figure = new QHBoxLayout;
    figure->setSpacing(Theme::Rhythm);
    figure->addWidget(m_figure, 0, Qt::AlignBaseline);
    figure->addWidget(m_unitLabel, 0, Qt::AlignBaseline);
    figure->addStretch();
    m_layout->setContentsMargins(0, 0, Theme::Rhythm, 0);
    m_layout->setSpacing(Theme::Gap);
    m_layout->addLayout(figure);
    m_layout->addLayout(m_factsLayout);
    m_layout->addStretch();
    m_factsLayout->setSpacing(Theme::Rhythm);
    for (int fact = 0; fact < facts; ++fact) {
        auto* pair = new QHBoxLayout;
        pair->setSpacing(Theme::Rhythm);
        m_facts.append(Fact{.caption = new QLabel(this), .value = new QLabel(this)});
        pair->addWidget(m_facts.constLast().caption, 1);
        pair->addWidget(m_facts.constLast().value, 0, Qt::AlignRight);
        m_factsLayout->addLayout(pair);
    }
    connect(model, &QAbstractItemModel::dataChanged, this, &FigurePanel::follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, &FigurePanel::follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &FigurePanel::follow);
    applyTheme();
}

void FigurePanel::setDirection(QBoxLayout::Direction direction)
{
    m_layout->setDirection(direction);
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
    m_figure->setText(Format::shortCount(count));
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
    QPalette muted = palette();
    muted.setColor(QPalette::WindowText, Theme::colours(palette()).mutedText);
    for (const Fact& fact : std::as_const(m_facts)) {
        fact.caption->setPalette(muted);
    }
}
