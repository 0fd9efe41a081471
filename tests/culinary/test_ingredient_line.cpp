// The free-form ingredient line: its fixed columns both ways, the reformatting for the other
// layouts and the amount as whole part and fraction.
#include "culinary/ingredient_line.h"

#include <QTest>

class TestIngredientLine : public QObject {
    Q_OBJECT

private slots:
    // What the line dialog composes, the same columns give back, the longest name included.
    void composedLineSplitsBack_data() {
        QTest::addColumn<QString>("whole");
        QTest::addColumn<QString>("fraction");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("name");
        QTest::newRow("full") << "1234"
                              << "3/4"
                              << "tablespoonsX"
                              << "flour";
        QTest::newRow("no amount") << ""
                                   << ""
                                   << ""
                                   << "salt to taste";
        QTest::newRow("254 with spaces and accents")
            << "10"
            << "7/8"
            << "tbl" << (QStringLiteral("crème fraîche,  well chilled ") + QString(225, 'x'));
    }
    void composedLineSplitsBack() {
        QFETCH(QString, whole);
        QFETCH(QString, fraction);
        QFETCH(QString, unit);
        QFETCH(QString, name);
        const QString line = ComposeIngredientLine(whole, fraction, unit, name);
        QCOMPARE(line.size(), 24 + name.size());
        const TIngredientLineParts parts = SplitIngredientLine(line, ilsMasterCook);
        QCOMPARE(parts.whole, whole.leftJustified(4));
        QCOMPARE(parts.fraction, fraction.leftJustified(3));
        QCOMPARE(parts.unit, unit.leftJustified(12));
        QCOMPARE(parts.name, name);
    }

    // A delivered free-form line is right-justified; the columns cut it without trimming.
    void splitKeepsBlanks() {
        const QString line = QStringLiteral("     1/3  cup           tahini");
        const TIngredientLineParts p = SplitIngredientLine(line, ilsMasterCook);
        QCOMPARE(p.whole, QStringLiteral("    "));
        QCOMPARE(p.fraction, QStringLiteral("1/3"));
        QCOMPARE(p.unit, QStringLiteral("cup         "));
        QCOMPARE(p.name, QStringLiteral("tahini"));
        // Text not made by the dialog is cut where the columns fall.
        const TIngredientLineParts odd =
            SplitIngredientLine(QStringLiteral("two cups of flour"), ilsMasterCook);
        QCOMPARE(odd.whole, QStringLiteral("two "));
        QCOMPARE(odd.fraction, QStringLiteral("ups"));
        QCOMPARE(odd.unit, QStringLiteral("f flour"));
        QCOMPARE(odd.name, QString());
    }

    void splitShortFormats_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("whole");
        QTest::addColumn<QString>("fraction");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("name");
        QTest::newRow("whole and fraction") << "  1 1/2 c  flour"
                                            << "  1"
                                            << "1/2"
                                            << "c "
                                            << "flour";
        QTest::newRow("lone fraction moves") << "    1/2 ts salt"
                                             << "1/2"
                                             << ""
                                             << "ts"
                                             << "salt";
        QTest::newRow("nothing to move") << "           pepper"
                                         << "   "
                                         << "   "
                                         << "  "
                                         << "pepper";
    }
    void splitShortFormats() {
        QFETCH(QString, line);
        QFETCH(QString, whole);
        QFETCH(QString, fraction);
        QFETCH(QString, unit);
        QFETCH(QString, name);
        for (int source : {ilsMealMaster, ilsComputerChef}) {
            const TIngredientLineParts p = SplitIngredientLine(line, source);
            QCOMPARE(p.whole, whole);
            QCOMPARE(p.fraction, fraction);
            QCOMPARE(p.unit, unit);
            QCOMPARE(p.name, name);
        }
    }

    void reformat_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("expected");
        const QString internal = QStringLiteral("   1 1/2  cup           flour, sifted ");
        QTest::newRow("to 1") << internal << 1 << "   1 1/2  cup          flour, sifted";
        QTest::newRow("to 2") << internal << 2 << "  1 1/2 cup flour, sifted";
        QTest::newRow("to 3") << internal << 3 << "       1 1/2    cup   flour, sifted";
        // A lone whole part becomes the fraction for Meal-Master.
        QTest::newRow("whole only to 2")
            << QStringLiteral("   2      tsp           salt") << 2 << "      2 tsp salt";
        QTest::newRow("no amount to 3")
            << QStringLiteral("                        pepper") << 3 << "                      pepper";
    }
    void reformat() {
        QFETCH(QString, line);
        QFETCH(int, target);
        QFETCH(QString, expected);
        QCOMPARE(ReformatIngredientLine(line, ilsMasterCook, target), expected);
    }

    void amountToFraction_data() {
        QTest::addColumn<double>("amount");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("expectedWhole");
        QTest::addColumn<QString>("expectedFraction");
        QTest::newRow("whole three") << 3.0 << "1/2"
                                     << "3"
                                     << "";
        QTest::newRow("1.1 rounds up to an eighth") << 1.1 << ""
                                                    << "1"
                                                    << "1/8";
        // Two thirds in single precision lie just above the double 2/3: the next entry is taken.
        QTest::newRow("two thirds") << 2.0 / 3 << ""
                                    << "0"
                                    << "5/7";
        QTest::newRow("exactly 7/8") << 1.875 << ""
                                     << "1"
                                     << "7/8";
        // Above 7/8 nothing matches: the previous line's fraction stays.
        QTest::newRow("1.9 keeps the eighth") << 1.9 << "1/8"
                                              << "1"
                                              << "1/8";
        QTest::newRow("never rounded to the next whole") << 0.99 << ""
                                                         << "0"
                                                         << "";
    }
    void amountToFraction() {
        QFETCH(double, amount);
        QFETCH(QString, before);
        QFETCH(QString, expectedWhole);
        QFETCH(QString, expectedFraction);
        QString whole = QStringLiteral("junk");
        QString fraction = before;
        AmountToFraction(amount, whole, fraction);
        QCOMPARE(whole, expectedWhole);
        QCOMPARE(fraction, expectedFraction);
    }

    // The list box's text: each line with its break; reading it back makes no empty last line.
    void linesAndText() {
        QCOMPARE(IngredientLines(QStringLiteral("a\r\nb\r\n")), (QStringList{"a", "b"}));
        QCOMPARE(IngredientLines(QStringLiteral("a\n\nb")), (QStringList{"a", "", "b"}));
        QCOMPARE(IngredientLines(QString()), QStringList());
        QCOMPARE(IngredientText({"a", "b"}), QStringLiteral("a\nb\n"));
        QCOMPARE(IngredientText({}), QString());
        QCOMPARE(IngredientLines(IngredientText({"x", " y "})), (QStringList{"x", " y "}));
    }
};

QTEST_GUILESS_MAIN(TestIngredientLine)
#include "test_ingredient_line.moc"
