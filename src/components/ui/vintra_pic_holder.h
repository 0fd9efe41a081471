#pragma once

#include <QDialog>
#include <QImage>
#include <QWidget>

/// A panel that shows one picture scaled to fit, keeping its proportions.
class TVintraPicHolder : public QWidget {
    Q_OBJECT
public:
    explicit TVintraPicHolder(QWidget* parent = nullptr);

    /// Loads a picture file; a missing or broken file shows the stock picture and returns false.
    bool LoadFromFile(const QString& fileName);
    void SetImage(const QImage& image);
    /// The stock "no picture" image.
    void ShowNoPicture();
    const QImage& Image() const { return m_image; }
    bool HasPicture() const { return m_hasPicture; }
    QString FileName() const { return m_fileName; }

signals:
    void DoubleClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QImage m_image;
    QString m_fileName;
    bool m_hasPicture = false;
};

/// A full view of one picture, in its own window.
class TVintraPicViewer : public QDialog {
    Q_OBJECT
public:
    explicit TVintraPicViewer(QWidget* parent = nullptr);
    void SetImage(const QImage& image);
    void Show() { exec(); }

private:
    TVintraPicHolder* m_holder;
};
