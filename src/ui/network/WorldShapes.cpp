// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/WorldShapes.h"

#include "base/Log.h"

#include <QFile>

#include <algorithm>

// A resource of a static library is linked only where it is asked for, outside any namespace.
static void linkResource()
{
    Q_INIT_RESOURCE(map);
}

namespace {

/// How far an outline may reach beyond the sheet, in its widths: pieces at its edge lie there
/// whole.
constexpr double Overhang = 0.02;

/// The part of `text` before the first `separator`, which is taken from `text` together with it.
QByteArrayView takePart(QByteArrayView& text, char separator)
{
    const qsizetype end = text.indexOf(separator);
    const QByteArrayView part = text.first(end < 0 ? text.size() : end);
    text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
    return part;
}

bool isCapital(char letter)
{
    return letter >= 'A' && letter <= 'Z';
}

/// The next two numbers of `text`, which are taken from it.
std::optional<QPointF> takePoint(QByteArrayView& text)
{
    bool isX = false;
    bool isY = false;
    const int x = takePart(text, ' ').toInt(&isX);
    const int y = takePart(text, ' ').toInt(&isY);
    return isX && isY ? std::optional(QPointF(x, y)) : std::nullopt;
}

std::optional<QPolygonF> readRing(QByteArrayView text)
{
    QPolygonF ring;
    while (!text.isEmpty()) {
        const std::optional<QPointF> step = takePoint(text);
        if (!step) {
            return std::nullopt;
        }
        ring.append(ring.isEmpty() ? *step : ring.constLast() + *step);
    }
    constexpr qsizetype leastCorners = 3;
    return ring.size() >= leastCorners ? std::optional(ring) : std::nullopt;
}

} // namespace

const WorldShapes& WorldShapes::instance()
{
    static const WorldShapes shapes = [] {
        linkResource();
        QFile file(QStringLiteral(":/map/world.txt"));
        std::optional<WorldShapes> read;
        if (file.open(QIODevice::ReadOnly)) {
            read = parse(file.readAll());
        }
        if (!read) {
            Log::error("The map of the world cannot be read");
        }
        return read.value_or(WorldShapes());
    }();
    return shapes;
}

std::optional<WorldShapes> WorldShapes::parse(QByteArrayView text)
{
    WorldShapes shapes;
    while (!text.isEmpty()) {
        const QByteArrayView line = takePart(text, '\n');
        if (line.startsWith('#')) {
            continue;
        }
        const bool isRead =
            shapes.m_size.isEmpty() ? shapes.readSize(line) : shapes.readCountry(line);
        if (!isRead) {
            return std::nullopt;
        }
    }
    return shapes.m_countries.isEmpty() ? std::nullopt : std::optional(shapes);
}

bool WorldShapes::readSize(QByteArrayView line)
{
    const std::optional<QPointF> corner = takePoint(line);
    if (!corner || !line.isEmpty() || corner->x() <= 0 || corner->y() <= 0) {
        return false;
    }
    m_size = {corner->x(), corner->y()};
    return true;
}

bool WorldShapes::readCountry(QByteArrayView line)
{
    QByteArrayView head = takePart(line, ';');
    const QByteArrayView code = takePart(head, ' ');
    const std::optional<QPointF> middle = takePoint(head);
    if (code.size() != 2 || !std::all_of(code.begin(), code.end(), isCapital) || !middle ||
        !head.isEmpty()) {
        return false;
    }
    Country country{QString::fromLatin1(code), *middle, {}};
    while (!line.isEmpty()) {
        const std::optional<QPolygonF> ring = readRing(takePart(line, ';'));
        if (!ring) {
            return false;
        }
        country.outline.addPolygon(*ring);
        country.outline.closeSubpath();
    }
    const double overhang = m_size.width() * Overhang;
    const QRectF room = QRectF({}, m_size).adjusted(-overhang, -overhang, overhang, overhang);
    if (m_places.contains(country.code) || !room.contains(country.middle) ||
        (!country.outline.isEmpty() && !room.contains(country.outline.controlPointRect()))) {
        return false;
    }
    m_places.insert(country.code, m_countries.size());
    m_countries.append(std::move(country));
    return true;
}
