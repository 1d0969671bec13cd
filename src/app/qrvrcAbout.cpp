#include "app/qrvrcAbout.h"

#include "app/LicencesPage.h"
#include "client/Client.h"
#include "ui/BackgroundPicture.h"
#include "ui/PictureStore.h"
#include "ui/ProgramIcon.h"
#include "ui/StripTabBar.h"

#include <QLabel>
#include <QPainter>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

const QString titles = u"Delta Force: Black Hawk Down\nDelta Force: Xtreme\nJoint Operations"_s;
const QString credits = u"Written in C++ with Qt, libdeflate, libmspack and libsodium.\n\n"
                        "Pictures and manual are our own."_s;

/// The emblem on a white ground that the background picture shows through.
class Emblem : public QLabel
{
public:
    explicit Emblem(PictureStore& pictures) : m_pictures(pictures)
    {
        setPixmap(programIcon().pixmap(QSize(96, 96), devicePixelRatioF()));
        setAlignment(Qt::AlignCenter);
        setBackgroundRole(QPalette::Base);
        setAutoFillBackground(true);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QLabel::paintEvent(event);
        QPainter painter(this);
        paintBackground(painter, m_pictures.scaled("\\background.gif", size(), devicePixelRatioF()), rect());
    }

private:
    PictureStore& m_pictures;
};

QLabel* page(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

qrvrcAbout::qrvrcAbout(Client& client, const std::string& version, const std::filesystem::path& licences,
                       QWidget* parent)
    : WorkingWindow(parent),
      m_client(client)
{
    setObjectName(u"qrvrcAbout"_s);
    auto* tsAbout = new StripTabBar(u"tsAbout"_s, client.pictures, "\\background.gif", this);
    tsAbout->setAccessibleName(u"About"_s);
    auto* pages = new QStackedWidget;
    const auto add = [&](const QString& caption, QWidget* shown) {
        tsAbout->addKeyedTab(caption, {});
        pages->addWidget(shown);
    };
    add(u"Version"_s, page(u"QRVRC, the remote client\n\nVersion "_s + QString::fromStdString(version)));
    add(u"Supported Titles"_s, page(titles));
    add(u"Credits"_s, page(credits));
    add(u"Licences"_s, new LicencesPage(licences));
    connect(tsAbout, &QTabBar::currentChanged, pages, &QStackedWidget::setCurrentIndex);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 24, 40, 24);
    layout->setSpacing(18);
    layout->addWidget(new Emblem(client.pictures));
    layout->addWidget(tsAbout);
    layout->addWidget(pages, 1);
}
