// The screens' cases: rows of steps in tests/cases/*.txt, each under a line "== its name".
#include "support/steps.h"

#include <QRegularExpression>

class ScreensTest : public QObject {
    Q_OBJECT
private slots:
    // Each case on a fresh copy of the shared shop ("test_screens 'cases:sales: opening'" runs one;
    // VANTREL_CASES=sales,masters runs those files' cases alone).
    void cases_data()
    {
        QTest::addColumn<QString>("steps");
        const QDir folder(QStringLiteral(VANTREL_CASES_DIR));
        const QStringList only = qEnvironmentVariable("VANTREL_CASES").split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString &name : folder.entryList({"*.txt"})) {
            if (!only.isEmpty() && !only.contains(name.chopped(4)))
                continue;
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QStringList cases = QString::fromUtf8(file.readAll()).split(QRegularExpression("^== ", QRegularExpression::MultilineOption), Qt::SkipEmptyParts);
            for (const QString &text : cases)
                QTest::addRow("%s: %s", qPrintable(name.chopped(4)), qPrintable(text.section('\n', 0, 0))) << text.section('\n', 1);
        }
    }
    void cases()
    {
        QFETCH(QString, steps);
        vantrel::test::StepDesk desk;
        desk.run(steps);
    }
};

VANTREL_TEST_MAIN(ScreensTest)
#include "test_screens.moc"
