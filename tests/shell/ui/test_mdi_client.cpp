// The painted client area: centred picture, transparency, and pictures that can't be read.
#include "components/mdi_frame.h"
#include "shell/ui/mdi_client.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A picture whose column x is red x*10 (so a shown pixel tells its column), with its first
/// column blue: the colour of the bottom-left pixel.
QString writePicture(const QTemporaryDir& dir, const QString& name, int width, int height) {
    QImage picture(width, height, QImage::Format_RGB32);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            picture.setPixelColor(x, y, x == 0 ? QColor(Qt::blue) : QColor((x * 10) % 256, 0, 0));
    const QString path = dir.path() + QLatin1Char('/') + name;
    picture.save(path);
    return path;
}

QImage shown(TMdiClient& client) {
    return client.viewport()->grab().toImage();
}

} // namespace

class TestMdiClient : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void aMissingOrBrokenPictureLeavesThePlainColour_data() {
        QTest::addColumn<QString>("file");
        QTest::newRow("none") << QString();
        QTest::newRow("missing") << QStringLiteral("missing.png");
        QTest::newRow("broken") << QStringLiteral("broken.jpg");
    }
    void aMissingOrBrokenPictureLeavesThePlainColour() {
        QFETCH(QString, file);
        QFile broken(m_dir.path() + QStringLiteral("/broken.jpg"));
        broken.open(QIODevice::WriteOnly);
        broken.write("not a picture at all");
        broken.close();
        TMdiClient client;
        client.resize(200, 120);
        client.show();
        client.SetBackground(QColor(Qt::green),
                             file.isEmpty() ? file : m_dir.path() + QLatin1Char('/') + file, true);
        QVERIFY(client.BackgroundPicture().isNull());
        const QImage image = shown(client);
        for (const QPoint& p : {QPoint(0, 0), QPoint(image.width() / 2, image.height() / 2),
                                QPoint(image.width() - 1, image.height() - 1)})
            QCOMPARE(image.pixelColor(p), QColor(Qt::green));
    }

    void thePictureStandsCentredRoundedTowardZero_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("smaller, odd room") << 21 << 11;
        QTest::newRow("smaller, even room") << 20 << 10;
        // The client is made narrower below, by an odd count: the negative half rounds toward zero.
        QTest::newRow("wider than the client") << 25 << 9;
    }
    void thePictureStandsCentredRoundedTowardZero() {
        QFETCH(int, width);
        QFETCH(int, height);
        TMdiClient client;
        client.resize(width == 25 ? 20 : 120, 80);
        client.setMinimumSize(1, 1);
        client.show();
        client.SetBackground(QColor(Qt::green),
                             writePicture(m_dir, QStringLiteral("centre.png"), width, height), false);
        const QSize room = client.viewport()->size();
        const QPoint expected((room.width() - width) / 2, (room.height() - height) / 2);
        QCOMPARE(client.PicturePosition(), expected);
        const QImage image = shown(client);
        // The pixel at the picture's column c (red c*10) stands at x = position + c.
        for (int x = std::max(0, expected.x() + 1); x < std::min(room.width(), expected.x() + width); ++x)
            QCOMPARE(image.pixelColor(x, expected.y() + height / 2).red(), ((x - expected.x()) * 10) % 256);
        if (expected.y() > 0)
            QCOMPARE(image.pixelColor(std::max(0, expected.x() + 1), expected.y() - 1), QColor(Qt::green));
    }

    // The colour of the bottom-left pixel is see-through when asked; a resize centres again.
    void transparencyAndResize() {
        const QString file = writePicture(m_dir, QStringLiteral("keyed.png"), 20, 10);
        TMdiClient client;
        client.resize(100, 60);
        client.show();
        client.SetBackground(QColor(Qt::green), file, true);
        const QPoint at = client.PicturePosition();
        QImage image = shown(client);
        QCOMPARE(image.pixelColor(at), QColor(Qt::green)); // the blue column is gone
        QCOMPARE(image.pixelColor(at + QPoint(5, 0)), QColor(50, 0, 0));

        client.SetBackground(QColor(Qt::green), file, false);
        QCOMPARE(shown(client).pixelColor(at), QColor(Qt::blue));

        client.resize(160, 100);
        const QPoint after = client.PicturePosition();
        QVERIFY(after != at);
        image = shown(client);
        QCOMPARE(image.pixelColor(after), QColor(Qt::blue));
        QCOMPARE(image.pixelColor(at), QColor(Qt::green));
    }

    void aStoredPlaceIsBroughtIntoTheClient_data() {
        QTest::addColumn<QRect>("stored");
        QTest::addColumn<QRect>("expected");
        // The client is 600 by 400.
        QTest::newRow("inside stays") << QRect(10, 20, 300, 200) << QRect(10, 20, 300, 200);
        QTest::newRow("past the right and bottom") << QRect(500, 350, 300, 200) << QRect(300, 200, 300, 200);
        QTest::newRow("far away after a tile") << QRect(2400, 1800, 300, 200) << QRect(300, 200, 300, 200);
        QTest::newRow("above and left") << QRect(-50, -10, 300, 200) << QRect(0, 0, 300, 200);
        QTest::newRow("larger than the client") << QRect(40, 40, 900, 300) << QRect(0, 40, 600, 300);
    }

    void aStoredPlaceIsBroughtIntoTheClient() {
        QFETCH(QRect, stored);
        QFETCH(QRect, expected);
        QCOMPARE(qm::ClampToClient(stored, QSize(600, 400)), expected);
        QCOMPARE(qm::ClampToClient(stored, QSize()), stored); // no client yet: left alone
    }
};

QTEST_MAIN(TestMdiClient)
#include "test_mdi_client.moc"
