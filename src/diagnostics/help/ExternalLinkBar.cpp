#include "diagnostics/help/ExternalLinkBar.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

using namespace Qt::StringLiterals;

ExternalLinkBar::ExternalLinkBar(const QString& name, QWidget* parent)
    : QFrame(parent),
      lblExternal(new QLabel),
      cmdOpenExternal(new QToolButton)
{
    setObjectName(name);
    setFrameShape(QFrame::StyledPanel);
    lblExternal->setObjectName(u"lblExternal"_s);
    lblExternal->setTextFormat(Qt::PlainText);
    lblExternal->setWordWrap(true);
    lblExternal->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    cmdOpenExternal->setObjectName(u"cmdOpenExternal"_s);
    cmdOpenExternal->setText(tr("Open in browser"));
    cmdOpenExternal->setAccessibleName(tr("Open the link in the web browser"));
    cmdOpenExternal->setFocusPolicy(Qt::StrongFocus);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(lblExternal, 1);
    layout->addWidget(cmdOpenExternal);
    connect(cmdOpenExternal, &QToolButton::clicked, this, &ExternalLinkBar::open);
    hide();
}

void ExternalLinkBar::offer(const QUrl& link)
{
    const bool isWeb = link.isValid() && (link.scheme() == u"http" || link.scheme() == u"https");
    m_link = link;
    lblExternal->setText(QString::fromUtf8(link.toEncoded()));
    cmdOpenExternal->setVisible(isWeb);
    show();
    if (isWeb)
        cmdOpenExternal->setFocus();
}

void ExternalLinkBar::open()
{
    QDesktopServices::openUrl(m_link);
    hide();
}
