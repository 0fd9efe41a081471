#pragma once

#include <QColor>
#include <QImage>
#include <QMdiArea>
#include <QString>

namespace qm {

/// A colour option holds 0x00BBGGRR; values below 0 name system colours and give the palette's.
QColor ColorFromOption(int value);
int ColorToOption(const QColor& color);

/// Reads a background picture; a null image when the file is missing or broken. Transparent: a
/// picture without an alpha channel loses the colour of its bottom-left pixel (JPEG excepted,
/// whose colours are not exact); an alpha channel is kept either way.
QImage LoadBackgroundPicture(const QString& fileName, bool transparent);

} // namespace qm

/// The frame's client area: the MDI children live here, over a background of one colour with a
/// picture centred on it.
class TMdiClient : public QMdiArea {
    Q_OBJECT
public:
    explicit TMdiClient(QWidget* parent = nullptr);

    /// Takes the colour and reads the picture; a picture that can't be read leaves the plain colour.
    void SetBackground(const QColor& color, const QString& pictureFile, bool transparent);
    QColor BackgroundColor() const { return m_color; }
    const QImage& BackgroundPicture() const { return m_picture; }
    /// Where the picture's top-left corner goes: half the spare room, rounded toward zero.
    QPoint PicturePosition() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    QColor m_color = Qt::white;
    QImage m_picture;
};
