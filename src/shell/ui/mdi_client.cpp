#include "shell/ui/mdi_client.h"

#include <QApplication>
#include <QImageReader>
#include <QPaintEvent>
#include <QPainter>
#include <QPalette>

namespace qm {

QColor ColorFromOption(int value) {
    if (value < 0)
        return QApplication::palette().color(QPalette::Dark);
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

int ColorToOption(const QColor& color) {
    return color.red() | (color.green() << 8) | (color.blue() << 16);
}

QImage LoadBackgroundPicture(const QString& fileName, bool transparent) {
    if (fileName.isEmpty())
        return {};
    QImageReader reader(fileName);
    const QByteArray format = reader.format();
    QImage picture = reader.read();
    if (picture.isNull() || !transparent || picture.hasAlphaChannel() || format == "jpeg" || format == "jpg")
        return picture;
    picture = picture.convertToFormat(QImage::Format_ARGB32);
    const QRgb key = picture.pixel(0, picture.height() - 1);
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            if (line[x] == key)
                line[x] = 0;
    }
    return picture;
}

} // namespace qm

TMdiClient::TMdiClient(QWidget* parent) : QMdiArea(parent) {}

void TMdiClient::SetBackground(const QColor& color, const QString& pictureFile, bool transparent) {
    m_color = color;
    m_picture = qm::LoadBackgroundPicture(pictureFile, transparent);
    viewport()->update();
}

QPoint TMdiClient::PicturePosition() const {
    // Integer division rounds toward zero, also when the picture is larger than the client.
    const QSize client = viewport()->size();
    return {(client.width() - m_picture.width()) / 2, (client.height() - m_picture.height()) / 2};
}

void TMdiClient::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), m_color);
    if (!m_picture.isNull())
        painter.drawImage(PicturePosition(), m_picture);
}

void TMdiClient::resizeEvent(QResizeEvent* event) {
    QMdiArea::resizeEvent(event);
    viewport()->update();
}

void TMdiClient::scrollContentsBy(int dx, int dy) {
    QMdiArea::scrollContentsBy(dx, dy);
    viewport()->update();
}
