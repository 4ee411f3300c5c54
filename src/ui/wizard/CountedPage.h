// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/wizard/WizardPage.h"

class QGridLayout;
class QLabel;

/// What is counted, and the file that it is kept in. Thread: main.
class CountedPage : public WizardPage
{
    Q_OBJECT

public:
    explicit CountedPage(const QString& databaseFile, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Picture
    {
        QLabel* label = nullptr;
        QString icon;
    };

    void addRow(QGridLayout& rows, const QString& icon, const QString& title, const QString& text);
    void drawPictures();

    QList<Picture> m_pictures;
};
