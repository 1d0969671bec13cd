#include "app/PendingWindow.h"

#include "link/Client.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PendingWindow::PendingWindow(Client& client, const QString& name, const QString& title, const QString& helpSection,
                             QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_helpSection(helpSection)
{
    setObjectName(name);
    auto* label = new QLabel(u"The section '%1' is not part of this version yet."_s.arg(title), this);
    label->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
}

void PendingWindow::Form_Activate()
{
    m_client.helpSection = m_helpSection;
}
