#include "diagnostics/qrvrcHelp.h"

#include "diagnostics/ErrorLogPanel.h"
#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "store/AppFolder.h"
#include "ui/ImageButton.h"
#include "ui/WindowRegistry.h"

#include <QGroupBox>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 8;
constexpr int firstRowTop = 26;
constexpr int rowHeight = 36;
constexpr int rowCount = 4;
constexpr int helpHeight = firstRowTop + rowCount * rowHeight + 4;
constexpr int labelLeft = 16;
constexpr int buttonLeft = 160;
constexpr QSize buttonSize(110, 30);
constexpr int explanationLeft = buttonLeft + buttonSize.width() + 20;

} // namespace

qrvrcHelp::qrvrcHelp(Client& client, HelpHooks hooks, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_hooks(std::move(hooks))
{
    setObjectName(u"qrvrcHelp"_s);
    buildControls();
    wireSignals();
}

void qrvrcHelp::buildControls()
{
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    const int width = page.width() - 2 * margin;
    fmeHelp = new QGroupBox(u"Help"_s, this);
    fmeHelp->setObjectName(u"fmeHelp"_s);
    fmeHelp->setGeometry(margin, 2, width, helpHeight);
    int row = 0;
    const auto addRow = [&](const QString& caption, const QString& button, const QString& text,
                            const QString& explanation) {
        const int top = firstRowTop + row * rowHeight;
        auto* label = new QLabel(caption, fmeHelp);
        label->setObjectName(u"Label%1"_s.arg(++row));
        label->setGeometry(labelLeft, top, buttonLeft - labelLeft - 6, buttonSize.height());
        auto* made = new ImageButton(button, text, m_client.pictures, fmeHelp);
        made->place(QRect(QPoint(buttonLeft, top), buttonSize));
        made->setAccessibleName(caption.chopped(1) + u", "_s + text);
        made->setAccessibleDescription(explanation);
        auto* explained = new QLabel(explanation, fmeHelp);
        explained->setGeometry(explanationLeft, top, width - explanationLeft - margin, buttonSize.height());
        return made;
    };
    cmdShowHelp = addRow(u"Help Manual:"_s, u"cmdShowHelp"_s, u"Show"_s, u"Every window of this program, explained."_s);
    cmdLoadSupport = addRow(u"Support Console:"_s, u"cmdLoadSupport"_s, u"Load"_s,
                            u"A conversation with the operator at the host."_s);
    cmdRecovConsole = addRow(u"Recovery Console:"_s, u"cmdRecovConsole"_s, u"Load"_s,
                             u"Starts, restarts or stops a tracker that does not answer."_s);
    cmdViewErrors = addRow(u"View Error Log:"_s, u"cmdViewErrors"_s, u"View"_s,
                           u"The errors that this program has noted, and reports of them."_s);
    fmeErrors = new ErrorLogPanel(m_client, m_hooks.page, this);
    const int errorsTop = 2 + helpHeight + 6;
    fmeErrors->setGeometry(margin, errorsTop, width, page.height() - errorsTop - margin);
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
    m_client.helpSection = u"Help"_s;
    if (focusWidget())
        focusWidget()->setFocus(); // where the user was
    else
        cmdShowHelp->setFocus();
}
