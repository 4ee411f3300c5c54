// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingKey.h"
#include "ui/View.h"
#include "ui/keyboard/KeyboardLayout.h"

class CountsModel;
class FiguresModel;
class HeatGrid;
class KeyboardPanel;
class QCheckBox;
class QComboBox;

/// Which keys were pressed: on a drawn keyboard, most used first, in combinations where any were
/// counted, and by weekday and hour. Keys are called as the chosen keyboard's legends have it.
/// Thread: main.
class KeyboardView : public View
{
    Q_OBJECT

public:
    explicit KeyboardView(ViewContext context, QWidget* parent = nullptr);

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;

private:
    struct Answer
    {
        QList<KeyCount> keys;
        QList<CombinationCount> combinations;
        QList<WeekHourTotals> weekHours;
    };

    void buildKeyboard();
    QWidget* keyboardControl();
    void buildRanking();
    void buildWeek();
    void buildCombinations();
    QCheckBox* hidingBox(const QString& text, const SettingKey<bool>& setting);
    void selectLayout(const QString& id);
    bool showAnswer(const Answer& answer);
    void showKeys();
    void showCombinations();
    void showWeek();
    QString describeWeekHour(int row, int column) const;

    Answer m_answer;
    KeyboardLayout m_keyboard;
    QList<Qt::DayOfWeek> m_weekdays; ///< As the week begins here.
    CountsModel* m_keys;
    CountsModel* m_combinations;
    FiguresModel* m_weekHours;
    KeyboardPanel* m_panel = nullptr;
    Card* m_keyboardCard = nullptr;
    HeatGrid* m_week = nullptr;
    Card* m_combinationsCard = nullptr;
};
