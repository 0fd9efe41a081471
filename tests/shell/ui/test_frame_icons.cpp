// The drawn pictures of the frame: one icon a name, a disabled look that can't pass for enabled,
// and the standard pictures of windows and dialogs in the same style.
#include "shell/ui/frame_icons.h"

#include <QTest>

namespace {

bool hasColour(const QImage& image) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() > 0 && colour.hsvSaturation() > 60)
                return true;
        }
    return false;
}

int maxAlpha(const QImage& image) {
    int alpha = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            alpha = std::max(alpha, image.pixelColor(x, y).alpha());
    return alpha;
}

} // namespace

class TestFrameIcons : public QObject {
    Q_OBJECT

private slots:
    void oneIconANameAndNoneForAnUnknownName() {
        const QIcon recipes = qm::FrameIcon(QStringLiteral("recipes"));
        QVERIFY(!recipes.isNull());
        QCOMPARE(qm::FrameIcon(QStringLiteral("recipes")).cacheKey(), recipes.cacheKey());
        QVERIFY(qm::FrameIcon(QStringLiteral("ingredients")).cacheKey() != recipes.cacheKey());
        QVERIFY(qm::FrameIcon(QStringLiteral("no such picture")).isNull());
        QVERIFY(qm::FrameIcon(QString()).isNull());
        for (int size : {16, 24, 32, 48})
            QCOMPARE(recipes.pixmap(size).size(), QSize(size, size));
    }

    void disabledPicturesAreGreyAndFaded() {
        const QIcon icon = qm::FrameIcon(QStringLiteral("recipes"));
        const QImage normal = icon.pixmap(32).toImage();
        const QImage disabled = icon.pixmap(QSize(32, 32), QIcon::Disabled).toImage();
        QVERIFY(hasColour(normal));
        QVERIFY(!hasColour(disabled));
        QVERIFY(maxAlpha(disabled) <= maxAlpha(normal) / 2);
        // The style greys any other picture the same way.
        qm::TFrameStyle style;
        const QImage generated =
            style.generatedIconPixmap(QIcon::Disabled, icon.pixmap(32), nullptr).toImage();
        QCOMPARE(generated, disabled);
    }

    void dialogsAskForTheSamePictures() {
        qm::TFrameStyle style;
        QCOMPARE(style.standardIcon(QStyle::SP_TrashIcon).cacheKey(),
                 qm::FrameIcon(QStringLiteral("delete")).cacheKey());
        QCOMPARE(style.standardIcon(QStyle::SP_ArrowRight).cacheKey(),
                 qm::FrameIcon(QStringLiteral("next")).cacheKey());
        // Those of every tool bar and edit at start-up are drawn too, so that no image plugin loads.
        QCOMPARE(style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton).cacheKey(),
                 qm::FrameIcon(QStringLiteral("extension")).cacheKey());
        QCOMPARE(style.standardIcon(QStyle::SP_LineEditClearButton).cacheKey(),
                 qm::FrameIcon(QStringLiteral("clear")).cacheKey());
        QVERIFY(!style.standardIcon(QStyle::SP_MessageBoxQuestion).isNull()); // the rest: the base style
    }
};

QTEST_MAIN(TestFrameIcons)
#include "test_frame_icons.moc"
