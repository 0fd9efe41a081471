#include "components/ui/vintra_pic_holder.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace {

QImage noPictureImage() {
    QImage image(160, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0xB0, 0xA8, 0x98), 3));
    p.drawRoundedRect(QRectF(20, 15, 120, 90), 8, 8);
    p.drawEllipse(QPointF(80, 60), 22, 22);
    p.drawLine(QPointF(35, 100), QPointF(125, 20));
    return image;
}

} // namespace

TVintraPicHolder::TVintraPicHolder(QWidget* parent) : QWidget(parent) {
    setMinimumSize(64, 48);
    ShowNoPicture();
}

bool TVintraPicHolder::LoadFromFile(const QString& fileName) {
    QImage image;
    if (!image.load(fileName)) {
        ShowNoPicture();
        return false;
    }
    m_image = image;
    m_fileName = fileName;
    m_hasPicture = true;
    update();
    return true;
}

void TVintraPicHolder::SetImage(const QImage& image) {
    m_image = image;
    m_fileName.clear();
    m_hasPicture = !image.isNull();
    update();
}

void TVintraPicHolder::ShowNoPicture() {
    m_image = noPictureImage();
    m_fileName.clear();
    m_hasPicture = false;
    update();
}

void TVintraPicHolder::paintEvent(QPaintEvent*) {
    if (m_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QSize size = m_image.size();
    // Large pictures shrink to the panel; small ones are not blown up.
    if (size.width() > width() || size.height() > height())
        size.scale(this->size(), Qt::KeepAspectRatio);
    const QRect target(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    painter.drawImage(target, m_image);
}

void TVintraPicHolder::mouseDoubleClickEvent(QMouseEvent*) {
    emit DoubleClicked();
}

TVintraPicViewer::TVintraPicViewer(QWidget* parent) : QDialog(parent), m_holder(new TVintraPicHolder(this)) {
    setObjectName(QStringLiteral("VintraPicViewer"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_holder);
}

void TVintraPicViewer::SetImage(const QImage& image) {
    m_holder->SetImage(image);
    const QSize available = QGuiApplication::primaryScreen()
                                ? QGuiApplication::primaryScreen()->availableSize() * 0.9
                                : QSize(1024, 768);
    QSize size = image.size();
    if (size.width() > available.width() || size.height() > available.height())
        size.scale(available, Qt::KeepAspectRatio);
    resize(size.expandedTo(QSize(200, 150)));
}
