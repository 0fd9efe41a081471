#pragma once

#include <QDialog>
#include <QPixmap>

/// The product picture, shown by the splash at start and by the about window.
QPixmap splashPicture();

/// The about window: the product picture and where the reference data comes from.
class TFormAbout : public QDialog {
    Q_OBJECT
public:
    explicit TFormAbout(QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
};

/// How much the database holds, one count a line.
class TFormSystemInfo : public QDialog {
    Q_OBJECT
public:
    explicit TFormSystemInfo(QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
};
