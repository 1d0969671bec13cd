#pragma once

#include "practice/web/PageFault.h"
#include "practice/web/UpdateSigner.h"

#include <QHash>
#include <QList>
#include <QObject>

#include <memory>
#include <optional>

class QHttpServer;
class QHttpServerResponder;

namespace practice {

/// A file that the maker offers, with what the lists say of it.
struct OfferedFile
{
    QByteArray name; ///< in the list; an executable is served under the ending "fle"
    QByteArray folder = {};
    QByteArray type = {};
    QByteArray description = {};
    QByteArray version = {};
    QByteArray body = {};
};

/// The maker's update locations and news, at "/downloads/QRVV3/rc/", "/Quorvane/qrvrc/" and "/qrvrcnews.txt". Offers
/// nothing until it is told to.
class UpdatePages : public QObject
{
    Q_OBJECT

public:
    explicit UpdatePages(QObject* parent = nullptr);
    ~UpdatePages() override;

    /// Answers for a server.
    void serveOn(QHttpServer& server);

    /// Offers a file of the client's own; one of the same name is replaced.
    void offerClientFile(const OfferedFile& file);
    /// Offers a file of a plugin. Its folder is "\Plugins\" unless it has one.
    void offerPluginFile(const OfferedFile& file);
    /// Offers a manifest of all files, with its signature. Without this there is none.
    void sign(const UpdateSigner& signer, quint64 serial);
    /// Serves a page with these bytes, whatever it would hold otherwise; found below the update locations by its name
    /// ("qrvv3rc_filelist.txt", "plugins/a.dll").
    void setPage(const QByteArray& name, const QByteArray& body) { m_pages.insert(name, body); }
    void setNews(const QByteArray& text) { m_news = text; }
    /// Lets every request of a page end in a fault; "*" means all pages, a fault of kind None is an exception.
    void misbehave(const QByteArray& name, const PageFault& fault) { m_faults.insert(name, fault); }

    /// Names of the pages asked for so far, oldest first, as for setPage(); "qrvrcnews.txt" for the news.
    const QList<QByteArray>& requested() const { return m_requested; }
    void forgetRequests() { m_requested.clear(); }

    /// The text of a list of files.
    static QByteArray listOf(const QList<OfferedFile>& files);

Q_SIGNALS:
    void pageRequested(const QByteArray& name);

private:
    void answer(const QByteArray& name, QHttpServerResponder&& responder);
    void misbehaveNow(const PageFault& fault, const QByteArray& body, QHttpServerResponder&& responder);
    QByteArray manifest() const;
    std::optional<QByteArray> pageNamed(const QByteArray& name) const;
    PageFault faultOf(const QByteArray& name) const;

    struct Unfinished;

    QList<OfferedFile> m_clientFiles;
    QList<OfferedFile> m_pluginFiles;
    QHash<QByteArray, QByteArray> m_pages;
    QHash<QByteArray, PageFault> m_faults;
    QByteArray m_news;
    std::optional<UpdateSigner> m_signer;
    quint64 m_serial = 0;
    QList<QByteArray> m_requested;
    std::unique_ptr<Unfinished> m_unfinished;
};

} // namespace practice
