// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigureTiles.h"

#include "ui/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

FigureTiles::FigureTiles(int count, QWidget* parent)
    : QWidget(parent)
    , m_model(new FiguresModel({FiguresModel::textColumn(tr("Figure")),
                                FiguresModel::textColumn(tr("Value")),
                                FiguresModel::textColumn(tr("Remark"))},
                               this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Gap);
    for (int i = 0; i < count; ++i) {
        const Labels labels{new QLabel(this), new QLabel(this), new QLabel(this)};
        auto* tile = new QVBoxLayout;
        tile->setSpacing(0);
        for (QLabel* label : {labels.caption, labels.figure, labels.note}) {
            label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
            tile->addWidget(label);
        }
        tile->addStretch();
        labels.figure->setTextFormat(Qt::RichText);
        labels.figure->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout->addLayout(tile, 1);
        m_labels.append(labels);
    }
    applyTheme();
}

void FigureTiles::setTiles(const QList<Tile>& tiles)
{
    m_tiles = tiles;
    QList<FiguresModel::Row> rows;
    for (const Tile& tile : tiles) {
        rows.append({tile.caption, tile.inFull.isEmpty() ? tile.figure : tile.inFull, tile.note});
    }
    m_model->setRows(rows);
    follow();
}

QString FigureTiles::markedUp(const QString& figure)
{
    const QFont large = Theme::font(Theme::TextSize::Figure);
    const QString number =
        QStringLiteral("<span style=\"font-size:%1pt;font-weight:%2\">%3</span>");
    QStringList words;
    for (const QString& word : figure.split(QLatin1Char(' '))) {
        const bool isNumber = !word.isEmpty() && word.at(0).isDigit();
        words.append(
            isNumber ? number.arg(large.pointSizeF()).arg(large.weight()).arg(word.toHtmlEscaped())
                     : word.toHtmlEscaped());
    }
    return words.join(QStringLiteral("&nbsp;"));
}

void FigureTiles::follow()
{
    for (int i = 0; i < m_labels.size(); ++i) {
        const Tile tile = m_tiles.value(i);
        const Labels& labels = m_labels.at(i);
        labels.caption->setText(tile.caption);
        labels.figure->setText(markedUp(tile.figure));
        labels.note->setText(tile.note);
        const QString inFull = tile.inFull.isEmpty() ? tile.figure : tile.inFull;
        labels.figure->setToolTip(inFull);
        labels.note->setToolTip(tile.note);
        labels.figure->setAccessibleName(tile.caption + QStringLiteral(": ") + inFull);
    }
}

void FigureTiles::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void FigureTiles::applyTheme()
{
    const QPalette muted = Theme::mutedPalette(palette());
    for (const Labels& labels : std::as_const(m_labels)) {
        labels.caption->setPalette(muted);
        labels.note->setPalette(muted);
        labels.note->setFont(Theme::font(Theme::TextSize::Caption));
    }
    follow();
}
