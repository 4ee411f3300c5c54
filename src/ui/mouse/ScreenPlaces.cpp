// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ScreenPlaces.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace {

const QRectF Primary(0, 0, 1, 1);

QRectF inPrimarySizes(const QRect& screen, const QRect& primary)
{
    const auto width = static_cast<double>(primary.width());
    const auto height = static_cast<double>(primary.height());
    return {(screen.x() - primary.x()) / width, (screen.y() - primary.y()) / height,
            screen.width() / width, screen.height() / height};
}

bool holds(const QRectF& place, const ClickCell& cell)
{
    return place.contains(ScreenPlaces::middleOf(cell));
}

QString translated(const char* text)
{
    return QCoreApplication::translate("ScreenPlaces", text);
}

} // namespace

QList<QRectF> ScreenPlaces::present()
{
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr || primary->geometry().isEmpty()) {
        return {};
    }
    QList<QRectF> places{Primary};
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (screen != primary) {
            places.append(inPrimarySizes(screen->geometry(), primary->geometry()));
        }
    }
    return places;
}

double ScreenPlaces::aspect()
{
    const QScreen* primary = QGuiApplication::primaryScreen();
    const QSize size = primary == nullptr ? QSize() : primary->geometry().size();
    if (size.isEmpty()) {
        return static_cast<double>(ClickCell::Columns) / ClickCell::Rows;
    }
    return static_cast<double>(size.width()) / size.height();
}

QPointF ScreenPlaces::middleOf(const ClickCell& cell)
{
    constexpr double half = 0.5;
    return {(cell.column + half) / ClickCell::Columns, (cell.row + half) / ClickCell::Rows};
}

QList<QRectF> ScreenPlaces::covering(const QList<ClickCell>& cells, const QList<QRectF>& present)
{
    const bool areCovered =
        std::all_of(cells.begin(), cells.end(), [&present](const ClickCell& cell) {
            return std::any_of(present.begin(), present.end(),
                               [&cell](const QRectF& place) { return holds(place, cell); });
        });
    QList<QRectF> places{Primary};
    if (areCovered) {
        for (const QRectF& place : present) {
            const bool isClicked =
                std::any_of(cells.begin(), cells.end(),
                            [&](const ClickCell& cell) { return holds(place, cell); });
            if (isClicked && place != Primary) {
                places.append(place);
            }
        }
        return places;
    }
    for (const ClickCell& cell : cells) {
        const QPointF middle = middleOf(cell);
        const QRectF place(std::floor(middle.x()), std::floor(middle.y()), 1, 1);
        if (!places.contains(place)) {
            places.append(place);
        }
    }
    return places;
}

QString ScreenPlaces::name(const QRectF& place)
{
    if (place == Primary) {
        return translated(QT_TRANSLATE_NOOP("ScreenPlaces", "Main screen"));
    }
    const QPointF offset = place.center() - Primary.center();
    if (std::abs(offset.x()) >= std::abs(offset.y())) {
        return offset.x() < 0 ? translated(QT_TRANSLATE_NOOP("ScreenPlaces", "Left screen"))
                              : translated(QT_TRANSLATE_NOOP("ScreenPlaces", "Right screen"));
    }
    return offset.y() < 0 ? translated(QT_TRANSLATE_NOOP("ScreenPlaces", "Upper screen"))
                          : translated(QT_TRANSLATE_NOOP("ScreenPlaces", "Lower screen"));
}
