#include "app/LicencesPage.h"
#include "platform/system/FileBytes.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class LicencesPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itShowsWhatLiesThereAndNothingLarger()
    {
        const QTemporaryDir home;
        const std::filesystem::path folder = home.path().toStdU16String();
        writeBytes(folder / "b.txt", "<b>of b</b>");
        writeBytes(folder / "a.txt", std::string(2'000'000, 'x'));
        writeBytes(folder / "a.exe", "no text");
        LicencesPage page(folder);
        auto& names = *page.findChild<QComboBox*>(u"cboLicence"_s);
        auto& text = *page.findChild<QPlainTextEdit*>(u"txtLicence"_s);
        QCOMPARE(names.count(), 2);
        QVERIFY2(text.toPlainText().startsWith(u"This text cannot be read"), qPrintable(text.toPlainText()));
        names.setCurrentIndex(1);
        QCOMPARE(text.toPlainText(), u"<b>of b</b>"_s);
        QVERIFY(!LicencesPage(folder / "none").findChild<QComboBox*>(u"cboLicence"_s)->isEnabled());
    }
};

QTEST_MAIN(LicencesPageTest)
#include "LicencesPageTest.moc"
