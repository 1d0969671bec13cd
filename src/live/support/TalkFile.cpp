#include "live/support/TalkFile.h"

#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "live/support/SupportDesk.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"

#include <QDir>
#include <QFileDialog>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view saveFolder = "\\SupportSaves";

} // namespace

TalkFile::TalkFile(Client& client, SupportDesk& desk, QWidget* window)
    : QObject(window),
      m_client(client),
      m_desk(desk),
      m_window(window)
{}

void TalkFile::save()
{
    const std::shared_ptr<SupportTalk> talk = m_desk.talk();
    if (!talk->saveFile.empty() && std::filesystem::exists(talk->saveFile))
        m_client.reporter.trap("mnuSave_Click", [&] { write(*talk, talk->saveFile); });
    else
        choose(u"Save"_s);
}

void TalkFile::saveAs()
{
    choose(u"Save As"_s);
}

void TalkFile::choose(const QString& title)
{
    m_client.reporter.trap("mnuSaveAs_Click", [&] {
        m_client.folder.makeFolder(saveFolder);
        auto* dialog = new QFileDialog(m_window, title, textOf(m_client.folder.path(saveFolder)));
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setNameFilters({u"Text Documents (*.txt)"_s});
        dialog->setDefaultSuffix(u"txt"_s);
        connect(dialog, &QFileDialog::fileSelected, this, [this, talk = m_desk.talk()](const QString& file) {
            m_client.reporter.trap("mnuSaveAs_Click", [&] { write(*talk, pathOf(file)); });
        });
        dialog->open();
    });
}

/// @param file  a copy, because it is remembered in `talk`
void TalkFile::write(SupportTalk& talk, std::filesystem::path file)
{
    writeBytes(file, replaced(talk.conversation.shownText(), "\n", "\r\n") + "\r\n");
    const QString name = QDir::toNativeSeparators(textOf(file));
    talk.saveFile = std::move(file);
    m_client.reporter.ReportMsg(MessageKind::Success, u"File: %1\r\n\r\nSaved Successfully"_s.arg(name));
}
