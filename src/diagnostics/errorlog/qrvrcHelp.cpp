#include "diagnostics/errorlog/qrvrcHelp.h"

#include "client/Client.h"
#include "diagnostics/errorlog/ErrorLogPanel.h"
#include "diagnostics/report/Reporter.h"
#include "store/AppFolder.h"
#include "ui/ImageButton.h"
#include "ui/WindowRegistry.h"

#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int gap = 6;
constexpr QMargins helpMargins(13, 6, 5, 7);
constexpr int rowGap = 6;
constexpr int buttonWidth = 110;
constexpr int captionWidth = 138;
constexpr int captionGap = 6;
constexpr int explanationGap = 20;

} // namespace

qrvrcHelp::qrvrcHelp(Client& client, HelpHooks hooks, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_hooks(std::move(hooks))
{
    setObjectName(u"qrvrcHelp"_s);
    layOut();
    wireSignals();
}

QGroupBox* qrvrcHelp::buildRows()
{
    auto* frame = new QGroupBox(u"Help"_s, this);
    frame->setObjectName(u"fmeHelp"_s);
    auto* rows = new QVBoxLayout(frame);
    rows->setContentsMargins(helpMargins);
    rows->setSpacing(rowGap);
    const auto addRow = [&](const QString& caption, const QString& button, const QString& text,
                            const QString& explanation) {
        auto* label = new QLabel(caption);
        label->setObjectName(u"Label%1"_s.arg(rows->count() + 1));
        label->setMinimumWidth(captionWidth);
        auto* made = new ImageButton(button, text, m_client.pictures, frame);
        made->setAccessibleName(caption.chopped(1) + u", "_s + text);
        made->setAccessibleDescription(explanation);
        made->face()->setFixedWidth(buttonWidth);
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        row->addWidget(label);
        row->addSpacing(captionGap);
        row->addWidget(made->face());
        row->addSpacing(explanationGap);
        row->addWidget(new QLabel(explanation), 1);
        rows->addLayout(row);
        return made;
    };
    cmdShowHelp = addRow(u"Help Manual:"_s, u"cmdShowHelp"_s, u"Show"_s, u"Every window of this program, explained."_s);
    cmdLoadSupport = addRow(u"Support Console:"_s, u"cmdLoadSupport"_s, u"Load"_s,
                            u"A conversation with the operator at the host."_s);
    cmdRecovConsole = addRow(u"Recovery Console:"_s, u"cmdRecovConsole"_s, u"Load"_s,
                             u"Starts, restarts or stops a tracker that does not answer."_s);
    cmdViewErrors = addRow(u"View Error Log:"_s, u"cmdViewErrors"_s, u"View"_s,
                           u"The errors that this program has noted, and reports of them."_s);
    return frame;
}

void qrvrcHelp::layOut()
{
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(pageMargins);
    all->setSpacing(gap);
    all->addWidget(buildRows());
    fmeErrors = new ErrorLogPanel(m_client, m_hooks.page, this);
    QSizePolicy keepsPlace = fmeErrors->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    fmeErrors->setSizePolicy(keepsPlace);
    all->addWidget(fmeErrors, 1);
}

void qrvrcHelp::wireSignals()
{
    connect(cmdShowHelp, &ImageButton::activated, this, m_client.reporter.trapped("cmdShowHelp", [this] {
        m_hooks.showManual(m_client.folder.path("\\help.chm"));
    }));
    connect(cmdLoadSupport, &ImageButton::activated, this,
            m_client.reporter.trapped("cmdLoadSupport", [this] { m_hooks.openSupport(); }));
    connect(cmdRecovConsole, &ImageButton::activated, this, &qrvrcHelp::openRecovery);
    // The log opens when the button goes down; the keyboard stays with the button until it is up again.
    connect(cmdViewErrors, &ImageButton::pressed, fmeErrors, &ErrorLogPanel::view);
    connect(cmdViewErrors, &ImageButton::clicked, fmeErrors, [this] { fmeErrors->setFocus(); });
    connect(fmeErrors, &ErrorLogPanel::closed, cmdViewErrors, [this] { cmdViewErrors->setFocus(); });
}

void qrvrcHelp::openRecovery()
{
    QWidget* console = m_client.windows.window(u"qrvrcRecovery"_s);
    if (!console)
        return;
    console->show();
    console->raise();
    console->activateWindow();
}

void qrvrcHelp::Form_Activate()
{
    if (focusWidget())
        focusWidget()->setFocus(); // where the user was
    else
        cmdShowHelp->setFocus();
}
