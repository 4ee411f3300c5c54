// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/UnzurgedPanel.h"

#include "account/LocalStats.h"
#include "storage/Settings.h"
#include "ui/FiguresModel.h"
#include "ui/Theme.h"
#include "ui/overview/Measure.h"
#include "ui/overview/OverviewTables.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>

namespace {

constexpr int RefreshMs = 1000;

constexpr int Directions = 2; ///< Of traffic: a line each, below those of the measures.

UnzurgedCounts unzurged()
{
    const LocalStats* stats = LocalStats::instance();
    return stats != nullptr ? stats->unzurged() : UnzurgedCounts();
}

Totals totalsOf(const UnzurgedCounts& counts)
{
    // No counter exceeds what a signed number holds.
    return {.keys = static_cast<qint64>(counts.keys),
            .clicks = static_cast<qint64>(counts.clicks),
            .scrolls = static_cast<qint64>(counts.scrolls),
            .inches = static_cast<double>(counts.distanceInches),
            .uptimeMs = static_cast<qint64>(counts.uptime)};
}

QList<FiguresModel::Column> columns(const QString& label, Format::Lengths lengths)
{
    return OverviewTables::columns(label, lengths) +
           QList{FiguresModel::bytesColumn(UnzurgedPanel::tr("Downloaded")),
                 FiguresModel::bytesColumn(UnzurgedPanel::tr("Uploaded"))};
}

} // namespace

UnzurgedPanel::UnzurgedPanel(FiguresModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_meaning(new QLabel(tr("Not yet sent to an account. A zurge sends these counts and starts "
                              "them from zero."),
                           this))
{
    m_meaning->setWordWrap(true);
    m_meaning->setAlignment(Qt::AlignTop);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(Theme::Rhythm / 4);
    const auto below = static_cast<int>(Measures::All.size()) + Directions;
    for (int row = 0; row < below; ++row) {
        const Line line{.name = new QLabel(this), .value = new QLabel(this)};
        line.value->setObjectName(QStringLiteral("value"));
        line.value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(line.name, row, 0);
        grid->addWidget(line.value, row, 1, Qt::AlignRight);
        m_lines.append(line);
    }
    grid->setRowMinimumHeight(below, Theme::Rhythm / 2);
    grid->addWidget(m_meaning, below + 1, 0, 1, 2);
    grid->setRowStretch(below + 1, 1);
    m_refresh.setInterval(RefreshMs);
    connect(&m_refresh, &QTimer::timeout, this, &UnzurgedPanel::follow);
    applyTheme();
}

void UnzurgedPanel::follow()
{
    const UnzurgedCounts counts = unzurged();
    const Totals totals = totalsOf(counts);
    const Format::Lengths lengths =
        Format::lengths(Settings::instance().value(SettingsKeys::MouseDistanceSystem));
    if (lengths != m_lengths) {
        m_lengths = lengths;
        m_model->setColumns(columns(tr("Counts"), lengths));
    }
    qsizetype line = 0;
    for (const Measure measure : Measures::All) {
        const Quantity quantity = Measures::quantity(measure, lengths);
        showLine(line++, quantity.name, quantity.text(Measures::value(measure, totals)));
    }
    showLine(line++, tr("Downloaded"), Format::bytes(counts.download));
    showLine(line, tr("Uploaded"), Format::bytes(counts.upload));
    m_model->setRows({OverviewTables::row(tr("Not yet sent"), totals, lengths) +
                      FiguresModel::Row{counts.download, counts.upload}});
}

void UnzurgedPanel::showLine(qsizetype index, const QString& name, const QString& value)
{
    const Line& line = m_lines.at(index);
    line.name->setText(name);
    line.value->setText(value);
    line.value->setAccessibleName(QStringLiteral("%1: %2").arg(name, value));
}

void UnzurgedPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    follow();
    m_refresh.start();
}

void UnzurgedPanel::hideEvent(QHideEvent* event)
{
    m_refresh.stop();
    QWidget::hideEvent(event);
}

void UnzurgedPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void UnzurgedPanel::applyTheme()
{
    const QPalette muted = Theme::mutedPalette(palette());
    m_meaning->setFont(Theme::font(Theme::TextSize::Caption));
    m_meaning->setPalette(muted);
    for (const Line& line : std::as_const(m_lines)) {
        line.name->setPalette(muted);
    }
}
