#include "app/qrvrcAbout.h"

#include "link/Client.h"
#include "ui/StripTabBar.h"

#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

const QString titles = u"Delta Force: Black Hawk Down\nDelta Force: Xtreme\nJoint Operations"_s;
const QString credits = u"Written in C++ with Qt, libdeflate and CHMLib.\n\n"
                        "Pictures and manual are our own."_s;

QLabel* page(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

qrvrcAbout::qrvrcAbout(Client& client, const std::string& version, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client)
{
    setObjectName(u"qrvrcAbout"_s);
    auto* emblem = new QLabel;
    emblem->setPixmap(QApplication::windowIcon().pixmap(QSize(96, 96), devicePixelRatioF()));
    emblem->setAlignment(Qt::AlignCenter);
    auto* tsAbout = new StripTabBar(u"tsAbout"_s, client.pictures, "\\background.gif", this);
    tsAbout->setAccessibleName(u"About"_s);
    auto* pages = new QStackedWidget;
    const auto add = [&](const QString& caption, const QString& text) {
        tsAbout->addKeyedTab(caption, {});
        pages->addWidget(page(text));
    };
    add(u"Version"_s, u"QRVRC, the remote client\n\nVersion "_s + QString::fromStdString(version));
    add(u"Supported Titles"_s, titles);
    add(u"Credits"_s, credits);
    connect(tsAbout, &QTabBar::currentChanged, pages, &QStackedWidget::setCurrentIndex);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 24, 40, 24);
    layout->setSpacing(18);
    layout->addWidget(emblem);
    layout->addWidget(tsAbout);
    layout->addWidget(pages, 1);
}

void qrvrcAbout::Form_Activate()
{
    m_client.helpSection = u"About"_s;
}
