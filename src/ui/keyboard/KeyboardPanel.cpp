// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyboardPanel.h"

#include "base/Format.h"
#include "ui/ScaleLegend.h"
#include "ui/Theme.h"
#include "ui/keyboard/KeyboardDrawing.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>

namespace {

constexpr qsizetype MostUnplaced = 12; ///< Named below the drawing; the table holds all.

} // namespace

KeyboardPanel::KeyboardPanel(QWidget* parent)
    : QWidget(parent)
    , m_drawing(new KeyboardDrawing)
    , m_legend(new ScaleLegend(tr("Keys")))
    , m_uncounted(new QLabel(tr("Dashed keys are counted in the totals only")))
    , m_unplaced(new QLabel)
{
    m_unplaced->setObjectName(QStringLiteral("unplacedKeys"));
    m_unplaced->setWordWrap(true);
    m_unplaced->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_unplaced->hide();
    auto* below = new QHBoxLayout;
    below->addWidget(m_legend);
    below->addStretch();
    below->addWidget(m_uncounted, 0, Qt::AlignTop);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_drawing, 1);
    layout->addLayout(below);
    layout->addWidget(m_unplaced);
    setFocusProxy(m_drawing);
    // The card keeps its height while it shows its table.
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    applyTheme();
}

void KeyboardPanel::setKeyboard(const KeyboardLayout& keyboard)
{
    m_drawing->setKeyboard(keyboard);
    m_legend->setScale(m_drawing->scale());
    showUnplaced();
}

void KeyboardPanel::setScaleForm(QuantityScale::Form form)
{
    m_drawing->setScaleForm(form);
    m_legend->setScale(m_drawing->scale());
}

void KeyboardPanel::setCounts(const QList<KeyCount>& counts)
{
    m_counts = counts;
    QHash<int, qint64> byKey;
    for (const KeyCount& count : counts) {
        byKey.insert(count.key, count.count);
    }
    m_drawing->setCounts(byKey);
    m_legend->setScale(m_drawing->scale());
    showUnplaced();
}

void KeyboardPanel::showUnplaced()
{
    const KeyboardLayout& keyboard = m_drawing->keyboard();
    QStringList texts;
    for (const KeyCount& count : m_counts) {
        if (!keyboard.hasPlace(count.key)) {
            texts.append(tr("%1 %2", "a key and its count")
                             .arg(keyboard.keyName(count.key), Format::count(count.count)));
        }
    }
    const qsizetype others = texts.size() - MostUnplaced;
    if (others > 0) {
        texts.resize(MostUnplaced);
        texts.append(tr("%1 more in the table").arg(others));
    }
    m_unplaced->setText(tr("Not on the drawing: %1").arg(texts.join(QStringLiteral(" · "))));
    m_unplaced->setVisible(!texts.isEmpty());
}

void KeyboardPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void KeyboardPanel::applyTheme()
{
    for (QLabel* label : {m_uncounted, m_unplaced}) {
        label->setFont(Theme::font(Theme::TextSize::Caption));
        label->setPalette(Theme::mutedPalette(palette()));
    }
}
