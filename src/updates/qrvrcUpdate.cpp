#include "updates/qrvrcUpdate.h"

#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "platform/CodePage.h"
#include "updates/NewsDesk.h"
#include "updates/NewsFrequency.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdatePanel.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 8;
constexpr int panelWidth = 400;
constexpr QSize usualPage(757, 440);

} // namespace

qrvrcUpdate::qrvrcUpdate(Client& client, const UpdateServices& services, UpdateAgent& agent, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_agent(agent)
{
    setObjectName(u"qrvrcUpdate"_s);
    const QSize page = parent ? parent->size() : usualPage;
    const int height = page.height() - 2 - margin;
    new UpdatePanel(client, services, agent,
                    {.frameName = u"Frame1"_s,
                     .title = u"Quorvane Ravelin Updates"_s,
                     .checkName = u"cmdUpdateQRV"_s,
                     .checkCaption = u"Update QRVRC"_s,
                     .order = clientCheck,
                     .success = u"Updates downloaded and installed successfully."_s},
                    QRect(margin, 2, panelWidth, height), this);
    const int newsLeft = 2 * margin + panelWidth;
    buildNews(QRect(newsLeft, 2, page.width() - newsLeft - margin, height));
    wireSignals();
    showNews();
}

void qrvrcUpdate::buildNews(const QRect& place)
{
    auto* frame = new QGroupBox(u"Quorvane News"_s, this);
    frame->setObjectName(u"Frame2"_s);
    frame->setGeometry(place);
    constexpr int inset = 10;
    constexpr int rowHeight = 26;
    const int rowTop = place.height() - inset - rowHeight;
    txtScripts = new QPlainTextEdit(frame);
    txtScripts->setObjectName(u"txtScripts"_s);
    txtScripts->setAccessibleName(u"Quorvane News"_s);
    txtScripts->setReadOnly(true);
    txtScripts->setTabChangesFocus(true);
    txtScripts->setGeometry(inset, 24, place.width() - 2 * inset, rowTop - inset - 24);
    auto* caption = new QLabel(u"Update &Every"_s, frame);
    caption->setGeometry(inset, rowTop, 100, rowHeight);
    cboFreq = new QComboBox(frame);
    cboFreq->setObjectName(u"cboFreq"_s);
    cboFreq->setAccessibleName(u"Update Every"_s);
    for (const std::string_view frequency : newsFrequencies)
        cboFreq->addItem(m_client.codePage.toText(frequency));
    cboFreq->setCurrentText(m_agent.news().frequency());
    cboFreq->setGeometry(inset + 100, rowTop, 120, rowHeight);
    caption->setBuddy(cboFreq);
}

void qrvrcUpdate::wireSignals()
{
    connect(&m_agent.news(), &NewsDesk::newsChanged, this, &qrvrcUpdate::showNews);
    connect(cboFreq, &QComboBox::currentTextChanged, this, [this](const QString& frequency) {
        m_client.reporter.trap("cboFreq_Click", [&] { m_agent.news().setFrequency(frequency); });
    });
}

void qrvrcUpdate::Form_Activate()
{
    m_client.helpSection = u"Update"_s;
    m_agent.news().fetchIfNone();
    if (m_agent.news().news().isEmpty())
        txtScripts->setPlaceholderText(u"Fetching the news..."_s);
}

void qrvrcUpdate::showNews()
{
    txtScripts->setPlainText(m_agent.news().news());
    txtScripts->setPlaceholderText({});
}

bool qrvrcUpdate::QRVUpdateAvailable()
{
    return m_agent.QRVUpdateAvailable();
}
