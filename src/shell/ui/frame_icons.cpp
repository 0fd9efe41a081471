#include "shell/ui/frame_icons.h"

#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>
#include <cmath>
#include <functional>

namespace qm {
namespace {

// Every picture is drawn on a 32 x 32 canvas and scaled.
using Drawing = std::function<void(QPainter&)>;

const QColor ink(0x3b, 0x3b, 0x3b);
const QColor paper(0xfd, 0xfb, 0xf5);
const QColor brown(0x8a, 0x55, 0x2c);
const QColor green(0x3f, 0x9a, 0x3c);
const QColor red(0xd2, 0x3c, 0x32);
const QColor blue(0x2f, 0x6d, 0xb5);
const QColor orange(0xec, 0x85, 0x1e);
const QColor yellow(0xf4, 0xc4, 0x30);
const QColor grey(0x8c, 0x8c, 0x8c);

QPen pen(const QColor& color, qreal width = 1.6) {
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void page(QPainter& p, const QRectF& r) {
    p.setPen(pen(ink));
    p.setBrush(paper);
    p.drawRect(r);
}

void lines(QPainter& p, qreal x1, qreal x2, qreal y, int count, qreal step, const QColor& color = grey) {
    p.setPen(pen(color, 1.4));
    for (int i = 0; i < count; ++i)
        p.drawLine(QPointF(x1, y + i * step), QPointF(x2, y + i * step));
}

void triangle(QPainter& p, bool right, qreal x, const QColor& color = blue) {
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    QPolygonF shape;
    if (right)
        shape << QPointF(x, 7) << QPointF(x + 12, 16) << QPointF(x, 25);
    else
        shape << QPointF(x + 12, 7) << QPointF(x, 16) << QPointF(x + 12, 25);
    p.drawPolygon(shape);
}

void bar(QPainter& p, qreal x) {
    p.setPen(Qt::NoPen);
    p.setBrush(blue);
    p.drawRect(QRectF(x, 7, 3.5, 18));
}

void magnifier(QPainter& p) {
    p.setPen(pen(ink, 3));
    p.drawLine(QPointF(19, 19), QPointF(28, 28));
    p.setPen(pen(ink, 2));
    p.setBrush(QColor(0xcf, 0xe6, 0xf7));
    p.drawEllipse(QPointF(13, 13), 8.5, 8.5);
}

void tray(QPainter& p) {
    p.setPen(pen(ink, 2));
    p.setBrush(Qt::NoBrush);
    QPolygonF shape;
    shape << QPointF(4, 18) << QPointF(4, 28) << QPointF(28, 28) << QPointF(28, 18);
    p.drawPolyline(shape);
}

void arrow(QPainter& p, bool down, const QColor& color) {
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    QPolygonF shape;
    if (down)
        shape << QPointF(13, 3) << QPointF(19, 3) << QPointF(19, 13) << QPointF(24, 13) << QPointF(16, 22)
              << QPointF(8, 13) << QPointF(13, 13);
    else
        shape << QPointF(13, 24) << QPointF(19, 24) << QPointF(19, 12) << QPointF(24, 12) << QPointF(16, 3)
              << QPointF(8, 12) << QPointF(13, 12);
    p.drawPolygon(shape);
}

void person(QPainter& p, qreal x, qreal scale, const QColor& color) {
    p.setPen(pen(color.darker(140), 1.2));
    p.setBrush(color);
    p.drawEllipse(QPointF(x, 10 * scale + (1 - scale) * 14), 5 * scale, 5 * scale);
    QPainterPath body;
    const qreal top = 17 * scale + (1 - scale) * 14;
    body.moveTo(x - 9 * scale, 29);
    body.cubicTo(x - 9 * scale, top, x + 9 * scale, top, x + 9 * scale, 29);
    body.closeSubpath();
    p.drawPath(body);
}

QHash<QString, Drawing> drawings() {
    QHash<QString, Drawing> d;
    d[QStringLiteral("recipes")] = [](QPainter& p) {
        p.setPen(pen(brown, 1.6));
        p.setBrush(paper);
        QPainterPath left, right;
        left.moveTo(16, 8);
        left.cubicTo(11, 5, 6, 5, 2, 7);
        left.lineTo(2, 27);
        left.cubicTo(6, 25, 11, 25, 16, 28);
        left.closeSubpath();
        right.moveTo(16, 8);
        right.cubicTo(21, 5, 26, 5, 30, 7);
        right.lineTo(30, 27);
        right.cubicTo(26, 25, 21, 25, 16, 28);
        right.closeSubpath();
        p.drawPath(left);
        p.drawPath(right);
        lines(p, 5, 13, 12, 3, 4, brown.lighter(150));
        lines(p, 19, 27, 12, 3, 4, brown.lighter(150));
    };
    d[QStringLiteral("ingredients")] = [](QPainter& p) {
        p.setPen(pen(orange.darker(130), 1.2));
        p.setBrush(orange);
        QPolygonF carrot;
        carrot << QPointF(4, 29) << QPointF(17, 10) << QPointF(23, 16);
        p.drawPolygon(carrot);
        p.setPen(pen(orange.darker(150), 1.2));
        p.drawLine(QPointF(12, 19), QPointF(15, 21));
        p.drawLine(QPointF(9, 24), QPointF(11, 25));
        p.setPen(pen(green, 2.4));
        p.drawLine(QPointF(20, 13), QPointF(26, 3));
        p.drawLine(QPointF(20, 13), QPointF(30, 8));
        p.drawLine(QPointF(20, 13), QPointF(29, 14));
    };
    d[QStringLiteral("menus")] = [](QPainter& p) {
        p.setPen(pen(grey, 1.4));
        p.setBrush(QColor(0xf4, 0xf4, 0xf4));
        p.drawEllipse(QPointF(16, 16), 10, 10);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(16, 16), 6.5, 6.5);
        p.setPen(pen(ink, 1.8));
        p.drawLine(QPointF(2.5, 6), QPointF(2.5, 27));
        p.drawLine(QPointF(1, 6), QPointF(1, 11));
        p.drawLine(QPointF(4, 6), QPointF(4, 11));
        p.drawLine(QPointF(29.5, 6), QPointF(29.5, 27));
        p.setPen(pen(ink, 2.6));
        p.drawLine(QPointF(29.5, 7), QPointF(29.5, 15));
    };
    d[QStringLiteral("calendar")] = [](QPainter& p) {
        page(p, QRectF(3, 5, 26, 24));
        p.setPen(Qt::NoPen);
        p.setBrush(red);
        p.drawRect(QRectF(3, 5, 26, 6));
        p.setBrush(grey);
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 4; ++col)
                p.drawRect(QRectF(6 + col * 6, 14 + row * 5, 3.2, 3));
        p.setPen(pen(ink, 2));
        p.drawLine(QPointF(9, 2.5), QPointF(9, 7));
        p.drawLine(QPointF(23, 2.5), QPointF(23, 7));
    };
    d[QStringLiteral("units")] = [](QPainter& p) {
        p.setPen(pen(ink, 2));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(QPointF(16, 7), 3.5, 3.5);
        p.setBrush(QColor(0x55, 0x5b, 0x66));
        p.setPen(pen(QColor(0x33, 0x36, 0x3c), 1.2));
        QPolygonF weight;
        weight << QPointF(9, 11) << QPointF(23, 11) << QPointF(28, 28) << QPointF(4, 28);
        p.drawPolygon(weight);
        p.setPen(Qt::white);
        QFont font = p.font();
        font.setPixelSize(9);
        font.setBold(true);
        p.setFont(font);
        p.drawText(QRectF(4, 15, 24, 12), Qt::AlignCenter, QStringLiteral("kg"));
    };
    d[QStringLiteral("categories")] = [](QPainter& p) {
        p.setPen(pen(green.darker(130), 1.4));
        p.setBrush(green.lighter(130));
        QPolygonF tag;
        tag << QPointF(3, 16) << QPointF(12, 6) << QPointF(29, 6) << QPointF(29, 26) << QPointF(12, 26);
        p.drawPolygon(tag);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(12, 16), 2.5, 2.5);
        lines(p, 17, 26, 13, 2, 6, Qt::white);
    };
    d[QStringLiteral("cookingTips")] = [](QPainter& p) {
        p.setPen(pen(orange.darker(120), 1.4));
        p.setBrush(yellow);
        QPainterPath bulb;
        bulb.moveTo(12, 22);
        bulb.cubicTo(4, 16, 6, 3, 16, 3);
        bulb.cubicTo(26, 3, 28, 16, 20, 22);
        bulb.closeSubpath();
        p.drawPath(bulb);
        p.setPen(pen(grey.darker(120), 1.2));
        p.setBrush(QColor(0xc8, 0xc8, 0xc8));
        p.drawRect(QRectF(12, 22, 8, 6));
        lines(p, 12, 20, 24, 2, 2.5, grey.darker(130));
    };
    d[QStringLiteral("users")] = [](QPainter& p) {
        person(p, 21, 0.85, QColor(0x7a, 0xa8, 0xd8));
        person(p, 12, 1.0, blue);
    };
    d[QStringLiteral("diary")] = [](QPainter& p) {
        page(p, QRectF(6, 3, 21, 26));
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x6d, 0x4c, 0x9f));
        p.drawRect(QRectF(6, 3, 5, 26));
        lines(p, 14, 24, 9, 4, 5);
        p.setPen(pen(ink, 1.4));
        for (int i = 0; i < 5; ++i)
            p.drawLine(QPointF(4, 6 + i * 5), QPointF(8, 6 + i * 5));
    };
    d[QStringLiteral("diets")] = [](QPainter& p) {
        p.setPen(pen(red.darker(130), 1.2));
        p.setBrush(red);
        QPainterPath apple;
        apple.moveTo(16, 10);
        apple.cubicTo(8, 5, 2, 12, 4, 20);
        apple.cubicTo(6, 28, 12, 30, 16, 27);
        apple.cubicTo(20, 30, 26, 28, 28, 20);
        apple.cubicTo(30, 12, 24, 5, 16, 10);
        p.drawPath(apple);
        p.setPen(pen(brown, 2));
        p.drawLine(QPointF(16, 10), QPointF(17, 4));
        p.setPen(Qt::NoPen);
        p.setBrush(green);
        p.drawEllipse(QRectF(18, 2, 8, 4.5));
    };
    d[QStringLiteral("options")] = [](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x6b, 0x71, 0x7c));
        for (int i = 0; i < 8; ++i) {
            p.save();
            p.translate(16, 16);
            p.rotate(i * 45);
            p.drawRect(QRectF(-2.8, -14, 5.6, 6));
            p.restore();
        }
        p.drawEllipse(QPointF(16, 16), 10, 10);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(16, 16), 4, 4);
    };
    d[QStringLiteral("systemInfo")] = [](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(blue);
        p.drawEllipse(QPointF(16, 16), 13, 13);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(16, 9), 2.3, 2.3);
        p.drawRoundedRect(QRectF(14, 13, 4, 12), 1, 1);
    };
    d[QStringLiteral("print")] = [](QPainter& p) {
        page(p, QRectF(9, 3, 14, 10));
        p.setPen(pen(ink));
        p.setBrush(QColor(0x9a, 0xa0, 0xa8));
        p.drawRoundedRect(QRectF(3, 12, 26, 11), 2, 2);
        page(p, QRectF(9, 19, 14, 10));
        lines(p, 11, 21, 23, 2, 3);
    };
    d[QStringLiteral("cut")] = [](QPainter& p) {
        p.setPen(pen(ink, 2));
        p.drawLine(QPointF(9, 3), QPointF(20, 21));
        p.drawLine(QPointF(23, 3), QPointF(12, 21));
        p.setBrush(Qt::NoBrush);
        p.setPen(pen(red, 2.2));
        p.drawEllipse(QPointF(9, 25), 4.5, 4.5);
        p.drawEllipse(QPointF(23, 25), 4.5, 4.5);
    };
    d[QStringLiteral("copy")] = [](QPainter& p) {
        page(p, QRectF(4, 3, 16, 20));
        page(p, QRectF(12, 9, 16, 20));
        lines(p, 15, 25, 14, 3, 4);
    };
    d[QStringLiteral("paste")] = [](QPainter& p) {
        p.setPen(pen(brown.darker(120)));
        p.setBrush(QColor(0xc8, 0x93, 0x5a));
        p.drawRoundedRect(QRectF(4, 5, 20, 24), 2, 2);
        p.setBrush(grey);
        p.drawRect(QRectF(10, 2, 8, 5));
        page(p, QRectF(13, 11, 15, 18));
        lines(p, 16, 25, 16, 3, 4);
    };
    d[QStringLiteral("first")] = [](QPainter& p) {
        bar(p, 6);
        triangle(p, false, 12);
    };
    d[QStringLiteral("prior")] = [](QPainter& p) { triangle(p, false, 10); };
    d[QStringLiteral("next")] = [](QPainter& p) { triangle(p, true, 10); };
    d[QStringLiteral("last")] = [](QPainter& p) {
        triangle(p, true, 8);
        bar(p, 22.5);
    };
    d[QStringLiteral("insert")] = [](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(green);
        p.drawRect(QRectF(13.5, 6, 5, 20));
        p.drawRect(QRectF(6, 13.5, 20, 5));
    };
    d[QStringLiteral("delete")] = [](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(red);
        p.drawRect(QRectF(6, 13.5, 20, 5));
    };
    d[QStringLiteral("edit")] = [](QPainter& p) {
        p.setPen(pen(ink, 1.2));
        p.setBrush(yellow);
        QPolygonF pencil;
        pencil << QPointF(7, 21) << QPointF(21, 7) << QPointF(25, 11) << QPointF(11, 25);
        p.drawPolygon(pencil);
        p.setBrush(QColor(0xf1, 0xd3, 0xa6));
        QPolygonF tip;
        tip << QPointF(7, 21) << QPointF(11, 25) << QPointF(4, 28);
        p.drawPolygon(tip);
        p.setBrush(QColor(0xe8, 0x8a, 0x9a));
        QPolygonF rubber;
        rubber << QPointF(21, 7) << QPointF(24, 4) << QPointF(28, 8) << QPointF(25, 11);
        p.drawPolygon(rubber);
    };
    d[QStringLiteral("post")] = [](QPainter& p) {
        p.setPen(pen(green, 4));
        p.setBrush(Qt::NoBrush);
        QPolygonF check;
        check << QPointF(6, 16) << QPointF(13, 24) << QPointF(26, 8);
        p.drawPolyline(check);
    };
    d[QStringLiteral("cancel")] = [](QPainter& p) {
        p.setPen(pen(red, 4));
        p.drawLine(QPointF(8, 8), QPointF(24, 24));
        p.drawLine(QPointF(24, 8), QPointF(8, 24));
    };
    d[QStringLiteral("refresh")] = [](QPainter& p) {
        p.setPen(pen(green, 3.2));
        p.setBrush(Qt::NoBrush);
        p.drawArc(QRectF(6, 6, 20, 20), 60 * 16, 290 * 16);
        p.setPen(Qt::NoPen);
        p.setBrush(green);
        QPolygonF head;
        head << QPointF(17, 1) << QPointF(25, 8) << QPointF(15, 12);
        p.drawPolygon(head);
    };
    d[QStringLiteral("recalculate")] = [](QPainter& p) {
        p.setPen(pen(ink, 1.4));
        p.setBrush(QColor(0x5c, 0x63, 0x70));
        p.drawRoundedRect(QRectF(6, 2, 20, 28), 2, 2);
        p.setBrush(QColor(0xc9, 0xe8, 0xc5));
        p.drawRect(QRectF(9, 5, 14, 6));
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::white);
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col)
                p.drawRect(QRectF(9 + col * 5, 14 + row * 5, 3.5, 3.5));
    };
    d[QStringLiteral("import")] = [](QPainter& p) {
        tray(p);
        arrow(p, true, blue);
    };
    d[QStringLiteral("export")] = [](QPainter& p) {
        tray(p);
        arrow(p, false, green);
    };
    d[QStringLiteral("mail")] = [](QPainter& p) {
        p.setPen(pen(ink, 1.5));
        p.setBrush(paper);
        p.drawRect(QRectF(3, 8, 26, 17));
        QPolygonF flap;
        flap << QPointF(3, 8) << QPointF(16, 18) << QPointF(29, 8);
        p.drawPolyline(flap);
    };
    d[QStringLiteral("priceList")] = [](QPainter& p) {
        page(p, QRectF(5, 2, 18, 24));
        lines(p, 8, 20, 7, 3, 4);
        p.setPen(pen(green.darker(120), 1.2));
        p.setBrush(yellow);
        p.drawEllipse(QPointF(22, 23), 7.5, 7.5);
        p.setPen(green.darker(150));
        QFont font = p.font();
        font.setPixelSize(11);
        font.setBold(true);
        p.setFont(font);
        p.drawText(QRectF(14, 15, 16, 16), Qt::AlignCenter, QStringLiteral("$"));
    };
    d[QStringLiteral("find")] = [](QPainter& p) { magnifier(p); };
    d[QStringLiteral("findNext")] = [](QPainter& p) {
        p.save();
        p.translate(-2, -2);
        p.scale(0.85, 0.85);
        magnifier(p);
        p.restore();
        p.setPen(Qt::NoPen);
        p.setBrush(green);
        QPolygonF head;
        head << QPointF(22, 20) << QPointF(31, 25.5) << QPointF(22, 31);
        p.drawPolygon(head);
    };
    d[QStringLiteral("extension")] = [](QPainter& p) {
        p.setPen(pen(ink, 2.4));
        p.setBrush(Qt::NoBrush);
        for (qreal x : {8.0, 17.0}) {
            QPolygonF chevron;
            chevron << QPointF(x, 9) << QPointF(x + 7, 16) << QPointF(x, 23);
            p.drawPolyline(chevron);
        }
    };
    d[QStringLiteral("clear")] = [](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(grey);
        p.drawEllipse(QPointF(16, 16), 12, 12);
        p.setPen(pen(Qt::white, 2.6));
        p.drawLine(QPointF(11, 11), QPointF(21, 21));
        p.drawLine(QPointF(21, 11), QPointF(11, 21));
    };
    d[QStringLiteral("shortcutRecipes")] = [d](QPainter& p) {
        d.value(QStringLiteral("recipes"))(p);
        p.setPen(Qt::NoPen);
        p.setBrush(blue);
        p.drawEllipse(QPointF(25, 25), 6, 6);
    };
    d[QStringLiteral("shortcutIngredients")] = [d](QPainter& p) {
        d.value(QStringLiteral("ingredients"))(p);
        p.setPen(Qt::NoPen);
        p.setBrush(blue);
        p.drawEllipse(QPointF(25, 25), 6, 6);
    };
    return d;
}

QPixmap render(const Drawing& drawing, int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.scale(size / 32.0, size / 32.0);
    drawing(p);
    return pixmap;
}

/// Draws a picture when a size of it is first asked for, and keeps each size it has drawn.
class DrawnIconEngine : public QIconEngine {
public:
    explicit DrawnIconEngine(Drawing drawing) : m_drawing(std::move(drawing)) {}

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        Q_UNUSED(state);
        const int side = std::max(1, std::min(size.width(), size.height()));
        const bool disabled = mode == QIcon::Disabled;
        const quint64 key = quint64(side) << 1 | quint64(disabled);
        const auto cached = m_cache.constFind(key);
        if (cached != m_cache.cend())
            return *cached;
        QPixmap drawn = disabled ? DisabledPixmap(pixmap(QSize(side, side), QIcon::Normal, QIcon::Off))
                                 : render(m_drawing, side);
        m_cache.insert(key, drawn);
        return drawn;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, pixmap(rect.size() * ratio, mode, state));
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}};
    }

    QIconEngine* clone() const override { return new DrawnIconEngine(*this); }
    QString key() const override { return QStringLiteral("DrawnIconEngine"); }

private:
    Drawing m_drawing;
    QHash<quint64, QPixmap> m_cache;
};

} // namespace

QIcon FrameIcon(const QString& name) {
    // One icon a name for the whole run; each size is drawn the first time it is shown.
    static const QHash<QString, Drawing> table = drawings();
    static QHash<QString, QIcon> icons;
    const auto known = icons.constFind(name);
    if (known != icons.cend())
        return *known;
    const auto drawing = table.constFind(name);
    const QIcon icon = drawing == table.cend() ? QIcon() : QIcon(new DrawnIconEngine(*drawing));
    icons.insert(name, icon);
    return icon;
}

QPixmap DisabledPixmap(const QPixmap& normal) {
    // Grey and faded, so that a disabled button does not pass for an enabled one.
    QImage image = normal.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int grey = 128 + qGray(line[x]) / 2;
            line[x] = qRgba(grey, grey, grey, qAlpha(line[x]) * 2 / 5);
        }
    }
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(normal.devicePixelRatio());
    return pixmap;
}

QIcon TFrameStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                const QWidget* widget) const {
    // The standard pictures that windows and dialogs ask for, in the look of the tool bars.
    static const QHash<int, const char*> drawn = {
        {SP_FileDialogNewFolder, "insert"},
        {SP_TrashIcon, "delete"},
        {SP_DialogApplyButton, "post"},
        {SP_DialogSaveButton, "post"},
        {SP_DialogCancelButton, "cancel"},
        {SP_FileDialogContentsView, "find"},
        {SP_ArrowRight, "next"},
        {SP_ArrowLeft, "prior"},
        {SP_ArrowForward, "next"},
        {SP_ArrowBack, "prior"},
        {SP_MediaSkipBackward, "first"},
        {SP_MediaSkipForward, "last"},
        {SP_BrowserReload, "refresh"},
        {SP_DialogOkButton, "post"},
        {SP_DialogYesButton, "post"},
        {SP_DialogNoButton, "cancel"},
        {SP_DialogCloseButton, "cancel"},
        {SP_DialogDiscardButton, "cancel"},
        // Asked for by every tool bar and the quick search box at start-up; the style's own
        // pictures would load the image plugins for nothing.
        {SP_ToolBarHorizontalExtensionButton, "extension"},
        {SP_ToolBarVerticalExtensionButton, "extension"},
        {SP_LineEditClearButton, "clear"},
    };
    if (const char* name = drawn.value(icon))
        return FrameIcon(QLatin1String(name));
    return QProxyStyle::standardIcon(icon, option, widget);
}

QPixmap TFrameStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                         const QStyleOption* option) const {
    if (mode == QIcon::Disabled)
        return DisabledPixmap(pixmap);
    return QProxyStyle::generatedIconPixmap(mode, pixmap, option);
}

} // namespace qm
