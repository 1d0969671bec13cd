// "Match Watch": a section of the server manager that lists what the plugin's counterpart on the tracker tells.

#include "ForeignFrame.h"
#include "qrvrc_plugin.hpp"

#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QTime>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int maxEntries = 1000;

/// The page in the client's frame. Messages arrive whether it is shown or not.
class WatchPage : public ForeignPage
{
public:
    WatchPage() : m_profile(new QLabel(this)), m_messages(new QListWidget(this))
    {
        setObjectName(u"qrvrcWatch"_s);
        setAccessibleName(u"Match Watch"_s);
        setAutoFillBackground(true); // it lies over the client's own page
        m_profile->setObjectName(u"lblProfile"_s);
        m_messages->setObjectName(u"lstMessages"_s);
        m_messages->setAccessibleName(u"Messages of the match"_s);
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(m_profile);
        layout->addWidget(m_messages);
        hide();
    }

    void showFor(std::int32_t profileId, const ForeignFrame& frame)
    {
        m_profile->setText(u"Profile %1"_s.arg(profileId));
        frame.place(*this);
        show();
        raise();
    }

    void add(const std::string& payload)
    {
        if (m_messages->count() == maxEntries)
            delete m_messages->takeItem(0);
        m_messages->addItem(QTime::currentTime().toString(u"HH:mm:ss  "_s) +
                            QString::fromStdString(qrvrc::toUtf8(payload)));
        m_messages->scrollToBottom();
    }

private:
    QLabel* m_profile;
    QListWidget* m_messages;
};

/// The page belongs to the library, because every message of the tracker comes to an instance of its own. It is made
/// for the first frame or message; the frame takes it along when it goes.
WatchPage& page()
{
    ForeignFrame::needApplication();
    static QPointer<WatchPage> shared;
    if (!shared)
        shared = new WatchPage;
    return *shared;
}

class MatchWatch : public qrvrc::Plugin
{
public:
    qrvrc::Data data() const override
    {
        qrvrc::Data data;
        data.name = "Match Watch";
        data.file = "qrvrcWatch.dll";
        data.version = "1.0.0.0";
        data.author = "QRVRC";
        data.description = "Lists what happens in the match that the tracker follows.";
        data.hasInterface = true;
        data.serverMenu = true;
        data.serverMenuItems = {"Match Watch"};
        data.helpFile = "qrvrcWatch.html";
        data.minRccVer = "3000";
        return data;
    }

    void LoadInterface(std::int32_t profileId, std::int32_t window, std::vector<std::string>& /*list*/,
                       const std::string& /*user*/) override
    {
        page().showFor(profileId, ForeignFrame(window));
    }

    void HideInterface(const std::string& /*text*/) override { page().hide(); }
    void RemoteData(const std::string& payload) override { page().add(payload); }
};

} // namespace

QRVRC_PLUGIN(MatchWatch, "qrvrcWatch.clsPlugin", "1.0.0.0");
