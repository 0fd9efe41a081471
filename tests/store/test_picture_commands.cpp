// The picture commands on real files: clearing, setting, moving.
#include "test_store.h"

#include "store/picture_commands.h"

#include <QDir>
#include <QFile>
#include <QTest>

class TestPictureCommands : public QObject {
    Q_OBJECT

    static QByteArray read(const QString& path) {
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }
    static QString source(TestStore& store, const QByteArray& content) {
        const QString path = store.root() + QStringLiteral("source-%1.jpg").arg(QString::fromLatin1(content));
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path;
    }

private slots:
    void clearSetAndMove() {
        TestStore store;
        const QString folder = store.dataModule().PictureFolder(pkRecipe);
        for (int n = 1; n <= 4; ++n)
            QVERIFY(PictureCommands::CopyPicture(pkRecipe, 8, n, source(store, "p" + QByteArray::number(n))));
        // Clearing tab 1 (picture 2 of 4): 3 and 4 become 2 and 3.
        PictureCommands::ClearPicture(pkRecipe, 8, 1);
        QCOMPARE(PictureCommands::PictureFiles(pkRecipe, 8), (QStringList{"8.1.jpg", "8.2.jpg", "8.3.jpg"}));
        QCOMPARE(read(folder + "8.2.jpg"), QByteArray("p3"));
        // Set copies over the picture of the tab.
        QVERIFY(PictureCommands::CopyPicture(pkRecipe, 8, 3, source(store, "new")));
        QCOMPARE(read(folder + "8.3.jpg"), QByteArray("new"));
        PictureCommands::MoveUp(pkRecipe, 8, 2);
        QCOMPARE(read(folder + "8.2.jpg"), QByteArray("new"));
        QCOMPARE(read(folder + "8.3.jpg"), QByteArray("p3"));
        PictureCommands::MoveDown(pkRecipe, 8, 0);
        QCOMPARE(read(folder + "8.1.jpg"), QByteArray("new"));
        QCOMPARE(read(folder + "8.2.jpg"), QByteArray("p1"));
    }
};

QTEST_GUILESS_MAIN(TestPictureCommands)
#include "test_picture_commands.moc"
