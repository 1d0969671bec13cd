#include "ui/PictureFolder.h"
#include "ui/PictureStore.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void append(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::Append));
    file.write(bytes);
}

} // namespace

class PicturesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatMayNotBeShownIsMissingAndReportedOnce_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("no such file") << QByteArray("\\none.gif");
        QTest::newRow("a folder") << QByteArray("\\imgs");
        QTest::newRow("outside the folder") << QByteArray("\\..\\good.gif");
        QTest::newRow("too wide") << QByteArray("\\wide.gif");
        QTest::newRow("too many bytes") << QByteArray("\\heavy.gif");
        QTest::newRow("cut off") << QByteArray("\\cut.gif");
        QTest::newRow("another format") << QByteArray("\\text.gif");
        QTest::newRow("empty") << QByteArray("\\empty.gif");
    }
    void whatMayNotBeShownIsMissingAndReportedOnce()
    {
        QFETCH(const QByteArray, name);
        const PictureFolder files;
        files.paint(u"wide.gif"_s, Qt::red, {PictureStore::maxSide + 1, 1});
        files.paint(u"heavy.gif"_s, Qt::red);
        append(files.path(u"heavy.gif"_s), QByteArray(qsizetype(PictureStore::maxFileBytes), '\0'));
        files.paint(u"cut.gif"_s, Qt::red, {64, 64});
        QFile::resize(files.path(u"cut.gif"_s), 20);
        append(files.path(u"text.gif"_s), "/* XPM */ static char* p[] = {\"1 1 1 1\", \"a c #ff0000\", \"a\"};");
        append(files.path(u"empty.gif"_s), {});
        std::vector<std::string> missing;
        PictureStore pictures(files.folder(), [&missing](const std::string& file) { missing.push_back(file); });

        QVERIFY(pictures.scaled(name.toStdString(), {8, 8}, 1).isNull());
        QVERIFY(pictures.scaled(name.toUpper().toStdString(), {16, 16}, 1).isNull());
        QVERIFY(missing.empty()); // never from inside the call, which a paint event may make
        QTRY_VERIFY(!missing.empty());
        QCOMPARE(missing, std::vector{name.toStdString()});
    }

    void aPictureReplacedOnDiskShows()
    {
        const PictureFolder files;
        PictureStore pictures(files.folder());
        const auto colour = [&pictures] {
            return pictures.scaled("\\IMGS\\ButUp.gif", {4, 4}, 1).toImage().pixelColor(1, 1);
        };
        QVERIFY(pictures.scaled("\\imgs\\butup.gif", {4, 4}, 1).isNull());
        files.paint(u"imgs/butup.gif"_s, Qt::green);
        QCOMPARE(colour(), QColor(Qt::green));
        files.paint(u"imgs/butup.gif"_s, Qt::blue, {40, 30});
        QCOMPARE(colour(), QColor(Qt::blue));
        QFile::remove(files.path(u"imgs/butup.gif"_s));
        QVERIFY(pictures.scaled("\\imgs\\butup.gif", {4, 4}, 1).isNull());
    }

    void scalingCountsInLogicalPixels()
    {
        const PictureFolder files;
        files.paint(u"a.gif"_s, Qt::green, {64, 32});
        PictureStore pictures(files.folder());
        const QPixmap fine = pictures.scaled("\\a.gif", {16, 16}, 2);
        QCOMPARE(fine.size(), QSize(32, 32));
        QCOMPARE(fine.deviceIndependentSize(), QSizeF(16, 16));
        QCOMPARE(pictures.scaled("\\a.gif", {16, 16}, 1, Qt::KeepAspectRatio).size(), QSize(16, 8));
    }
};

QTEST_MAIN(PicturesTest)
#include "PicturesTest.moc"
