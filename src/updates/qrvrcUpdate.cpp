#include "updates/qrvrcUpdate.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "ui/QuietComboBox.h"
#include "updates/NewsDesk.h"
#include "updates/NewsFrequency.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdatePanel.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int gap = 8;
constexpr QMargins newsMargins(7, 4, 7, 7);
constexpr int newsGap = 10;
constexpr QSize frequencySize(120, 26);
constexpr int captionWidth = 100;

} // namespace

qrvrcUpdate::qrvrcUpdate(Client& client, const UpdateServices& services, UpdateAgent& agent, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_agent(agent)
{
    setObjectName(u"qrvrcUpdate"_s);
    auto* panel = new UpdatePanel(client, services, agent,
                                  {.frameName = u"Frame1"_s,
                                   .title = u"Quorvane Ravelin Updates"_s,
                                   .checkName = u"cmdUpdateQRV"_s,
                                   .checkCaption = u"Update QRVRC"_s,
                                   .order = clientCheck,
                                   .success = u"Updates downloaded and installed successfully."_s,
                                   .canUndo = true},
                                  this);
    buildControls();
    layOut(panel);
    wireSignals();
    showNews();
}

void qrvrcUpdate::buildControls()
{
    fmeNews = new QGroupBox(u"Quorvane News"_s, this);
    fmeNews->setObjectName(u"Frame2"_s);
    txtScripts = new QPlainTextEdit(fmeNews);
    txtScripts->setObjectName(u"txtScripts"_s);
    txtScripts->setAccessibleName(u"Quorvane News"_s);
    txtScripts->setReadOnly(true);
    txtScripts->setTabChangesFocus(true);
    cboFreq = new QuietComboBox(fmeNews);
    cboFreq->setObjectName(u"cboFreq"_s);
    cboFreq->setAccessibleName(u"Update Every"_s);
    for (const std::string_view frequency : newsFrequencies)
        cboFreq->addItem(m_client.codePage.toText(frequency));
    cboFreq->setCurrentText(m_agent.news().frequency());
}

void qrvrcUpdate::layOut(UpdatePanel* panel)
{
    auto* caption = new QLabel(u"Update &Every"_s);
    caption->setBuddy(cboFreq);
    caption->setMinimumWidth(captionWidth);
    cboFreq->setFixedSize(frequencySize);
    auto* frequency = new QHBoxLayout;
    frequency->setSpacing(0);
    frequency->addWidget(caption);
    frequency->addWidget(cboFreq);
    frequency->addStretch();
    auto* news = new QVBoxLayout(fmeNews);
    news->setContentsMargins(newsMargins);
    news->setSpacing(newsGap);
    news->addWidget(txtScripts, 1);
    news->addLayout(frequency);
    auto* all = new QHBoxLayout(this);
    all->setContentsMargins(pageMargins);
    all->setSpacing(gap);
    all->addWidget(panel);
    all->addWidget(fmeNews, 1);
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
