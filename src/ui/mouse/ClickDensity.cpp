// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ClickDensity.h"

#include "ui/mouse/ScreenPlaces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

/// A place in a vector, from arithmetic in int.
constexpr size_t indexOf(int place)
{
    return static_cast<size_t>(place);
}

constexpr int Reach = 4; ///< Cells to either side that a click is spread over.
constexpr double Sigma = 1.3;
constexpr int Thirds = 3;

std::array<float, 2 * Reach + 1> gaussian()
{
    std::array<float, 2 * Reach + 1> weights{};
    for (int i = -Reach; i <= Reach; ++i) {
        weights.at(indexOf(i + Reach)) = static_cast<float>(std::exp(-i * i / (2 * Sigma * Sigma)));
    }
    return weights;
}

/// One line of a grid: `length` cells that lie `step` apart from `first` on.
struct Line
{
    size_t first;
    size_t step;
    int length;
};

/// Spreads each cell of a line over its neighbours. What would fall beyond the ends stays within,
/// so that no click is lost at a screen's edge, where the most are made.
void spread(const std::vector<float>& from, std::vector<float>& to, const Line& line)
{
    static const auto weights = gaussian();
    const auto cell = [&line](int i) { return line.first + line.step * static_cast<size_t>(i); };
    for (int i = 0; i < line.length; ++i) {
        const float clicks = from[cell(i)];
        if (clicks <= 0) {
            continue;
        }
        const int low = std::max(-Reach, -i);
        const int high = std::min(Reach, line.length - 1 - i);
        const float sum = std::accumulate(weights.begin() + (low + Reach),
                                          weights.begin() + (high + Reach + 1), 0.0F);
        for (int j = low; j <= high; ++j) {
            to[cell(i + j)] += clicks * weights[indexOf(j + Reach)] / sum;
        }
    }
}

std::vector<float> smoothed(const std::vector<float>& clicks, const QSize& size)
{
    const auto width = static_cast<size_t>(size.width());
    std::vector<float> rows(clicks.size());
    for (int y = 0; y < size.height(); ++y) {
        spread(clicks, rows, {static_cast<size_t>(y) * width, 1, size.width()});
    }
    std::vector<float> result(clicks.size());
    for (int x = 0; x < size.width(); ++x) {
        spread(rows, result, {static_cast<size_t>(x), width, size.height()});
    }
    return result;
}

/// A position of exactly 1 is the only one stored beyond the primary screen's right and lower edge
/// (those further out fold back onto it), so its cell asks for no screen of its own.
ClickCell withinEdge(ClickCell cell)
{
    if (cell.column == ClickCell::Columns) {
        --cell.column;
    }
    if (cell.row == ClickCell::Rows) {
        --cell.row;
    }
    return cell;
}

QList<ClickCell> plausible(const QList<ClickCell>& cells)
{
    constexpr double mostScreens = 4; // To either side.
    QList<ClickCell> result;
    for (const ClickCell& cell : cells) {
        const QPointF middle = ScreenPlaces::middleOf(cell);
        if (std::abs(middle.x()) < mostScreens && std::abs(middle.y()) < mostScreens) {
            result.append(withinEdge(cell));
        }
    }
    return result;
}

/// Calls `visit` with the middle of each cell of a screen and the clicks in it.
template <typename Visit>
void eachCell(const ClickDensity::Screen& screen, Visit visit)
{
    auto clicks = screen.clicks.begin();
    for (int row = 0; row < screen.size.height(); ++row) {
        for (int column = 0; column < screen.size.width(); ++column) {
            const ClickCell cell{.column = screen.firstCell.x() + column,
                                 .row = screen.firstCell.y() + row,
                                 .count = 0};
            visit(ScreenPlaces::middleOf(cell), static_cast<double>(*clicks++));
        }
    }
}

int third(double position, double from, double length)
{
    return std::clamp(static_cast<int>((position - from) / length * Thirds), 0, Thirds - 1);
}

} // namespace

qint64 ClickDensity::Screen::sum() const
{
    return std::llround(std::accumulate(clicks.begin(), clicks.end(), 0.0));
}

ClickDensity::ClickDensity(const QList<ClickCell>& cells, const QList<QRectF>& present)
{
    const QList<ClickCell> kept = plausible(cells);
    if (kept.isEmpty()) {
        return;
    }
    for (const QRectF& place : ScreenPlaces::covering(kept, present)) {
        addScreen(place);
    }
    for (const ClickCell& cell : kept) {
        addCell(cell);
    }
    for (Screen& screen : m_screens) {
        screen.density = smoothed(screen.clicks, screen.size);
        const auto most = std::max_element(screen.density.begin(), screen.density.end());
        m_largest = std::max(m_largest, static_cast<double>(*most));
    }
}

void ClickDensity::addScreen(const QRectF& place)
{
    constexpr double rounding = 1e-6; // Places are shares of pixels.
    const QPoint first(static_cast<int>(std::floor(place.left() * ClickCell::Columns + rounding)),
                       static_cast<int>(std::floor(place.top() * ClickCell::Rows + rounding)));
    const QPoint end(static_cast<int>(std::ceil(place.right() * ClickCell::Columns - rounding)),
                     static_cast<int>(std::ceil(place.bottom() * ClickCell::Rows - rounding)));
    const QSize size(end.x() - first.x(), end.y() - first.y());
    const auto cells = static_cast<size_t>(size.width()) * static_cast<size_t>(size.height());
    m_screens.append({.place = place,
                      .firstCell = first,
                      .size = size,
                      .clicks = std::vector<float>(cells),
                      .density = {}});
}

void ClickDensity::addCell(const ClickCell& cell)
{
    const QPointF middle = ScreenPlaces::middleOf(cell);
    const auto screen =
        std::find_if(m_screens.begin(), m_screens.end(),
                     [&middle](const Screen& one) { return one.place.contains(middle); });
    Q_ASSERT(screen != m_screens.end());
    const int column = cell.column - screen->firstCell.x();
    const int row = cell.row - screen->firstCell.y();
    screen->clicks[indexOf(row * screen->size.width() + column)] += static_cast<float>(cell.count);
    m_clicks += cell.count;
}

QRectF ClickDensity::bounds() const
{
    QRectF all;
    for (const Screen& screen : m_screens) {
        all |= screen.place;
    }
    return all;
}

qint64 ClickDensity::clicksNear(const QPointF& place) const
{
    double sum = 0;
    for (const Screen& screen : m_screens) {
        eachCell(screen, [&sum, &place](const QPointF& middle, double clicks) {
            const QPointF away = middle - place;
            const double cells =
                std::hypot(away.x() * ClickCell::Columns, away.y() * ClickCell::Rows);
            sum += cells <= NearCells ? clicks : 0;
        });
    }
    return std::llround(sum);
}

QList<ClickDensity::Region> ClickDensity::regions() const
{
    QList<Region> result;
    for (const Screen& screen : m_screens) {
        std::array<double, static_cast<size_t>(Thirds) * Thirds> sums{};
        const QRectF& place = screen.place;
        eachCell(screen, [&sums, &place](const QPointF& middle, double clicks) {
            const int row = third(middle.y(), place.top(), place.height());
            const int column = third(middle.x(), place.left(), place.width());
            sums.at(indexOf(row * Thirds + column)) += clicks;
        });
        for (int region = 0; region < Thirds * Thirds; ++region) {
            result.append({.screen = place,
                           .column = region % Thirds,
                           .row = region / Thirds,
                           .clicks = std::llround(sums.at(static_cast<size_t>(region)))});
        }
    }
    return result;
}
