// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Icons.h"

#include "base/Log.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <algorithm>

// The resources lie in a static library, whose initialiser the linker drops unless it is called by
// name, from outside of every namespace.
static void initialiseIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

QByteArray source(const QString& name)
{
    static const bool initialised = [] {
        initialiseIcons();
        return true;
    }();
    Q_UNUSED(initialised)
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) {
        Log::error("No icon of the name {}", name);
    }
    return file.readAll();
}

void draw(QPainter& painter, const QRectF& area, QByteArray svg, const QColor& colour)
{
    svg.replace("currentColor", colour.name(QColor::HexRgb).toLatin1());
    QSvgRenderer renderer(svg);
    painter.save();
    painter.setOpacity(painter.opacity() * colour.alphaF());
    renderer.render(&painter, area);
    painter.restore();
}

/// Draws a symbol afresh for every size and palette.
class SymbolEngine final : public QIconEngine
{
public:
    explicit SymbolEngine(QByteArray svg)
        : m_svg(std::move(svg))
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QApplication::palette();
        const QPalette::ColorGroup group =
            mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QPalette::ColorRole role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        draw(*painter, rect, m_svg, palette.color(group, role));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SymbolEngine(m_svg); }

private:
    QByteArray m_svg;
};

QPixmap outlinedPixmap(const QByteArray& svg, int size, const QColor& colour, const QColor& outline)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QRectF area(0, 0, size, size);
    QByteArray wide = svg;
    wide.replace("stroke=\"none\"", "stroke=\"currentColor\"");
    wide.replace("stroke-width=\"2\"", "stroke-width=\"4\"");
    draw(painter, area, wide, outline);
    draw(painter, area, svg, colour);
    return pixmap;
}

void drawBadge(QPixmap& pixmap, const QColor& mark, const QColor& rim)
{
    constexpr double extent = 0.56; ///< Of the icon's size, tip to tip.
    constexpr double gap = 0.06;    ///< Between the icon and the rim.
    const double size = pixmap.width();
    const double half = extent * size / 2;
    const QPointF centre(size - half, size - half);
    const auto diamond = [centre](double reach) {
        return QPolygonF{centre + QPointF(0, -reach), centre + QPointF(reach, 0),
                         centre + QPointF(0, reach), centre + QPointF(-reach, 0)};
    };
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.setBrush(Qt::black);
    painter.drawPolygon(diamond(half + gap * 2 * size));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(rim);
    painter.drawPolygon(diamond(half));
    painter.setBrush(mark);
    painter.drawPolygon(diamond(half - std::max(1.5, gap * 1.5 * size)));
}

} // namespace

QIcon Icons::symbol(const QString& name)
{
    return QIcon(new SymbolEngine(source(name)));
}

QIcon Icons::outlined(const QString& name, const QColor& colour, const QColor& outline)
{
    const QByteArray svg = source(name);
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        icon.addPixmap(outlinedPixmap(svg, size, colour, outline));
    }
    return icon;
}

QIcon Icons::badged(const QIcon& icon, const QColor& mark, const QColor& rim)
{
    QIcon result;
    for (const QSize& size : icon.availableSizes()) {
        QPixmap pixmap = icon.pixmap(size);
        drawBadge(pixmap, mark, rim);
        result.addPixmap(pixmap);
    }
    return result;
}
