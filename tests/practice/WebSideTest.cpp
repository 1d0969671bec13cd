#include "practice/WebSide.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

using namespace practice;
using namespace Qt::StringLiterals;

class WebSideTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsAreTakenAndOtherPagesAreNot()
    {
        WebSide web;
        QVERIFY(web.listen());
        QNetworkAccessManager manager;
        QNetworkRequest request(QUrl(web.base().toString() + u"/quorbeta/ErrorReports.php"_s));
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);

        QNetworkReply* taken = manager.post(request, "Report=a|b+c%");
        QTRY_VERIFY(taken->isFinished());
        QCOMPARE(taken->readAll(), "1"_ba);
        QCOMPARE(web.reports(), QList<QByteArray>{"Report=a|b+c%"});
        QCOMPARE(web.reportTypes(), QList<QByteArray>{"application/x-www-form-urlencoded"});

        web.setReportAnswer("0", 503);
        QNetworkReply* refused = manager.post(request, "Report=x");
        QTRY_VERIFY(refused->isFinished());
        QCOMPARE(refused->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 503);

        QNetworkReply* missing = manager.get(QNetworkRequest(QUrl(web.base().toString() + u"/nothing"_s)));
        QTRY_VERIFY(missing->isFinished());
        QCOMPARE(missing->error(), QNetworkReply::ContentNotFoundError);
    }

    void anUnansweredReportStaysOpen()
    {
        WebSide web;
        QVERIFY(web.listen());
        web.setReportsUnanswered(true);
        QNetworkAccessManager manager;
        QNetworkRequest request(QUrl(web.base().toString() + u"/quorbeta/ErrorReports.php"_s));
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
        QNetworkReply* first = manager.post(request, "Report=1");
        QTRY_COMPARE(web.reports().size(), 1);
        web.setReportsUnanswered(false);
        QNetworkReply* second = manager.post(request, "Report=2");
        QTRY_VERIFY(second->isFinished());
        QVERIFY(!first->isFinished());
        first->abort(); // the page outlives a client that gave up
        QTRY_VERIFY(first->isFinished());
    }
};

QTEST_GUILESS_MAIN(WebSideTest)
#include "WebSideTest.moc"
