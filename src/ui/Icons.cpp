// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Icons.h"

#include "base/Log.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

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
