// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyboardView.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/FiguresModel.h"
#include "ui/HeatGrid.h"
#include "ui/RankingView.h"
#include "ui/Theme.h"
#include "ui/keyboard/KeyCombination.h"
#include "ui/keyboard/KeyboardLayouts.h"
#include "ui/keyboard/KeyboardPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>

#include <algorithm>
#include <numeric>

namespace {

constexpr int HoursOfDay = 24;
constexpr int LabelEveryHours = 3;
constexpr int DaysOfWeek = 7;
constexpr int MostCombinations = 1000; ///< Asked for; some may be hidden.

enum WeekHourColumn
{
    WeekdayColumn,
    HourColumn,
    KeysColumn,
};

QString weekday(Qt::DayOfWeek day, QLocale::FormatType form)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).dayName(day, form);
}

QString share(qint64 count, qint64 sum)
{
    constexpr double percent = 100;
    const double value =
        sum == 0 ? 0 : percent * static_cast<double>(count) / static_cast<double>(sum);
    return QLocale::c().toString(value, 'f', 1);
}

} // namespace

KeyboardView::KeyboardView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("keyboardView"), tr("Keyboard"), parent)
    , m_keyboard(KeyboardLayouts::make(KeyboardLayouts::selected()))
    , m_keys(new CountsModel(tr("Key"), tr("Keys"), CountsModel::Shares::Shown, this))
    , m_combinations(
          new CountsModel(tr("Combination"), tr("Times"), CountsModel::Shares::Shown, this))
    , m_weekHours(new FiguresModel(
          {FiguresModel::textColumn(tr("Weekday")),
           {.header = tr("Hour"),
            .text = [](const QVariant& hour) { return Format::hour(hour.toInt()); }},
           FiguresModel::countColumn(tr("Keys")),
           {.header = tr("Share (%)"),
            .text =
                [](const QVariant& percent) {
                    return QLocale::c().toString(percent.toDouble(), 'f', 1);
                }}},
          this))
{
    const Qt::DayOfWeek first = QLocale::system().firstDayOfWeek();
    for (int day = 0; day < DaysOfWeek; ++day) {
        m_weekdays.append(static_cast<Qt::DayOfWeek>((first - 1 + day) % DaysOfWeek + 1));
    }
    buildKeyboard();
    buildRanking();
    buildWeek();
    buildCombinations();
}

void KeyboardView::buildKeyboard()
{
    m_panel = new KeyboardPanel;
    m_panel->setKeyboard(m_keyboard);
    m_keyboardCard = addCard(
        new Card(QStringLiteral("keyboardMap"), tr("Keys on the keyboard"), m_panel, m_keys),
        {.row = 0, .stretch = 0, .narrowHeight = 0});
    m_keyboardCard->setControl(keyboardControl());
}

QWidget* KeyboardView::keyboardControl()
{
    auto* layouts = new QComboBox;
    layouts->setObjectName(QStringLiteral("keyboardLayout"));
    layouts->setAccessibleName(tr("Keyboard layout"));
    layouts->setToolTip(tr("The keyboard that is drawn, and whose legends name the keys"));
    for (const KeyboardLayouts::Choice& choice : KeyboardLayouts::choices()) {
        layouts->addItem(choice.name, choice.id);
    }
    layouts->setCurrentIndex(layouts->findData(KeyboardLayouts::selected()));
    connect(layouts, &QComboBox::activated, this,
            [this, layouts](int index) { selectLayout(layouts->itemData(index).toString()); });

    auto* scale = new QComboBox;
    scale->setObjectName(QStringLiteral("scale"));
    scale->setAccessibleName(tr("Colour scale"));
    scale->setToolTip(tr("A logarithmic scale tells rarely used keys apart"));
    scale->addItem(tr("Linear"));
    scale->addItem(tr("Logarithmic"));
    connect(scale, &QComboBox::activated, this, [this](int index) {
        m_panel->setScaleForm(index == 0 ? QuantityScale::Form::Linear
                                         : QuantityScale::Form::Logarithmic);
    });

    auto* control = new QWidget;
    auto* layout = new QHBoxLayout(control);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(layouts);
    layout->addWidget(scale);
    control->setFocusProxy(scale);
    return control;
}

void KeyboardView::selectLayout(const QString& id)
{
    Settings::instance().setValue(SettingsKeys::KeyboardLayout, id);
    m_keyboard = KeyboardLayouts::make(id);
    m_panel->setKeyboard(m_keyboard);
    showKeys();
    showCombinations();
}

void KeyboardView::buildRanking()
{
    auto* ranking = new RankingView(
        m_keys, tr("The keys you press appear here while each key is counted by itself."));
    addCard(new Card(QStringLiteral("keyRanking"), tr("Most used keys"), ranking, m_keys),
            {.row = 1, .column = 0, .span = 2});
}

void KeyboardView::buildWeek()
{
    m_week = new HeatGrid(tr("Keys"),
                          [this](int row, int column) { return describeWeekHour(row, column); });
    m_week->setObjectName(QStringLiteral("week"));
    QStringList days;
    for (const Qt::DayOfWeek day : m_weekdays) {
        days.append(weekday(day, QLocale::ShortFormat));
    }
    QStringList hours;
    for (int hour = 0; hour < HoursOfDay; ++hour) {
        hours.append(hour % LabelEveryHours == 0 ? Format::hour(hour) : QString());
    }
    m_week->setLabels(days, hours);
    Card* card = addCard(
        new Card(QStringLiteral("weekHours"), tr("Keys by weekday and hour"), m_week, m_weekHours),
        {.row = 1, .column = 2, .span = 4});
    card->setTableOrder(KeysColumn, Qt::DescendingOrder);
}

void KeyboardView::buildCombinations()
{
    auto* ranking = new RankingView(m_combinations, tr("All combinations are hidden."));
    m_combinationsCard = addCard(
        new Card(QStringLiteral("combinations"), tr("Key combinations"), ranking, m_combinations),
        {.row = 2, .stretch = 0});
    auto* control = new QWidget;
    auto* layout = new QHBoxLayout(control);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Gap);
    layout->addWidget(hidingBox(tr("Hide Ctrl"), SettingsKeys::CombinationsHideCtrl));
    QCheckBox* shift = hidingBox(tr("Hide Shift"), SettingsKeys::CombinationsHideShift);
    layout->addWidget(shift);
    control->setFocusProxy(shift);
    m_combinationsCard->setControl(control);
    m_combinationsCard->hide();
}

QCheckBox* KeyboardView::hidingBox(const QString& text, const SettingKey<bool>& setting)
{
    auto* box = new QCheckBox(text);
    box->setObjectName(setting.name());
    box->setChecked(Settings::instance().value(setting));
    connect(box, &QCheckBox::toggled, this, [this, &setting](bool isChecked) {
        Settings::instance().setValue(setting, isChecked);
        showCombinations();
    });
    return box;
}

void KeyboardView::refresh()
{
    ask<Answer>(
        [scope = scope()](History& history) -> std::optional<Answer> {
            const auto keys = history.keys(scope);
            const auto combinations = history.combinations(scope, MostCombinations);
            const auto weekHours = history.weekHours(scope);
            if (!keys || !combinations || !weekHours) {
                return std::nullopt;
            }
            return Answer{*keys, *combinations, *weekHours};
        },
        [this](const Answer& answer) { return showAnswer(answer); });
}

bool KeyboardView::showAnswer(const Answer& answer)
{
    m_answer = answer;
    showKeys();
    showCombinations();
    showWeek();
    const auto hasKeys = [](const WeekHourTotals& hour) { return hour.totals.keys > 0; };
    return !answer.keys.isEmpty() ||
           std::any_of(answer.weekHours.begin(), answer.weekHours.end(), hasKeys);
}

void KeyboardView::showKeys()
{
    QList<CountsModel::Row> rows;
    for (const KeyCount& count : m_answer.keys) {
        rows.append({.label = m_keyboard.keyName(count.key), .toolTip = {}, .count = count.count});
    }
    m_keys->setRows(rows);
    m_panel->setCounts(m_answer.keys);
    m_keyboardCard->setExplanation(
        rows.isEmpty() ? tr("Counts appear here while each key is counted by itself.") : QString());
}

void KeyboardView::showCombinations()
{
    const bool hidesCtrl = Settings::instance().value(SettingsKeys::CombinationsHideCtrl);
    const bool hidesShift = Settings::instance().value(SettingsKeys::CombinationsHideShift);
    QList<CountsModel::Row> rows;
    for (const CombinationCount& count : m_answer.combinations) {
        const std::optional<KeyCombination> combination = KeyCombination::parse(count.combination);
        const bool isHidden = combination && ((hidesCtrl && combination->hasControl) ||
                                              (hidesShift && combination->hasShift));
        if (!isHidden) {
            rows.append({.label = combination ? combination->text(m_keyboard) : count.combination,
                         .toolTip = {},
                         .count = count.count});
        }
    }
    m_combinations->setRows(rows);
    m_combinationsCard->setVisible(!m_answer.combinations.isEmpty());
}

void KeyboardView::showWeek()
{
    QList<qint64> counts(m_weekdays.size() * HoursOfDay, 0);
    for (const WeekHourTotals& hour : m_answer.weekHours) {
        const qsizetype row = m_weekdays.indexOf(static_cast<Qt::DayOfWeek>(hour.weekday));
        counts[row * HoursOfDay + hour.hour] += hour.totals.keys;
    }
    m_week->setCounts(counts);
    const qint64 sum = m_week->sum();
    QList<FiguresModel::Row> rows;
    for (qsizetype cell = 0; cell < counts.size(); ++cell) {
        if (counts.at(cell) > 0) {
            rows.append({weekday(m_weekdays.at(cell / HoursOfDay), QLocale::LongFormat),
                         static_cast<int>(cell % HoursOfDay), counts.at(cell),
                         100.0 * static_cast<double>(counts.at(cell)) / static_cast<double>(sum)});
        }
    }
    m_weekHours->setRows(rows);
}

QString KeyboardView::describeWeekHour(int row, int column) const
{
    const qint64 count = m_week->count(row, column);
    return tr("%1, %2 to %3, keys: %4 (%5 %)")
        .arg(weekday(m_weekdays.at(row), QLocale::LongFormat), Format::hour(column),
             Format::hour((column + 1) % HoursOfDay), Format::count(count),
             share(count, m_week->sum()));
}

Notice::Content KeyboardView::emptyNotice() const
{
    return {.icon = QStringLiteral("keyboard"),
            .title = tr("No keys were counted on these days"),
            .text = tr("As you type, this page shows which keys you press, on a drawn keyboard and "
                       "by weekday and hour. Choose other days or another profile above to see "
                       "what was counted there."),
            .command = {},
            .button = {}};
}
