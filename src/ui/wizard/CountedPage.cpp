// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/CountedPage.h"

#include "ui/CopyField.h"
#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QDir>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>

namespace {

constexpr int IconSize = 24;

} // namespace

CountedPage::CountedPage(const QString& databaseFile, QWidget* parent)
    : WizardPage(QStringLiteral("countedPage"), tr("What is counted, and where it is kept"), parent)
{
    auto* rows = new QGridLayout;
    rows->setHorizontalSpacing(Theme::Gap);
    rows->setVerticalSpacing(Theme::Rhythm / 2);
    rows->setColumnStretch(1, 1);
    addRow(*rows, QStringLiteral("keyboard"), tr("Keys"),
           tr("How often each key is pressed, by hour and application. What you write is not kept, "
              "nor the order of the keys."));
    addRow(*rows, QStringLiteral("mouse"), tr("Mouse"),
           tr("Clicks and where they fall, scroll steps, and how far the pointer travels."));
    addRow(*rows, QStringLiteral("uptime"), tr("Time"),
           tr("How long the computer is up, and each application in front or running."));
    addRow(*rows, QStringLiteral("network"), tr("Network"),
           tr("How much is downloaded and uploaded, by application, country and port. What is in "
              "it is not looked at."));
    body()->addLayout(rows);
    addText(tr("Everything is kept in one file on this computer. Each kind of count can be "
               "switched off."));
    auto* path = new CopyField(QStringLiteral("databaseFile"), tr("The file with your counts"),
                               tr("Copy path"), CopyField::Ground::Page);
    path->setText(QDir::toNativeSeparators(databaseFile));
    body()->addWidget(path);
    body()->addStretch();
    drawPictures();
}

void CountedPage::addRow(QGridLayout& rows, const QString& icon, const QString& title,
                         const QString& text)
{
    const int row = rows.rowCount();
    auto* picture = new QLabel;
    m_pictures.append({picture, icon});
    auto* name = new QLabel(title);
    QFont bold = Theme::font(Theme::TextSize::Body);
    bold.setWeight(QFont::DemiBold);
    name->setFont(bold);
    auto* words = new QLabel(text);
    words->setWordWrap(true);
    rows.addWidget(picture, row, 0, 2, 1, Qt::AlignTop);
    rows.addWidget(name, row, 1);
    rows.addWidget(words, row + 1, 1);
    rows.setRowMinimumHeight(row + 2, Theme::Rhythm);
}

void CountedPage::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        drawPictures();
    }
    WizardPage::changeEvent(event);
}

void CountedPage::drawPictures()
{
    for (const auto& [label, icon] : std::as_const(m_pictures)) {
        label->setPixmap(
            Icons::symbol(icon).pixmap(QSize(IconSize, IconSize), devicePixelRatioF()));
    }
}
